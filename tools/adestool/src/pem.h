// pem.h: PEM text (RFC 7468): labelled base64 blocks between
// "-----BEGIN LABEL-----" and "-----END LABEL-----" lines.
#ifndef ADESTOOL_PEM_H
#define ADESTOOL_PEM_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace adestool {

struct PemBlock {
  std::string label;         // "CERTIFICATE"
  std::vector<uint8_t> der;  // the decoded contents
  size_t beginLine = 0;      // 1-based line of the BEGIN line
};

// HasPemBeginLine: some line of text starts (after blanks) with "-----BEGIN ".
bool HasPemBeginLine(std::string_view text);

// ParsePem decodes every block of text in order. Text outside the blocks
// (explanations, as RFC 7468 section 5.2 allows) is ignored. Returns false
// with *error set ("PEM block 2 (CERTIFICATE), line 14, column 3: invalid
// base64 character '*'") for a block without its END line, an END line with
// another label, a BEGIN line inside a block, header lines (RFC 1421
// encapsulated headers, as in encrypted keys), an empty block or invalid
// base64 (decoded strictly, see DecodeBase64).
bool ParsePem(std::string_view text, std::vector<PemBlock>* blocks, std::string* error);

}  // namespace adestool

#endif
