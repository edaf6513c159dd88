// The CAdES attribute module (namespace ASN1CADES): DER round trips of every
// type, BER input, constraint checks and the statuses of malformed input.
#include <gtest/gtest.h>
#include <korvex/asn1gen/ASN1CADES.h>

#include <functional>
#include <string>

#include "codec_fixture.h"

namespace {

using namespace ASN1CADES;
using Korvex::Test::Bytes;
using Korvex::Test::Codec;
using Korvex::Test::ExpectDecodeStatus;
using Korvex::Test::ExpectRoundTrip;
using Korvex::Test::FromHex;
using Korvex::Test::ToHex;

#define F(Type) KORVEX_FUNCTIONS(ASN1CADES, Type)

// Hand-built DER of each type. Open types hold small stand-ins: 04 03 01 02 03
// for OtherHash/OtherCertID, 30 00 for a Name, 30 03 02 01 01 for a token.
const char kSigPolicyQualifierInfo[] = "3012060B2A864886F70D01091005011603616263";
const char kSignaturePolicyId[] =
    "302206032A03043005040301020330143012060B2A864886F70D01091005011603616263";
const char kCommitmentTypeQualifier[] = "300F060B2A864886F70D01091006010500";
const char kCommitmentTypeIndication[] =
    "3020060B2A864886F70D01091006013011300F060B2A864886F70D01091006010500";
const char kNoticeReference[] = "300D0C036162633006020101020102";
const char kSPUserNotice[] = "3012300D0C0361626330060201010201021A0141";
const char kPostalAddress[] = "300A0C036162631303444546";
const char kSignerLocation[] = "301BA00413024445A1050C03616263A20C300A0C036162631303444546";
const char kSignerAttribute[] = "300BA0023000A1053003020105";
const char kCompleteCertificateRefs[] = "300730050403010203";
const char kCrlIdentifier[] = "30143000170D3234303130323033303430355A020107";
const char kCrlValidatedID[] = "301B040301020330143000170D3234303130323033303430355A020107";
const char kCRLListID[] = "301F301D301B040301020330143000170D3234303130323033303430355A020107";
const char kOcspIdentifier[] = "3015A2020400180F32303234303130323033303430355A";
const char kOcspResponsesID[] = "301C3015A2020400180F32303234303130323033303430355A0403010203";
const char kOcspListID[] = "3020301E301C3015A2020400180F32303234303130323033303430355A0403010203";
const char kOtherRevRefs[] = "300B06032A0304300405000500";
const char kCrlOcspRef[] =
    "3056A021301F301D301B040301020330143000170D3234303130323033303430355A020107"
    "A1223020301E301C3015A2020400180F32303234303130323033303430355A0403010203"
    "A20D300B06032A0304300405000500";
const char kCompleteRevocationRefs[] =
    "30583056A021301F301D301B040301020330143000170D3234303130323033303430355A020107"
    "A1223020301E301C3015A2020400180F32303234303130323033303430355A0403010203"
    "A20D300B06032A0304300405000500";
const char kCertificateValues[] = "300A30030201013003020102";
const char kRevocationValues[] =
    "3021A00730053003020101A10730053003020102A20D300B06032A0304300405000500";

struct RoundTripCase {
  const char* type;
  std::function<void()> run;
};

TEST(CadesModule, RoundTripsEveryType) {
  const RoundTripCase cases[] = {
      {"SigPolicyId", [] { ExpectRoundTrip(F(SigPolicyId), "06032A0304"); }},
      {"SigPolicyHash", [] { ExpectRoundTrip(F(SigPolicyHash), "30050403010203"); }},
      {"SPuri", [] { ExpectRoundTrip(F(SPuri), "1605687474703A"); }},
      {"CRLNumber (above 64 bits)",
       [] { ExpectRoundTrip(F(CRLNumber), "020900FFFFFFFFFFFFFFFF"); }},
      {"CRLNumber (zero)", [] { ExpectRoundTrip(F(CRLNumber), "020100"); }},
      {"SignaturePolicyImplied", [] { ExpectRoundTrip(F(SignaturePolicyImplied), "0500"); }},
      {"CommitmentTypeIdentifier",
       [] { ExpectRoundTrip(F(CommitmentTypeIdentifier), "060B2A864886F70D0109100601"); }},
      {"ContentTimestamp", [] { ExpectRoundTrip(F(ContentTimestamp), "3003020101"); }},
      {"SignatureTimeStampToken",
       [] { ExpectRoundTrip(F(SignatureTimeStampToken), "3003020101"); }},
      {"ESCTimeStampToken", [] { ExpectRoundTrip(F(ESCTimeStampToken), "3003020101"); }},
      {"TimestampedCertsCRLs", [] { ExpectRoundTrip(F(TimestampedCertsCRLs), "3003020101"); }},
      {"ArchiveTimeStampToken", [] { ExpectRoundTrip(F(ArchiveTimeStampToken), "3003020101"); }},
      {"SigPolicyQualifierInfo",
       [] { ExpectRoundTrip(F(SigPolicyQualifierInfo), kSigPolicyQualifierInfo); }},
      {"SigPolicyQualifierInfo without value",
       [] { ExpectRoundTrip(F(SigPolicyQualifierInfo), "300D060B2A864886F70D0109100501"); }},
      {"SignaturePolicyId", [] { ExpectRoundTrip(F(SignaturePolicyId), kSignaturePolicyId); }},
      {"SignaturePolicyInfo (id)",
       [] { ExpectRoundTrip(F(SignaturePolicyInfo), kSignaturePolicyId); }},
      {"SignaturePolicyInfo (implied)", [] { ExpectRoundTrip(F(SignaturePolicyInfo), "0500"); }},
      {"DisplayText (utf8String)", [] { ExpectRoundTrip(F(DisplayText), "0C03616263"); }},
      {"DisplayText (visibleString)", [] { ExpectRoundTrip(F(DisplayText), "1A0141"); }},
      {"DisplayText (bmpString)", [] { ExpectRoundTrip(F(DisplayText), "1E0400410042"); }},
      {"NoticeReference", [] { ExpectRoundTrip(F(NoticeReference), kNoticeReference); }},
      {"SPUserNotice", [] { ExpectRoundTrip(F(SPUserNotice), kSPUserNotice); }},
      {"SPUserNotice (empty)", [] { ExpectRoundTrip(F(SPUserNotice), "3000"); }},
      {"CommitmentTypeQualifier",
       [] { ExpectRoundTrip(F(CommitmentTypeQualifier), kCommitmentTypeQualifier); }},
      {"CommitmentTypeIndication",
       [] { ExpectRoundTrip(F(CommitmentTypeIndication), kCommitmentTypeIndication); }},
      {"PostalAddress", [] { ExpectRoundTrip(F(PostalAddress), kPostalAddress); }},
      {"SignerLocation", [] { ExpectRoundTrip(F(SignerLocation), kSignerLocation); }},
      {"SignerAttribute", [] { ExpectRoundTrip(F(SignerAttribute), kSignerAttribute); }},
      {"CompleteCertificateRefs",
       [] { ExpectRoundTrip(F(CompleteCertificateRefs), kCompleteCertificateRefs); }},
      {"CrlIdentifier", [] { ExpectRoundTrip(F(CrlIdentifier), kCrlIdentifier); }},
      {"CrlValidatedID", [] { ExpectRoundTrip(F(CrlValidatedID), kCrlValidatedID); }},
      {"CRLListID", [] { ExpectRoundTrip(F(CRLListID), kCRLListID); }},
      {"OcspIdentifier", [] { ExpectRoundTrip(F(OcspIdentifier), kOcspIdentifier); }},
      {"OcspResponsesID", [] { ExpectRoundTrip(F(OcspResponsesID), kOcspResponsesID); }},
      {"OcspListID", [] { ExpectRoundTrip(F(OcspListID), kOcspListID); }},
      {"OtherRevRefs", [] { ExpectRoundTrip(F(OtherRevRefs), kOtherRevRefs); }},
      {"CrlOcspRef", [] { ExpectRoundTrip(F(CrlOcspRef), kCrlOcspRef); }},
      {"CrlOcspRef (empty)", [] { ExpectRoundTrip(F(CrlOcspRef), "3000"); }},
      {"CompleteRevocationRefs",
       [] { ExpectRoundTrip(F(CompleteRevocationRefs), kCompleteRevocationRefs); }},
      {"CertificateValues", [] { ExpectRoundTrip(F(CertificateValues), kCertificateValues); }},
      {"RevocationValues", [] { ExpectRoundTrip(F(RevocationValues), kRevocationValues); }},
      {"OtherRevVals", [] { ExpectRoundTrip(F(OtherRevVals), kOtherRevRefs); }},
      {"AttributeCertificateRefs",
       [] { ExpectRoundTrip(F(AttributeCertificateRefs), kCompleteCertificateRefs); }},
      {"AttributeRevocationRefs",
       [] { ExpectRoundTrip(F(AttributeRevocationRefs), kCompleteRevocationRefs); }},
  };
  for (const RoundTripCase& c : cases) {
    SCOPED_TRACE(c.type);
    c.run();
  }
}

TEST(CadesModule, DecodesBerForms) {
  struct Case {
    const char* name;
    std::function<void()> run;
  } cases[] = {
      {"indefinite list of references",
       [] {
         ExpectRoundTrip(F(CompleteRevocationRefs),
                         std::string("3080") + (kCompleteRevocationRefs + 4) + "0000",
                         kCompleteRevocationRefs);
       }},
      {"indefinite explicit tags",
       [] {
         ExpectRoundTrip(F(SignerLocation), "3080 A080 13024445 0000 A105 0C03616263 0000",
                         "300DA00413024445A1050C03616263");
       }},
      {"long-form lengths",
       [] {
         ExpectRoundTrip(F(OtherRevRefs), "30810C 06032A0304 308104 0500 0500", kOtherRevRefs);
       }},
      {"indefinite CrlIdentifier inside indefinite CrlValidatedID",
       [] {
         ExpectRoundTrip(F(CrlValidatedID),
                         "3080040301020330803000170D3234303130323033303430355A02010700000000",
                         kCrlValidatedID);
       }},
      {"constructed IA5String",
       [] { ExpectRoundTrip(F(SPuri), "3680 04026874 0403747 03A 0000", "1605687474703A"); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    c.run();
  }
}

TEST(CadesModule, DecodeStatuses) {
  struct Case {
    const char* name;
    std::function<void()> run;
  } cases[] = {
      {"wrong outer tag",
       [] { ExpectDecodeStatus(F(SignaturePolicyId), "310506032A0304", ASN_E_IDNOTFOU); }},
      {"missing mandatory time",
       [] { ExpectDecodeStatus(F(CrlIdentifier), "30023000", ASN_E_SETMISRQ); }},
      {"empty OcspIdentifier",
       [] { ExpectDecodeStatus(F(OcspIdentifier), "3000", ASN_E_SETMISRQ); }},
      {"mandatory component of another type",
       [] { ExpectDecodeStatus(F(CrlIdentifier), "300530000201FF", ASN_E_IDNOTFOU); }},
      {"extra component",
       [] {
         ExpectDecodeStatus(F(OcspIdentifier), "3017A2020400180F32303234303130323033303430355A0500",
                            ASN_E_NOTINSEQ);
       }},
      {"extra element inside an explicit tag",
       [] { ExpectDecodeStatus(F(SignerLocation), "3008A00613024445 0500", ASN_E_INVLEN); }},
      {"wrong CHOICE tag", [] { ExpectDecodeStatus(F(DisplayText), "130141", ASN_E_IDNOTFOU); }},
      {"wrong CHOICE tag of SignaturePolicyInfo",
       [] { ExpectDecodeStatus(F(SignaturePolicyInfo), "020100", ASN_E_IDNOTFOU); }},
      {"wrong CHOICE tag in a list",
       [] { ExpectDecodeStatus(F(SignerAttribute), "3004A2023000", ASN_E_IDNOTFOU); }},
      {"visibleString of 201 characters",
       [] { ExpectDecodeStatus(F(DisplayText), "1A81C9" + std::string(402, '4'), ASN_E_CONSVIO); }},
      {"empty utf8String", [] { ExpectDecodeStatus(F(DisplayText), "0C00", ASN_E_CONSVIO); }},
      {"PostalAddress of 7 lines",
       [] {
         ExpectDecodeStatus(F(PostalAddress),
                            "3015" + std::string("0C0141") + "0C0141" + "0C0141" + "0C0141" +
                                "0C0141" + "0C0141" + "0C0141",
                            ASN_E_CONSVIO);
       }},
      {"empty PostalAddress", [] { ExpectDecodeStatus(F(PostalAddress), "3000", ASN_E_CONSVIO); }},
      {"empty qualifier list",
       [] {
         ExpectDecodeStatus(F(SignaturePolicyId), "300E 06032A0304 30050403010203 3000",
                            ASN_E_CONSVIO);
       }},
      {"truncated contents",
       [] { ExpectDecodeStatus(F(SignaturePolicyId), "300706032A0304", ASN_E_INVLEN); }},
      {"inner length past the outer one",
       [] { ExpectDecodeStatus(F(CRLListID), "30033005 3003020101", ASN_E_INVLEN); }},
      // Found by asn1cades_fuzz: forms X.690 8.1.2.5 and 8.14.3 forbid.
      {"primitive SEQUENCE",
       [] { ExpectDecodeStatus(F(CompleteCertificateRefs), "1000", ASN_E_IDNOTFOU); }},
      {"constructed INTEGER",
       [] { ExpectDecodeStatus(F(CRLNumber), "2203020101", ASN_E_IDNOTFOU); }},
      {"primitive explicit tag",
       [] {
         ExpectDecodeStatus(F(SignerAttribute), "300BA0023000810530 03020105", ASN_E_IDNOTFOU);
       }},
      {"NUL inside a string", [] { ExpectDecodeStatus(F(SPuri), "1603610062", ASN_E_INVLEN); }},
      {"indefinite list without its end-of-contents",
       [] {
         ExpectDecodeStatus(F(RevocationValues), "3009 A007 3080 3003020101", ASN_E_ENDOFBUF);
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    c.run();
  }
}

TEST(CadesModule, SignaturePolicyIdWithoutHash) {
  Codec c;
  ASN1T_SignaturePolicyId id;
  const ASN1UINT arcs[] = {1, 2, 3, 4};
  id.sigPolicyId.set(4, arcs);
  EXPECT_EQ(ToHex(c.encode(&asn1E_SignaturePolicyId, &id)), "30 05 06 03 2A 03 04");
  ASN1T_SignaturePolicyId back;
  ASSERT_EQ(c.decode(&asn1D_SignaturePolicyId, FromHex("300506032A0304"), &back), 0);
  EXPECT_EQ(back.m.sigPolicyHashPresent, 0u);
  EXPECT_EQ(back.m.sigPolicyQualifiersPresent, 0u);
  EXPECT_TRUE(back.sigPolicyId == id.sigPolicyId);
}

TEST(CadesModule, EmptyRevocationValues) {
  Codec c;
  ASN1T_RevocationValues values;
  EXPECT_EQ(ToHex(c.encode(&asn1E_RevocationValues, &values)), "30 00");
}

std::string Repeat(char ch, size_t n) { return std::string(n, ch); }

TEST(CadesModule, DisplayTextLengths) {
  struct Case {
    const char* name;
    ASN1UINT t;
    size_t length;
    int status;  // 0: encodes
  } cases[] = {
      {"utf8String of 200", ASN1T_DisplayText::T_utf8String, 200, 0},
      {"utf8String of 201", ASN1T_DisplayText::T_utf8String, 201, ASN_E_CONSVIO},
      {"utf8String of 0", ASN1T_DisplayText::T_utf8String, 0, ASN_E_CONSVIO},
      {"visibleString of 200", ASN1T_DisplayText::T_visibleString, 200, 0},
      {"visibleString of 201", ASN1T_DisplayText::T_visibleString, 201, ASN_E_CONSVIO},
      {"bmpString of 200", ASN1T_DisplayText::T_bmpString, 200, 0},
      {"bmpString of 201", ASN1T_DisplayText::T_bmpString, 201, ASN_E_CONSVIO},
      {"bmpString of 0", ASN1T_DisplayText::T_bmpString, 0, ASN_E_CONSVIO},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    Codec c;
    std::string text = Repeat('a', k.length);
    std::vector<ASN116BITCHAR> wide(k.length, 'a');
    Asn116BitCharString bmp{static_cast<ASN1UINT>(k.length), wide.data()};
    ASN1T_DisplayText dt;
    dt.t = k.t;
    if (k.t == ASN1T_DisplayText::T_bmpString) {
      dt.u.bmpString = &bmp;
    } else {
      dt.u.utf8String = text.c_str();
    }
    Bytes der = c.encode(&asn1E_DisplayText, &dt);
    EXPECT_EQ(c.lastStatus() < 0 ? c.lastStatus() : 0, k.status);
    if (k.status) {
      EXPECT_EQ(c.encodeCtxt()->errInfo.status, k.status);
    }
  }
}

TEST(CadesModule, UTF8StringSizeCountsCharacters) {
  Codec c;
  std::string text;
  for (int i = 0; i < 200; ++i) text += "\xC3\xA9";  // 200 characters, 400 octets
  ASN1T_DisplayText dt;
  dt.t = ASN1T_DisplayText::T_utf8String;
  dt.u.utf8String = text.c_str();
  Bytes der = c.encode(&asn1E_DisplayText, &dt);
  EXPECT_EQ(der.size(), 404u);
}

TEST(CadesModule, ListSizeConstraints) {
  struct Case {
    const char* name;
    int lines;
    int status;
  } cases[] = {{"one line", 1, 0},
               {"six lines", 6, 0},
               {"seven lines", 7, ASN_E_CONSVIO},
               {"no line", 0, ASN_E_CONSVIO}};
  const unsigned char line[] = {0x0C, 0x01, 0x41};
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    Codec c;
    ASN1T_PostalAddress address;
    ASN1OpenType lines[7];
    for (int i = 0; i < k.lines; ++i) {
      lines[i] = ASN1OpenType{3, line};
      rtDListAppend(c.ctxt(), &address, &lines[i]);
    }
    Bytes der = c.encode(&asn1E_PostalAddress, &address);
    EXPECT_EQ(c.lastStatus() < 0 ? c.lastStatus() : 0, k.status);
    if (!k.status) {
      EXPECT_EQ(der.size(), 2u + 3u * k.lines);
    }
  }
}

TEST(CadesModule, EmptyOptionalListsAreRefused) {
  Codec c;
  ASN1T_CommitmentTypeIndication indication;
  const ASN1UINT arcs[] = {1, 2, 3};
  indication.commitmentTypeId.set(3, arcs);
  indication.m.commitmentTypeQualifierPresent = 1;
  c.encode(&asn1E_CommitmentTypeIndication, &indication);
  EXPECT_EQ(c.lastStatus(), ASN_E_CONSVIO);
  indication.m.commitmentTypeQualifierPresent = 0;
  EXPECT_EQ(ToHex(c.encode(&asn1E_CommitmentTypeIndication, &indication)), "30 04 06 02 2A 03");
}

TEST(CadesModule, ChoiceSelectorOutsideAlternatives) {
  for (ASN1UINT t : {0u, 3u, 99u}) {
    SCOPED_TRACE(t);
    Codec c;
    ASN1T_SignaturePolicyInfo info;
    info.t = t;
    c.encode(&asn1E_SignaturePolicyInfo, &info);
    EXPECT_EQ(c.lastStatus(), ASN_E_INVOPT);
    EXPECT_EQ(c.encodeCtxt()->errInfo.status, ASN_E_INVOPT);
  }
}

TEST(CadesModule, ObjectIdentifierConstants) {
  struct Case {
    const char* name;
    const ASN1OBJID* oid;
    std::vector<ASN1UINT> arcs;
  } cases[] = {
      {"signatureTimeStampToken",
       &id_aa_signatureTimeStampToken,
       {1, 2, 840, 113549, 1, 9, 16, 2, 14}},
      {"sigPolicyId", &id_aa_ets_sigPolicyId, {1, 2, 840, 113549, 1, 9, 16, 2, 15}},
      {"revocationValues", &id_aa_ets_revocationValues, {1, 2, 840, 113549, 1, 9, 16, 2, 24}},
      {"archiveTimestamp", &id_aa_ets_archiveTimestamp, {1, 2, 840, 113549, 1, 9, 16, 2, 27}},
      {"attrCertificateRefs", &id_aa_ets_attrCertificateRefs, {1, 2, 840, 113549, 1, 9, 16, 2, 44}},
      {"attrRevocationRefs", &id_aa_ets_attrRevocationRefs, {1, 2, 840, 113549, 1, 9, 16, 2, 45}},
      {"spq uri", &id_spq_ets_uri, {1, 2, 840, 113549, 1, 9, 16, 5, 1}},
      {"spq unotice", &id_spq_ets_unotice, {1, 2, 840, 113549, 1, 9, 16, 5, 2}},
      {"proofOfOrigin", &id_cti_ets_proofOfOrigin, {1, 2, 840, 113549, 1, 9, 16, 6, 1}},
      {"proofOfCreation", &id_cti_ets_proofOfCreation, {1, 2, 840, 113549, 1, 9, 16, 6, 6}},
      {"IDUP mechanism", &id_etsi_es_IDUP_Mechanism_v1, {0, 4, 0, 1733, 1, 4, 1}},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    ASSERT_EQ(k.oid->numids, k.arcs.size());
    for (size_t i = 0; i < k.arcs.size(); ++i) EXPECT_EQ(k.oid->subid[i], k.arcs[i]);
  }
}

TEST(CadesModule, ControlClassEncodesAndDecodes) {
  ASN1T_CompleteRevocationRefs refs;
  Bytes input = FromHex(kCompleteRevocationRefs);
  ASN1BERDecodeBuffer decodeBuffer(input.data(), static_cast<int>(input.size()));
  ASN1C_CompleteRevocationRefs decoder(decodeBuffer, refs);
  ASSERT_EQ(decoder.Decode(), 0);
  EXPECT_EQ(refs.count, 1u);

  ASN1BEREncodeBuffer out;
  ASN1C_CompleteRevocationRefs encoder(out, refs);
  int len = encoder.Encode();
  ASSERT_EQ(len, static_cast<int>(input.size()));
  EXPECT_EQ(ToHex(Bytes(out.getMsgPtr(), out.getMsgPtr() + len)), ToHex(input));

  ASN1T_CompleteRevocationRefs* copy = decoder.newCopy();
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->count, 1u);
  EXPECT_EQ(copy->mpContext, decoder.getContext());
  delete copy;  // frees its components through the shared context
}

}  // namespace
