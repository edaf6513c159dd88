// json_writer.h: JSON text (RFC 8259) for the --json outputs of subcommands.
//
// A streaming writer: values are written in the order the caller gives them,
// so the key order of every object is the order of the code that writes it,
// the same on every run. Objects and arrays are indented by two spaces a
// level; an empty one is written "{}" or "[]". Strings are escaped: '"', '\\'
// and the control characters (\b \f \n \r \t, others as \u00XX); bytes that
// are not valid UTF-8 become U+FFFD, so the text is always valid UTF-8.
// Binary values belong in hex or base64 strings, written by the caller.
#ifndef ADESTOOL_JSON_WRITER_H
#define ADESTOOL_JSON_WRITER_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace adestool {

class JsonWriter {
 public:
  JsonWriter& BeginObject();
  JsonWriter& EndObject();
  JsonWriter& BeginArray();
  JsonWriter& EndArray();
  // Key names the next value inside an object. Throws std::logic_error
  // outside an object, twice in a row, or for a key already used in it.
  JsonWriter& Key(std::string_view key);
  JsonWriter& String(std::string_view value);
  JsonWriter& Int(int64_t value);
  JsonWriter& Uint(uint64_t value);
  JsonWriter& Bool(bool value);
  JsonWriter& Null();

  // Field helpers: Key(key) then the value.
  JsonWriter& Field(std::string_view key, std::string_view value);
  JsonWriter& Field(std::string_view key, const char* value);
  JsonWriter& Field(std::string_view key, int64_t value);
  JsonWriter& Field(std::string_view key, int value);
  JsonWriter& Field(std::string_view key, uint64_t value);
  JsonWriter& Field(std::string_view key, bool value);

  // Finish returns the complete text with a final line feed. Throws
  // std::logic_error while an object or array is open or when nothing was
  // written.
  std::string Finish() const;

 private:
  struct Level {
    explicit Level(bool object) : isObject(object) {}
    bool isObject;
    size_t count = 0;
    bool keyPending = false;
    std::vector<std::string> keys;
  };
  void BeforeValue();
  void Close(bool isObject);
  void NewLine(size_t depth);

  std::string text_;
  std::vector<Level> stack_;
  bool done_ = false;  // a complete top-level value was written
};

// JsonEscape: value as a JSON string literal, quotes included.
std::string JsonEscape(std::string_view value);

}  // namespace adestool

#endif
