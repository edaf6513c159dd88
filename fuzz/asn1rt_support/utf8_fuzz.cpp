// UTF-8: well-formed input must convert to 32-bit and 16-bit units and back to
// the very same bytes; any 32-bit units that convert must come back as they
// were.
#include <korvex/asn1rt/rtUTF8.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const char* text = reinterpret_cast<const char*>(data);
  int characters = rtUTF8Validate(text, size);
  int units = rtUTF8ToUCS4(text, size, nullptr, 0);
  if ((characters < 0) != (units < 0)) abort();
  if (characters >= 0) {
    if (units != characters) abort();
    std::vector<unsigned int> wide(static_cast<size_t>(units) + 1);
    if (rtUTF8ToUCS4(text, size, wide.data(), wide.size()) != units) abort();
    std::vector<char> back(size + 1);
    if (rtUCS4ToUTF8(wide.data(), static_cast<size_t>(units), back.data(), back.size()) !=
        static_cast<int>(size)) {
      abort();
    }
    if (memcmp(back.data(), text, size) != 0) abort();

    std::vector<unsigned short> narrow(static_cast<size_t>(units) + 1);
    int narrowUnits = rtUTF8ToUCS2(text, size, narrow.data(), narrow.size());
    bool bmp = true;
    for (int i = 0; i < units; ++i) bmp = bmp && wide[i] <= 0xFFFF;
    if (bmp != (narrowUnits >= 0)) abort();
    if (bmp && (rtUCS2ToUTF8(narrow.data(), static_cast<size_t>(narrowUnits), back.data(),
                             back.size()) != static_cast<int>(size) ||
                memcmp(back.data(), text, size) != 0)) {
      abort();
    }
  }

  // The bytes as 32-bit units.
  size_t count = size / 4;
  std::vector<unsigned int> input(count);
  if (count) memcpy(input.data(), data, count * 4);
  int bytes = rtUCS4ToUTF8(input.data(), count, nullptr, 0);
  if (bytes >= 0) {
    std::vector<char> utf8(static_cast<size_t>(bytes) + 1);
    if (rtUCS4ToUTF8(input.data(), count, utf8.data(), utf8.size()) != bytes) abort();
    std::vector<unsigned int> back(count + 1);
    if (rtUTF8ToUCS4(utf8.data(), static_cast<size_t>(bytes), back.data(), back.size()) !=
        static_cast<int>(count)) {
      abort();
    }
    if (count && memcmp(back.data(), input.data(), count * 4) != 0) abort();
  }
  return 0;
}
