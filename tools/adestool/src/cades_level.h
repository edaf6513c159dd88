// cades_level.h: which CAdES format a signer meets, judged by the unsigned
// attributes that the library's signature policies require (SignaturePolicy
// of <korvex/cades/policy.h>) for BES, T, X Long Type 1 and A.
#ifndef ADESTOOL_CADES_LEVEL_H
#define ADESTOOL_CADES_LEVEL_H

#include <set>
#include <string>
#include <vector>

namespace adestool {

struct CadesLevel {
  std::string format;                // "BES", "T", "X Long Type 1" or "A"
  std::string next;                  // the format above it, empty after A
  std::vector<std::string> missing;  // the dotted OIDs the next one lacks
};

// DetermineLevel: formats are cumulative; a signer meets a format when the
// unsigned attributes that format and every format below it require are
// all among present. BES requires none, so every signer meets it.
CadesLevel DetermineLevel(const std::set<std::string> &present);

}  // namespace adestool

#endif
