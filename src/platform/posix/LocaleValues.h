// What a locale answers, brought from ICU's forms to Windows'.
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

// The forms in which Windows writes ICU's date and time patterns: a day, month and year with the
// letters d, M and y, the year with four digits, tt for the day period, plain blanks for U+00A0,
// U+202F and U+2009, no direction marks. Quoted text stays as it is.
std::u16string WindowsPattern(std::u16string_view pattern);

// 0, 1 or 2 (LOCALE_IDATE) by the first of month, day and year in a Windows date pattern.
int DateOrderOf(std::u16string_view pattern);
