// pki_test_values.h: the issuer used by the tests and the benchmark of the
// certificate-ID values, with its DER (checked with `openssl asn1parse -i`).
#ifndef KORVEX_TESTS_ASN1TYPES_PKI_TEST_VALUES_H
#define KORVEX_TESTS_ASN1TYPES_PKI_TEST_VALUES_H

#include <korvex/asn1types/BigInteger.h>
#include <korvex/asn1types/Names.h>
#include <korvex/core/Blob.h>

namespace pkitest {

// Name: CN=Test CA (UTF8String), one RDN.
inline char const* const kNameHex = "30 12 31 10 30 0E 06 03 55 04 03 0C 07 54 65 73 74 20 43 41";
// IssuerSerial { GeneralNames { directoryName Name }, serial 0xC0FFEE }.
inline char const* const kIssuerSerialHex =
    "30 1E 30 16 A4 14 30 12 31 10 30 0E 06 03 55 04 03 0C 07 54 65 73 74 20 43 41 "
    "02 04 00 C0 FF EE";

// A general name holding the directoryName CN=Test CA.
inline Korvex::ASN1::CGeneralName TestDirectoryName() {
  Korvex::ASN1::CGeneralName name;
  static unsigned char const kName[] = {0x30, 0x12, 0x31, 0x10, 0x30, 0x0E, 0x06, 0x03, 0x55, 0x04,
                                        0x03, 0x0C, 0x07, 'T',  'e',  's',  't',  ' ',  'C',  'A'};
  name.put_directoryName(Korvex::CBlob(kName, sizeof kName));
  return name;
}

// The issuer of kIssuerSerialHex.
inline Korvex::ASN1::CGeneralNames TestIssuer() {
  Korvex::ASN1::CGeneralNames names;
  names.push_back(TestDirectoryName());
  return names;
}

// The serial number 0xC0FFEE (held as 00 C0 FF EE).
inline Korvex::ASN1::CBigInteger TestSerial() { return Korvex::ASN1::CBigInteger(0xC0FFEEul); }

}  // namespace pkitest

#endif
