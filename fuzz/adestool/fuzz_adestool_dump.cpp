// fuzz_adestool_dump: the input path and the dump of adestool on arbitrary
// bytes, in memory (no file is read or written). The bytes go through form
// detection (DER, PEM, base64) and every item is dumped as a tree and as hex;
// the bytes are also dumped as DER directly. Checks that a dump reports a
// fault exactly when it fails, at an offset inside the item, and that what
// a failing dump prints ends with its fault line.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "dump.h"
#include "input.h"
#include "tool_error.h"

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

void DumpTree(const std::vector<uint8_t>& bytes) {
  std::string out;
  adestool::DumpFailure failure;
  bool ok = adestool::DumpBytes(bytes, adestool::DumpMode::kAsn1, &out, &failure);
  Check(ok == failure.what.empty());
  Check(bytes.empty() || !out.empty());
  Check(out.empty() || out.back() == '\n');
  if (!ok) Check(failure.offset < bytes.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > (1u << 20)) return 0;
  const std::vector<uint8_t> bytes(data, data + size);
  DumpTree(bytes);
  try {
    adestool::Input input = adestool::DecodeInput("fuzz", bytes);
    Check(!input.items.empty());
    for (const adestool::InputItem& item : input.items) {
      Check(!item.bytes.empty());
      DumpTree(item.bytes);
      std::string hex;
      adestool::DumpFailure failure;
      Check(adestool::DumpBytes(item.bytes, adestool::DumpMode::kHex, &hex, &failure));
      // Eight bytes a line.
      size_t lines = 0;
      for (char c : hex) lines += c == '\n';
      Check(lines == (item.bytes.size() + 7) / 8);
    }
  } catch (const adestool::ToolError& e) {
    Check(e.status() == adestool::kExitError);
  }
  return 0;
}
