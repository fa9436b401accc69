#include "schema/LocaleDefaults.h"

#include <algorithm>
#include <string>

#include "host/CoreSupport/CharacterClasses.h"

namespace TextFile {

namespace {

// UTF-16 code units, the terminating zero included; a value that is longer counts as missing.
constexpr int kPatternUnits = 80;
constexpr int kDigitUnits = 2;
constexpr int kCurrencySymbolUnits = 13;
constexpr int kSeparatorUnits = 4;

// The locale's time pattern on a 24-hour clock: written times have no place for a day period.
std::u16string TimePattern(LocaleValue localeValue) {
  std::u16string pattern = localeValue(LOCALE_STIMEFORMAT, kPatternUnits);
  if (pattern.find(u't') == std::u16string::npos) return pattern;
  std::replace(pattern.begin(), pattern.end(), u't', u' ');
  std::replace(pattern.begin(), pattern.end(), u'h', u'H');
  return std::u16string(quenra::TrimBlanks(pattern));
}

void TakeDigit(LocaleValue localeValue, LCTYPE type, std::uint32_t& digits) {
  const std::u16string value = localeValue(type, kDigitUnits);
  if (value.size() == 1 && value[0] >= u'0' && value[0] <= u'9')
    digits = static_cast<std::uint32_t>(value[0] - u'0');
}

void TakeSymbol(LocaleValue localeValue, LCTYPE type, char16_t& symbol) {
  const std::u16string value = localeValue(type, kSeparatorUnits);
  if (value.size() == 1) symbol = value[0];
}

void CompleteNumber(LocaleValue localeValue, NumberFormat::Settings& number) {
  using NumberFormat::Settings;
  if ((number.specified & Settings::kDecimalSymbol) == 0)
    number.decimalSymbol = number.localeDecimalSymbol;
  if ((number.specified & Settings::kNumberDigits) == 0)
    TakeDigit(localeValue, LOCALE_IDIGITS, number.digits);
  if ((number.specified & Settings::kLeadingZeros) == 0)
    number.leadingZeros = localeValue(LOCALE_ILZERO, kDigitUnits) == u"1";
}

// The separators are those of numbers, not of money.
void CompleteCurrency(LocaleValue localeValue, CurrencySettings& currency) {
  const auto open = [&](CurrencySettings::Option option) {
    return (currency.specified & option) == 0;
  };
  if (open(CurrencySettings::kSymbol))
    currency.symbol = localeValue(LOCALE_SCURRENCY, kCurrencySymbolUnits);
  if (open(CurrencySettings::kThousandSymbol))
    TakeSymbol(localeValue, LOCALE_STHOUSAND, currency.thousandSymbol);
  if (open(CurrencySettings::kDecimalSymbol))
    TakeSymbol(localeValue, LOCALE_SDECIMAL, currency.decimalSymbol);
  if (open(CurrencySettings::kDigits)) TakeDigit(localeValue, LOCALE_ICURRDIGITS, currency.digits);
}

}  // namespace

void CompleteFromLocale(SchemaOptions& options, LocaleValue localeValue) {
  if (!options.IsSpecified(SchemaOptions::kDateTimeFormat))
    options.dateTimeFormat =
        localeValue(LOCALE_SSHORTDATE, kPatternUnits) + u' ' + TimePattern(localeValue);
  CompleteNumber(localeValue, options.number);
  CompleteCurrency(localeValue, options.currency);
  if (options.number.decimalSymbol == u',' && !options.IsSpecified(SchemaOptions::kFormat))
    options.delimiter = u';';
}

}  // namespace TextFile
