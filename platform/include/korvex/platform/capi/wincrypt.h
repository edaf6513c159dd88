// korvex/platform/capi/wincrypt.h: the whole CryptoAPI subset of the platform
// (libkorvex-capi), in one include.
#ifndef KORVEX_PLATFORM_CAPI_WINCRYPT_H
#define KORVEX_PLATFORM_CAPI_WINCRYPT_H

#include <korvex/platform/capi/types.h>
#include <korvex/platform/capi/errors.h>
#include <korvex/platform/capi/provider.h>
#include <korvex/platform/capi/hash.h>
#include <korvex/platform/capi/cert.h>
#include <korvex/platform/capi/chain.h>
#include <korvex/platform/capi/msg.h>
#include <korvex/platform/capi/oidinfo.h>

#endif
