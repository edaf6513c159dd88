// The extension values that hold names or policies: DistributionPointName
// (both alternatives), DistributionPoint, CRLDistPointsSyntax,
// AccessDescription, AuthorityInfoAccessSyntax, PolicyQualifierInfo,
// PolicyInformation and its list. Exact DER both ways and the edge cases.
#include <gtest/gtest.h>
#include <korvex/asn1types/Extension.h>
#include <korvex/asn1types/ExtensionTraits.h>

#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

// GeneralName uniformResourceIdentifier "http://a": 86 08 ...
char const kUriDer[] = "86 08 68 74 74 70 3A 2F 2F 61";
// RelativeDistinguishedName { CN = "x" }
char const kRdnDer[] = "31 0A 30 08 06 03 55 04 03 0C 01 78";

CGeneralName Uri(wchar_t const* text) {
  CGeneralName name;
  name.put_uniformResourceIdentifier(text);
  return name;
}

CGeneralNames Names(wchar_t const* uri) {
  CGeneralNames names;
  names.push_back(Uri(uri));
  return names;
}

class ExtensionNamesTest : public typestest::HeapCheckedTest {};

TEST_F(ExtensionNamesTest, DistributionPointNameAlternatives) {
  CDistributionPointName empty;
  EXPECT_EQ(empty.get_type(), 1u);
  ASSERT_NE(empty.get_fullName(), nullptr);
  EXPECT_TRUE(empty.get_fullName()->empty());
  EXPECT_EQ(empty.get_nameRelativeToCRLIssuer(), nullptr);

  CDistributionPointName full(Names(L"http://a"));
  std::string const fullDer = std::string("A0 0A ") + kUriDer;
  EXPECT_EQ(Hex(full.encode()), fullDer);

  CDistributionPointName relative;
  relative.put_nameRelativeToCRLIssuer(Blob(kRdnDer));
  EXPECT_EQ(relative.get_type(), 2u);
  EXPECT_EQ(relative.get_fullName(), nullptr);
  // [1] IMPLICIT RelativeDistinguishedName: the SET tag becomes A1.
  std::string const relativeDer = "A1 0A 30 08 06 03 55 04 03 0C 01 78";
  EXPECT_EQ(Hex(relative.encode()), relativeDer);

  CDistributionPointName back;
  back.decode(Blob(relativeDer));
  EXPECT_EQ(back.get_type(), 2u);
  ASSERT_NE(back.get_nameRelativeToCRLIssuer(), nullptr);
  EXPECT_EQ(Hex(*back.get_nameRelativeToCRLIssuer()), kRdnDer);
  EXPECT_TRUE(back == relative);
  EXPECT_TRUE(back != full);
  back.decode(Blob(fullDer));
  EXPECT_TRUE(back == full);
  EXPECT_EQ(back.get_nameRelativeToCRLIssuer(), nullptr);

  // Failures: bad DER keeps the value; an RDN blob that is not an RDN, and
  // fullName without names, do not encode.
  for (char const* bad : {"A2 02 05 00", "A0 0A 86 08 68", "A1 02 05 00", "30 00"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { back.decode(Blob(bad)); }), 0x80093101u);
    EXPECT_TRUE(back == full);
  }
  CDistributionPointName notRdn;
  notRdn.put_nameRelativeToCRLIssuer(Blob("04 00"));
  EXPECT_EQ(ThrownCode([&] { notRdn.encode(); }), 0x80093101u);
  EXPECT_EQ(ThrownCode([&] { empty.encode(); }), 0x80093101u);

  // Copies are deep.
  CDistributionPointName copy(full);
  copy.put_fullName(Names(L"http://b"));
  EXPECT_TRUE(copy != full);
  copy = relative;
  EXPECT_TRUE(copy == relative);
}

TEST_F(ExtensionNamesTest, DistributionPointParts) {
  CDistributionPoint none;
  EXPECT_EQ(Hex(none.encode()), "30 00");
  CDistributionPoint point{CDistributionPointName(Names(L"http://a"))};
  CReasonFlags const reasons(1u << CReasonFlags::keyCompromise);
  CGeneralNames const issuer = Names(L"http://a");
  point.put_reasons(&reasons);
  point.put_cRLIssuer(&issuer);
  // [0] explicit around the CHOICE, [1] IMPLICIT BIT STRING, [2] IMPLICIT
  // GeneralNames.
  std::string const der =
      std::string("30 1E A0 0C A0 0A ") + kUriDer + " 81 02 06 40 A2 0A " + kUriDer;
  EXPECT_EQ(Hex(point.encode()), der);
  CDistributionPoint back;
  back.decode(Blob(der));
  EXPECT_TRUE(back == point);
  ASSERT_NE(back.get_reasons(), nullptr);
  EXPECT_TRUE(back.get_reasons()->get_bit(CReasonFlags::keyCompromise));
  // Absent/present rule, part by part.
  back.put_reasons(nullptr);
  EXPECT_TRUE(back != point);
  back.put_reasons(&reasons);
  back.put_cRLIssuer(nullptr);
  EXPECT_TRUE(back != point);
  back.put_distributionPoint(nullptr);
  back.put_reasons(nullptr);
  EXPECT_TRUE(back == none);
  // A failed decode keeps the value.
  EXPECT_EQ(ThrownCode([&] { point.decode(Blob("30 04 81 02 06")); }), 0x80093101u);
  EXPECT_EQ(Hex(point.encode()), der);

  CCRLDistPointsSyntax list;
  EXPECT_EQ(ThrownCode([&] { list.encode(); }), 0x80093101u);  // SIZE (1..MAX)
  list.push_back(point);
  list.push_back(none);
  EXPECT_EQ(Hex(list.encode()), "30 22 " + der + " 30 00");
  CCRLDistPointsSyntax listBack;
  listBack.decode(list.encode());
  EXPECT_EQ(listBack, list);
}

