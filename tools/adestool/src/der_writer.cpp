// der_writer.cpp: DER lengths, wrapping and object identifiers.
#include "der_writer.h"

#include <stdexcept>
#include <string>

namespace adestool {

std::vector<uint8_t> DerLength(size_t length) {
  if (length < 0x80) return {static_cast<uint8_t>(length)};
  std::vector<uint8_t> octets;
  for (size_t n = length; n != 0; n >>= 8) octets.insert(octets.begin(), n & 0xFF);
  octets.insert(octets.begin(), static_cast<uint8_t>(0x80 | octets.size()));
  return octets;
}

std::vector<uint8_t> DerWrap(uint8_t identifier, const std::vector<uint8_t>& content) {
  std::vector<uint8_t> out{identifier};
  Append(&out, DerLength(content.size()));
  Append(&out, content);
  return out;
}

std::vector<uint8_t> DerOid(std::string_view dotted) {
  std::vector<unsigned long long> arcs;
  size_t start = 0;
  while (start <= dotted.size()) {
    size_t dot = dotted.find('.', start);
    if (dot == std::string_view::npos) dot = dotted.size();
    const std::string arc(dotted.substr(start, dot - start));
    if (arc.empty() || arc.size() > 18 ||
        arc.find_first_not_of("0123456789") != std::string::npos) {
      throw std::invalid_argument("invalid object identifier text");
    }
    arcs.push_back(std::stoull(arc));
    start = dot + 1;
  }
  if (arcs.size() < 2 || arcs[0] > 2 || (arcs[0] < 2 && arcs[1] > 39)) {
    throw std::invalid_argument("invalid object identifier text");
  }
  std::vector<uint8_t> content;
  auto put = [&content](unsigned long long v) {  // base 128, X.690 8.19.2
    std::vector<uint8_t> digits{static_cast<uint8_t>(v & 0x7F)};
    for (v >>= 7; v != 0; v >>= 7) digits.insert(digits.begin(), 0x80 | (v & 0x7F));
    Append(&content, digits);
  };
  put(arcs[0] * 40 + arcs[1]);
  for (size_t i = 2; i < arcs.size(); ++i) put(arcs[i]);
  return DerWrap(0x06, content);
}

void Append(std::vector<uint8_t>* out, const std::vector<uint8_t>& bytes) {
  out->insert(out->end(), bytes.begin(), bytes.end());
}

}  // namespace adestool
