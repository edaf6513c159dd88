// cades_level.cpp: the format a signer meets, from the policies' sets.
#include "cades_level.h"

#include <korvex/cades/policy.h>

namespace adestool {

namespace {

struct Format {
  const char *name;
  unsigned int type;  // the SignaturePolicy type code
};

// In increasing order: each format includes the requirements of those
// before it (RFC 5126 4.4; ETSI TS 101 733 B.1).
const Format kFormats[] = {
    {"BES", SignaturePolicy::kTypeBes},
    {"T", SignaturePolicy::kTypeT},
    {"X Long Type 1", SignaturePolicy::kTypeXLongType1},
    {"A", SignaturePolicy::kTypeA},
};

}  // namespace

CadesLevel DetermineLevel(const std::set<std::string> &present) {
  CadesLevel level;
  for (const Format &format : kFormats) {
    SignaturePolicy policy(format.type);
    std::vector<std::string> missing;
    for (const std::string &oid : policy.required_unsigned_attributes) {
      if (!present.count(oid)) missing.push_back(oid);
    }
    if (!missing.empty()) {
      level.next = format.name;
      level.missing = missing;
      return level;
    }
    level.format = format.name;
  }
  return level;
}

}  // namespace adestool
