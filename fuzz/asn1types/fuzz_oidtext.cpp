// str2oid on arbitrary text. Text it accepts must print with oid2str and read
// back to the same arcs (unless its last arc is 0xFFFFFFFF, which str2oid
// refuses as a last arc); the record never holds more than its 128 arcs.
#include <korvex/asn1types/Util.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <string>

using namespace Korvex::ASN1;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);  // NUL-terminated copy
  ASN1OBJID oid;
  unsigned result = str2oid(text.c_str(), &oid);
  if (oid.numids > ASN_K_MAXSUBIDS) abort();
  if (result != 0) return 0;
  if (oid.numids == 0) abort();  // accepted text has at least one arc
  Korvex::CBlob printed;
  if (oid2str(printed, &oid) != 1) abort();
  char const* dotted = reinterpret_cast<char const*>(printed.pbData());
  if (strlen(dotted) + 1 != printed.cbData()) abort();
  ASN1OBJID back;
  if (str2oid(dotted, &back) != 0) {
    if (oid.subid[oid.numids - 1] != 0xFFFFFFFFu) abort();
    return 0;
  }
  if (back.numids != oid.numids) abort();
  if (memcmp(back.subid, oid.subid, oid.numids * sizeof(ASN1UINT)) != 0) abort();
  return 0;
}
