// korvex/platform/support/support.h: the support library (libkorvex-support).
//
// Three services that the rest of the platform and the library share:
//   - safe_wcsrtombs: bounded wide-to-multibyte conversion in the C locale;
//   - the configuration registry: `\path\to\value = value` lines in a plain
//     text file (see docs/configuration.md for its location and syntax);
//   - the trace channel: named trace contexts writing to a file that the
//     configuration names; off by default, never to standard streams.
// Every function here is thread-safe and leaves errno as it found it
// (safe_wcsrtombs sets it as wcsrtombs does).
#ifndef KORVEX_PLATFORM_SUPPORT_SUPPORT_H
#define KORVEX_PLATFORM_SUPPORT_SUPPORT_H

#include <stddef.h>
#include <wchar.h>

#include <korvex/platform/export.h>

KORVEX_BEGIN_C

// safe_wcsrtombs converts the wide string *src to the multibyte form of the
// current C locale, writing at most len bytes to dst, like wcsrtombs. It
// never writes past dst + len, never splits a multibyte character (the
// terminating NUL included), and with a null ps uses a private zeroed state.
// Returns the number of bytes written (without the NUL). When the NUL was
// stored, *src becomes null; otherwise *src points at the first character
// not converted. With a null dst it returns the length the whole string
// needs and leaves *src alone. Returns (size_t)-1, with errno EILSEQ and *src
// at the offending character, when a character cannot be converted; the
// bytes before it have been written. A null src or *src gives 0.
KORVEX_API size_t safe_wcsrtombs(char* dst, const wchar_t** src, size_t len, mbstate_t* ps);

// Status codes of the registry functions (the Win32 error numbers of the
// same meaning).
#define SUPPORT_REGISTRY_OK 0
#define SUPPORT_REGISTRY_NOT_FOUND 2      /* no such value (or no configuration file) */
#define SUPPORT_REGISTRY_NO_MEMORY 8      /* out of memory while reading the file */
#define SUPPORT_REGISTRY_INVALID_VALUE 13 /* the value is not a number */
#define SUPPORT_REGISTRY_INVALID_PARAM 87 /* null path or output, or size 0 */
#define SUPPORT_REGISTRY_MORE_DATA 234    /* the text value does not fit */

// The configuration file: KORVEX_CONFIG names it when set and not empty
// (ignored in set-user-ID programs), otherwise this path. It is read again
// whenever its path, size, modification time or inode changes.
#define SUPPORT_CONFIG_ENV "KORVEX_CONFIG"
#define SUPPORT_CONFIG_DEFAULT_PATH "/etc/korvex/korvex.conf"

// support_registry_get_long reads the value at path (for example
// "\config\CAdES\ProviderTypeStrictMode", matched without regard to case)
// from the configuration file as a signed integer: optional sign, then
// decimal digits, or "0x" and hexadecimal digits; nothing else on the value.
// Returns SUPPORT_REGISTRY_OK and stores the value, or one of the codes above
// and leaves *value alone (SUPPORT_REGISTRY_INVALID_VALUE also for a number
// outside the range of long).
KORVEX_API int support_registry_get_long(const char* path, long* value);

// support_registry_get_string reads a text value into out: the value and a
// NUL, which need at most size bytes. A longer value gives
// SUPPORT_REGISTRY_MORE_DATA and leaves out alone. Returns the codes above.
KORVEX_API int support_registry_get_string(const char* path, char* out, size_t size);

// Trace levels: bits of a mask. A component chooses which of its messages
// belong to which level; these are the meanings the library's own
// components follow.
#define SUPPORT_TRACE_ERROR 0x01u   /* failures reported to the caller */
#define SUPPORT_TRACE_WARNING 0x02u /* unexpected but handled conditions */
#define SUPPORT_TRACE_INFO 0x04u    /* notable decisions and results */
#define SUPPORT_TRACE_DEBUG 0x08u   /* detail for diagnosing a problem */
#define SUPPORT_TRACE_CALLS 0x10u   /* entry to and exit from functions */
#define SUPPORT_TRACE_DATA 0x20u    /* dumps of data passed around */
#define SUPPORT_TRACE_VERBOSE 0x40u /* everything else */
#define SUPPORT_TRACE_ALL 0x7Fu

// The trace context of one component; opaque to callers.
typedef struct support_print_ctx support_print_ctx;

// support_print_init opens the trace context of the named component.
// `reserved` must be null. `levels_off`/`levels_on` are the level masks given
// by the caller: it allows the levels `levels_on & ~levels_off`. Whether
// those levels are traced is decided at each call by the configuration
// (docs/configuration.md): the file `\config\trace\<name>\file` (or
// `\config\trace\file`) and the mask `\config\trace\<name>\level` (or
// `\config\trace\level`); without both, tracing is off. Returns null for a
// non-null `reserved`, a null or empty name, no allowed level, or out of
// memory; callers treat null as "no tracing". Free with support_print_done.
KORVEX_API support_print_ctx* support_print_init(void* reserved, const char* name,
                                                 unsigned int levels_off,
                                                 unsigned int levels_on);

// support_print_is answers (non-zero) whether ctx is open and traces at
// least one level of the given mask now. 0 for a null ctx or a zero mask.
KORVEX_API int support_print_is(const support_print_ctx* ctx, unsigned int level);

// support_dprint_print_ appends one trace line to the configured file when
// tracing is on for ctx (at any level): UTC time to the millisecond, process
// and thread ids, the component name, the function name ("-" when null) and
// the printf-formatted text, ending with one newline (added when the text
// has none). Does nothing for a null ctx or format. Failures to write are
// ignored; the destination must be a regular file (created with mode 0600
// when missing) and never is standard output or standard error.
KORVEX_API void support_dprint_print_(support_print_ctx* ctx, const char* function,
                                      const char* format, ...)
    __attribute__((format(printf, 3, 4)));

// support_print_done closes a trace context; null is allowed.
KORVEX_API void support_print_done(support_print_ctx* ctx);

KORVEX_END_C

#endif
