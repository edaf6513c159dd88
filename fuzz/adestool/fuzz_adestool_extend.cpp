// fuzz_adestool_extend: the input side of `adestool imprint` and `extend` on
// arbitrary bytes, in memory. The bytes go through form detection; each item
// is read as a signature (SignedData layout, signature values, the CAdES-C
// imprint data of signers that have references), as a time-stamp token, and
// as certificates, CRLs and OCSP responses. A signature that reads is
// extended with one attribute per signer; the result must read again with
// the same signers and signature values and the attribute last.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "cades_extension.h"
#include "cms_layout.h"
#include "der_walk.h"
#include "input.h"
#include "pki_items.h"
#include "tool_error.h"

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

void CheckToolError(const adestool::ToolError& e) {
  Check(e.status() == adestool::kExitError || e.status() == adestool::kExitCheckFailed);
}

void ExtendSignature(const std::vector<uint8_t>& bytes) {
  using namespace adestool;
  DerWalker walker(bytes, "sig");
  SignedDataLayout layout;
  try {
    layout = ReadSignedData(walker);
  } catch (const ToolError& e) {
    Check(e.status() == kExitError);
    return;
  }
  Check(!layout.signers.empty());
  for (size_t i = 0; i < layout.signers.size(); ++i) {
    try {
      if (!SignerNeedsReferences(layout.signers[i])) {
        std::vector<uint8_t> data = EscImprintData(walker, layout.signers[i], i, nullptr);
        Check(data.size() >= layout.signers[i].signature.size());
      }
    } catch (const ToolError& e) {
      CheckToolError(e);
    }
  }
  const std::vector<uint8_t> attribute = AttributeDer("1.3.6.1.4.1.99981.38.99", {0x05, 0x00});
  std::vector<std::vector<std::vector<uint8_t>>> additions(layout.signers.size(), {attribute});
  const std::vector<uint8_t> out = AddUnsignedAttributes(walker, layout, additions);
  DerWalker outWalker(out, "out");
  const SignedDataLayout result = ReadSignedData(outWalker);  // must not throw
  Check(result.signers.size() == layout.signers.size());
  for (size_t i = 0; i < layout.signers.size(); ++i) {
    Check(result.signers[i].signature == layout.signers[i].signature);
    Check(result.signers[i].unsignedAttrs.size() == layout.signers[i].unsignedAttrs.size() + 1);
    Check(outWalker.Slice(result.signers[i].unsignedAttrs.back().attribute) == attribute);
  }
}

template <typename Read>
void Try(Read read) {
  try {
    read();
  } catch (const adestool::ToolError& e) {
    CheckToolError(e);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > (1u << 20)) return 0;
  const std::vector<uint8_t> bytes(data, data + size);
  adestool::Input input;
  try {
    input = adestool::DecodeInput("fuzz", bytes);
  } catch (const adestool::ToolError& e) {
    Check(e.status() == adestool::kExitError);
    return 0;
  }
  for (const adestool::InputItem& item : input.items) ExtendSignature(item.bytes);
  Try([&] { adestool::ReadTimeStamp(input); });
  Try([&] { adestool::ReadCertificates(input); });
  Try([&] { adestool::ReadCrls(input); });
  Try([&] { adestool::ReadOcspResponses(input); });
  return 0;
}
