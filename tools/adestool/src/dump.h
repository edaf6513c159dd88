// dump.h: the dumps of `adestool dump`, on bytes in memory.
#ifndef ADESTOOL_DUMP_H
#define ADESTOOL_DUMP_H

#include <cstdint>
#include <string>
#include <vector>

#include "asn1_tree.h"
#include "input.h"

namespace adestool {

enum class DumpMode { kAsn1, kHex };

// DumpBytes appends the dump of bytes to *out: the ASN.1 tree
// (DumpAsn1Tree) or the hex dump of GetFormattedHexString. Returns false
// with *failure for bytes that are not well-formed ASN.1 (tree mode only;
// *out then holds what could be parsed).
bool DumpBytes(const std::vector<uint8_t>& bytes, DumpMode mode, std::string* out,
               DumpFailure* failure);

// ItemHeading: "# PEM block 2: CERTIFICATE\n" before each item of an input
// with several items; empty for a single item.
std::string ItemHeading(const Input& input, size_t index);

// ItemFailureText: "offset 12: ..." or, in an input of several items,
// "PEM block 2 (CERTIFICATE): offset 12: ...".
std::string ItemFailureText(const Input& input, size_t index, const DumpFailure& failure);

}  // namespace adestool

#endif
