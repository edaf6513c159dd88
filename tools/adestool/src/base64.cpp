// base64.cpp: strict base64 decoder.
#include "base64.h"

#include <cstdio>

namespace adestool {

namespace {

// Value of a base64 alphabet character, -1 for anything else.
int Sextet(unsigned char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  if (c == '/') return 63;
  return -1;
}

}  // namespace

bool IsBase64Space(unsigned char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

std::string ShowChar(unsigned char c) {
  if (c >= 0x21 && c <= 0x7E) return std::string("'") + static_cast<char>(c) + "'";
  char buf[8];
  std::snprintf(buf, sizeof buf, "\\x%02X", c);
  return buf;
}

bool DecodeBase64(std::string_view text, std::vector<uint8_t>* out, Base64Error* error) {
  out->clear();
  out->reserve(text.size() / 4 * 3);
  int group[4];
  size_t groupOffset[4] = {0, 0, 0, 0};
  int filled = 0;      // characters in the current group
  int padding = 0;     // '=' seen in the current group
  bool ended = false;  // a padded group closed the data
  auto fail = [&](size_t offset, std::string what) {
    error->offset = offset;
    error->what = std::move(what);
    return false;
  };
  for (size_t i = 0; i < text.size(); ++i) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (IsBase64Space(c)) continue;
    if (ended) return fail(i, "base64 data after the '=' padding");
    if (c == '=') {
      // Padding may only fill the last one or two places of a group.
      if (filled < 2) return fail(i, "misplaced base64 padding '='");
      ++padding;
      groupOffset[filled] = i;
      group[filled++] = 0;
    } else {
      int v = Sextet(c);
      if (v < 0) return fail(i, "invalid base64 character " + ShowChar(c));
      if (padding) return fail(i, "base64 data after the '=' padding");
      groupOffset[filled] = i;
      group[filled++] = v;
    }
    if (filled < 4) continue;
    uint32_t bits =
        (static_cast<uint32_t>(group[0]) << 18) | (group[1] << 12) | (group[2] << 6) | group[3];
    out->push_back(static_cast<uint8_t>(bits >> 16));
    if (padding == 2) {
      // "xx==": the low 4 bits of the second character are padding bits.
      if (group[1] & 0x0F) return fail(groupOffset[1], "non-zero padding bits in base64 data");
      ended = true;
    } else if (padding == 1) {
      if (group[2] & 0x03) return fail(groupOffset[2], "non-zero padding bits in base64 data");
      out->push_back(static_cast<uint8_t>(bits >> 8));
      ended = true;
    } else {
      out->push_back(static_cast<uint8_t>(bits >> 8));
      out->push_back(static_cast<uint8_t>(bits));
    }
    filled = 0;
    padding = 0;
  }
  if (filled != 0) {
    return fail(text.size(), "base64 data ends inside a 4-character group");
  }
  return true;
}

}  // namespace adestool
