// korvex/core/Blob.h: owned byte buffers and lists of them.
//
// CBlob is the contiguous byte buffer in which encoded values (DER of
// certificates, attributes, revocation data, hashes) cross the library
// boundary. It holds exactly a size and a pointer to an array allocated with
// new[]; there is no separate capacity. Shrinking never frees the array, so
// the array is at least as long as the largest size held since it was
// allocated. CBlobList is an ordered list of blobs (a SEQUENCE OF raw
// elements handed to or from a caller).
#ifndef KORVEX_CORE_BLOB_H
#define KORVEX_CORE_BLOB_H

#include <list>

#include <korvex/core/StringProxy.h>
#include <korvex/platform/export.h>

namespace Korvex {

class KORVEX_API CBlob {
 public:
  // CBlob makes an empty blob: size 0, null data.
  CBlob();
  // CBlob(n) allocates n bytes set to zero; size n.
  explicit CBlob(unsigned long n);
  // CBlob(p, n) copies n bytes from p (see assign).
  CBlob(unsigned char const* p, unsigned long n);
  CBlob(CBlob const& other);
  // operator= copies the other blob's bytes (see assign); self-assignment is safe.
  CBlob& operator=(CBlob const& other);
  ~CBlob();

  // cbData returns the number of valid bytes.
  unsigned long cbData() const { return m_cbData; }
  // pbData returns the byte array (owned by the blob; may be null).
  unsigned char* pbData() const { return m_pbData; }

  // assign replaces the contents with a copy of n bytes from p. A zero n
  // frees the array and leaves a null pointer. The copy is made before the
  // old array is freed, so p may point into this blob. A null p with a
  // non-zero n throws ATL::CAtlException(E_POINTER). If allocation fails the
  // allocator's exception passes through and the blob is unchanged.
  void assign(unsigned char const* p, unsigned long n);

  // resize_to sets the size to n. It reallocates, keeping the first size()
  // bytes, only when n is above the current size (not the array's length);
  // new bytes are left unset. Shrinking keeps the array.
  void resize_to(unsigned long n);

  // clear sets the size to 0 and keeps the array (resize_to(0)).
  void clear();

  // swap exchanges the contents of two blobs without allocating.
  void swap(CBlob& other) noexcept;

  // reverse reverses the byte order in place.
  void reverse();

  // operator+= appends other's bytes. Appending a blob to itself is not
  // supported: the size doubles but the second half is left unset.
  CBlob& operator+=(CBlob const& other);

  // Equality compares sizes, then bytes.
  bool operator==(CBlob const& other) const;
  bool operator!=(CBlob const& other) const;
  // Ordering is lexicographic by unsigned byte, a proper prefix first. When
  // the common prefix is equal, the sizes decide through their difference
  // taken in 32-bit signed arithmetic (left minus right, both truncated to
  // 32 bits), so sizes that differ by 2^31 or more compare by that
  // truncated difference.
  bool operator<(CBlob const& other) const;
  bool operator<=(CBlob const& other) const;
  bool operator>(CBlob const& other) const;
  bool operator>=(CBlob const& other) const;

  // readFromFile replaces the contents with the whole file at path. A file
  // that cannot be opened throws ATL::CAtlException(0x80070002) and leaves
  // the blob cleared; a failed read (a directory, a device error) throws
  // 0x80070570 and leaves size 0. An empty file gives an empty blob with a
  // null array. Files of 4 GiB or more are not supported and count as
  // unreadable (0x80070570). The wide variant converts the path to the
  // current locale's multibyte form into one byte per wide character, so a
  // path whose multibyte form is longer than its character count is cut.
  // A null path counts as a file that cannot be opened.
  void readFromFile(char const* path);
  void readFromFile(wchar_t const* path);

  // writeToFile writes the contents as the whole file at path (truncating or
  // creating it). A file that cannot be opened throws
  // ATL::CAtlException(0x80070002); errors of the write itself are not
  // reported. The wide variant converts the path as readFromFile does; a
  // null path counts as a file that cannot be opened.
  void writeToFile(char const* path) const;
  void writeToFile(wchar_t const* path) const;

  // readFromHexString replaces the contents with bytes parsed from text:
  // leading whitespace is skipped, then pairs of hex digits (high digit
  // first, either case) are read, each optionally followed by whitespace.
  // Parsing stops silently at NUL, at a character that does not start a pair,
  // or at a pair cut short; nothing is thrown. A null text parses as "".
  void readFromHexString(char const* text);

  // writeToHexString returns the contents as upper-case hex, two digits per
  // byte. With group > 0 a space follows every group bytes except at the end.
  CStringProxy writeToHexString(unsigned long group) const;

 private:
  // compareOrder gives the sign that decides the ordering operators.
  int compareOrder(CBlob const& other) const;

  unsigned long m_cbData;
  unsigned char* m_pbData;
};

// CBlobList is an ordered list of blobs; copying it copies every blob.
class KORVEX_API CBlobList : public std::list<CBlob> {
 public:
  using std::list<CBlob>::list;
};

}  // namespace Korvex

#endif
