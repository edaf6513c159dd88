// The requirement sets of the CAdES signature types (ETSI TS 101 733,
// RFC 5126 section 4): each initialiser states, for one type, what the
// signer must provide.
#include <korvex/cades/policy.h>

bool SignaturePolicy::TrustPoint::operator==(TrustPoint const& other) const {
  return certificate == other.certificate &&
         path_length_constraint == other.path_length_constraint &&
         acceptable_policies == other.acceptable_policies;
}

SignaturePolicy::SignaturePolicy(unsigned int type)
    : SignaturePolicy(type, (type >> 16) == kOnlineCheckOption) {}

SignaturePolicy::SignaturePolicy(unsigned int type, bool flag)
    : content_placement(0),
      signing_certificate_refs(0),
      included_certificates(0),
      end_certificate_revocation(0),
      ca_certificate_revocation(0),
      customized(false),
      check_revocation_online(flag) {
  switch (type & 0xFFFFu) {
    case kTypeDefault:
    case kTypeXLongType1:
      InitPolicyXLongType1();
      break;
    case kTypeBes:
      InitPolicyBes();
      break;
    case kTypeT:
      InitPolicyT();
      break;
    case kTypeA:
      InitPolicyA();
      break;
    case kTypePkcs7:
      InitPolicyPKCS7();
      break;
    default:  // an unknown type requires nothing; not an error
      break;
  }
  customized = false;
}

namespace {

// SetLevels: the five requirement levels an initialiser sets, in the order
// of the class's fields.
void SetLevels(SignaturePolicy& p, unsigned int content, unsigned int signingRefs,
               unsigned int included, unsigned int endRevocation, unsigned int caRevocation) {
  p.content_placement = content;
  p.signing_certificate_refs = signingRefs;
  p.included_certificates = included;
  p.end_certificate_revocation = endRevocation;
  p.ca_certificate_revocation = caRevocation;
}

}  // namespace

// Plain PKCS#7 (RFC 5652 SignedData): no signing-certificate attribute.
void SignaturePolicy::InitPolicyPKCS7() {
  SetLevels(*this, kContentEither, kCertificatesNone, kCertificatesNone, kRevocationEither,
            kRevocationEither);
  check_revocation_online = true;
}

// CAdES-BES: the signing-certificate attribute names the
// signer's certificate; nothing unsigned is required.
void SignaturePolicy::InitPolicyBes() {
  SetLevels(*this, kContentEither, kCertificatesSignerOnly, kCertificatesNone, kRevocationEither,
            kRevocationEither);
  check_revocation_online = true;
}

// CAdES-T: BES plus a signature time-stamp.
void SignaturePolicy::InitPolicyT() {
  InitPolicyBes();
  required_unsigned_attributes.emplace_back(kSignatureTimeStampOid);
}

// CAdES-X Long Type 1: the time-stamp over the complete
// references and the certificate and revocation values themselves.
void SignaturePolicy::InitPolicyXLongType1() {
  SetLevels(*this, kContentEither, kCertificatesSignerOnly, kCertificatesNone, kRevocationOcsp,
            kRevocationNone);
  required_unsigned_attributes.emplace_back(kCadesCTimeStampOid);
  required_unsigned_attributes.emplace_back(kCertificateValuesOid);
  required_unsigned_attributes.emplace_back(kRevocationValuesOid);
}

// CAdES-A: the version 3 archive time-stamp; the
// attributes of the lower types are not repeated here.
void SignaturePolicy::InitPolicyA() {
  SetLevels(*this, kContentEither, kCertificatesSignerOnly, kCertificatesNone, kRevocationOcsp,
            kRevocationEither);
  required_unsigned_attributes.emplace_back(kArchiveTimeStampV3Oid);
}

int SignaturePolicy::GetCertificateReqValue(int kind) {
  if (kind == 4) return kCertificatesNone;
  if (kind == 10) return kCertificatesSignerOnly;
  return kCertificatesFullPath;
}

bool SignaturePolicy::operator==(SignaturePolicy const& other) const {
  return policy_name == other.policy_name && content_placement == other.content_placement &&
         signing_certificate_refs == other.signing_certificate_refs &&
         included_certificates == other.included_certificates &&
         end_certificate_revocation == other.end_certificate_revocation &&
         ca_certificate_revocation == other.ca_certificate_revocation &&
         required_signed_attributes == other.required_signed_attributes &&
         required_unsigned_attributes == other.required_unsigned_attributes &&
         signer_trust_points == other.signer_trust_points &&
         timestamp_trust_points == other.timestamp_trust_points && customized == other.customized &&
         check_revocation_online == other.check_revocation_online;
}
