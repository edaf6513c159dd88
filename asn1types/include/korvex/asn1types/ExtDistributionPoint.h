// korvex/asn1types/ExtDistributionPoint.h: CRL distribution points (RFC 5280
// 4.2.1.13): DistributionPointName, DistributionPoint and the list that is
// the value of the cRLDistributionPoints (2.5.29.31) and freshestCRL
// (2.5.29.46) extensions. Part of Extension.h.
#ifndef KORVEX_ASN1TYPES_EXTDISTRIBUTIONPOINT_H
#define KORVEX_ASN1TYPES_EXTDISTRIBUTIONPOINT_H

#include <korvex/asn1types/Choice.h>
#include <korvex/asn1types/Names.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/export.h>

#include <list>

namespace Korvex {
namespace ASN1 {

class CReasonFlags;

// CDistributionPointNameImpl: the CHOICE holder of a distribution point name.
// Alternatives (the generated selector numbers) and the value held:
//   1 fullName                 CGeneralNames
//   2 nameRelativeToCRLIssuer  CBlob: the DER of the RelativeDistinguishedName
//                              (with its universal SET tag 31), kept as it
//                              stands so that it encodes again unchanged
// Every other number is the no-alternative handler.
class KORVEX_API CDistributionPointNameImpl : public Choice {
 public:
  CDistributionPointNameImpl() = default;
  CDistributionPointNameImpl(CDistributionPointNameImpl const&) = default;
  CDistributionPointNameImpl& operator=(CDistributionPointNameImpl const&) = default;
  ChoiceValueTraits const* findTraits(unsigned int n) const override;
};

// CDistributionPointName: DistributionPointName ::= CHOICE { fullName [0]
// GeneralNames, nameRelativeToCRLIssuer [1] RelativeDistinguishedName }.
class KORVEX_API CDistributionPointName {
 public:
  enum Type : unsigned int { kFullName = 1, kNameRelativeToCRLIssuer = 2 };

  // CDistributionPointName(): fullName with no names (which does not encode
  // until a name is added: SIZE (1..MAX)).
  CDistributionPointName();
  explicit CDistributionPointName(CGeneralNames const& fullName);
  CDistributionPointName(CDistributionPointName const& other);
  CDistributionPointName& operator=(CDistributionPointName const& other);
  ~CDistributionPointName();

  // get_type: the selected alternative (Type).
  unsigned int get_type() const;
  // Typed getters: the value when that alternative is selected, else null.
  CGeneralNames const* get_fullName() const;
  CBlob const* get_nameRelativeToCRLIssuer() const;
  // Typed setters select their alternative holding a copy of the value. The
  // RDN's DER is checked when encoding (not an RDN: 0x80093101).
  void put_fullName(CGeneralNames const& names);
  void put_nameRelativeToCRLIssuer(CBlob const& rdnDer);

  // encode: the DER of the CHOICE (its [0] or [1] element); decode replaces
  // the value; failures throw 0x80093101, a failed decode changes nothing.
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  CDistributionPointNameImpl* m_impl;
};

// Equal when the same alternative holds equal values (names pairwise in
// order, the RDN's DER byte for byte).
KORVEX_API bool operator==(CDistributionPointName const& a, CDistributionPointName const& b);
KORVEX_API bool operator!=(CDistributionPointName const& a, CDistributionPointName const& b);

// CDistributionPoint: DistributionPoint ::= SEQUENCE { distributionPoint [0]
// DistributionPointName OPTIONAL, reasons [1] ReasonFlags OPTIONAL, cRLIssuer
// [2] GeneralNames OPTIONAL }; every part optional, put and got through
// pointers.
class KORVEX_API CDistributionPoint {
 public:
  // CDistributionPoint(): every part absent (encodes as 30 00).
  CDistributionPoint();
  // CDistributionPoint(name): that distribution point name only.
  explicit CDistributionPoint(CDistributionPointName const& distributionPoint);
  CDistributionPoint(CDistributionPoint const& other);
  CDistributionPoint& operator=(CDistributionPoint const& other);
  ~CDistributionPoint();

  CDistributionPointName const* get_distributionPoint() const;
  void put_distributionPoint(CDistributionPointName const* name);
  CReasonFlags const* get_reasons() const;
  void put_reasons(CReasonFlags const* reasons);
  CGeneralNames const* get_cRLIssuer() const;
  void put_cRLIssuer(CGeneralNames const* issuer);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

KORVEX_API bool operator==(CDistributionPoint const& a, CDistributionPoint const& b);
KORVEX_API bool operator!=(CDistributionPoint const& a, CDistributionPoint const& b);

// CCRLDistPointsSyntax: CRLDistributionPoints ::= SEQUENCE SIZE (1..MAX) OF
// DistributionPoint, in order. Encoding an empty list throws 0x80093101.
class KORVEX_API CCRLDistPointsSyntax : public std::list<CDistributionPoint> {
 public:
  using std::list<CDistributionPoint>::list;

  CBlob encode() const;
  void decode(CBlob const& der);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
