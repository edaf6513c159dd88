// catalogue_support.h: what the catalogue tests share: a runtime context, input
// files (DER, PEM, base64), the real-data index, and the round trip of one
// value through the descriptor-driven codec with its invariants.
#ifndef KORVEX_TESTS_ASN1GEN_CATALOGUE_SUPPORT_H
#define KORVEX_TESTS_ASN1GEN_CATALOGUE_SUPPORT_H

#include <korvex/asn1rt/asn1engine.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Korvex {
namespace Test {

using Bytes = std::vector<unsigned char>;

// A runtime context, freed on destruction.
class Context {
 public:
  Context();
  ~Context();
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  ASN1CTXT* get() { return &c_; }
  size_t blocks();

 private:
  ASN1CTXT c_;
};

// "1.2.840.113549" for an object identifier.
std::string DottedOid(const ASN1OBJID& oid);

// The file's bytes; empty when it cannot be read.
Bytes ReadFile(const std::string& path);

// The contents of every PEM block of text ("-----BEGIN ...-----" up to its END
// line), in order; base64 that does not decode gives an empty block.
std::vector<Bytes> PemBlocks(const std::string& text);

// RFC 4648 base64 with white space ignored; empty on a character outside the
// alphabet.
Bytes Base64(const std::string& text);

// The files under dir (recursively), as paths relative to dir, sorted.
std::vector<std::string> ListFiles(const std::string& dir);

bool DirectoryExists(const std::string& dir);

// One row of the real-data index (INDEX.md of the corpus folder): the file as
// <section>/<name>, what it is, its format ("DER", "PEM(CERTIFICATE)",
// "base64") and the notes.
struct IndexEntry {
  std::string path;
  std::string what;
  std::string format;
  std::string notes;
};
std::vector<IndexEntry> ReadIndex(const std::string& indexPath);

// The input bytes of an index entry: DER as it stands, the first PEM block, or
// the base64 text decoded.
Bytes LoadEntry(const std::string& corpusDir, const IndexEntry& entry);

// What a decode of input as desc did, with every invariant checked on the way:
//   - the decoded value encodes, and that encoding is DER of the same value: it
//     decodes again and encodes to the same bytes (equal records compare equal
//     through their encodings);
//   - a deep copy encodes to the same bytes;
//   - every table-constrained open type whose key names an object with a type
//     holds its typed value, unless its bytes are not a value of that type;
//   - freeing the values gives back every heap block that decode and copy took.
struct Outcome {
  int status = 0;       // of the decode
  size_t consumed = 0;  // octets of input the first element took
  Bytes der;            // our encoding
  bool exact = false;   // der equals the consumed input
  size_t typed = 0;     // typed values of table-constrained open types
  size_t untyped = 0;   // open types left raw (no object for their key)
  size_t unfit = 0;     // open types left raw (not a value of their object's type)
  std::string broken;   // the first invariant that failed, empty if none
};
Outcome RoundTrip(const Asn1Engine::TypeDesc* desc, const Bytes& input);

// X.690 10 structure of an element sequence: definite minimal lengths, low tag
// numbers in one octet, primitive universal strings, minimal INTEGERs and
// BOOLEAN 00/FF, looking into constructed elements (not into OCTET STRINGs).
bool StructurallyDer(const unsigned char* p, size_t n);

// Whether a and b hold the same elements, the children of each constructed
// element possibly in another order (what DER's sorting of SET OF, X.690 11.6,
// and of SET components, 10.3, changes); compared element by element.
bool SameUpToOrder(const Bytes& a, const Bytes& b);

}  // namespace Test
}  // namespace Korvex

#endif
