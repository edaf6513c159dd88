// Parsing of the configuration file text and of its numbers.
#include "config.h"

#include <climits>

namespace korvex::support {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

std::string_view Trim(std::string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

std::string Lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

// ValueOf extracts the value from the text after '='. A value in double
// quotes is taken as it stands between them (blanks and '#' included); an
// unquoted value ends at a '#' that follows a blank. False for text after a
// closing quote that is not a comment, or for a quote left open.
bool ValueOf(std::string_view rest, std::string* value) {
  rest = Trim(rest);
  if (!rest.empty() && rest.front() == '"') {
    const size_t close = rest.find('"', 1);
    if (close == std::string_view::npos) return false;
    std::string_view after = Trim(rest.substr(close + 1));
    if (!after.empty() && after.front() != '#') return false;
    *value = std::string(rest.substr(1, close - 1));
    return true;
  }
  size_t end = rest.size();
  for (size_t i = 0; i < rest.size(); ++i) {
    if (rest[i] == '#' && (i == 0 || IsBlank(rest[i - 1]))) {
      end = i;
      break;
    }
  }
  *value = std::string(Trim(rest.substr(0, end)));
  return true;
}

}  // namespace

Config Config::Parse(std::string_view text) {
  Config config;
  while (!text.empty()) {
    const size_t eol = text.find('\n');
    std::string_view line = text.substr(0, eol);
    text = eol == std::string_view::npos ? std::string_view() : text.substr(eol + 1);

    line = Trim(line);
    if (line.empty() || line.front() == '#') continue;
    const size_t eq = line.find('=');
    if (eq == std::string_view::npos) continue;
    const std::string_view path = Trim(line.substr(0, eq));
    std::string value;
    if (path.empty() || !ValueOf(line.substr(eq + 1), &value)) continue;
    config.values_[Lower(path)] = std::move(value);
  }
  return config;
}

const std::string* Config::Find(std::string_view path) const {
  auto it = values_.find(Lower(path));
  return it == values_.end() ? nullptr : &it->second;
}

bool ParseLong(std::string_view text, long* value) {
  bool negative = false;
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  unsigned base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty()) return false;
  // Accumulate the magnitude unsigned; the negative range reaches one further.
  const unsigned long limit =
      negative ? static_cast<unsigned long>(LONG_MAX) + 1ul : static_cast<unsigned long>(LONG_MAX);
  unsigned long magnitude = 0;
  for (char c : text) {
    unsigned digit;
    if (c >= '0' && c <= '9') {
      digit = static_cast<unsigned>(c - '0');
    } else if (base == 16 && c >= 'a' && c <= 'f') {
      digit = static_cast<unsigned>(c - 'a' + 10);
    } else if (base == 16 && c >= 'A' && c <= 'F') {
      digit = static_cast<unsigned>(c - 'A' + 10);
    } else {
      return false;
    }
    if (magnitude > (limit - digit) / base) return false;
    magnitude = magnitude * base + digit;
  }
  if (!negative) {
    *value = static_cast<long>(magnitude);
  } else if (magnitude == static_cast<unsigned long>(LONG_MAX) + 1ul) {
    *value = LONG_MIN;
  } else {
    *value = -static_cast<long>(magnitude);
  }
  return true;
}

}  // namespace korvex::support
