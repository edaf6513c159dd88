// fuzz_adestool_inspect: the path of `adestool inspect --verify` on
// arbitrary bytes, in memory: form detection, the SignedData decode, the
// report with every attribute described and the digest and signature
// checks run (a fixed detached content stands in for --data), then both
// renderings. Bytes that are not a SignedData must end in a status-2
// ToolError; everything else must give a report whose text and JSON are
// complete (a final line feed, JSON closing its object).
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "input.h"
#include "inspect_build.h"
#include "inspect_report.h"
#include "signed_message.h"
#include "tool_error.h"

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

void Inspect(const std::vector<uint8_t> &bytes) {
  static const std::vector<uint8_t> kContent = {'K', 'o', 'r', 'v', 'e', 'x', '\n'};
  try {
    std::unique_ptr<adestool::SignedMessage> message =
        adestool::SignedMessage::Decode("fuzz", bytes);
    adestool::InspectOptions options;
    options.verify = true;
    if (!message->attached()) options.detachedContent = &kContent;
    adestool::InspectOutcome outcome = adestool::BuildInspectReport("fuzz", *message, options);
    std::string text = adestool::RenderText(outcome.report);
    std::string json = adestool::RenderJson(outcome.report);
    Check(!text.empty() && text.back() == '\n');
    Check(json.size() >= 3 && json.compare(json.size() - 2, 2, "}\n") == 0);
    adestool::CarriedCrls(*message);
  } catch (const adestool::ToolError &e) {
    Check(e.status() == adestool::kExitError);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size > (1u << 20)) return 0;
  const std::vector<uint8_t> bytes(data, data + size);
  Inspect(bytes);
  try {
    adestool::Input input = adestool::DecodeInput("fuzz", bytes);
    if (input.form != adestool::InputForm::kDer && input.items.size() == 1) {
      Inspect(input.items[0].bytes);
    }
  } catch (const adestool::ToolError &e) {
    Check(e.status() == adestool::kExitError);
  }
  return 0;
}
