#include <korvex/core/StringProxy.h>

namespace Korvex {

CStringProxy::CStringProxy(char const* text) : m_str(new std::string) {
  if (text) m_str->assign(text);
}
CStringProxy::CStringProxy(CStringProxy const& other) : m_str(new std::string(*other.m_str)) {}
CStringProxy& CStringProxy::operator=(CStringProxy const& other) {
  m_str->assign(*other.m_str);  // self-assignment is harmless: assign handles aliasing
  return *this;
}
CStringProxy::~CStringProxy() { delete m_str; }
char const* CStringProxy::c_str() const { return m_str->c_str(); }

CWStringProxy::CWStringProxy(wchar_t const* text) : m_str(new std::wstring) {
  if (text) m_str->assign(text);
}
CWStringProxy::CWStringProxy(CWStringProxy const& other) : m_str(new std::wstring(*other.m_str)) {}
CWStringProxy& CWStringProxy::operator=(CWStringProxy const& other) {
  m_str->assign(*other.m_str);
  return *this;
}
CWStringProxy::~CWStringProxy() { delete m_str; }
wchar_t const* CWStringProxy::c_str() const { return m_str->c_str(); }

}  // namespace Korvex
