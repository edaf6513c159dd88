// Time text: the first byte picks UTCTime or GeneralizedTime and DER or BER,
// the rest is the text. Text that reads must write out and read back to the
// same fields; under DER the written text must be the input itself.
#include <korvex/asn1rt/ASN1CTime.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>

namespace {

std::unique_ptr<ASN1CTime> Make(bool utcTime, bool der) {
  if (utcTime) return std::unique_ptr<ASN1CTime>(new ASN1CUTCTime(der));
  return std::unique_ptr<ASN1CTime>(new ASN1CGeneralizedTime(der));
}

std::string Written(ASN1CTime& time) {
  size_t length = time.getTimeStringLen();
  if (length == 0) abort();
  std::string out(length + 1, '\0');
  if (time.getTimeString(&out[0], out.size()) != out.c_str()) abort();
  out.resize(length);
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  bool utcTime = data[0] & 1;
  bool der = data[0] & 2;
  std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  std::unique_ptr<ASN1CTime> time = Make(utcTime, der);
  if (time->parseString(text.c_str()) != 0) return 0;
  if (der && text.find('\0') == std::string::npos && Written(*time) != text) abort();

  std::string written = Written(*time);
  std::unique_ptr<ASN1CTime> again = Make(utcTime, der);
  if (again->parseString(written.c_str()) != 0) abort();
  if (Written(*again) != written) abort();
  if (time->getYear() != again->getYear() || time->getMonth() != again->getMonth() ||
      time->getDay() != again->getDay() || time->getHour() != again->getHour() ||
      time->getMinute() != again->getMinute() || time->getSecond() != again->getSecond() ||
      time->getFraction(9) != again->getFraction(9) || time->getDiff() != again->getDiff()) {
    abort();
  }
  return 0;
}
