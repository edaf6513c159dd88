// unit_extend_test.cpp: AddUnsignedAttributes on BER and on several signers,
// and the DER pieces adestool writes itself.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cades_extension.h"
#include "cms_layout.h"
#include "der_walk.h"
#include "der_writer.h"
#include "digest.h"
#include "pki_items.h"
#include "tool_error.h"
#include "tool_runner.h"

using namespace adestool;
using adestool_test::DataPath;
using adestool_test::HexBytes;
using adestool_test::ReadFile;

namespace {

std::vector<uint8_t> Bytes(const std::string& s) {
  return std::vector<uint8_t>(s.begin(), s.end());
}

std::string Text(const std::vector<uint8_t>& v) { return std::string(v.begin(), v.end()); }

// An attribute of a private OID holding NULL, as a stand-in for a token.
std::vector<uint8_t> TestAttribute(int n) {
  return AttributeDer("1.3.6.1.4.1.99981.38.99." + std::to_string(n), {0x05, 0x00});
}

TEST(DerWriter, LengthsOidsAndAttributes) {
  struct Case {
    size_t length;
    const char* hex;
  } lengths[] = {{0, "00"},      {127, "7F"},       {128, "81 80"},
                 {255, "81 FF"}, {256, "82 01 00"}, {65536, "83 01 00 00"}};
  for (const Case& c : lengths) {
    SCOPED_TRACE(c.length);
    EXPECT_EQ(HexBytes(c.hex), Text(DerLength(c.length)));
  }
  EXPECT_EQ(HexBytes("06 0B 2A 86 48 86 F7 0D 01 09 10 02 0E"),
            Text(DerOid("1.2.840.113549.1.9.16.2.14")));
  EXPECT_EQ(HexBytes("06 03 55 1D 14"), Text(DerOid("2.5.29.20")));
  EXPECT_EQ(HexBytes("06 03 88 37 03"), Text(DerOid("2.999.3")));
  for (const char* bad : {"", "1", "3.1", "1.40", "1..2", "1.2.x"}) {
    SCOPED_TRACE(bad);
    EXPECT_THROW(DerOid(bad), std::invalid_argument);
  }
  EXPECT_EQ(HexBytes("30 0A 06 03 55 1D 14 31 03 02 01 07"),
            Text(AttributeDer("2.5.29.20", {0x02, 0x01, 0x07})));
}

TEST(AddUnsignedAttributes, IndefiniteLengthsOnThePathBecomeDefiniteAndTheRestIsKept) {
  const std::vector<uint8_t> in = Bytes(ReadFile(DataPath("cms/signed-indefinite.ber")));
  DerWalker walker(in, "in");
  const SignedDataLayout layout = ReadSignedData(walker);
  ASSERT_TRUE(layout.contentInfo.indefinite);
  ASSERT_TRUE(layout.signedData.indefinite);
  const std::vector<uint8_t> out =
      AddUnsignedAttributes(walker, layout, {{TestAttribute(1), TestAttribute(2)}});

  DerWalker outWalker(out, "out");
  const SignedDataLayout result = ReadSignedData(outWalker);
  EXPECT_FALSE(result.contentInfo.indefinite);
  EXPECT_FALSE(result.explicitContent.indefinite);
  EXPECT_FALSE(result.signedData.indefinite);
  EXPECT_FALSE(result.signerInfos.indefinite);
  // The encapsulated content keeps its BER form (a constructed OCTET STRING
  // of indefinite length), byte for byte, as do the certificates.
  const std::vector<DerElement> inFields = walker.Children(layout.signedData, "SignedData");
  const std::vector<DerElement> outFields = outWalker.Children(result.signedData, "SignedData");
  ASSERT_EQ(inFields.size(), outFields.size());
  for (size_t i = 0; i + 1 < inFields.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(walker.Slice(inFields[i]), outWalker.Slice(outFields[i]));
  }
  ASSERT_EQ(1u, result.signers.size());
  const SignerLayout& before = layout.signers[0];
  const SignerLayout& after = result.signers[0];
  EXPECT_EQ(before.signature, after.signature);
  for (size_t i = 0; i <= before.signatureIndex; ++i) {
    EXPECT_EQ(walker.Slice(before.fields[i]), outWalker.Slice(after.fields[i]));
  }
  ASSERT_EQ(2u, after.unsignedAttrs.size());
  EXPECT_EQ("1.3.6.1.4.1.99981.38.99.1", after.unsignedAttrs[0].oid);
  EXPECT_EQ(TestAttribute(2), outWalker.Slice(after.unsignedAttrs[1].attribute));
}

TEST(AddUnsignedAttributes, OnlyTheSignersThatChangeAreReencodedAndExistingAttributesStay) {
  const std::vector<uint8_t> in = Bytes(ReadFile(DataPath("cms/signed-two-signers.der")));
  DerWalker walker(in, "in");
  const SignedDataLayout layout = ReadSignedData(walker);
  ASSERT_EQ(2u, layout.signers.size());
  const std::vector<uint8_t> once = AddUnsignedAttributes(walker, layout, {{}, {TestAttribute(1)}});
  DerWalker onceWalker(once, "once");
  const SignedDataLayout onceLayout = ReadSignedData(onceWalker);
  EXPECT_EQ(walker.Slice(layout.signers[0].signerInfo),
            onceWalker.Slice(onceLayout.signers[0].signerInfo));
  ASSERT_EQ(1u, onceLayout.signers[1].unsignedAttrs.size());

  // A second extension appends after what is there.
  const std::vector<uint8_t> twice =
      AddUnsignedAttributes(onceWalker, onceLayout, {{TestAttribute(3)}, {TestAttribute(2)}});
  DerWalker twiceWalker(twice, "twice");
  const SignedDataLayout twiceLayout = ReadSignedData(twiceWalker);
  ASSERT_EQ(1u, twiceLayout.signers[0].unsignedAttrs.size());
  ASSERT_EQ(2u, twiceLayout.signers[1].unsignedAttrs.size());
  EXPECT_EQ(TestAttribute(1), twiceWalker.Slice(twiceLayout.signers[1].unsignedAttrs[0].attribute));
  EXPECT_EQ(TestAttribute(2), twiceWalker.Slice(twiceLayout.signers[1].unsignedAttrs[1].attribute));
  // Nothing to add: the same bytes (the input was DER).
  EXPECT_EQ(in, AddUnsignedAttributes(walker, layout, {}));
}

// signed-nocerts.der with a stand-in signature time-stamp attribute.
std::vector<uint8_t> NoCertsWithTimeStamp() {
  const std::vector<uint8_t> in = Bytes(ReadFile(DataPath("cms/signed-nocerts.der")));
  DerWalker walker(in, "in");
  const SignedDataLayout layout = ReadSignedData(walker);
  return AddUnsignedAttributes(walker, layout,
                               {{AttributeDer(oids::kSignatureTimeStamp, {0x05, 0x00})}});
}

TEST(ValidationAttributes, TheSignersCertificateComesFromTheSignatureOrTheCertFiles) {
  const std::vector<uint8_t> sig = NoCertsWithTimeStamp();
  DerWalker walker(sig, "sig.p7s");
  const SignedDataLayout layout = ReadSignedData(walker);
  const HashAlgorithm& sha256 = *FindHashByName("sha256");
  ValidationInputs inputs;
  try {
    BuildValidationAttributes(walker, layout, 0, inputs, sha256);
    ADD_FAILURE() << "no error";
  } catch (const ToolError& e) {
    EXPECT_EQ(kExitError, e.status());
    EXPECT_EQ(std::string("adestool: sig.p7s: signer 1: its certificate is neither in the "
                          "signature nor among the --cert files"),
              e.what());
  }
  // Found among --cert, the signer's certificate is not referenced itself;
  // its revocation reference (empty here) comes first.
  inputs.certs.push_back(
      CertificateItemFromDer(Bytes(ReadFile(DataPath("pki/ee-rsa.der"))), "ee-rsa.der"));
  const ValidationAttributes a = BuildValidationAttributes(walker, layout, 0, inputs, sha256);
  EXPECT_EQ(HexBytes("30 11 06 0B 2A 86 48 86 F7 0D 01 09 10 02 15 31 02 30 00"),
            Text(a.certificateRefs));
  EXPECT_EQ(HexBytes("30 13 06 0B 2A 86 48 86 F7 0D 01 09 10 02 16 31 04 30 02 30 00"),
            Text(a.revocationRefs));
  EXPECT_EQ(HexBytes("30 11 06 0B 2A 86 48 86 F7 0D 01 09 10 02 17 31 02 30 00"),
            Text(a.certificateValues));
  EXPECT_EQ(HexBytes("30 11 06 0B 2A 86 48 86 F7 0D 01 09 10 02 18 31 02 30 00"),
            Text(a.revocationValues));
}

TEST(EscImprintData, CoversTheSignatureValueAndTheAttributeContents) {
  const std::vector<uint8_t> sig = NoCertsWithTimeStamp();
  DerWalker walker(sig, "sig.p7s");
  const SignedDataLayout layout = ReadSignedData(walker);
  ValidationAttributes built;
  built.certificateRefs = AttributeDer(oids::kCertificateRefs, {0x30, 0x00});
  built.revocationRefs = AttributeDer(oids::kRevocationRefs, {0x30, 0x02, 0x30, 0x00});
  std::vector<uint8_t> expected = layout.signers[0].signature;
  for (const char* hex : {"06 0B 2A 86 48 86 F7 0D 01 09 10 02 0E 31 02 05 00",
                          "06 0B 2A 86 48 86 F7 0D 01 09 10 02 15 31 02 30 00",
                          "06 0B 2A 86 48 86 F7 0D 01 09 10 02 16 31 04 30 02 30 00"}) {
    Append(&expected, Bytes(HexBytes(hex)));
  }
  EXPECT_EQ(expected, EscImprintData(walker, layout.signers[0], 0, &built));

  // The same attributes inside the signature give the same octets.
  const std::vector<uint8_t> extended =
      AddUnsignedAttributes(walker, layout, {{built.certificateRefs, built.revocationRefs}});
  DerWalker extendedWalker(extended, "x.p7s");
  const SignedDataLayout extendedLayout = ReadSignedData(extendedWalker);
  EXPECT_EQ(expected, EscImprintData(extendedWalker, extendedLayout.signers[0], 0, nullptr));
  try {
    EscImprintData(extendedWalker, extendedLayout.signers[0], 0, &built);
    ADD_FAILURE() << "no error";
  } catch (const ToolError& e) {
    EXPECT_EQ(kExitError, e.status());
  }

  // Only one of the two references: a failed check.
  const std::vector<uint8_t> half =
      AddUnsignedAttributes(walker, layout, {{built.certificateRefs}});
  DerWalker halfWalker(half, "half.p7s");
  const SignedDataLayout halfLayout = ReadSignedData(halfWalker);
  try {
    EscImprintData(halfWalker, halfLayout.signers[0], 0, nullptr);
    ADD_FAILURE() << "no error";
  } catch (const ToolError& e) {
    EXPECT_EQ(kExitCheckFailed, e.status());
    EXPECT_EQ(std::string("adestool: half.p7s: signer 1 has no complete-revocation-references "
                          "attribute"),
              e.what());
  }
}

TEST(ReadSignedData, MalformedStructuresNameTheirOffset) {
  struct Case {
    const char* hex;
    std::string message;
  } cases[] = {
      {"30 03 02 01 05", "x: offset 0: ContentInfo: expected 2 fields"},
      {"30 06 02 01 05 02 01 05 00", "x: offset 8: 1 bytes after the ContentInfo"},
      {"30 80 06 09 2A 86 48 86 F7 0D 01 07 02",
       "x: offset 13: ContentInfo: no end-of-contents octets"},
      {"30 0F 06 09 2A 86 48 86 F7 0D 01 07 02 A0 02 31 00",
       "x: offset 15: SignedData: expected SEQUENCE, found SET"},
      {"30 0F 06 09 2A 86 48 86 F7 0D 01 07 02 A0 02 30 00",
       "x: offset 15: SignedData: too few fields"},
      {"30 80 80", "x: offset 2: ContentInfo: incomplete header"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hex);
    const std::vector<uint8_t> bytes = Bytes(HexBytes(c.hex));
    DerWalker walker(bytes, "x");
    try {
      ReadSignedData(walker);
      ADD_FAILURE() << "no error";
    } catch (const ToolError& e) {
      EXPECT_EQ(kExitError, e.status());
      EXPECT_EQ("adestool: " + c.message, e.what());
    }
  }
}

}  // namespace
