// korvex/platform/capi/msg.h: decoding CMS messages (RFC 5652).
//
// A message opened with CryptMsgOpenToDecode collects the bytes given to
// CryptMsgUpdate and decodes them (BER or DER) when the final part arrives.
// SignedData and Data content types are supported. Parameters come back in
// the Windows structures; structures with pointers (attributes, signer and
// certificate information) are returned in one block: the pointers point
// into the caller's own buffer, after the structure itself.
#ifndef KORVEX_PLATFORM_CAPI_MSG_H
#define KORVEX_PLATFORM_CAPI_MSG_H

#include <korvex/platform/capi/cert.h>

// Message types.
#define CMSG_DATA 1u
#define CMSG_SIGNED 2u
#define CMSG_ENVELOPED 3u
#define CMSG_SIGNED_AND_ENVELOPED 4u
#define CMSG_HASHED 5u
#define CMSG_ENCRYPTED 6u

// CryptMsgOpenToDecode flags.
#define CMSG_DETACHED_FLAG 0x00000004u

// CryptMsgGetParam parameter types.
#define CMSG_TYPE_PARAM 1u
#define CMSG_CONTENT_PARAM 2u
#define CMSG_BARE_CONTENT_PARAM 3u
#define CMSG_INNER_CONTENT_TYPE_PARAM 4u
#define CMSG_SIGNER_COUNT_PARAM 5u
#define CMSG_SIGNER_INFO_PARAM 6u
#define CMSG_SIGNER_CERT_INFO_PARAM 7u
#define CMSG_SIGNER_HASH_ALGORITHM_PARAM 8u
#define CMSG_SIGNER_AUTH_ATTR_PARAM 9u
#define CMSG_SIGNER_UNAUTH_ATTR_PARAM 10u
#define CMSG_CERT_COUNT_PARAM 11u
#define CMSG_CERT_PARAM 12u
#define CMSG_CRL_COUNT_PARAM 13u
#define CMSG_CRL_PARAM 14u

// One SignerInfo (RFC 5652 5.3). A signer identified by subject key
// identifier has an empty Issuer and its key identifier in SerialNumber
// (big-endian, as it stands in the message); an issuer-and-serial signer
// has the DER issuer name and the little-endian serial number.
typedef struct _CMSG_SIGNER_INFO {
  DWORD dwVersion;
  CERT_NAME_BLOB Issuer;
  CRYPT_INTEGER_BLOB SerialNumber;
  CRYPT_ALGORITHM_IDENTIFIER HashAlgorithm;
  CRYPT_ALGORITHM_IDENTIFIER HashEncryptionAlgorithm;
  CRYPT_DATA_BLOB EncryptedHash;
  CRYPT_ATTRIBUTES AuthAttrs;
  CRYPT_ATTRIBUTES UnauthAttrs;
} CMSG_SIGNER_INFO, *PCMSG_SIGNER_INFO;

// Streaming output: called with the decoded content, once, when the final
// part has been given (fFinal TRUE). Returning FALSE fails the update.
typedef BOOL (*PFN_CMSG_STREAM_OUTPUT)(const void* pvArg, BYTE* pbData, DWORD cbData,
                                       BOOL fFinal);

typedef struct _CMSG_STREAM_INFO {
  DWORD cbContent;
  PFN_CMSG_STREAM_OUTPUT pfnStreamOutput;
  void* pvArg;
} CMSG_STREAM_INFO, *PCMSG_STREAM_INFO;

KORVEX_BEGIN_C

// CryptMsgOpenToDecode opens a message for decoding. dwMsgEncodingType must
// include PKCS_7_ASN_ENCODING; dwMsgType is 0 (take the type from the
// message), CMSG_DATA or CMSG_SIGNED; dwFlags may hold CMSG_DETACHED_FLAG
// (later updates after the final one are the detached content); hCryptProv
// and pRecipientInfo are not used; pStreamInfo, when given, receives the
// content through its callback. Errors: E_INVALIDARG (encoding type, flags),
// CRYPT_E_INVALID_MSG_TYPE (another message type). Returns null on failure.
// Close with CryptMsgClose.
KORVEX_API HCRYPTMSG CryptMsgOpenToDecode(DWORD dwMsgEncodingType, DWORD dwFlags,
                                          DWORD dwMsgType, HCRYPTPROV hCryptProv,
                                          PCERT_INFO pRecipientInfo,
                                          PCMSG_STREAM_INFO pStreamInfo);

// CryptMsgUpdate adds encoded bytes; with fFinal TRUE the message is decoded.
// Errors: E_INVALIDARG (unknown handle, null data with a length),
// CRYPT_E_MSG_ERROR (an update after the final one of a message that is not
// detached), CRYPT_E_ASN1_BADTAG (not a ContentInfo), CRYPT_E_ASN1_EOD
// (truncated), CRYPT_E_ASN1_CORRUPT (other malformed input),
// CRYPT_E_INVALID_MSG_TYPE (a content type other than the one opened for, or
// one not supported), and whatever the stream callback leaves when it fails.
KORVEX_API BOOL CryptMsgUpdate(HCRYPTMSG hCryptMsg, const BYTE* pbData, DWORD cbData,
                               BOOL fFinal);

// CryptMsgGetParam reads a parameter of a decoded message:
//   CMSG_TYPE_PARAM              DWORD message type
//   CMSG_CONTENT_PARAM           the content octets (empty when detached)
//   CMSG_INNER_CONTENT_TYPE_PARAM  NUL-terminated OID text
//   CMSG_SIGNER_COUNT_PARAM      DWORD
//   CMSG_SIGNER_INFO_PARAM       CMSG_SIGNER_INFO of signer dwIndex
//   CMSG_SIGNER_CERT_INFO_PARAM  CERT_INFO with Issuer and SerialNumber set
//   CMSG_SIGNER_HASH_ALGORITHM_PARAM  CRYPT_ALGORITHM_IDENTIFIER
//   CMSG_SIGNER_AUTH_ATTR_PARAM / CMSG_SIGNER_UNAUTH_ATTR_PARAM
//                                CRYPT_ATTRIBUTES, each value the DER of one
//                                AttributeValue
//   CMSG_CERT_COUNT_PARAM / CMSG_CRL_COUNT_PARAM  DWORD
//   CMSG_CERT_PARAM / CMSG_CRL_PARAM  the DER of certificate / CRL dwIndex
// With a null pvData the size needed goes to *pcbData; a smaller buffer
// gives ERROR_MORE_DATA with the size stored; on success *pcbData is the
// size written. Errors: E_INVALIDARG (unknown handle or parameter type, null
// pcbData), CRYPT_E_STREAM_MSG_NOT_READY (not decoded yet),
// CRYPT_E_INVALID_MSG_TYPE (a signer or certificate parameter of a Data
// message), CRYPT_E_INVALID_INDEX (no such signer, certificate or CRL),
// CRYPT_E_ATTRIBUTES_MISSING (a signer without the attributes asked for).
KORVEX_API BOOL CryptMsgGetParam(HCRYPTMSG hCryptMsg, DWORD dwParamType, DWORD dwIndex,
                                 void* pvData, DWORD* pcbData);

// CryptMsgDuplicate adds a reference and returns the same handle (null for
// null or an unknown handle).
KORVEX_API HCRYPTMSG CryptMsgDuplicate(HCRYPTMSG hCryptMsg);

// CryptMsgClose drops a reference; the message goes with the last one. Null
// is allowed; an unknown handle fails with E_INVALIDARG.
KORVEX_API BOOL CryptMsgClose(HCRYPTMSG hCryptMsg);

KORVEX_END_C

#endif
