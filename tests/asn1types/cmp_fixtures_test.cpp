// The management-protocol status values over the fixtures' CMP messages
// (tests/data/cmp): the PKIStatusInfo of the ip, rp and error messages and
// the CertId of the revocation response, each encoding back to its bytes.
#include <gtest/gtest.h>
#include <korvex/asn1types/CMP.h>

#include <string>

#include "der_walk.h"
#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

// The body of a PKIMessage: its second field, an explicit context tag around
// the body's content (RFC 4210 5.1).
Element Body(CBlob const& message, unsigned char tag) {
  Element body = Root(message).child(1);
  if (body.tag() != tag) throw std::runtime_error("unexpected body");
  return body.child(0);
}

class CmpFixturesTest : public typestest::HeapCheckedTest {};

TEST_F(CmpFixturesTest, InitializationResponseAccepted) {
  for (char const* file : {"cmp/ip.der", "cmp/cp.der", "cmp/kup.der", "cmp/p10cr-cp.der"}) {
    SCOPED_TRACE(file);
    CBlob const message = ReadFixture(file);
    Element body = Root(message).child(1).child(0);
    // CertRepMessage { [1] caPubs OPTIONAL, response SEQUENCE OF CertResponse }
    Element response = body.children().back().child(0);
    Element status = response.child(1);
    CPKIStatusInfo info(CPKIStatusInfo::rejection);
    info.decode(status.der());
    EXPECT_EQ(info.get_status(), CPKIStatusInfo::accepted);
    EXPECT_EQ(info.get_statusString(), nullptr);
    EXPECT_EQ(info.get_failInfo(), nullptr);
    EXPECT_EQ(Hex(info.encode()), Hex(status.der()));
  }
}

TEST_F(CmpFixturesTest, RevocationResponse) {
  CBlob const message = ReadFixture("cmp/rp.der");
  Element body = Body(message, 0xAC);  // [12] rp: RevRepContent
  Element status = body.child(0).child(0);
  CPKIStatusInfo info(CPKIStatusInfo::waiting);
  info.decode(status.der());
  EXPECT_EQ(info.get_status(), CPKIStatusInfo::accepted);
  EXPECT_EQ(Hex(info.encode()), "30 03 02 01 00");
  // revCerts [0] (explicit) SEQUENCE OF CertId: the revoked certificate, named by its
  // issuer (the intermediate CA) and serial 1008.
  Element certIdElement = body.first(0xA0).child(0).child(0);
  CCertId certId;
  certId.decode(certIdElement.der());
  ASSERT_NE(certId.get_issuer().get_directoryName(), nullptr);
  EXPECT_EQ(Hex(certId.get_serialNumber().get_value()), "10 08");
  EXPECT_EQ(Hex(certId.encode()), Hex(certIdElement.der()));
  // A revocation announcement about that certificate.
  CRevAnnContent announcement(CPKIStatusInfo::revocationNotification, certId,
                              Korvex::CDateTime(2024, 7, 1, 0, 0, 0, 0, 0),
                              Korvex::CDateTime(2024, 6, 1, 0, 0, 0, 0, 0));
  CRevAnnContent back;
  back.decode(announcement.encode());
  EXPECT_TRUE(back == announcement);
}

TEST_F(CmpFixturesTest, ErrorMessage) {
  CBlob const message = ReadFixture("cmp/error.der");
  Element body = Body(message, 0xB7);  // [23] error: ErrorMsgContent
  Element status = body.child(0);
  CPKIStatusInfo info;
  info.decode(status.der());
  EXPECT_EQ(info.get_status(), CPKIStatusInfo::rejection);
  ASSERT_NE(info.get_statusString(), nullptr);
  ASSERT_EQ(info.get_statusString()->size(), 1u);
  EXPECT_EQ(info.get_statusString()->front(), std::wstring(L"error processing message"));
  ASSERT_NE(info.get_failInfo(), nullptr);
  EXPECT_EQ(info.get_failInfo()->get_flags(), 1u << CPKIFailureInfo::badRequest);
  EXPECT_EQ(Hex(info.encode()), Hex(status.der()));
  // errorDetails is a PKIFreeText too.
  Element details = body.children().back();
  CPKIFreeText text;
  text.decode(details.der());
  ASSERT_EQ(text.size(), 2u);
  EXPECT_EQ(text.front(), std::wstring(L"CMP routines"));
  EXPECT_EQ(Hex(text.encode()), Hex(details.der()));
}

}  // namespace
