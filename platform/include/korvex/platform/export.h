// korvex/platform/export.h: symbol visibility for every korvex shared object.
//
// All korvex libraries are built with hidden visibility; KORVEX_API marks a
// declaration as part of the public ABI. On ELF the same attribute serves for
// the definition (export) and for callers (import), so one macro is enough.
#ifndef KORVEX_PLATFORM_EXPORT_H
#define KORVEX_PLATFORM_EXPORT_H

#define KORVEX_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define KORVEX_EXTERN_C extern "C"
#define KORVEX_BEGIN_C extern "C" {
#define KORVEX_END_C }
#else
#define KORVEX_EXTERN_C
#define KORVEX_BEGIN_C
#define KORVEX_END_C
#endif

// KORVEX_C_API: a C-linkage function exported from its library.
#define KORVEX_C_API KORVEX_EXTERN_C KORVEX_API

#endif
