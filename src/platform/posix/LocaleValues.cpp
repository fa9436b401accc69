#include "platform/posix/LocaleValues.h"

#include <map>
#include <mutex>

#include "platform/icu/IcuServices.h"

namespace {

LocaleValues Invariant() {
  LocaleValues values;
  values.decimal = u".";
  values.thousand = u",";
  values.currency = u"\u00A4";
  values.shortDate = u"MM/dd/yyyy";
  values.timeFormat = u"HH:mm:ss";
  values.beforeNoon = u"AM";
  values.afterNoon = u"PM";
  values.ansiCodePage = 1252;
  values.oemCodePage = 437;
  return values;
}

// Of en-US, as ICU has them; a test holds the two against each other.
LocaleValues UsEnglish() {
  LocaleValues values;
  values.decimal = u".";
  values.thousand = u",";
  values.currency = u"$";
  values.shortDate = u"M/d/yyyy";
  values.timeFormat = u"h:mm:ss tt";
  values.beforeNoon = u"AM";
  values.afterNoon = u"PM";
  values.ansiCodePage = 1252;
  values.oemCodePage = 437;
  return values;
}

LocaleValues Read(const std::string& locale) {
  if (locale.empty()) return Invariant();
  return locale == "en_US" ? UsEnglish() : Icu().readLocale(locale);
}

}  // namespace

const LocaleValues& LocaleValues::Of(const std::string& locale) {
  static std::mutex& mutex = *new std::mutex;
  static auto& known = *new std::map<std::string, LocaleValues>;
  {
    const std::lock_guard<std::mutex> guard(mutex);
    const auto found = known.find(locale);
    if (found != known.end()) return found->second;
  }
  LocaleValues values = Read(locale);
  const std::lock_guard<std::mutex> guard(mutex);
  return known.emplace(locale, std::move(values)).first->second;
}
