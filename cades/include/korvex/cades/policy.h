// korvex/cades/policy.h: what a signature of one CAdES type must carry.
//
// SignaturePolicy is a plain value: constructed from a signature-type code,
// it holds five requirement levels and the unsigned attributes the type
// requires (ETSI TS 101 733 / RFC 5126 define the types). The levels follow the
// signer rules of a signature policy as RFC 3125 lays them out (SignerRules,
// CertRevReq); docs/signature-policy.md has the table of every type.
//
// Requirement levels, in order (index 0 to 4):
//   0 content_placement           where the signed content must be:
//                                 0 either, 1 detached (outside the
//                                 SignedData), 2 encapsulated
//                                 (RFC 3125 externalSignedData).
//   1 signing_certificate_refs    which certificates the signer must reference
//                                 in the signing-certificate signed attribute:
//                                 0 none, 1 the signer's own, 2 the full path
//                                 (RFC 3125 mandatedCertificateRef; 0 is
//                                 plain PKCS#7, which has no such attribute).
//   2 included_certificates       which certificates the signer must carry in
//                                 the SignedData certificates field: 0 none,
//                                 1 the signer's own, 2 the full path
//                                 (RFC 3125 mandatedCertificateInfo).
//   3 end_certificate_revocation  which revocation evidence must be provided
//                                 for the signer's certificate: 0 CRL,
//                                 1 OCSP response, 2 both, 3 either,
//                                 4 none, 5 other (RFC 3125 EnuRevReq).
//   4 ca_certificate_revocation   the same for the CA certificates of the path.
// Every level is 0 until an initialiser sets it, so an unknown type code
// leaves defined values.
#ifndef KORVEX_CADES_POLICY_H
#define KORVEX_CADES_POLICY_H

#include <list>
#include <string>
#include <vector>

#include <korvex/platform/export.h>

class KORVEX_API SignaturePolicy {
 public:
  // Signature-type codes: the low 16 bits of the constructor's argument.
  // 0 and 0x5D both select X Long Type 1; any other code selects nothing.
  static constexpr unsigned int kTypeDefault = 0x0000;  // X Long Type 1
  static constexpr unsigned int kTypeBes = 0x0001;
  static constexpr unsigned int kTypeT = 0x0005;
  static constexpr unsigned int kTypeXLongType1 = 0x005D;
  static constexpr unsigned int kTypeA = 0x00DD;
  static constexpr unsigned int kTypePkcs7 = 0xFFFF;
  // High 16 bits of the one-argument constructor's code that ask for
  // check_revocation_online.
  static constexpr unsigned int kOnlineCheckOption = 2;

  // Values of content_placement.
  static constexpr unsigned int kContentEither = 0;
  static constexpr unsigned int kContentDetached = 1;
  static constexpr unsigned int kContentEncapsulated = 2;
  // Values of signing_certificate_refs and included_certificates, and the
  // results of GetCertificateReqValue.
  static constexpr unsigned int kCertificatesNone = 0;
  static constexpr unsigned int kCertificatesSignerOnly = 1;
  static constexpr unsigned int kCertificatesFullPath = 2;
  // Values of end_certificate_revocation and ca_certificate_revocation.
  static constexpr unsigned int kRevocationCrl = 0;
  static constexpr unsigned int kRevocationOcsp = 1;
  static constexpr unsigned int kRevocationBoth = 2;
  static constexpr unsigned int kRevocationEither = 3;
  static constexpr unsigned int kRevocationNone = 4;
  static constexpr unsigned int kRevocationOther = 5;

  // The unsigned attributes the initialisers require (RFC 5126 section 6;
  // ETSI TS 101 733 V2.x for the version 3 archive time-stamp).
  static constexpr const char kSignatureTimeStampOid[] = "1.2.840.113549.1.9.16.2.14";
  static constexpr const char kCadesCTimeStampOid[] = "1.2.840.113549.1.9.16.2.25";
  static constexpr const char kCertificateValuesOid[] = "1.2.840.113549.1.9.16.2.23";
  static constexpr const char kRevocationValuesOid[] = "1.2.840.113549.1.9.16.2.24";
  static constexpr const char kArchiveTimeStampV3Oid[] = "0.4.0.1733.2.4";

