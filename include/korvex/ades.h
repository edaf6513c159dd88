// <korvex/ades.h>: every public name of libkorvex-ades and of the platform
// interfaces it is used with. Include this one header, link Korvex::ades
// (CMake) or `pkg-config --libs korvex-ades`.
#ifndef KORVEX_ADES_H
#define KORVEX_ADES_H

// Platform: Win32 types and functions, ATL-style helpers, support library.
#include <korvex/platform/windows.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/atl/atlstr.h>
#include <korvex/platform/support/support.h>
#include <korvex/platform/capi/wincrypt.h>
#include <korvex/platform/atl/atlcrypt.h>
#include <korvex/platform/atl/certcontext.h>

// Basic values and date-time.
#include <korvex/core/StringProxy.h>
#include <korvex/core/Blob.h>
#include <korvex/core/HexFormatting.h>
#include <korvex/core/DateTime.h>
#include <korvex/core/DateAdd.h>

// CAdES core.
#include <korvex/cades/policy.h>
#include <korvex/cades/ades_core.h>
#include <korvex/cades/OidInfoEnum.h>

#endif
