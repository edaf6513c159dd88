// korvex/platform/capi/hash.h: algorithm identifiers and hash objects.
//
// Hashes are computed by OpenSSL. SHA-1, SHA-256, SHA-384, SHA-512 and MD5
// are always there; the GOST R 34.11-94 and GOST R 34.11-2012 hashes when the
// OpenSSL in use provides them (a GOST provider or engine), otherwise
// CryptCreateHash fails with NTE_BAD_ALGID for them.
#ifndef KORVEX_PLATFORM_CAPI_HASH_H
#define KORVEX_PLATFORM_CAPI_HASH_H

#include <korvex/platform/capi/types.h>

// ALG_ID layout: class (bits 13-15) | type (bits 9-12) | sub-identifier.
#define GET_ALG_CLASS(x) ((x) & (7u << 13))
#define GET_ALG_TYPE(x) ((x) & (15u << 9))
#define GET_ALG_SID(x) ((x) & 511u)
#define ALG_CLASS_ANY 0u
#define ALG_CLASS_SIGNATURE (1u << 13)
#define ALG_CLASS_DATA_ENCRYPT (3u << 13)
#define ALG_CLASS_HASH (4u << 13)
#define ALG_CLASS_KEY_EXCHANGE (5u << 13)
#define ALG_TYPE_ANY 0u
#define ALG_TYPE_DSS (1u << 9)
#define ALG_TYPE_RSA (2u << 9)
#define ALG_TYPE_BLOCK (3u << 9)
#define ALG_TYPE_DH (5u << 9)

#define CALG_MD5 0x00008003u
#define CALG_SHA1 0x00008004u
#define CALG_SHA_256 0x0000800Cu
#define CALG_SHA_384 0x0000800Du
#define CALG_SHA_512 0x0000800Eu
#define CALG_RSA_SIGN 0x00002400u
#define CALG_RSA_KEYX 0x0000A400u
#define CALG_DSS_SIGN 0x00002200u
#define CALG_ECDSA 0x00002203u
#define CALG_ECDH 0x0000AA05u
#define CALG_3DES 0x00006603u
#define CALG_AES_128 0x0000660Eu
#define CALG_AES_192 0x0000660Fu
#define CALG_AES_256 0x00006610u

// GOST algorithm identifiers of this platform, built with the layout above
// from sub-identifiers 0x30 upwards (see docs/capi.md).
#define CALG_KORVEX_GR3411_94 (ALG_CLASS_HASH | ALG_TYPE_ANY | 0x30u)          /* 0x8030 */
#define CALG_KORVEX_GR3411_2012_256 (ALG_CLASS_HASH | ALG_TYPE_ANY | 0x31u)    /* 0x8031 */
#define CALG_KORVEX_GR3411_2012_512 (ALG_CLASS_HASH | ALG_TYPE_ANY | 0x32u)    /* 0x8032 */
#define CALG_KORVEX_GR3410_2001 (ALG_CLASS_SIGNATURE | ALG_TYPE_ANY | 0x30u)   /* 0x2030 */
#define CALG_KORVEX_GR3410_2012_256 (ALG_CLASS_SIGNATURE | ALG_TYPE_ANY | 0x31u) /* 0x2031 */
#define CALG_KORVEX_GR3410_2012_512 (ALG_CLASS_SIGNATURE | ALG_TYPE_ANY | 0x32u) /* 0x2032 */
#define CALG_KORVEX_G28147 (ALG_CLASS_DATA_ENCRYPT | ALG_TYPE_BLOCK | 0x30u)   /* 0x6630 */
#define CALG_KORVEX_MAGMA (ALG_CLASS_DATA_ENCRYPT | ALG_TYPE_BLOCK | 0x31u)    /* 0x6631 */
#define CALG_KORVEX_KUZNYECHIK (ALG_CLASS_DATA_ENCRYPT | ALG_TYPE_BLOCK | 0x32u) /* 0x6632 */

// CryptGetHashParam parameters.
#define HP_ALGID 0x0001u
#define HP_HASHVAL 0x0002u
#define HP_HASHSIZE 0x0004u

// CryptHashData flags.
#define CRYPT_USERDATA 1u

KORVEX_BEGIN_C

// CryptCreateHash makes a hash object of algorithm Algid on hProv (which it
// keeps alive). hKey must be 0 and dwFlags 0. Errors: NTE_BAD_UID (unknown
// provider), NTE_BAD_KEY (a key given), NTE_BAD_FLAGS, NTE_BAD_ALGID (not a
// hash algorithm, or not provided by the OpenSSL in use),
// ERROR_INVALID_PARAMETER (null phHash). Free with CryptDestroyHash.
KORVEX_API BOOL CryptCreateHash(HCRYPTPROV hProv, ALG_ID Algid, HCRYPTKEY hKey, DWORD dwFlags,
                                HCRYPTHASH* phHash);

// CryptHashData adds dwDataLen bytes to the hash. Errors: NTE_BAD_HASH
// (unknown handle), NTE_BAD_FLAGS (flags other than CRYPT_USERDATA),
// NTE_BAD_HASH_STATE (the value was already read), ERROR_INVALID_PARAMETER
// (null pbData with a non-zero length).
KORVEX_API BOOL CryptHashData(HCRYPTHASH hHash, const BYTE* pbData, DWORD dwDataLen,
                              DWORD dwFlags);

// CryptGetHashParam reads HP_ALGID (DWORD), HP_HASHSIZE (DWORD) or HP_HASHVAL
// (the digest; reading it finishes the hash, after which CryptHashData fails
// with NTE_BAD_HASH_STATE and the same value is returned again). Null pbData
// queries the size; a short buffer gives ERROR_MORE_DATA with the size
// stored. Errors: NTE_BAD_HASH, NTE_BAD_FLAGS, NTE_BAD_TYPE (unknown
// parameter), ERROR_INVALID_PARAMETER (null pdwDataLen).
KORVEX_API BOOL CryptGetHashParam(HCRYPTHASH hHash, DWORD dwParam, BYTE* pbData,
                                  DWORD* pdwDataLen, DWORD dwFlags);

// CryptDuplicateHash copies a hash object in its current state.
// pdwReserved must be null and dwFlags 0. Errors as CryptHashData.
KORVEX_API BOOL CryptDuplicateHash(HCRYPTHASH hHash, DWORD* pdwReserved, DWORD dwFlags,
                                   HCRYPTHASH* phHash);

// CryptDestroyHash frees a hash object. Error: NTE_BAD_HASH for an unknown
// handle (0 included).
KORVEX_API BOOL CryptDestroyHash(HCRYPTHASH hHash);

KORVEX_END_C

#endif
