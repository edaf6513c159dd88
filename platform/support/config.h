// The parsed configuration file shared by the registry and the trace channel
// (internal to libkorvex-support, not installed).
#ifndef KORVEX_PLATFORM_SUPPORT_CONFIG_H
#define KORVEX_PLATFORM_SUPPORT_CONFIG_H

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace korvex::support {

// Config holds the `path = value` pairs of one configuration file. Paths are
// matched without regard to ASCII case, as Windows registry keys are.
class Config {
 public:
  // Parse reads the text of a configuration file (syntax in
  // docs/configuration.md). Lines that are not `path = value` are skipped;
  // a path given twice keeps its last value.
  static Config Parse(std::string_view text);

  // Find returns the value stored at path, or null.
  const std::string* Find(std::string_view path) const;

  size_t size() const { return values_.size(); }

 private:
  std::unordered_map<std::string, std::string> values_;  // key: lower-cased path
};

// CurrentConfig returns the configuration file as it stands now: the file
// named by KORVEX_CONFIG (default /etc/korvex/korvex.conf) is read again when
// its path, size, modification time or identity changed since the last call.
// A missing or unreadable file gives an empty configuration. Thread-safe.
std::shared_ptr<const Config> CurrentConfig();

// ParseLong reads a whole value as a signed decimal number or, after "0x",
// a hexadecimal one; false when the text is not such a number or overflows.
bool ParseLong(std::string_view text, long* value);

}  // namespace korvex::support

#endif
