// Shared helpers of the CryptoAPI sources: OID text, time conversions, the
// output-size protocol and the classification of undecodable DER.
#include "capi_internal.h"

#include <openssl/asn1.h>
#include <openssl/objects.h>

namespace korvex::capi {

namespace {
// Seconds between 1601-01-01 and 1970-01-01 (the FILETIME and Unix epochs).
constexpr int64_t kEpochDelta = 11644473600LL;
constexpr int64_t kTicksPerSecond = 10000000LL;
}  // namespace

std::string ObjectText(const ASN1_OBJECT* object) {
  if (object == nullptr) return std::string();
  int length = OBJ_obj2txt(nullptr, 0, object, 1);
  if (length <= 0) return std::string();
  std::string text(static_cast<size_t>(length) + 1, '\0');
  OBJ_obj2txt(&text[0], length + 1, object, 1);
  text.resize(static_cast<size_t>(length));
  return text;
}

bool AsnTimeToFileTime(const ASN1_TIME* time, FILETIME* out) {
  struct tm parts {};
  if (time == nullptr || ASN1_TIME_to_tm(time, &parts) != 1) return false;
  int64_t seconds = static_cast<int64_t>(timegm(&parts));
  int64_t ticks = (seconds + kEpochDelta) * kTicksPerSecond;
  if (ticks < 0) return false;
  out->dwLowDateTime = static_cast<DWORD>(static_cast<uint64_t>(ticks) & 0xFFFFFFFFu);
  out->dwHighDateTime = static_cast<DWORD>(static_cast<uint64_t>(ticks) >> 32);
  return true;
}

time_t FileTimeToUnix(const FILETIME& ft) {
  uint64_t ticks = (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
  return static_cast<time_t>(static_cast<int64_t>(ticks / kTicksPerSecond) - kEpochDelta);
}

HRESULT DerClassify(const BYTE* data, size_t size) {
  if (size == 0) return CRYPT_E_ASN1_EOD;
  if (data[0] != 0x30) return CRYPT_E_ASN1_BADTAG;
  if (size < 2) return CRYPT_E_ASN1_EOD;
  BYTE first = data[1];
  if (first == 0x80) return CRYPT_E_ASN1_CORRUPT;  // indefinite: content is at fault
  size_t length = first;
  size_t header = 2;
  if (first & 0x80) {
    size_t count = first & 0x7F;
    if (count > sizeof(size_t)) return CRYPT_E_ASN1_LARGE;
    if (size < 2 + count) return CRYPT_E_ASN1_EOD;
    length = 0;
    for (size_t i = 0; i < count; ++i) length = (length << 8) | data[2 + i];
    header += count;
  }
  if (length > size - header) return CRYPT_E_ASN1_EOD;
  return CRYPT_E_ASN1_CORRUPT;
}

BOOL CopyOut(const void* data, size_t size, BYTE* out, DWORD* outSize) {
  if (outSize == nullptr) return FailWin32(ERROR_INVALID_PARAMETER);
  if (size > 0xFFFFFFFFu) return Fail(E_OUTOFMEMORY);
  if (out == nullptr) {
    *outSize = static_cast<DWORD>(size);
    return TRUE;
  }
  if (*outSize < size) {
    *outSize = static_cast<DWORD>(size);
    SetLastError(ERROR_MORE_DATA);
    return FALSE;
  }
  if (size != 0) std::memcpy(out, data, size);
  *outSize = static_cast<DWORD>(size);
  return TRUE;
}

bool ReadTlv(const BYTE* data, size_t size, Tlv* out) {
  if (size < 2 || (data[0] & 0x1F) == 0x1F) return false;
  out->tag = data[0];
  BYTE first = data[1];
  if (first < 0x80) {
    out->length = first;
    out->header = 2;
  } else {
    size_t count = first & 0x7F;
    if (count == 0 || count > 4 || size < 2 + count) return false;
    size_t length = 0;
    for (size_t i = 0; i < count; ++i) length = (length << 8) | data[2 + i];
    out->length = length;
    out->header = 2 + count;
  }
  return out->length <= size - out->header;
}

bool SplitAlgorithm(const std::vector<BYTE>& der, std::string* oid, std::vector<BYTE>* params) {
  Tlv outer, id;
  if (!ReadTlv(der.data(), der.size(), &outer) || outer.tag != 0x30) return false;
  const BYTE* body = der.data() + outer.header;
  if (!ReadTlv(body, outer.length, &id) || id.tag != 0x06) return false;
  const unsigned char* p = body;
  ASN1_OBJECT* object = d2i_ASN1_OBJECT(nullptr, &p, static_cast<long>(id.total()));
  if (object == nullptr) return false;
  *oid = ObjectText(object);
  ASN1_OBJECT_free(object);
  params->assign(body + id.total(), body + outer.length);
  return !oid->empty();
}

void AppendTlv(std::vector<BYTE>* out, BYTE tag, const std::vector<BYTE>& content) {
  out->push_back(tag);
  size_t length = content.size();
  if (length < 0x80) {
    out->push_back(static_cast<BYTE>(length));
  } else {
    BYTE bytes[sizeof(size_t)];
    int count = 0;
    for (size_t v = length; v != 0; v >>= 8) bytes[count++] = static_cast<BYTE>(v & 0xFF);
    out->push_back(static_cast<BYTE>(0x80 | count));
    while (count > 0) out->push_back(bytes[--count]);
  }
  out->insert(out->end(), content.begin(), content.end());
}

}  // namespace korvex::capi
