// ades_trace.h: tracing through the library's trace context (not installed).
//
// ADES_TRACE asks the support library whether the level is traced before it
// formats anything, so a disabled level costs one configuration look-up and
// no formatting.
#ifndef KORVEX_CADES_ADES_TRACE_H
#define KORVEX_CADES_ADES_TRACE_H

#include <korvex/cades/ades_core.h>
#include <korvex/platform/support/support.h>

// Level of the helpers' diagnostic lines (SUPPORT_TRACE_DEBUG).
#define ADES_TRACE_LEVEL_DEBUG 0x08u

// ADES_TRACE(level, function, format, ...) prints one line in the name of
// `function` when ades_db_ctx is open and traces `level` now.
#define ADES_TRACE(level, function, ...)                                         \
  do {                                                                           \
    if (ades_db_ctx != nullptr && support_print_is(ades_db_ctx, (level)) != 0) { \
      support_dprint_print_(ades_db_ctx, (function), __VA_ARGS__);               \
    }                                                                            \
  } while (0)

#endif
