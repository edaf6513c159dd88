// korvex/platform/atl/atlstr.h: the ATL-style narrow string ATL::CStringT<char>.
//
// A header-only subset of the classic ATL string class for narrow text, with
// the same names, int lengths and error codes. The characters live in a
// std::string whose size is the allocated length (what GetBuffer hands out),
// while the string's own length is kept apart, so the class also serves as a
// byte buffer: GetBuffer / ReleaseBufferSetLength may store zero bytes, and
// length, comparison, search and concatenation work on all GetLength()
// characters, embedded NULs included. (Classic ATL stops at the first NUL in
// comparisons and searches; for text without NULs the results agree.)
//
// Errors are thrown as ATL::CAtlException: E_OUTOFMEMORY when memory runs
// out, E_INVALIDARG for a negative or out-of-range length or index and for a
// null pointer given with a non-zero length, E_FAIL for a format that
// vsnprintf rejects. Only the narrow specialization exists.
#ifndef KORVEX_PLATFORM_ATL_ATLSTR_H
#define KORVEX_PLATFORM_ATL_ATLSTR_H

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <string>
#include <utility>

#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/windef.h>
#include <korvex/platform/win32/winerror.h>

namespace ATL {

template <typename BaseType>
class CStringT;

template <>
class CStringT<char> {
 public:
  typedef char XCHAR;
  typedef char* PXSTR;
  typedef char const* PCXSTR;

  // Construction copies the characters; a null psz gives an empty string.
  CStringT() noexcept : m_len(0) {}
  CStringT(PCXSTR psz) : m_len(0) { SetString(psz); }  // NOLINT: implicit as in ATL
  // CStringT(pch, nLength) copies exactly nLength characters, NULs included.
  CStringT(PCXSTR pch, int nLength) : m_len(0) { SetString(pch, nLength); }
  // CStringT(ch, nRepeat) holds ch repeated nRepeat times.
  explicit CStringT(XCHAR ch, int nRepeat = 1) : m_len(0) {
    if (nRepeat < 0) AtlThrowImpl(E_INVALIDARG);
    Grow(nRepeat);
    std::fill_n(&m_buf[0], nRepeat, ch);
    SetLengthUnchecked(nRepeat);
  }
  CStringT(CStringT const& other) : m_len(0) { SetString(other.m_buf.data(), other.m_len); }
  CStringT(CStringT&& other) noexcept : m_buf(std::move(other.m_buf)), m_len(other.m_len) {
    other.m_buf.clear();
    other.m_len = 0;
  }
  ~CStringT() = default;

  CStringT& operator=(CStringT const& other) {
    SetString(other.m_buf.data(), other.m_len);
    return *this;
  }
  CStringT& operator=(CStringT&& other) noexcept {
    if (this != &other) {
      m_buf.swap(other.m_buf);
      m_len = other.m_len;
      other.m_buf.clear();
      other.m_len = 0;
    }
    return *this;
  }
  CStringT& operator=(PCXSTR psz) {
    SetString(psz);
    return *this;
  }
  CStringT& operator=(XCHAR ch) {
    SetString(&ch, 1);
    return *this;
  }

  // GetLength returns the number of characters, embedded NULs included.
  int GetLength() const noexcept { return m_len; }
  bool IsEmpty() const noexcept { return m_len == 0; }
  // Empty makes the string empty and releases its memory.
  void Empty() noexcept {
    std::string().swap(m_buf);
    m_len = 0;
  }
  // GetString returns the NUL-terminated characters; never null.
  PCXSTR GetString() const noexcept { return m_buf.c_str(); }
  operator PCXSTR() const noexcept { return m_buf.c_str(); }  // NOLINT: implicit as in ATL

  // GetAt returns the character at iChar; iChar == GetLength() gives the NUL.
  XCHAR GetAt(int iChar) const {
    if (iChar < 0 || iChar > m_len) AtlThrowImpl(E_INVALIDARG);
    return m_buf.c_str()[iChar];
  }
  XCHAR operator[](int iChar) const { return GetAt(iChar); }
  // SetAt replaces the character at iChar (below GetLength()).
  void SetAt(int iChar, XCHAR ch) {
    if (iChar < 0 || iChar >= m_len) AtlThrowImpl(E_INVALIDARG);
    m_buf[iChar] = ch;
  }

