// pem.cpp: PEM block parsing.
#include "pem.h"

#include "base64.h"

namespace adestool {

namespace {

constexpr std::string_view kBegin = "-----BEGIN ";
constexpr std::string_view kEnd = "-----END ";
constexpr std::string_view kDashes = "-----";

struct Line {
  std::string_view text;  // without the line break, blanks trimmed at both ends
  size_t number;          // 1-based
  size_t column;          // 1-based column where text starts in the raw line
};

std::vector<Line> SplitLines(std::string_view text) {
  std::vector<Line> lines;
  size_t start = 0;
  size_t number = 1;
  while (start <= text.size()) {
    size_t nl = text.find('\n', start);
    size_t end = nl == std::string_view::npos ? text.size() : nl;
    std::string_view raw = text.substr(start, end - start);
    size_t b = 0;
    while (b < raw.size() && IsBase64Space(static_cast<unsigned char>(raw[b]))) ++b;
    size_t e = raw.size();
    while (e > b && IsBase64Space(static_cast<unsigned char>(raw[e - 1]))) --e;
    lines.push_back({raw.substr(b, e - b), number, b + 1});
    if (nl == std::string_view::npos) break;
    start = nl + 1;
    ++number;
  }
  return lines;
}

bool StartsWith(std::string_view s, std::string_view prefix) {
  return s.substr(0, prefix.size()) == prefix;
}

// The label of a "-----BEGIN X-----" / "-----END X-----" line, or false.
bool Boundary(std::string_view line, std::string_view prefix, std::string_view* label) {
  if (!StartsWith(line, prefix) || line.size() < prefix.size() + kDashes.size()) return false;
  if (line.substr(line.size() - kDashes.size()) != kDashes) return false;
  *label = line.substr(prefix.size(), line.size() - prefix.size() - kDashes.size());
  return true;
}

}  // namespace

bool HasPemBeginLine(std::string_view text) {
  for (const Line& line : SplitLines(text)) {
    if (StartsWith(line.text, kBegin)) return true;
  }
  return false;
}

bool ParsePem(std::string_view text, std::vector<PemBlock>* blocks, std::string* error) {
  blocks->clear();
  std::vector<Line> lines = SplitLines(text);
  for (size_t i = 0; i < lines.size(); ++i) {
    std::string_view label;
    if (!StartsWith(lines[i].text, kBegin)) continue;
    const size_t blockNumber = blocks->size() + 1;
    if (!Boundary(lines[i].text, kBegin, &label)) {
      *error = "PEM block " + std::to_string(blockNumber) + ", line " +
               std::to_string(lines[i].number) + ": malformed BEGIN line";
      return false;
    }
    const std::string where =
        "PEM block " + std::to_string(blockNumber) + " (" + std::string(label) + ")";
    // Body lines up to the END line; base64 is decoded over the body joined
    // with line feeds, and offsets map back to lines through bodyLines.
    std::string body;
    std::vector<std::pair<size_t, const Line*>> bodyLines;  // offset in body, line
    size_t j = i + 1;
    for (; j < lines.size(); ++j) {
      const Line& line = lines[j];
      if (StartsWith(line.text, kEnd)) break;
      if (StartsWith(line.text, kBegin)) {
        *error = where + ", line " + std::to_string(line.number) +
                 ": BEGIN line inside the block (no END line before it)";
        return false;
      }
      if (line.text.find(':') != std::string_view::npos) {
        *error = where + ", line " + std::to_string(line.number) +
                 ": header lines are not supported (encrypted PEM?)";
        return false;
      }
      bodyLines.emplace_back(body.size(), &line);
      body.append(line.text);
      body.push_back('\n');
    }
    if (j == lines.size()) {
      *error = where + ": no END line";
      return false;
    }
    std::string_view endLabel;
    if (!Boundary(lines[j].text, kEnd, &endLabel) || endLabel != label) {
      *error = where + ", line " + std::to_string(lines[j].number) +
               ": END line does not match the BEGIN line";
      return false;
    }
    PemBlock block;
    block.label = std::string(label);
    block.beginLine = lines[i].number;
    Base64Error b64;
    if (!DecodeBase64(body, &block.der, &b64)) {
      if (b64.offset >= body.size()) {
        *error = where + ": " + b64.what;
        return false;
      }
      // The body line holding the offset.
      size_t lineNumber = lines[j].number;
      size_t column = 1;
      for (auto it = bodyLines.rbegin(); it != bodyLines.rend(); ++it) {
        if (b64.offset >= it->first && b64.offset < it->first + it->second->text.size() + 1) {
          lineNumber = it->second->number;
          column = it->second->column + (b64.offset - it->first);
          break;
        }
      }
      *error = where + ", line " + std::to_string(lineNumber) + ", column " +
               std::to_string(column) + ": " + b64.what;
      return false;
    }
    if (block.der.empty()) {
      *error = where + ": no data";
      return false;
    }
    blocks->push_back(std::move(block));
    i = j;
  }
  return true;
}

}  // namespace adestool
