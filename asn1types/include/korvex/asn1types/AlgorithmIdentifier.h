// korvex/asn1types/AlgorithmIdentifier.h: the typed AlgorithmIdentifier
// (RFC 5280 4.1.1.2): an OID and the DER of its optional parameters.
//
// Conversion to and from the generated record asn1data::ASN1T_AlgorithmIdentifier
// is AlgorithmIdentifierTraits.h (ASN1T_AlgorithmIdentifier_traits).
#ifndef KORVEX_ASN1TYPES_ALGORITHMIDENTIFIER_H
#define KORVEX_ASN1TYPES_ALGORITHMIDENTIFIER_H

#include <korvex/core/Blob.h>
#include <korvex/core/StringProxy.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// CAlgorithmIdentifier: `algorithm` is dotted OID text (empty by default);
// `parameters` is the complete DER of the parameters value, empty when the
// parameters are absent. Polymorphic: put_algorithm is virtual so that a
// derived class (CAlgorithmIdentifierEx) learns of every change of the OID,
// including those made by decode() and assign().
class KORVEX_API CAlgorithmIdentifier {
 public:
  // CAlgorithmIdentifier(): empty OID text, no parameters.
  CAlgorithmIdentifier();
  // CAlgorithmIdentifier(oid): the given OID text (null: empty), no
  // parameters. The text is not checked here; encode() refuses bad text.
  CAlgorithmIdentifier(char const* oid);  // NOLINT: an OID text names an algorithm
  CAlgorithmIdentifier(CAlgorithmIdentifier const& other);
  // operator= is assign(other).
  CAlgorithmIdentifier& operator=(CAlgorithmIdentifier const& other);
  virtual ~CAlgorithmIdentifier();

  // assign: takes other's OID through put_algorithm (so a derived class sees
  // the change) and other's parameters.
  void assign(CAlgorithmIdentifier const& other);
  // swap: exchanges OID and parameters with other. The OIDs go through
  // put_algorithm on both sides, so derived classes see the change.
  void swap(CAlgorithmIdentifier& other);

  // get_algorithm: the dotted OID text, never null ("" when none is set).
  char const* get_algorithm() const { return m_algorithm.c_str(); }
  // put_algorithm: stores a copy of the OID text (null: empty text).
  virtual void put_algorithm(char const* oid);

  // get_parameters / put_parameters: the DER of the parameters value; an empty
  // blob means absent.
  CBlob const& get_parameters() const { return m_parameters; }
  void put_parameters(CBlob const& parameters);

  // encode: the DER of the AlgorithmIdentifier. Bad OID text, or parameters
  // that the algorithm's table (SupportedAlgorithms) rejects, throw
  // 0x80093101; context-heap exhaustion 0x80093106.
  CBlob encode() const;
  // decode: replaces OID and parameters with those of the DER; failure throws
  // 0x80093101 and leaves the value as it was.
  void decode(CBlob const& der);

 private:
  CStringProxy m_algorithm;
  CBlob m_parameters;
};

// Equal when the OID texts are equal byte for byte and the parameter blobs are
// equal (absent and empty are the same thing).
KORVEX_API bool operator==(CAlgorithmIdentifier const& left, CAlgorithmIdentifier const& right);
KORVEX_API bool operator!=(CAlgorithmIdentifier const& left, CAlgorithmIdentifier const& right);

// CAlgorithmIdentifierEx: a CAlgorithmIdentifier with one 32-bit slot in which
// its users cache what they have learnt about the algorithm (for instance the
// platform's algorithm number for the OID), so they look the OID up once.
// The slot is 0 ("nothing cached") by default and goes back to 0 whenever the
// OID changes; storing the OID already held keeps it. Copies carry the slot.
class KORVEX_API CAlgorithmIdentifierEx : public CAlgorithmIdentifier {
 public:
  CAlgorithmIdentifierEx();
  CAlgorithmIdentifierEx(char const* oid);  // NOLINT: as the base
  // CAlgorithmIdentifierEx(base): the base's OID and parameters, slot 0.
  CAlgorithmIdentifierEx(CAlgorithmIdentifier const& other);  // NOLINT: widening copy
  CAlgorithmIdentifierEx(CAlgorithmIdentifierEx const& other);
  CAlgorithmIdentifierEx& operator=(CAlgorithmIdentifierEx const& other);
  // operator=(base): assign(other); the slot is kept when the OID is the same.
  CAlgorithmIdentifierEx& operator=(CAlgorithmIdentifier const& other);
  ~CAlgorithmIdentifierEx() override;

  // swap: exchanges OID, parameters and slot.
  void swap(CAlgorithmIdentifierEx& other);

  // put_algorithm: when oid differs from the held text (byte comparison;
  // null reads as empty text), the slot becomes 0 and the text is stored as by
  // the base; when it is equal, nothing changes.
  void put_algorithm(char const* oid) override;

  // get_cachedInfo / put_cachedInfo: the cache slot.
  unsigned int get_cachedInfo() const { return m_cachedInfo; }
  void put_cachedInfo(unsigned int info) { m_cachedInfo = info; }

 private:
  unsigned int m_cachedInfo;
};

}  // namespace ASN1
}  // namespace Korvex

#endif
