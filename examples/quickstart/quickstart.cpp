// quickstart: a first program against the installed korvex-ades.
//
//   quickstart [generalized-time [hex-bytes]]
//
// Reads a date in generalized time and a blob in hex, then shows what the
// basic values do with them and which unsigned attributes each CAdES format
// requires.
#include <korvex/ades.h>

#include <cstdio>

int main(int argc, char** argv) {
  using namespace Korvex;
  try {
    CDateTime when(argc > 1 ? argv[1] : "20240131120000.25Z");
    CBlob der;
    der.readFromHexString(argc > 2 ? argv[2] : "30 0B 06 09 2A 86 48 86 F7 0D 01 01 0B");

    std::printf("date            %s\n", when.getGeneralizedTime().c_str());
    std::printf("display         %s\n", when.tostring().c_str());
    std::printf("plus one month  %s\n", DateAddA("m", 1, when).getGeneralizedTime().c_str());
    std::printf("minus one week  %s\n", DateAddA("w", -1, when).getGeneralizedTime().c_str());
    std::printf("blob (%lu bytes) %s\n", der.cbData(), der.writeToHexString(4).c_str());
    std::printf("%s", GetFormattedHexString(der).GetString());

    struct { char const* name; unsigned int code; } const formats[] = {
        {"BES", 1}, {"T", 5}, {"X Long Type 1", 93}, {"A", 221}};
    for (auto const& f : formats) {
      SignaturePolicy policy(f.code);
      std::printf("%-14s requires:", f.name);
      if (policy.required_unsigned_attributes.empty()) std::printf(" (no unsigned attribute)");
      for (auto const& oid : policy.required_unsigned_attributes) std::printf(" %s", oid.c_str());
      std::printf("\n");
    }
  } catch (ATL::CAtlException const& e) {
    std::fprintf(stderr, "quickstart: failed with 0x%08X\n", static_cast<unsigned>(e.m_hr));
    return 1;
  }
  std::printf("quickstart: ok\n");
  return 0;
}