  // SetString replaces the contents; psz may point into this string.
  void SetString(PCXSTR psz) { SetString(psz, psz ? Length(psz) : 0); }
  void SetString(PCXSTR pch, int nLength) {
    CheckSource(pch, nLength);
    if (Aliases(pch)) {
      // Moving down within the buffer needs no allocation.
      std::memmove(&m_buf[0], pch, nLength);
    } else {
      Grow(nLength);
      if (nLength != 0) std::memcpy(&m_buf[0], pch, nLength);
    }
    SetLengthUnchecked(nLength);
  }

  // Append adds characters at the end; the source may be this string.
  void Append(PCXSTR psz) { Append(psz, psz ? Length(psz) : 0); }
  void Append(PCXSTR pch, int nLength) {
    CheckSource(pch, nLength);
    if (nLength == 0) return;
    int newLength = CheckedSum(m_len, nLength);
    if (Aliases(pch)) {
      size_t offset = static_cast<size_t>(pch - m_buf.data());
      Grow(newLength);
      std::memmove(&m_buf[m_len], m_buf.data() + offset, nLength);
    } else {
      Grow(newLength);
      std::memcpy(&m_buf[m_len], pch, nLength);
    }
    SetLengthUnchecked(newLength);
  }
  void Append(CStringT const& other) { Append(other.m_buf.data(), other.m_len); }
  void AppendChar(XCHAR ch) { Append(&ch, 1); }

  CStringT& operator+=(PCXSTR psz) {
    Append(psz);
    return *this;
  }
  CStringT& operator+=(XCHAR ch) {
    AppendChar(ch);
    return *this;
  }
  CStringT& operator+=(CStringT const& other) {
    Append(other);
    return *this;
  }

  // GetBuffer returns writable storage for at least nMinBufferLength
  // characters plus a NUL, keeping the contents. GetLength() is unchanged
  // until ReleaseBuffer or ReleaseBufferSetLength sets the new length.
  PXSTR GetBuffer() { return &m_buf[0]; }
  PXSTR GetBuffer(int nMinBufferLength) {
    if (nMinBufferLength < 0) AtlThrowImpl(E_INVALIDARG);
    Grow(nMinBufferLength);
    return &m_buf[0];
  }
  // GetBufferSetLength is GetBuffer(nLength) with the length set to nLength.
  PXSTR GetBufferSetLength(int nLength) {
    PXSTR buffer = GetBuffer(nLength);
    SetLengthUnchecked(nLength);
    return buffer;
  }
  // ReleaseBuffer sets the length after writing through GetBuffer: to
  // nNewLength, or with -1 to the position of the first NUL in the buffer
  // (the allocated length when there is none).
  void ReleaseBuffer(int nNewLength = -1) {
    if (nNewLength == -1) {
      size_t nul = m_buf.find('\0');
      nNewLength = static_cast<int>(nul == std::string::npos ? m_buf.size() : nul);
    }
    ReleaseBufferSetLength(nNewLength);
  }
  // ReleaseBufferSetLength sets the length to nNewLength, which may hold
  // zero bytes; it must lie within the allocated length (E_INVALIDARG).
  void ReleaseBufferSetLength(int nNewLength) {
    if (nNewLength < 0 || static_cast<size_t>(nNewLength) > m_buf.size()) {
      AtlThrowImpl(E_INVALIDARG);
    }
    SetLengthUnchecked(nNewLength);
  }
  // Preallocate reserves room for nLength characters without changing the text.
  void Preallocate(int nLength) {
    if (nLength < 0) AtlThrowImpl(E_INVALIDARG);
    Grow(nLength);
  }
  // GetAllocLength returns the number of characters the buffer holds.
  int GetAllocLength() const noexcept { return static_cast<int>(m_buf.size()); }
  // Truncate shortens the string to nNewLength (at most GetLength()).
  void Truncate(int nNewLength) {
    if (nNewLength < 0 || nNewLength > m_len) AtlThrowImpl(E_INVALIDARG);
    SetLengthUnchecked(nNewLength);
  }

