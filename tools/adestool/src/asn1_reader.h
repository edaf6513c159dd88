// asn1_reader.h: the runtime's BER decoder over a byte range held by the
// caller.
//
// One ASN1CTXT serves the whole range; every call positions the cursor and
// the buffer end itself, so elements can be read in any order and no read
// passes the limit it is given. Lengths are not checked against the data by
// the runtime (ASN1NOLENCHECK): the caller compares them with what is
// present, to report truncation with both numbers.
#ifndef ADESTOOL_ASN1_READER_H
#define ADESTOOL_ASN1_READER_H

#include <korvex/asn1rt/asn1ber.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace adestool {

struct Asn1Header {
  ASN1TAG tag = 0;          // class and constructed bits, number (asn1type.h)
  size_t headerLength = 0;  // identifier and length octets
  bool indefinite = false;
  size_t length = 0;  // contents length when definite
  bool constructed() const { return (tag & TM_FORM_MASK) != 0; }
  ASN1TAG tagClass() const { return tag & TM_CLASS_MASK; }
  ASN1UINT number() const { return tag & TM_IDMASK; }
};

class Asn1Reader {
 public:
  // Asn1Reader over data[0, size); size must fit in 32 bits. Throws
  // std::bad_alloc when the runtime context cannot be created.
  Asn1Reader(const uint8_t* data, size_t size);
  ~Asn1Reader();
  Asn1Reader(const Asn1Reader&) = delete;
  Asn1Reader& operator=(const Asn1Reader&) = delete;

  const uint8_t* data() const { return data_; }
  size_t size() const { return size_; }

  // ReadHeader reads the identifier and length octets at offset, reading
  // nothing at or past limit. Returns 0 or the runtime status (-2 the data
  // ends inside the header, -5 an invalid length, -21 an invalid tag).
  int ReadHeader(size_t offset, size_t limit, Asn1Header* header);

  // Primitive contents decoders over data[offset, offset + length); each
  // returns 0 or the runtime status of its xd_ function.
  int Boolean(size_t offset, size_t length, bool* value);
  int Int64(size_t offset, size_t length, long long* value);
  // BigInteger: the runtime's text ("0x1f", "-0x80").
  int BigInteger(size_t offset, size_t length, std::string* text);
  int ObjectId(size_t offset, size_t length, ASN1OBJID* oid);
  // Bmp / Universal: the characters as UTF-32 code units.
  int Bmp(size_t offset, size_t length, std::u32string* text);
  int Universal(size_t offset, size_t length, std::u32string* text);

 private:
  void Position(size_t offset, size_t limit);

  const uint8_t* data_;
  size_t size_;
  ASN1CTXT ctxt_;
};

// MessageOfHeaderStatus: what a ReadHeader status means, for messages
// ("incomplete header", "length field of 5 octets", "indefinite length on a
// primitive element", "tag number above 2^29-1").
std::string DescribeHeaderFailure(const uint8_t* data, size_t offset, size_t limit, int status);

}  // namespace adestool

#endif
