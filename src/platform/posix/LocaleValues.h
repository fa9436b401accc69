// What a locale answers, in Windows' forms.
//
//   const LocaleValues& values = LocaleValues::Of("de_DE");
//   values.shortDate;  // u"dd.MM.yyyy"
#pragma once

#include <string>

#include "platform/ComTypes.h"

struct LocaleValues {
  std::u16string decimal;
  std::u16string thousand;
  std::u16string currency;
  int currencyDigits = 2;
  std::u16string shortDate;
  std::u16string timeFormat;
  int dateOrder = 0;  // as LOCALE_IDATE
  std::u16string beforeNoon;
  std::u16string afterNoon;
  UINT ansiCodePage = 0;  // 0 when the language has none
  UINT oemCodePage = 1;   // 1 when the language has none, as Windows answers then

  // `locale` is an ICU name with language and region; the empty name is the invariant locale.
  // Safe from any thread; the values live until the process ends.
  static const LocaleValues& Of(const std::string& locale);
};
