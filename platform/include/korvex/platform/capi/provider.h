// korvex/platform/capi/provider.h: cryptographic provider contexts.
//
// A provider context remembers the provider type it was opened with and
// serves hashes and public keys for it. The platform keeps no persistent key
// containers: contexts are verification contexts (CRYPT_VERIFYCONTEXT).
// Failing calls return FALSE and set the thread's last error to the HRESULT
// named in each comment, as the Windows functions do.
#ifndef KORVEX_PLATFORM_CAPI_PROVIDER_H
#define KORVEX_PLATFORM_CAPI_PROVIDER_H

#include <korvex/platform/capi/types.h>

// Provider types. 75, 80 and 81 are the GOST R 34.10-2001, GOST R 34.10-2012
// (256-bit) and GOST R 34.10-2012 (512-bit) provider types.
#define PROV_RSA_FULL 1u
#define PROV_RSA_SIG 2u
#define PROV_DSS 3u
#define PROV_DSS_DH 13u
#define PROV_RSA_AES 24u
#define PROV_KORVEX_GOST_2001 75u
#define PROV_KORVEX_GOST_2012_256 80u
#define PROV_KORVEX_GOST_2012_512 81u

// The name each provider type reports through PP_NAME; a non-null provider
// name given to CryptAcquireContext must be the one of its type.
#define KORVEX_PROV_RSA_NAME_A "Korvex RSA and AES Cryptographic Provider"
#define KORVEX_PROV_DSS_NAME_A "Korvex DSS and ECDSA Cryptographic Provider"
#define KORVEX_PROV_GOST_2001_NAME_A "Korvex GOST R 34.10-2001 Cryptographic Provider"
#define KORVEX_PROV_GOST_2012_256_NAME_A "Korvex GOST R 34.10-2012 (256) Cryptographic Provider"
#define KORVEX_PROV_GOST_2012_512_NAME_A "Korvex GOST R 34.10-2012 (512) Cryptographic Provider"

// CryptAcquireContext flags.
#define CRYPT_VERIFYCONTEXT 0xF0000000u
#define CRYPT_NEWKEYSET 0x00000008u
#define CRYPT_DELETEKEYSET 0x00000010u
#define CRYPT_MACHINE_KEYSET 0x00000020u
#define CRYPT_SILENT 0x00000040u

// CryptGetProvParam parameters.
#define PP_IMPTYPE 3u
#define PP_NAME 4u
#define PP_VERSION 5u
#define PP_CONTAINER 6u
#define PP_PROVTYPE 16u
#define CRYPT_IMPL_SOFTWARE 2u

KORVEX_BEGIN_C

// CryptAcquireContextA opens a context of provider type dwProvType. The only
// contexts the platform has are verification contexts: dwFlags must hold
// CRYPT_VERIFYCONTEXT (CRYPT_MACHINE_KEYSET and CRYPT_SILENT may be added) and
// pszContainer must be null or empty. Errors: ERROR_INVALID_PARAMETER for a
// null phProv; NTE_BAD_FLAGS for unknown flags or CRYPT_NEWKEYSET /
// CRYPT_DELETEKEYSET together with CRYPT_VERIFYCONTEXT; NTE_BAD_KEYSET when a
// key container is asked for (none exists); NTE_PERM for CRYPT_NEWKEYSET
// (the platform stores no keys); NTE_BAD_PROV_TYPE for an unknown type;
// NTE_KEYSET_NOT_DEF for a provider name that is not the type's own. Free
// the context with CryptReleaseContext.
KORVEX_API BOOL CryptAcquireContextA(HCRYPTPROV* phProv, LPCSTR pszContainer,
                                     LPCSTR pszProvider, DWORD dwProvType, DWORD dwFlags);
// CryptAcquireContextW is CryptAcquireContextA with wide names (converted as
// UTF-32 code points; a name that is not ASCII matches no provider).
KORVEX_API BOOL CryptAcquireContextW(HCRYPTPROV* phProv, LPCWSTR pszContainer,
                                     LPCWSTR pszProvider, DWORD dwProvType, DWORD dwFlags);

// CryptContextAddRef adds a reference to hProv; each reference is released
// by one CryptReleaseContext. dwFlags and pdwReserved must be 0 / null
// (NTE_BAD_FLAGS / ERROR_INVALID_PARAMETER); an unknown handle is NTE_BAD_UID.
KORVEX_API BOOL CryptContextAddRef(HCRYPTPROV hProv, DWORD* pdwReserved, DWORD dwFlags);

// CryptReleaseContext drops one reference of hProv; the context goes when
// the last one does (hashes and keys made from it keep it alive until they
// are destroyed). A non-zero dwFlags still releases and then fails with
// NTE_BAD_FLAGS; an unknown handle is NTE_BAD_UID.
KORVEX_API BOOL CryptReleaseContext(HCRYPTPROV hProv, DWORD dwFlags);

// CryptGetProvParam reads a provider parameter: PP_PROVTYPE (DWORD, the type
// the context was opened with), PP_NAME (NUL-terminated provider name),
// PP_CONTAINER (the container name, empty for a verification context),
// PP_IMPTYPE (DWORD CRYPT_IMPL_SOFTWARE), PP_VERSION (DWORD 0x0200). With a
// null pbData it stores the size needed in *pdwDataLen; a buffer smaller than
// that gives ERROR_MORE_DATA with the size stored. Errors: NTE_BAD_UID,
// NTE_BAD_FLAGS (dwFlags != 0), NTE_BAD_TYPE (unknown parameter),
// ERROR_INVALID_PARAMETER (null pdwDataLen).
KORVEX_API BOOL CryptGetProvParam(HCRYPTPROV hProv, DWORD dwParam, BYTE* pbData,
                                  DWORD* pdwDataLen, DWORD dwFlags);

KORVEX_END_C

#endif
