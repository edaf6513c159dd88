// CBlob storage, comparison and in-place operations. File and hex
// conversions live in BlobFile.cpp and BlobHex.cpp.
#include <korvex/core/Blob.h>

#include <cstdint>
#include <cstring>
#include <utility>

#include <korvex/platform/atl/atlexcept.h>

namespace Korvex {

CBlob::CBlob() : m_cbData(0), m_pbData(nullptr) {}

CBlob::CBlob(unsigned long n) : m_cbData(n), m_pbData(new unsigned char[n]()) {}

CBlob::CBlob(unsigned char const* p, unsigned long n) : m_cbData(0), m_pbData(nullptr) {
  assign(p, n);
}

CBlob::CBlob(CBlob const& other) : m_cbData(0), m_pbData(nullptr) {
  assign(other.m_pbData, other.m_cbData);
}

CBlob& CBlob::operator=(CBlob const& other) {
  assign(other.m_pbData, other.m_cbData);
  return *this;
}

CBlob::~CBlob() { delete[] m_pbData; }

void CBlob::assign(unsigned char const* p, unsigned long n) {
  unsigned char* fresh = nullptr;
  if (n != 0) {
    if (p == nullptr) ATL::AtlThrowImpl(E_POINTER);
    // Copy before releasing the old array: p may point into it.
    fresh = new unsigned char[n];
    std::memcpy(fresh, p, n);
  }
  m_cbData = n;
  delete[] m_pbData;
  m_pbData = fresh;
}

void CBlob::resize_to(unsigned long n) {
  // Growth is decided by the size, not by the array's length: a blob that
  // was shrunk and grows again reallocates even if the old array would do.
  if (m_cbData < n) {
    unsigned char* fresh = new unsigned char[n];
    if (m_cbData != 0) std::memcpy(fresh, m_pbData, m_cbData);
    delete[] m_pbData;
    m_pbData = fresh;
  }
  m_cbData = n;
}

void CBlob::clear() { resize_to(0); }

void CBlob::swap(CBlob& other) noexcept {
  std::swap(m_cbData, other.m_cbData);
  std::swap(m_pbData, other.m_pbData);
}

void CBlob::reverse() {
  for (unsigned long i = 0; i < m_cbData / 2; ++i) {
    std::swap(m_pbData[i], m_pbData[m_cbData - 1 - i]);
  }
}

CBlob& CBlob::operator+=(CBlob const& other) {
  resize_to(m_cbData + other.m_cbData);
  // other.m_cbData is read after the resize: for a self-append it is already
  // the doubled size, and the copy degenerates to moving the bytes onto
  // themselves (memmove, since source and target then coincide).
  if (other.m_cbData != 0) {
    std::memmove(m_pbData + (m_cbData - other.m_cbData), other.m_pbData, other.m_cbData);
  }
  return *this;
}

bool CBlob::operator==(CBlob const& other) const {
  return m_cbData == other.m_cbData &&
         (m_cbData == 0 || std::memcmp(m_pbData, other.m_pbData, m_cbData) == 0);
}

bool CBlob::operator!=(CBlob const& other) const { return !(*this == other); }

int CBlob::compareOrder(CBlob const& other) const {
  unsigned long len = m_cbData < other.m_cbData ? m_cbData : other.m_cbData;
  if (len != 0) {
    int c = std::memcmp(m_pbData, other.m_pbData, len);
    if (c != 0) return c;
  }
  // Equal prefix: the sizes decide through their 32-bit difference. The
  // truncation is part of the established ordering and is kept on purpose.
  uint32_t diff = static_cast<uint32_t>(m_cbData) - static_cast<uint32_t>(other.m_cbData);
  return static_cast<int32_t>(diff);
}

bool CBlob::operator<(CBlob const& other) const { return compareOrder(other) < 0; }
bool CBlob::operator<=(CBlob const& other) const { return compareOrder(other) <= 0; }
bool CBlob::operator>(CBlob const& other) const { return !(*this <= other); }
bool CBlob::operator>=(CBlob const& other) const { return !(*this < other); }

}  // namespace Korvex
