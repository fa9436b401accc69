// Sets the process's locale for one test, and goes back to the user's own behind it.
//
//   const LocaleScope german(u"de-DE");
#pragma once

#include <stdexcept>
#include <string_view>

#include "host/CoreSupport/QUENRALocale.h"

class LocaleScope {
 public:
  explicit LocaleScope(std::u16string_view name) {
    if (!quenra::QUENRALocale::SetLocale(name)) throw std::runtime_error("unknown locale");
  }
  ~LocaleScope() { quenra::QUENRALocale::ResetLocale(); }
  LocaleScope(const LocaleScope&) = delete;
  LocaleScope& operator=(const LocaleScope&) = delete;
};