  // TrustPoint is a certificate that a path may end in, with the limits put
  // on paths through it (RFC 3125 CertificateTrustPoint). The library never
  // creates one; callers fill the trust-point lists when their policy has any.
  struct KORVEX_API TrustPoint {
    std::vector<unsigned char> certificate;      // DER of the trusted certificate
    int path_length_constraint = -1;             // most intermediate CAs; -1: no limit
    std::list<std::string> acceptable_policies;  // dotted certificate-policy OIDs; empty: any

    bool operator==(TrustPoint const& other) const;
    bool operator!=(TrustPoint const& other) const { return !(*this == other); }
  };

  // SignaturePolicy(type) selects the signature type by the low 16 bits of
  // type and runs its initialiser; check_revocation_online is set first,
  // true exactly when the high 16 bits are kOnlineCheckOption. An unknown
  // type code runs nothing and is no error. Throws only std::bad_alloc.
  explicit SignaturePolicy(unsigned int type);

  // SignaturePolicy(type, flag): as above, with check_revocation_online
  // taken from flag; the high 16 bits of type are ignored.
  SignaturePolicy(unsigned int type, bool flag);

  // The initialisers overwrite the five levels and append the type's
  // required unsigned attributes to required_unsigned_attributes (without
  // clearing it first). InitPolicyBes, InitPolicyT and InitPolicyPKCS7 also
  // set check_revocation_online, since those types carry no revocation
  // values; the X Long Type 1 and A initialisers leave it as it is.
  void InitPolicyBes();         // levels 0 1 0 3 3, no attribute
  void InitPolicyT();           // levels 0 1 0 3 3, signature time-stamp
  void InitPolicyXLongType1();  // levels 0 1 0 1 4, CAdES-C time-stamp,
                                // certificate values, revocation values
  void InitPolicyA();           // levels 0 1 0 1 3, archive time-stamp v3
  void InitPolicyPKCS7();       // levels 0 0 0 3 3, no attribute

  // GetCertificateReqValue maps a caller's certificate-requirement code to
  // the certificates scale above: 4 gives kCertificatesNone (0), 10 gives
  // kCertificatesSignerOnly (1), every other code kCertificatesFullPath (2).
  // It reads no field of the policy.
  static int GetCertificateReqValue(int kind);

  // Equality compares every field, lists element by element in order.
  bool operator==(SignaturePolicy const& other) const;
  bool operator!=(SignaturePolicy const& other) const { return !(*this == other); }

  // The fields, in this order. Empty containers, zero levels and the flags
  // described below are what construction leaves before the initialiser runs.
  std::string policy_name;  // the caller's name for the policy; never filled here

  unsigned int content_placement;           // level 0
  unsigned int signing_certificate_refs;    // level 1
  unsigned int included_certificates;       // level 2
  unsigned int end_certificate_revocation;  // level 3
  unsigned int ca_certificate_revocation;   // level 4

  // Signed attributes the signer must add (dotted OIDs); never filled here.
  std::list<std::string> required_signed_attributes;
  // Unsigned attributes the signer must add (dotted OIDs), as the
  // initialisers append them.
  std::list<std::string> required_unsigned_attributes;
  // Trust points for the signer's certificate path and for the time-stamping
  // authorities' paths; empty at construction.
  std::list<TrustPoint> signer_trust_points;
  std::list<TrustPoint> timestamp_trust_points;

  // customized: false at the end of every constructor. A caller that edits
  // the requirements afterwards may set it to say the policy is no longer
  // the plain requirement set of its type.
  bool customized;
  // check_revocation_online: the verifier must fetch current revocation
  // status (CRL or OCSP) rather than rely only on revocation values carried
  // in the signature. Forced true for PKCS#7, BES and T, which carry none.
  bool check_revocation_online;
};

#endif