TEST_F(ExtensionNamesTest, AccessDescriptions) {
  CAccessDescription ocsp(kOidAdOcsp, Uri(L"http://a"));
  std::string const der = std::string("30 14 06 08 2B 06 01 05 05 07 30 01 ") + kUriDer;
  EXPECT_EQ(Hex(ocsp.encode()), der);
  CAccessDescription back;
  back.decode(Blob(der));
  EXPECT_TRUE(back == ocsp);
  EXPECT_STREQ(back.get_accessMethod(), kOidAdOcsp);
  // No location alternative, no method, bad method: no encoding.
  EXPECT_EQ(ThrownCode([] { CAccessDescription().encode(); }), 0x80070057u);
  CAccessDescription noLocation(kOidAdOcsp, CGeneralName());
  EXPECT_EQ(ThrownCode([&] { noLocation.encode(); }), 0x80093101u);
  EXPECT_EQ(ThrownCode([] { CAccessDescription bad(nullptr, CGeneralName()); }), 0x80070057u);
  back.put_accessLocation(Uri(L"http://b"));
  EXPECT_TRUE(back != ocsp);

  CAuthorityInfoAccessSyntax list;
  EXPECT_EQ(ThrownCode([&] { list.encode(); }), 0x80093101u);
  list.push_back(ocsp);
  list.push_back(CAccessDescription(kOidAdCaIssuers, Uri(L"http://b")));
  CAuthorityInfoAccessSyntax listBack;
  listBack.decode(list.encode());
  EXPECT_EQ(listBack, list);
  EXPECT_EQ(listBack.find(kOidAdCaIssuers), std::next(listBack.begin()));
  EXPECT_EQ(listBack.find("1.3.6.1.5.5.7.48.3"), listBack.end());
}

TEST_F(ExtensionNamesTest, PolicyInformation) {
  CPolicyInformation any(kOidAnyPolicy);
  EXPECT_EQ(Hex(any.encode()), "30 06 06 04 55 1D 20 00");
  CPolicyQualifierInfoList qualifiers;
  qualifiers.push_back(CPolicyQualifierInfo(kOidQtCps, Blob("16 01 61")));
  any.put_policyQualifiers(&qualifiers);
  char const kWithCps[] =
      "30 17 06 04 55 1D 20 00 30 0F 30 0D 06 08 2B 06 01 05 05 07 02 01 16 01 61";
  EXPECT_EQ(Hex(any.encode()), Hex(Blob(kWithCps)));
  CPolicyInformation back;
  back.decode(Blob(kWithCps));
  EXPECT_TRUE(back == any);
  ASSERT_NE(back.get_policyQualifiers(), nullptr);
  EXPECT_EQ(Hex(back.get_policyQualifiers()->front().get_qualifier()), "16 01 61");

  // A present but empty qualifier list does not encode (SIZE (1..MAX)); a
  // qualifier that is not one element neither.
  CPolicyQualifierInfoList const none;
  CPolicyInformation empty(kOidAnyPolicy);
  empty.put_policyQualifiers(&none);
  EXPECT_EQ(ThrownCode([&] { empty.encode(); }), 0x80093101u);
  EXPECT_TRUE(empty != CPolicyInformation(kOidAnyPolicy));
  CPolicyQualifierInfoList twoElements;
  twoElements.push_back(CPolicyQualifierInfo(kOidQtCps, Blob("16 01 61 16 01 62")));
  empty.put_policyQualifiers(&twoElements);
  EXPECT_EQ(ThrownCode([&] { empty.encode(); }), 0x80093101u);
  EXPECT_EQ(ThrownCode([] { CPolicyInformation bad(nullptr); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([] { CPolicyQualifierInfo bad(nullptr, CBlob()); }), 0x80070057u);
  // Qualifier alone.
  CPolicyQualifierInfo cps;
  cps.decode(Blob("30 0D 06 08 2B 06 01 05 05 07 02 01 16 01 61"));
  EXPECT_STREQ(cps.get_policyQualifierId(), kOidQtCps);
  EXPECT_EQ(Hex(cps.encode()), "30 0D 06 08 2B 06 01 05 05 07 02 01 16 01 61");

  CPolicyInformationList list;
  EXPECT_EQ(ThrownCode([&] { list.encode(); }), 0x80093101u);
  list.push_back(any);
  list.push_back(CPolicyInformation("1.2.643.100.113.1"));
  CPolicyInformationList listBack;
  listBack.decode(list.encode());
  EXPECT_EQ(listBack, list);
  EXPECT_EQ(listBack.find("1.2.643.100.113.1"), std::next(listBack.begin()));
  EXPECT_EQ(listBack.find(nullptr), listBack.end());
}

}  // namespace
