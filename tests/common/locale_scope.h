// locale_scope.h: switches the C locale for one test and restores the
// previous one. Header-only.
#ifndef KORVEX_TESTS_COMMON_LOCALE_SCOPE_H
#define KORVEX_TESTS_COMMON_LOCALE_SCOPE_H

#include <clocale>
#include <string>

namespace korvextest {

class LocaleScope {
 public:
  explicit LocaleScope(const char* name) : saved_(std::setlocale(LC_ALL, nullptr)) {
    ok_ = std::setlocale(LC_ALL, name) != nullptr;
  }
  ~LocaleScope() { std::setlocale(LC_ALL, saved_.c_str()); }
  LocaleScope(const LocaleScope&) = delete;
  LocaleScope& operator=(const LocaleScope&) = delete;
  // ok: whether the locale exists on this machine (tests skip when not).
  bool ok() const { return ok_; }

 private:
  std::string saved_;
  bool ok_;
};

}  // namespace korvextest

#endif
