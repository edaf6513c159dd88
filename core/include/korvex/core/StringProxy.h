// korvex/core/StringProxy.h: owned strings returned across the library boundary.
//
// Every text-producing operation of the library returns a CStringProxy
// (narrow) or CWStringProxy (wide, 32-bit wchar_t) so that no string class
// appears in the interface. A proxy owns a heap-allocated string; c_str()
// never returns null.
#ifndef KORVEX_CORE_STRINGPROXY_H
#define KORVEX_CORE_STRINGPROXY_H

#include <string>

#include <korvex/platform/export.h>

namespace Korvex {

class KORVEX_API CStringProxy {
 public:
  // CStringProxy copies text up to its NUL; a null pointer gives an empty string.
  CStringProxy(char const* text);  // NOLINT: implicit by design
  CStringProxy(CStringProxy const& other);
  CStringProxy& operator=(CStringProxy const& other);
  ~CStringProxy();

  // c_str returns the NUL-terminated text, owned by the proxy.
  char const* c_str() const;

 private:
  // CBlob writes hex text straight into the string instead of copying it.
  friend class CBlob;

  std::string* m_str;
};

class KORVEX_API CWStringProxy {
 public:
  // CWStringProxy copies text up to its NUL; a null pointer gives an empty string.
  CWStringProxy(wchar_t const* text);  // NOLINT: implicit by design
  CWStringProxy(CWStringProxy const& other);
  CWStringProxy& operator=(CWStringProxy const& other);
  ~CWStringProxy();

  // c_str returns the NUL-terminated text, owned by the proxy.
  wchar_t const* c_str() const;

 private:
  std::wstring* m_str;
};

}  // namespace Korvex

#endif
