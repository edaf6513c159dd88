// korvex/platform/capi/types.h: the CryptoAPI base types of the platform.
//
// Handles, blobs and algorithm identifiers with the Windows field order, laid
// out for LP64 Linux: DWORD is 32 bits, pointers and ULONG_PTR handles are 64.
// Every structure here is plain C so that C and C++ callers share it.
#ifndef KORVEX_PLATFORM_CAPI_TYPES_H
#define KORVEX_PLATFORM_CAPI_TYPES_H

#include <korvex/platform/win32/windef.h>
#include <korvex/platform/capi/errors.h>

typedef unsigned int ALG_ID;

// Provider, key and hash handles are integers; stores, messages and chain
// engines are opaque pointers, as on Windows.
typedef ULONG_PTR HCRYPTPROV;
typedef ULONG_PTR HCRYPTKEY;
typedef ULONG_PTR HCRYPTHASH;
typedef void* HCERTSTORE;
typedef void* HCRYPTMSG;
typedef void* HCERTCHAINENGINE;

// Encoding types: the certificate encoding in the low word, the message
// encoding in the high word.
#define X509_ASN_ENCODING 0x00000001u
#define PKCS_7_ASN_ENCODING 0x00010000u
#define CERT_ENCODING_TYPE_MASK 0x0000FFFFu
#define CMSG_ENCODING_TYPE_MASK 0xFFFF0000u

// One counted byte string; every *_BLOB name below is this structure.
typedef struct _CRYPTOAPI_BLOB {
  DWORD cbData;
  BYTE* pbData;
} CRYPT_INTEGER_BLOB, *PCRYPT_INTEGER_BLOB, CRYPT_UINT_BLOB, *PCRYPT_UINT_BLOB,
    CRYPT_OBJID_BLOB, *PCRYPT_OBJID_BLOB, CERT_NAME_BLOB, *PCERT_NAME_BLOB,
    CERT_RDN_VALUE_BLOB, *PCERT_RDN_VALUE_BLOB, CERT_BLOB, *PCERT_BLOB, CRL_BLOB, *PCRL_BLOB,
    DATA_BLOB, *PDATA_BLOB, CRYPT_DATA_BLOB, *PCRYPT_DATA_BLOB, CRYPT_HASH_BLOB,
    *PCRYPT_HASH_BLOB, CRYPT_DIGEST_BLOB, *PCRYPT_DIGEST_BLOB, CRYPT_DER_BLOB, *PCRYPT_DER_BLOB,
    CRYPT_ATTR_BLOB, *PCRYPT_ATTR_BLOB;

// A BIT STRING: cUnusedBits of the last byte are not part of the value.
typedef struct _CRYPT_BIT_BLOB {
  DWORD cbData;
  BYTE* pbData;
  DWORD cUnusedBits;
} CRYPT_BIT_BLOB, *PCRYPT_BIT_BLOB;

// An AlgorithmIdentifier (RFC 5280 4.1.1.2): dotted OID text and the DER of
// the parameters (empty when absent).
typedef struct _CRYPT_ALGORITHM_IDENTIFIER {
  LPSTR pszObjId;
  CRYPT_OBJID_BLOB Parameters;
} CRYPT_ALGORITHM_IDENTIFIER, *PCRYPT_ALGORITHM_IDENTIFIER;

// One attribute (RFC 5652 5.3): its type and the DER of each value.
typedef struct _CRYPT_ATTRIBUTE {
  LPSTR pszObjId;
  DWORD cValue;
  PCRYPT_ATTR_BLOB rgValue;
} CRYPT_ATTRIBUTE, *PCRYPT_ATTRIBUTE;

typedef struct _CRYPT_ATTRIBUTES {
  DWORD cAttr;
  PCRYPT_ATTRIBUTE rgAttr;
} CRYPT_ATTRIBUTES, *PCRYPT_ATTRIBUTES;

#ifndef GUID_DEFINED
#define GUID_DEFINED
typedef struct _GUID {
  DWORD Data1;
  WORD Data2;
  WORD Data3;
  BYTE Data4[8];
} GUID;
#endif

#endif
