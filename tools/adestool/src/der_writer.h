// der_writer.h: the few DER pieces adestool writes itself (X.690 8.1.2 and
// 8.1.3: identifier octet, definite length in the shortest form).
#ifndef ADESTOOL_DER_WRITER_H
#define ADESTOOL_DER_WRITER_H

#include <cstdint>
#include <string_view>
#include <vector>

namespace adestool {

// DerLength: the length octets of length (short form below 128, otherwise
// 0x80 | count followed by the big-endian length).
std::vector<uint8_t> DerLength(size_t length);

// DerWrap: identifier octet, length octets, then content.
std::vector<uint8_t> DerWrap(uint8_t identifier, const std::vector<uint8_t>& content);

// DerOid: the complete OBJECT IDENTIFIER element of dotted text (at least
// two arcs, the first 0..2). Throws std::invalid_argument for bad text.
std::vector<uint8_t> DerOid(std::string_view dotted);

// Append adds bytes at the end of out.
void Append(std::vector<uint8_t>* out, const std::vector<uint8_t>& bytes);

}  // namespace adestool

#endif