  // Compare orders by unsigned character value, a proper prefix first;
  // returns a negative number, zero or a positive number.
  int Compare(PCXSTR psz) const {
    return CompareChars(m_buf.data(), m_len, psz ? psz : "", psz ? Length(psz) : 0);
  }
  int Compare(CStringT const& other) const {
    return CompareChars(m_buf.data(), m_len, other.m_buf.data(), other.m_len);
  }

  // Find returns the index of the first ch (or substring) at or after
  // iStart, or -1. An empty substring is found at iStart.
  int Find(XCHAR ch, int iStart = 0) const noexcept {
    if (iStart < 0 || iStart >= m_len) return -1;
    void const* hit = std::memchr(m_buf.data() + iStart, static_cast<unsigned char>(ch),
                                  static_cast<size_t>(m_len - iStart));
    return hit ? static_cast<int>(static_cast<char const*>(hit) - m_buf.data()) : -1;
  }
  int Find(PCXSTR pszSub, int iStart = 0) const noexcept {
    if (pszSub == nullptr || iStart < 0 || iStart > m_len) return -1;
    char const* begin = m_buf.data();
    char const* end = begin + m_len;
    char const* hit = std::search(begin + iStart, end, pszSub, pszSub + std::strlen(pszSub));
    if (hit == end && *pszSub != '\0') return -1;
    return static_cast<int>(hit - begin);
  }
  // ReverseFind returns the index of the last ch, or -1.
  int ReverseFind(XCHAR ch) const noexcept {
    for (int i = m_len - 1; i >= 0; --i) {
      if (m_buf[i] == ch) return i;
    }
    return -1;
  }

  // Mid returns nCount characters from iFirst; both are clamped into the
  // string (negative values count as 0).
  CStringT Mid(int iFirst) const { return Mid(iFirst, m_len); }
  CStringT Mid(int iFirst, int nCount) const {
    iFirst = std::min(std::max(iFirst, 0), m_len);
    nCount = std::min(std::max(nCount, 0), m_len - iFirst);
    return CStringT(m_buf.data() + iFirst, nCount);
  }
  // Left and Right return the first or last nCount characters (clamped).
  CStringT Left(int nCount) const { return Mid(0, nCount); }
  CStringT Right(int nCount) const {
    nCount = std::min(std::max(nCount, 0), m_len);
    return CStringT(m_buf.data() + (m_len - nCount), nCount);
  }

  // Format replaces the contents with printf-style formatted text; the
  // arguments may refer to this string's own characters.
  void Format(PCXSTR pszFormat, ...) __attribute__((format(printf, 2, 3))) {
    va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
  }
  // AppendFormat appends printf-style formatted text.
  void AppendFormat(PCXSTR pszFormat, ...) __attribute__((format(printf, 2, 3))) {
    va_list args;
    va_start(args, pszFormat);
    AppendFormatV(pszFormat, args);
    va_end(args);
  }
  void FormatV(PCXSTR pszFormat, va_list args) {
    std::string text = Formatted(pszFormat, args);
    m_len = static_cast<int>(text.size());
    m_buf.swap(text);
  }
  void AppendFormatV(PCXSTR pszFormat, va_list args) {
    std::string text = Formatted(pszFormat, args);
    Append(text.data(), static_cast<int>(text.size()));
  }

  friend bool operator==(CStringT const& a, CStringT const& b) { return a.Compare(b) == 0; }
  friend bool operator==(CStringT const& a, PCXSTR b) { return a.Compare(b) == 0; }
  friend bool operator==(PCXSTR a, CStringT const& b) { return b.Compare(a) == 0; }
  friend bool operator!=(CStringT const& a, CStringT const& b) { return a.Compare(b) != 0; }
  friend bool operator!=(CStringT const& a, PCXSTR b) { return a.Compare(b) != 0; }
  friend bool operator!=(PCXSTR a, CStringT const& b) { return b.Compare(a) != 0; }
  friend bool operator<(CStringT const& a, CStringT const& b) { return a.Compare(b) < 0; }
  friend bool operator<(CStringT const& a, PCXSTR b) { return a.Compare(b) < 0; }
  friend bool operator<(PCXSTR a, CStringT const& b) { return b.Compare(a) > 0; }
  friend bool operator>(CStringT const& a, CStringT const& b) { return a.Compare(b) > 0; }
  friend bool operator<=(CStringT const& a, CStringT const& b) { return a.Compare(b) <= 0; }
  friend bool operator>=(CStringT const& a, CStringT const& b) { return a.Compare(b) >= 0; }

