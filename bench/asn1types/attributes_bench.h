// attributes_bench.h: the CAdES-BES signed-attribute set shared by the
// attribute benchmarks and their OpenSSL peer.
#ifndef KORVEX_BENCH_ASN1TYPES_ATTRIBUTES_BENCH_H
#define KORVEX_BENCH_ASN1TYPES_ATTRIBUTES_BENCH_H

#include <korvex/core/Blob.h>

namespace attrbench {

// CadesBesSignedAttrsDer: the DER SET OF Attribute that a CAdES-BES signer
// signs: contentType id-data, messageDigest (32 octets), signingTime
// (UTCTime), signingCertificateV2 (one ESSCertIDv2: SHA-256 left out, a
// 32-octet hash, issuerSerial naming the fixtures' intermediate CA and serial
// C0FFEE), as our encoder writes it (249 octets).
Korvex::CBlob CadesBesSignedAttrsDer();

}  // namespace attrbench

#endif
