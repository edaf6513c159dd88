// inspect_build.h: the report of `adestool inspect` for one SignedData,
// with the checks of --verify and --trust.
#ifndef ADESTOOL_INSPECT_BUILD_H
#define ADESTOOL_INSPECT_BUILD_H

#include <cstdint>
#include <string>
#include <vector>

#include "inspect_report.h"
#include "signed_message.h"

namespace adestool {

struct InspectOptions {
  bool verify = false;
  // The content of a detached signature (--data), null when not given.
  const std::vector<uint8_t> *detachedContent = nullptr;
  // Check each signer's chain now (--trust given); the trust setup is the
  // caller's.
  bool checkChain = false;
};

struct InspectOutcome {
  ReportNode report = ReportNode::Object("", "");
  // One line per failed check: "signer 1: message digest does not match".
  std::vector<std::string> failures;
};

// BuildInspectReport describes message (read from file fileName) and, as
// options ask, runs its checks.
InspectOutcome BuildInspectReport(const std::string &fileName, const SignedMessage &message,
                                  const InspectOptions &options);

// CarriedCrls: the DER of every CRL the message carries, in the SignedData's
// crls field and in its signers' revocation values, for the chain checks.
std::vector<std::vector<uint8_t>> CarriedCrls(const SignedMessage &message);

}  // namespace adestool

#endif