  friend CStringT operator+(CStringT const& a, CStringT const& b) {
    return Concat(a, b.m_buf.data(), b.m_len);
  }
  friend CStringT operator+(CStringT const& a, PCXSTR b) { return Concat(a, b, b ? Length(b) : 0); }
  friend CStringT operator+(PCXSTR a, CStringT const& b) {
    CStringT result(a);
    result.Append(b);
    return result;
  }
  friend CStringT operator+(CStringT const& a, XCHAR b) { return Concat(a, &b, 1); }
  friend CStringT operator+(XCHAR a, CStringT const& b) {
    CStringT result(a);
    result.Append(b);
    return result;
  }

 private:
  // Length is strlen with the int limit of the class.
  static int Length(PCXSTR psz) {
    size_t n = std::strlen(psz);
    if (n > static_cast<size_t>(INT_MAX)) AtlThrowImpl(E_INVALIDARG);
    return static_cast<int>(n);
  }
  static void CheckSource(PCXSTR pch, int nLength) {
    if (nLength < 0 || (pch == nullptr && nLength != 0)) AtlThrowImpl(E_INVALIDARG);
  }
  static int CheckedSum(int a, int b) {
    if (b > INT_MAX - a) AtlThrowImpl(E_INVALIDARG);
    return a + b;
  }
  static int CompareChars(PCXSTR a, int na, PCXSTR b, int nb) {
    int c = std::memcmp(a, b, static_cast<size_t>(std::min(na, nb)));
    if (c != 0) return c;
    return na < nb ? -1 : (na > nb ? 1 : 0);
  }
  static CStringT Concat(CStringT const& a, PCXSTR b, int nb) {
    CheckSource(b, nb);
    CStringT result;
    result.Preallocate(CheckedSum(a.m_len, nb));
    result.Append(a);
    result.Append(b, nb);
    return result;
  }
  // Formatted runs vsnprintf twice: once for the length, once to write.
  static std::string Formatted(PCXSTR pszFormat, va_list args) {
    if (pszFormat == nullptr) AtlThrowImpl(E_INVALIDARG);
    va_list probe;
    va_copy(probe, args);
    int n = std::vsnprintf(nullptr, 0, pszFormat, probe);
    va_end(probe);
    if (n < 0) AtlThrowImpl(E_FAIL);
    std::string text;
    try {
      text.resize(static_cast<size_t>(n));
    } catch (std::exception const&) {
      AtlThrowImpl(E_OUTOFMEMORY);
    }
    std::vsnprintf(&text[0], static_cast<size_t>(n) + 1, pszFormat, args);
    return text;
  }

  // Aliases tells whether p points into this string's buffer.
  bool Aliases(PCXSTR p) const noexcept {
    std::less_equal<PCXSTR> le;
    return p != nullptr && !m_buf.empty() && le(m_buf.data(), p) &&
           le(p, m_buf.data() + m_buf.size());
  }
  // Grow makes the buffer hold at least n characters (plus the NUL that
  // std::string keeps); it is the only place that allocates for the buffer.
  void Grow(int n) {
    if (static_cast<size_t>(n) <= m_buf.size()) return;
    try {
      m_buf.resize(static_cast<size_t>(n));
    } catch (std::exception const&) {
      AtlThrowImpl(E_OUTOFMEMORY);
    }
  }
  // SetLengthUnchecked sets the length and the terminating NUL after it.
  void SetLengthUnchecked(int n) noexcept {
    m_len = n;
    if (static_cast<size_t>(n) < m_buf.size()) m_buf[n] = '\0';
  }

  // m_buf.size() is the allocated length; m_len <= m_buf.size() and the
  // character at m_len is always NUL (std::string's own terminator when the
  // buffer is full).
  std::string m_buf;
  int m_len;
};

typedef CStringT<char> CStringA;

}  // namespace ATL

#endif
