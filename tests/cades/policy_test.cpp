#include <gtest/gtest.h>

#include <climits>
#include <list>
#include <string>

#include <korvex/cades/policy.h>

namespace {

using Oids = std::list<std::string>;

const char kTst[] = "1.2.840.113549.1.9.16.2.14";
const char kEscTst[] = "1.2.840.113549.1.9.16.2.25";
const char kCertValues[] = "1.2.840.113549.1.9.16.2.23";
const char kRevValues[] = "1.2.840.113549.1.9.16.2.24";
const char kAtsV3[] = "0.4.0.1733.2.4";

struct Expected {
  unsigned levels[5];
  Oids unsignedAttributes;
};

const Expected kPkcs7 = {{0, 0, 0, 3, 3}, {}};
const Expected kBes = {{0, 1, 0, 3, 3}, {}};
const Expected kT = {{0, 1, 0, 3, 3}, {kTst}};
const Expected kXLong1 = {{0, 1, 0, 1, 4}, {kEscTst, kCertValues, kRevValues}};
const Expected kA = {{0, 1, 0, 1, 3}, {kAtsV3}};
const Expected kNothing = {{0, 0, 0, 0, 0}, {}};

void ExpectPolicy(Expected const& e, bool online, SignaturePolicy const& p) {
  const unsigned levels[5] = {p.content_placement, p.signing_certificate_refs,
                              p.included_certificates, p.end_certificate_revocation,
                              p.ca_certificate_revocation};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(e.levels[i], levels[i]) << "level " << i;
  EXPECT_EQ(e.unsignedAttributes, p.required_unsigned_attributes);
  EXPECT_EQ(online, p.check_revocation_online);
  // What no initialiser touches.
  EXPECT_TRUE(p.policy_name.empty());
  EXPECT_TRUE(p.required_signed_attributes.empty());
  EXPECT_TRUE(p.signer_trust_points.empty());
  EXPECT_TRUE(p.timestamp_trust_points.empty());
  EXPECT_FALSE(p.customized);
}

TEST(SignaturePolicy, TypeCodesSelectTheirRequirements) {
  struct Case {
    unsigned code;
    Expected const* expected;
    bool online;
  } cases[] = {
      {0x0000, &kXLong1, false},
      {0x005D, &kXLong1, false},
      {0x0001, &kBes, true},  // BES, T and PKCS#7 force the online check
      {0x0005, &kT, true},
      {0x00DD, &kA, false},
      {0xFFFF, &kPkcs7, true},
      // The high half selects the option only when it is 2.
      {0x00020001, &kBes, true},
      {0x00010001, &kBes, true},
      {0x0001005D, &kXLong1, false},
      {0x0002005D, &kXLong1, true},
      {0x00020000, &kXLong1, true},
      {0x000200DD, &kA, true},
      {0x000300DD, &kA, false},
      {0xFFFF005D, &kXLong1, false},
      {0x0002FFFF, &kPkcs7, true},
      {0x00010000, &kXLong1, false},  // low half 0: X Long Type 1
      // Unknown codes set nothing and are no error.
      {0x0002, &kNothing, false},
      {0x0003, &kNothing, false},
      {0x0004, &kNothing, false},
      {0x0006, &kNothing, false},
      {0x005C, &kNothing, false},
      {0x005E, &kNothing, false},
      {0x00DC, &kNothing, false},
      {0x00DE, &kNothing, false},
      {0x0100, &kNothing, false},
      {0xFFFE, &kNothing, false},
      {0x00020002, &kNothing, true},
      {0xFFFFFFFE, &kNothing, false},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::Message() << "code 0x" << std::hex << c.code);
    ExpectPolicy(*c.expected, c.online, SignaturePolicy(c.code));
  }
}

TEST(SignaturePolicy, ExplicitFlagReplacesTheHighHalf) {
  struct Case {
    unsigned code;
    bool flag;
    Expected const* expected;
    bool online;
  } cases[] = {
      {0x0002005D, false, &kXLong1, false},  // high half ignored for the flag
      {0x0000005D, true, &kXLong1, true},    {0x00000000, true, &kXLong1, true},
      {0x000100DD, true, &kA, true},         {0x000200DD, false, &kA, false},
      {0x00000001, false, &kBes, true},  // forced whatever the caller says
      {0x00000005, false, &kT, true},        {0x0000FFFF, false, &kPkcs7, true},
      {0x00012345, true, &kNothing, true},  // unknown code: the flag stays as given
      {0x00020002, false, &kNothing, false},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::Message() << "code 0x" << std::hex << c.code << " flag " << c.flag);
    ExpectPolicy(*c.expected, c.online, SignaturePolicy(c.code, c.flag));
  }
}

