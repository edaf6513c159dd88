// Round trips of real data through the catalogue: every file of tests/data by
// its type, and every file of the real-world corpus (../shared/corpus, skipped
// when absent) by the type its index gives. DER input comes back byte for byte;
// BER input decodes and re-encodes to DER that decodes to an equal value; the
// table-constrained open types of each decoded value hold their typed values;
// the corpus's broken files fail as each is expected to.
#include <gtest/gtest.h>
#include <korvex/asn1gen/AttributeCertificateVersion1.h>
#include <korvex/asn1gen/CryptographicMessageSyntax2004.h>
#include <korvex/asn1gen/ETS_ElectronicSignaturePolicies_88syntax.h>
#include <korvex/asn1gen/OCSP_2013_88.h>
#include <korvex/asn1gen/PKCS_10.h>
#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1gen/PKIXAttributeCertificate_2008.h>
#include <korvex/asn1gen/PKIXCMP.h>
#include <korvex/asn1gen/PKIXCRMF_2005.h>
#include <korvex/asn1gen/PKIXDVCS.h>
#include <korvex/asn1gen/PKIXTSP.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include "catalogue_support.h"

namespace {

using Korvex::Asn1Engine::TypeDesc;
using Korvex::Test::Bytes;
using Korvex::Test::Outcome;

bool EndsWith(const std::string& s, const char* suffix) {
  size_t n = std::strlen(suffix);
  return s.size() >= n && s.compare(s.size() - n, n, suffix) == 0;
}
bool StartsWith(const std::string& s, const char* prefix) { return s.rfind(prefix, 0) == 0; }

std::string Describe(const Outcome& o) {
  std::string s = "status " + std::to_string(o.status) + ", consumed " +
                  std::to_string(o.consumed) + ", exact " + (o.exact ? "yes" : "no") + ", typed " +
                  std::to_string(o.typed) + ", raw " + std::to_string(o.untyped) + ", unfit " +
                  std::to_string(o.unfit);
  if (!o.broken.empty()) s += ", broken: " + o.broken;
  return s;
}

// ---- tests/data -------------------------------------------------------------------------

// The top-level type of a fixture, by folder and name; null for files that are
// not ASN.1 values (keys, configuration, the script, text, a raw signature).
bool NotAsn1(const std::string& f) {
  return StartsWith(f, "keys/") || StartsWith(f, "conf/") || StartsWith(f, "genconf/") ||
         f == "README.md" || f == "make-fixtures.sh" || f == "cms/content.txt" ||
         f == "cades/signed-attached.signature-value.bin";
}

const TypeDesc* FixtureType(const std::string& f) {
  using namespace asn1data;
  if (NotAsn1(f)) return nullptr;
  if (EndsWith(f, ".tsq")) return &asn1Desc_TimeStampReq;
  if (EndsWith(f, ".tsr")) return &asn1Desc_TimeStampResp;
  if (EndsWith(f, "token.der") || StartsWith(f, "cms/") ||
      (StartsWith(f, "asn1/") && EndsWith(f, "-signed.der"))) {
    return &asn1Desc_ContentInfo;
  }
  if (StartsWith(f, "pki/")) return &asn1Desc_Certificate;
  if (StartsWith(f, "crl/")) return &asn1Desc_CertificateList;
  if (StartsWith(f, "req/")) return &asn1Desc_CertificationRequest;
  if (StartsWith(f, "cmp/")) return &asn1Desc_PKIMessage;
  if (StartsWith(f, "ocsp/req-")) return &asn1Desc_OCSPRequest;
  if (EndsWith(f, ".basic.der")) return &asn1Desc_BasicOCSPResponse;
  if (StartsWith(f, "ocsp/resp-") || f == "asn1/ocsp-resp-unauthorized.der") {
    return &asn1Desc_OCSPResponse;
  }
  if (StartsWith(f, "asn1/gost2012-")) return &asn1Desc_Certificate;
  if (f == "asn1/attr-cert-v2.der") return &asn1Desc_PKIXAttributeCertificate;
  if (f == "asn1/attr-cert-v1.der") return &asn1Desc_AttributeCertificateV1;
  if (f == "asn1/dvcs-request.der") return &asn1Desc_DVCSRequest;
  if (StartsWith(f, "asn1/dvcs-")) return &asn1Desc_DVCSResponse;
  return nullptr;
}

TEST(CatalogueRoundTrip, EveryFixtureByItsType) {
  const std::string dir = KORVEX_TEST_DATA_DIR;
  const std::vector<std::string> files = Korvex::Test::ListFiles(dir);
  ASSERT_GE(files.size(), 90u);
  size_t checked = 0;
  for (const std::string& f : files) {
    SCOPED_TRACE(f);
    const TypeDesc* desc = FixtureType(f);
    if (!desc) {
      EXPECT_TRUE(NotAsn1(f)) << "a fixture without a type: add it to FixtureType";
      continue;
    }
    Bytes raw = Korvex::Test::ReadFile(dir + "/" + f);
    std::vector<Bytes> inputs;
    if (EndsWith(f, ".pem")) {
      inputs = Korvex::Test::PemBlocks(std::string(raw.begin(), raw.end()));
      ASSERT_FALSE(inputs.empty());
    } else {
      inputs.push_back(raw);
    }
    for (const Bytes& in : inputs) {
      Outcome o = Korvex::Test::RoundTrip(desc, in);
      EXPECT_EQ(o.status, 0) << Describe(o);
      EXPECT_EQ(o.broken, "") << Describe(o);
      EXPECT_EQ(o.consumed, in.size()) << Describe(o);
      // The one streamed (BER) fixture re-encodes to DER; all others are DER.
      EXPECT_EQ(o.exact, !EndsWith(f, ".ber")) << Describe(o);
      ++checked;
    }
  }
  EXPECT_GE(checked, 90u);
}

// ---- the real-world corpus ----------------------------------------------------------------

// The top-level type of a corpus entry from the index's description.
const TypeDesc* CorpusType(const Korvex::Test::IndexEntry& e) {
  using namespace asn1data;
  const std::string& w = e.what;
  if (StartsWith(w, "ContentInfo") || StartsWith(w, "TimeStampToken")) return &asn1Desc_ContentInfo;
  if (StartsWith(w, "X.509 Certificate")) return &asn1Desc_Certificate;
  if (StartsWith(w, "X.509 CRL")) return &asn1Desc_CertificateList;
  if (StartsWith(w, "OCSPResponse")) return &asn1Desc_OCSPResponse;
  if (StartsWith(w, "OCSPRequest")) return &asn1Desc_OCSPRequest;
  if (StartsWith(w, "TimeStampReq")) return &asn1Desc_TimeStampReq;
  if (StartsWith(w, "TimeStampResp")) return &asn1Desc_TimeStampResp;
  if (StartsWith(w, "PKCS#10")) return &asn1Desc_CertificationRequest;
  if (StartsWith(w, "CMP PKIMessage") || StartsWith(w, "SEQUENCE (unrecognised)") ||
      StartsWith(w, "PKIStatusInfo-only")) {
    return &asn1Desc_PKIMessage;  // the bc-test-data CMP files, broken ones included
  }
  if (StartsWith(w, "CRMF CertReqMessages")) return &asn1Desc_CertReqMessages;
  if (StartsWith(w, "AttributeCertificate")) return &asn1Desc_PKIXAttributeCertificate;
  if (StartsWith(w, "SignaturePolicy")) return &::asn1Desc_SignaturePolicy;
  if (StartsWith(w, "not-a-SEQUENCE")) return &asn1Desc_SignedAttributes;  // bare SET OF Attribute
  return nullptr;
}

enum class Expect {
  kAsIndexed,  // DER, or BER where the index notes say so
  kNotDer,     // definite lengths, but not the DER of its value (the reason says why)
  kFails,      // does not decode: the status given
  kNoType      // nothing of the catalogue describes it
};

struct CorpusCase {
  Expect expect;
  int status;    // kFails: the decode status
  size_t unfit;  // values left raw because they are not of their object's type
  const char* why;
};

// Every file whose outcome is not a clean decode of DER (or of the BER its
// index row notes), with the reason. Values "left raw" are table-constrained
// open types whose bytes are not a value of the type their identifier names:
// the element around them decodes, and they re-encode as they came.
const std::map<std::string, CorpusCase>& CorpusExceptions() {
  static const std::map<std::string, CorpusCase> kCases = {
      {"bc-test-data/tsp__BIN_ER.ers", {Expect::kNoType, 0, 0, "RFC 4998 EvidenceRecord"}},
      {"esig-dss/spi__signature-policy-example.der",
       {Expect::kFails, ASN_E_IDNOTFOU, 0,
        "PolicyConstraints.requireExplicitPolicy written [0] IMPLICIT (80 01 00); RFC 3125's "
        "module has EXPLICIT TAGS"}},
      {"bc-test-data/sample_cr.der",
       {Expect::kFails, ASN_E_IDNOTFOU, 0,
        "ProofOfPossession raVerified written [0] EXPLICIT NULL (A0 02 05 00); RFC 4211's "
        "module has IMPLICIT TAGS (80 00)"}},
      {"bc-test-data/cmp_invalid__bad-body-seq-vs-choice.der",
       {Expect::kFails, ASN_E_IDNOTFOU, 0, "negative test: the body is a SEQUENCE"}},
      {"bc-test-data/cmp_invalid__bad-no-body.der",
       {Expect::kFails, ASN_E_IDNOTFOU, 0, "negative test: no body"}},
      {"bc-test-data/cmp_invalid__bad-no-body-after-header.der",
       {Expect::kFails, ASN_E_SETMISRQ, 0, "negative test: the header alone"}},
      {"bc-test-data/cmp_invalid__bad-tag-body-15-vs-4.der",
       {Expect::kFails, ASN_E_IDNOTFOU, 0, "negative test: body [15] holds a [4] body"}},
      {"bc-test-data/cmp_invalid__bad-tag-body-29-vs-4.der",
       {Expect::kFails, ASN_E_IDNOTFOU, 0, "negative test: body [29] is no alternative"}},
      {"bc-test-data/nested_seq.der",
       {Expect::kFails, ASN_E_IDNOTFOU, 0, "nested SEQUENCEs, not an OCSPRequest"}},
      {"bc-test-data/nested_seq_indef.ber",
       {Expect::kFails, ASN_E_NESTING, 0, "nested SEQUENCEs deeper than the decoder's bound"}},
      {"pyca-cryptography-vectors/x509__ocsp__resp-unknown-response-status.der",
       {Expect::kFails, ASN_E_INVENUM, 0, "negative test: responseStatus 7 is no enumerator"}},
      {"esig-dss/validation__tst-two-refs.tst",
       {Expect::kNotDer, 0, 0,
        "its TSTInfo's extension carries critical FALSE, which DER leaves out (X.690 11.5)"}},
      {"esig-dss/Signature-C-DE_CRY-3.p7m",
       {Expect::kAsIndexed, 0, 1, "the signature time-stamp token is wrapped in an OCTET STRING"}},
      {"esig-dss/Signature-C-DE_CRY-4.p7m",
       {Expect::kAsIndexed, 0, 2,
        "revocationValues holds OCSPResponses where BasicOCSPResponses belong; the time-stamp "
        "token is wrapped in an OCTET STRING"}},
      {"esig-dss/cades-bes-signeddata-enveloping.p7m",
       {Expect::kAsIndexed, 0, 1, "eContentType says signedData, eContent is text"}},
      {"esig-dss/cades-double-signing-certificate.p7m",
       {Expect::kAsIndexed, 0, 1,
        "negative test: an empty unsignedAttrs (SIZE (1..MAX)) leaves the SignedData raw; "
        "its ESSCertIDv2 names the issuer as a Name, not GeneralNames"}},
      {"esig-dss/cades-invalid-ocsp-responses-encoding.p7s",
       {Expect::kAsIndexed, 0, 3,
        "certificate policies whose explicitText exceeds RFC 5280's 200 characters"}},
      {"esig-dss/dss-1401__sig_with_atsv2.p7s",
       {Expect::kAsIndexed, 0, 2,
        "an organizationName over ub-organization-name (64); an OCSP ResponderID byName "
        "holding a GeneralName"}},
      {"esig-dss/dss-1892__detached_with_counter_sig.p7m",
       {Expect::kAsIndexed, 0, 2,
        "two revocation references whose ResponderID byName holds a GeneralName"}},
      {"esig-dss/crl__CA-5358AA45-Full.crl",
       {Expect::kAsIndexed, 0, 1, "an issuer serialNumber in UTF8String (X.520: PrintableString)"}},
      {"libksba/ecdsa-sample1.p7s",
       {Expect::kAsIndexed, 0, 1,
        "an empty unsignedAttrs (SIZE (1..MAX)) leaves the SignedData raw"}},
      {"oauth2-esia/esia.gost.prod.cer",
       {Expect::kAsIndexed, 0, 2,
        "issuer and subject organizationName over ub-organization-name (64)"}},
      {"pyca-cryptography-vectors/x509__requests__long-form-attribute.pem",
       {Expect::kAsIndexed, 0, 1, "an attribute value with a high tag number"}},
      {"pyasn1-modules/rfc4210__PKIMessageTestCase__pem_text.der",
       {Expect::kAsIndexed, 0, 3, "name attributes given as OCTET STRINGs"}},
  };
  return kCases;
}

TEST(CatalogueRoundTrip, EveryCorpusFileByItsIndex) {
  const std::string dir = KORVEX_CORPUS_DIR;
  if (!Korvex::Test::DirectoryExists(dir)) GTEST_SKIP() << "no corpus at " << dir;
  const std::vector<Korvex::Test::IndexEntry> index = Korvex::Test::ReadIndex(dir + "/INDEX.md");
  ASSERT_GT(index.size(), 200u);
  std::set<std::string> indexed;
  const auto& exceptions = CorpusExceptions();
  for (const Korvex::Test::IndexEntry& e : index) {
    SCOPED_TRACE(e.path + " (" + e.what + ")");
    indexed.insert(e.path);
    auto ex = exceptions.find(e.path);
    CorpusCase c{Expect::kAsIndexed, 0, 0, ""};
    if (ex != exceptions.end()) c = ex->second;
    const bool ber = e.notes.find("BER (") != std::string::npos;
    const TypeDesc* desc = CorpusType(e);
    if (c.expect == Expect::kNoType) {
      EXPECT_EQ(desc, nullptr);
      continue;
    }
    ASSERT_NE(desc, nullptr) << "no catalogue type for this entry";
    Bytes in = Korvex::Test::LoadEntry(dir, e);
    ASSERT_FALSE(in.empty());
    Outcome o = Korvex::Test::RoundTrip(desc, in);
    if (std::getenv("KORVEX_CATALOGUE_VERBOSE")) {
      size_t n = o.consumed ? o.consumed : in.size();
      std::printf(
          "%-70s %s, structurally DER %s, reordered %s\n", e.path.c_str(), Describe(o).c_str(),
          Korvex::Test::StructurallyDer(in.data(), n) ? "yes" : "no",
          Korvex::Test::SameUpToOrder(Bytes(in.begin(), in.begin() + static_cast<long>(n)), o.der)
              ? "yes"
              : "no");
    }
    EXPECT_EQ(o.broken, "") << Describe(o);
    EXPECT_EQ(o.unfit, c.unfit) << Describe(o);
    const Bytes consumed(in.begin(), in.begin() + static_cast<long>(o.consumed));
    switch (c.expect) {
      case Expect::kFails:
        EXPECT_EQ(o.status, c.status) << Describe(o);
        break;
      case Expect::kAsIndexed:
        EXPECT_EQ(o.status, 0) << Describe(o);
        if (ber) {
          // Decodes, and only input that breaks a DER rule comes back changed.
          EXPECT_FALSE(o.exact) << Describe(o);
          EXPECT_FALSE(Korvex::Test::StructurallyDer(in.data(), o.consumed)) << Describe(o);
        } else {
          // DER, or DER structure whose SET OF elements (certificates,
          // attributes) are not in DER order: the same elements come back sorted.
          EXPECT_TRUE(o.exact || (Korvex::Test::StructurallyDer(in.data(), o.consumed) &&
                                  Korvex::Test::SameUpToOrder(consumed, o.der)))
              << Describe(o);
        }
        break;
      case Expect::kNotDer:
        EXPECT_EQ(o.status, 0) << Describe(o);
        EXPECT_FALSE(o.exact) << Describe(o);
        EXPECT_TRUE(Korvex::Test::StructurallyDer(in.data(), o.consumed)) << Describe(o);
        EXPECT_FALSE(Korvex::Test::SameUpToOrder(consumed, o.der)) << Describe(o);
        break;
      case Expect::kNoType:
        break;
    }
  }
  // The index covers the folder and the exceptions name indexed files.
  for (const std::string& f : Korvex::Test::ListFiles(dir)) {
    if (f == "INDEX.md") continue;
    EXPECT_EQ(indexed.count(f), 1u) << f << " is not in INDEX.md";
  }
  for (const auto& kv : exceptions) EXPECT_EQ(indexed.count(kv.first), 1u) << kv.first;
}

}  // namespace
