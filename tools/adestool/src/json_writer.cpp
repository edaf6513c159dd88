// json_writer.cpp: the streaming JSON writer.
#include "json_writer.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "utf8.h"

namespace adestool {

namespace {

// Length of the valid UTF-8 sequence at p (RFC 3629), or 0.
size_t Utf8SequenceLength(const unsigned char* p, size_t n) {
  uint32_t cp = 0;
  return Utf8Decode(p, n, &cp);
}

}  // namespace

std::string JsonEscape(std::string_view value) {
  std::string out;
  out.reserve(value.size() + 2);
  out.push_back('"');
  const auto* p = reinterpret_cast<const unsigned char*>(value.data());
  size_t n = value.size();
  for (size_t i = 0; i < n;) {
    unsigned char c = p[i];
    switch (c) {
      case '"':
        out += "\\\"";
        ++i;
        continue;
      case '\\':
        out += "\\\\";
        ++i;
        continue;
      case '\b':
        out += "\\b";
        ++i;
        continue;
      case '\f':
        out += "\\f";
        ++i;
        continue;
      case '\n':
        out += "\\n";
        ++i;
        continue;
      case '\r':
        out += "\\r";
        ++i;
        continue;
      case '\t':
        out += "\\t";
        ++i;
        continue;
      default:
        break;
    }
    if (c < 0x20) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\u%04X", c);
      out += buf;
      ++i;
      continue;
    }
    size_t len = Utf8SequenceLength(p + i, n - i);
    if (len == 0) {
      out += "\xEF\xBF\xBD";  // U+FFFD for a byte that is not UTF-8
      ++i;
      continue;
    }
    out.append(value.data() + i, len);
    i += len;
  }
  out.push_back('"');
  return out;
}

void JsonWriter::NewLine(size_t depth) {
  text_.push_back('\n');
  text_.append(depth * 2, ' ');
}

void JsonWriter::BeforeValue() {
  if (stack_.empty()) {
    if (done_) throw std::logic_error("JsonWriter: a second top-level value");
    return;
  }
  Level& level = stack_.back();
  if (level.isObject) {
    if (!level.keyPending) throw std::logic_error("JsonWriter: value without a key");
    level.keyPending = false;
    return;
  }
  if (level.count++ > 0) text_.push_back(',');
  NewLine(stack_.size());
}

JsonWriter& JsonWriter::Key(std::string_view key) {
  if (stack_.empty() || !stack_.back().isObject || stack_.back().keyPending) {
    throw std::logic_error("JsonWriter: key outside an object or after a key");
  }
  Level& level = stack_.back();
  if (std::find(level.keys.begin(), level.keys.end(), key) != level.keys.end()) {
    throw std::logic_error("JsonWriter: duplicate key " + std::string(key));
  }
  level.keys.emplace_back(key);
  if (level.count++ > 0) text_.push_back(',');
  NewLine(stack_.size());
  text_ += JsonEscape(key);
  text_ += ": ";
  level.keyPending = true;
  return *this;
}

JsonWriter& JsonWriter::BeginObject() {
  BeforeValue();
  text_.push_back('{');
  stack_.emplace_back(true);
  return *this;
}

JsonWriter& JsonWriter::BeginArray() {
  BeforeValue();
  text_.push_back('[');
  stack_.emplace_back(false);
  return *this;
}

void JsonWriter::Close(bool isObject) {
  if (stack_.empty() || stack_.back().isObject != isObject || stack_.back().keyPending) {
    throw std::logic_error("JsonWriter: unbalanced end");
  }
  bool empty = stack_.back().count == 0;
  stack_.pop_back();
  if (!empty) NewLine(stack_.size());
  text_.push_back(isObject ? '}' : ']');
  if (stack_.empty()) done_ = true;
}

JsonWriter& JsonWriter::EndObject() {
  Close(true);
  return *this;
}

JsonWriter& JsonWriter::EndArray() {
  Close(false);
  return *this;
}

JsonWriter& JsonWriter::String(std::string_view value) {
  BeforeValue();
  text_ += JsonEscape(value);
  if (stack_.empty()) done_ = true;
  return *this;
}

JsonWriter& JsonWriter::Int(int64_t value) {
  BeforeValue();
  text_ += std::to_string(value);
  if (stack_.empty()) done_ = true;
  return *this;
}

JsonWriter& JsonWriter::Uint(uint64_t value) {
  BeforeValue();
  text_ += std::to_string(value);
  if (stack_.empty()) done_ = true;
  return *this;
}

JsonWriter& JsonWriter::Bool(bool value) {
  BeforeValue();
  text_ += value ? "true" : "false";
  if (stack_.empty()) done_ = true;
  return *this;
}

JsonWriter& JsonWriter::Null() {
  BeforeValue();
  text_ += "null";
  if (stack_.empty()) done_ = true;
  return *this;
}

JsonWriter& JsonWriter::Field(std::string_view key, std::string_view value) {
  return Key(key).String(value);
}
JsonWriter& JsonWriter::Field(std::string_view key, const char* value) {
  return Key(key).String(value);
}
JsonWriter& JsonWriter::Field(std::string_view key, int64_t value) { return Key(key).Int(value); }
JsonWriter& JsonWriter::Field(std::string_view key, int value) { return Key(key).Int(value); }
JsonWriter& JsonWriter::Field(std::string_view key, uint64_t value) { return Key(key).Uint(value); }
JsonWriter& JsonWriter::Field(std::string_view key, bool value) { return Key(key).Bool(value); }

std::string JsonWriter::Finish() const {
  if (!stack_.empty() || !done_) throw std::logic_error("JsonWriter: incomplete document");
  return text_ + "\n";
}

}  // namespace adestool