TEST(SignaturePolicy, EqualityFollowsEveryField) {
  EXPECT_EQ(SignaturePolicy(93, false), SignaturePolicy(0, false));
  EXPECT_EQ(SignaturePolicy(0x0002005D), SignaturePolicy(0x00020000));
  EXPECT_NE(SignaturePolicy(93, true), SignaturePolicy(0, false));
  EXPECT_NE(SignaturePolicy(1), SignaturePolicy(5));       // T adds its time-stamp
  EXPECT_NE(SignaturePolicy(1), SignaturePolicy(0xFFFF));  // only level 1 differs
  EXPECT_EQ(SignaturePolicy(2), SignaturePolicy(0x1234));

  SignaturePolicy base(0xDD);
  struct Edit {
    const char* name;
    void (*apply)(SignaturePolicy&);
  } edits[] = {
      {"name", [](SignaturePolicy& p) { p.policy_name = "policy"; }},
      {"level 0", [](SignaturePolicy& p) { p.content_placement = 2; }},
      {"level 4", [](SignaturePolicy& p) { p.ca_certificate_revocation = 0; }},
      {"signed attributes",
       [](SignaturePolicy& p) { p.required_signed_attributes.push_back("1.2.840.113549.1.9.3"); }},
      {"unsigned attribute order",
       [](SignaturePolicy& p) { p.required_unsigned_attributes.push_front(kTst); }},
      {"signer trust point", [](SignaturePolicy& p) { p.signer_trust_points.emplace_back(); }},
      {"time-stamp trust point",
       [](SignaturePolicy& p) { p.timestamp_trust_points.emplace_back(); }},
      {"customized", [](SignaturePolicy& p) { p.customized = true; }},
      {"online check", [](SignaturePolicy& p) { p.check_revocation_online = true; }},
  };
  for (auto const& e : edits) {
    SCOPED_TRACE(e.name);
    SignaturePolicy edited = base;
    EXPECT_EQ(base, edited);
    e.apply(edited);
    EXPECT_NE(base, edited);
    EXPECT_EQ(SignaturePolicy(0xDD), base);  // the copy is deep
  }
}

TEST(SignaturePolicy, InitialisersAppendWithoutClearing) {
  SignaturePolicy p(5);
  p.InitPolicyT();
  EXPECT_EQ((Oids{kTst, kTst}), p.required_unsigned_attributes);

  // Levels are overwritten, the list keeps growing.
  p.InitPolicyXLongType1();
  p.InitPolicyA();
  EXPECT_EQ((Oids{kTst, kTst, kEscTst, kCertValues, kRevValues, kAtsV3}),
            p.required_unsigned_attributes);
  EXPECT_EQ(1u, p.end_certificate_revocation);
  EXPECT_EQ(3u, p.ca_certificate_revocation);

  p.InitPolicyPKCS7();
  EXPECT_EQ(0u, p.signing_certificate_refs);
  EXPECT_EQ(6u, p.required_unsigned_attributes.size());
}

TEST(SignaturePolicy, OnlyBesTAndPkcs7SetTheOnlineCheck) {
  struct Case {
    const char* name;
    void (SignaturePolicy::*init)();
    bool online;
  } cases[] = {
      {"Bes", &SignaturePolicy::InitPolicyBes, true},
      {"T", &SignaturePolicy::InitPolicyT, true},
      {"PKCS7", &SignaturePolicy::InitPolicyPKCS7, true},
      {"XLongType1", &SignaturePolicy::InitPolicyXLongType1, false},
      {"A", &SignaturePolicy::InitPolicyA, false},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    SignaturePolicy p(2, false);
    p.customized = true;
    (p.*c.init)();
    EXPECT_EQ(c.online, p.check_revocation_online);
    EXPECT_TRUE(p.customized);  // only constructors reset it
  }
}

TEST(SignaturePolicy, CertificateRequirementValue) {
  struct Case {
    int kind;
    int value;
  } cases[] = {
      {4, 0},  {10, 1}, {0, 2},   {1, 2},       {3, 2},       {5, 2},       {9, 2},
      {11, 2}, {-4, 2}, {-10, 2}, {0x10004, 2}, {INT_MIN, 2}, {INT_MAX, 2},
  };
  const SignaturePolicy unknown(2);
  const SignaturePolicy full(0xDD);
  for (auto const& c : cases) {
    SCOPED_TRACE(c.kind);
    EXPECT_EQ(c.value, SignaturePolicy::GetCertificateReqValue(c.kind));
    // The answer does not depend on the object.
    EXPECT_EQ(c.value, unknown.GetCertificateReqValue(c.kind));
    EXPECT_EQ(c.value, full.GetCertificateReqValue(c.kind));
  }
}

TEST(SignaturePolicy, CallersFillTrustPoints) {
  SignaturePolicy p(0x5D);
  SignaturePolicy::TrustPoint root;
  root.certificate = {0x30, 0x82, 0x01, 0x0A};
  root.path_length_constraint = 2;
  root.acceptable_policies = {"1.2.643.100.113.1"};
  p.signer_trust_points.push_back(root);
  p.timestamp_trust_points.push_back(SignaturePolicy::TrustPoint{});

  SignaturePolicy copy = p;
  ASSERT_EQ(1u, copy.signer_trust_points.size());
  EXPECT_EQ(root, copy.signer_trust_points.front());
  EXPECT_EQ(-1, copy.timestamp_trust_points.front().path_length_constraint);
  EXPECT_NE(root, copy.timestamp_trust_points.front());

  SignaturePolicy::TrustPoint other = root;
  other.acceptable_policies.clear();
  EXPECT_NE(root, other);
  other = root;
  other.certificate.back() = 0x0B;
  EXPECT_NE(root, other);
}

}  // namespace
