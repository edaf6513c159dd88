// korvex/platform/support/support.h: the support library (libkorvex-support).
//
// Three services that the rest of the platform and the library share:
//   - safe_wcsrtombs: bounded wide-to-multibyte conversion in the C locale;
//   - the configuration registry: `\path\to\value = number` lines in a plain
//     text file (see docs/configuration.md for its location and syntax);
//   - the trace channel: named trace contexts writing to a file that the
//     configuration names; off by default, never to standard streams.
#ifndef KORVEX_PLATFORM_SUPPORT_SUPPORT_H
#define KORVEX_PLATFORM_SUPPORT_SUPPORT_H

#include <stddef.h>
#include <wchar.h>

#include <korvex/platform/export.h>

KORVEX_BEGIN_C

// safe_wcsrtombs converts the wide string *src to the multibyte form of the
// current C locale, writing at most len bytes to dst, like wcsrtombs. It
// never writes past dst + len, never splits a multibyte character, and with a
// null ps uses a private zeroed state. Returns the number of bytes written
// (without a NUL), or (size_t)-1 when a character cannot be converted.
KORVEX_API size_t safe_wcsrtombs(char* dst, const wchar_t** src, size_t len, mbstate_t* ps);

// Status codes of the registry functions.
#define SUPPORT_REGISTRY_OK 0
#define SUPPORT_REGISTRY_NOT_FOUND 2     /* no such value (or no configuration file) */
#define SUPPORT_REGISTRY_INVALID_VALUE 13 /* the value is not a number */
#define SUPPORT_REGISTRY_INVALID_PARAM 87 /* null path or output */

// support_registry_get_long reads the value at path (for example
// "\config\CAdES\ProviderTypeStrictMode") from the configuration file as a
// signed integer (decimal, or hexadecimal with 0x). Returns SUPPORT_REGISTRY_OK
// and stores the value, or one of the codes above and leaves *value alone.
KORVEX_API int support_registry_get_long(const char* path, long* value);

// support_registry_get_string reads a text value; at most size - 1 bytes
// and a NUL are stored. A value longer than that gives
// SUPPORT_REGISTRY_INVALID_VALUE. Returns the codes above.
KORVEX_API int support_registry_get_string(const char* path, char* out, size_t size);

// The trace context of one component; opaque to callers.
typedef struct support_print_ctx support_print_ctx;

// support_print_init opens the trace context of the named component.
// `reserved` must be 0. `levels_off`/`levels_on` are the level masks given by
// the caller: the enabled levels are `levels_on & ~levels_off`, further
// restricted by the configured mask (see docs/configuration.md). Returns null
// when tracing is off for this component, which callers treat as "no tracing".
KORVEX_API support_print_ctx* support_print_init(void* reserved, const char* name,
                                                 unsigned int levels_off,
                                                 unsigned int levels_on);

// support_print_is answers whether ctx is open and traces the given level mask.
KORVEX_API int support_print_is(const support_print_ctx* ctx, unsigned int level);

// support_dprint_print_ writes one trace line: the component name, the
// function name and the printf-formatted text. Does nothing for a null ctx.
KORVEX_API void support_dprint_print_(support_print_ctx* ctx, const char* function,
                                      const char* format, ...)
    __attribute__((format(printf, 3, 4)));

// support_print_done closes a trace context; null is allowed.
KORVEX_API void support_print_done(support_print_ctx* ctx);

KORVEX_END_C

#endif
