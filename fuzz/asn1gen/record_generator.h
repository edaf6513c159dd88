// record_generator.h: random values of any generated type, built from its
// descriptor alone, and a structural comparison of two values of one type.
//
// The generator fills a zeroed record the way a caller would: every mandatory
// component, OPTIONAL and DEFAULT components at random, CHOICE alternatives
// among the known ones, lists and arrays of a few elements, all inside the
// type's size and value limits and ENUMERATED values, character strings in
// the character set of their type, times as valid UTCTime/GeneralizedTime
// text, OBJECT IDENTIFIERs with valid first arcs, open types as complete
// elements, and table-constrained open types keyed, half of the time, by an
// object of their set, then holding either bytes or a typed value of the
// object's type. Values that a decoder reading by position could not tell
// apart (an absent OPTIONAL component followed by one with the same tag) are
// not made. All storage comes from the given context's type heap.
#ifndef KORVEX_FUZZ_ASN1GEN_RECORD_GENERATOR_H
#define KORVEX_FUZZ_ASN1GEN_RECORD_GENERATOR_H

#include <korvex/asn1rt/asn1engine.h>

#include <random>
#include <string>
#include <vector>

namespace Korvex {
namespace Test {

class RecordGenerator {
 public:
  RecordGenerator(ASN1CTXT* ctxt, unsigned seed) : ctxt_(ctxt), rng_(seed) {}

  // Fills value (zeroed by the caller, desc->size bytes). False when the
  // descriptor holds something the generator cannot make.
  bool fill(const Asn1Engine::TypeDesc* desc, void* value);

 private:
  bool fillValue(const Asn1Engine::TypeDesc* d, void* v, int depth);
  bool fillMembers(const Asn1Engine::TypeDesc* d, void* rec, int depth);
  bool fillChoice(const Asn1Engine::TypeDesc* d, void* rec, int depth);
  bool fillList(const Asn1Engine::TypeDesc* d, void* rec, int depth);
  void* alloc(size_t n);
  unsigned long long below(unsigned long long n);  // 0 .. n-1
  long long between(long long lo, long long hi);   // lo .. hi
  // A size inside d's limits, near the lower bound, at most `cap` above it.
  unsigned long long size(const Asn1Engine::TypeDesc* d, unsigned long long cap);
  const char* text(ASN1TAG tag, const Asn1Engine::TypeDesc* d);
  void element(const ASN1OCTET** data, ASN1UINT* numocts);

  ASN1CTXT* ctxt_;
  std::mt19937_64 rng_;
};

// Whether a and b, two values of desc, hold the same value: components,
// presence, alternatives and elements alike. SET OF elements are compared as
// multisets (DER sorts them); a DEFAULT component present on one side only is
// equal when its value is the default; big integers compare by value; open
// types compare by their bytes. On a difference, *where names its path.
bool SameValue(const Asn1Engine::TypeDesc* desc, const void* a, const void* b, std::string* where);

// The DER of value (ASN1EXPL), empty with *status set on failure.
std::vector<unsigned char> EncodeValue(const Asn1Engine::TypeDesc* desc, const void* value,
                                       int* status);

}  // namespace Test
}  // namespace Korvex

#endif
