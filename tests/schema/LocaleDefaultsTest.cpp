#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "schema/LocaleDefaults.h"
#include "support/UserLocale.h"

namespace TextFile {
namespace {

class LocaleDefaultsTest : public EnglishTest {};

SchemaOptions Completed() {
  SchemaOptions options;
  CompleteFromLocale(options);
  return options;
}

struct LocaleCase {
  std::u16string_view locale;
  std::u16string_view dateTimeFormat;
  char16_t decimal;
  char16_t thousand;
  std::u16string_view currency;
  std::uint32_t currencyDigits;
  char16_t delimiter;
};

TEST_F(LocaleDefaultsTest, OptionsThatWereNotSpecifiedComeFromTheLocale) {
  const LocaleCase cases[] = {
      {u"en-US", u"M/d/yyyy H:mm:ss", u'.', u',', u"$", 2, u','},
      {u"de-DE", u"dd.MM.yyyy HH:mm:ss", u',', u'.', u"\u20AC", 2, u';'},
      {u"sv-SE", u"yyyy-MM-dd HH:mm:ss", u',', u'\u00A0', u"kr", 2, u';'},
      {u"fr-FR", u"dd/MM/yyyy HH:mm:ss", u',', u'\u202F', u"\u20AC", 2, u';'},
      {u"en-GB", u"dd/MM/yyyy HH:mm:ss", u'.', u',', u"\u00A3", 2, u','},
      {u"ja-JP", u"yyyy/MM/dd H:mm:ss", u'.', u',', u"\u00A5", 0, u','},
  };
  for (const LocaleCase& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(std::u16string(c.locale)));
    locale_.Set(c.locale);
    const SchemaOptions options = Completed();
    EXPECT_EQ(options.dateTimeFormat, c.dateTimeFormat);
    EXPECT_EQ(options.number.decimalSymbol, c.decimal);
    EXPECT_EQ(options.number.digits, 2u);
    EXPECT_TRUE(options.number.leadingZeros);
    EXPECT_EQ(options.currency.decimalSymbol, c.decimal);
    EXPECT_EQ(options.currency.thousandSymbol, c.thousand);
    EXPECT_EQ(options.currency.symbol, c.currency);
    EXPECT_EQ(options.currency.digits, c.currencyDigits);
    EXPECT_EQ(options.currency.positiveFormat, u"");
    EXPECT_EQ(options.currency.negativeFormat, u"");
    EXPECT_EQ(options.delimiter, c.delimiter);
    EXPECT_EQ(options.specified, 0u);
    EXPECT_EQ(options.number.specified, 0);
    EXPECT_EQ(options.currency.specified, 0u);
  }
}

TEST_F(LocaleDefaultsTest, TimeFormatIsPutOnA24HourClock) {
  // h:mm:ss tt
  EXPECT_EQ(Completed().dateTimeFormat, u"M/d/yyyy H:mm:ss");
}

TEST_F(LocaleDefaultsTest, SpecifiedOptionsStay) {
  locale_.Set(u"de-DE");
  SchemaOptions options;
  options.specified = SchemaOptions::kDateTimeFormat | SchemaOptions::kFormat;
  options.dateTimeFormat = u"yyyy";
  options.number.specified = NumberFormat::Settings::kDecimalSymbol |
                             NumberFormat::Settings::kNumberDigits |
                             NumberFormat::Settings::kLeadingZeros;
  options.number.digits = 7;
  options.currency.specified = CurrencySettings::kSymbol | CurrencySettings::kDigits |
                               CurrencySettings::kThousandSymbol | CurrencySettings::kDecimalSymbol;
  options.currency.symbol = u"Taler";
  options.currency.digits = 5;
  options.currency.thousandSymbol = u'_';
  options.currency.decimalSymbol = u'!';
  CompleteFromLocale(options);
  EXPECT_EQ(options.dateTimeFormat, u"yyyy");
  EXPECT_EQ(options.number.decimalSymbol, u'.');
  EXPECT_EQ(options.number.digits, 7u);
  EXPECT_FALSE(options.number.leadingZeros);
  EXPECT_EQ(options.currency.symbol, u"Taler");
  EXPECT_EQ(options.currency.digits, 5u);
  EXPECT_EQ(options.currency.thousandSymbol, u'_');
  EXPECT_EQ(options.currency.decimalSymbol, u'!');
  EXPECT_EQ(options.delimiter, u',');
}

TEST_F(LocaleDefaultsTest, GivenCurrencySymbolStaysAndTheOtherValuesCome) {
  locale_.Set(u"de-DE");
  SchemaOptions options;
  options.currency.specified = CurrencySettings::kSymbol;
  options.currency.symbol = u"Taler";
  CompleteFromLocale(options);
  EXPECT_EQ(options.currency.symbol, u"Taler");
  EXPECT_EQ(options.currency.thousandSymbol, u'.');
  EXPECT_EQ(options.currency.decimalSymbol, u',');
}

TEST_F(LocaleDefaultsTest, DecimalSymbolIsTheOneOfTheLocaleThatTheOptionsWereMadeIn) {
  SchemaOptions options;
  locale_.Set(u"de-DE");
  CompleteFromLocale(options);
  EXPECT_EQ(options.number.decimalSymbol, u'.');
  EXPECT_EQ(options.currency.decimalSymbol, u',') << "that of money is asked for now";
  EXPECT_EQ(options.delimiter, u',');
}

TEST_F(LocaleDefaultsTest, DecimalCommaMakesSemicolonsUnlessTheFormatWasGiven) {
  SchemaOptions given;
  given.number.specified = NumberFormat::Settings::kDecimalSymbol;
  given.number.decimalSymbol = u',';
  given.delimiter = u'\t';
  CompleteFromLocale(given);
  EXPECT_EQ(given.delimiter, u';') << "a comma of schema.ini counts too";

  SchemaOptions formatted;
  formatted.number = given.number;
  formatted.specified = SchemaOptions::kFormat;
  CompleteFromLocale(formatted);
  EXPECT_EQ(formatted.delimiter, u',');

  locale_.Set(u"de-DE");
  SchemaOptions pointed;
  pointed.number.specified = NumberFormat::Settings::kDecimalSymbol;
  CompleteFromLocale(pointed);
  EXPECT_EQ(pointed.delimiter, u',') << "a point given to a German locale";
}

// A locale that no system has, with values at the bounds of what is taken.
struct OddLocale {
  std::u16string shortDate = u"d/M/yy";
  std::u16string time = u"H:mm";
  std::u16string currency = u"x";
  std::u16string thousand = u",";
  std::u16string decimal = u".";
  std::u16string digits = u"2";
  std::u16string leadingZeros = u"1";
};

OddLocale oddLocale;

// As the system does: a value that does not fit with its zero is none.
std::u16string OddValue(LCTYPE type, int bufferUnits) {
  const std::u16string value = [&] {
    switch (type) {
      case LOCALE_SSHORTDATE:
        return oddLocale.shortDate;
      case LOCALE_STIMEFORMAT:
        return oddLocale.time;
      case LOCALE_SCURRENCY:
        return oddLocale.currency;
      case LOCALE_STHOUSAND:
        return oddLocale.thousand;
      case LOCALE_SDECIMAL:
        return oddLocale.decimal;
      case LOCALE_ILZERO:
        return oddLocale.leadingZeros;
      default:
        return oddLocale.digits;
    }
  }();
  return value.size() < static_cast<std::size_t>(bufferUnits) ? value : std::u16string();
}

SchemaOptions CompletedFrom(OddLocale locale) {
  oddLocale = std::move(locale);
  SchemaOptions options;
  options.currency.thousandSymbol = u'_';
  options.currency.decimalSymbol = u'!';
  options.currency.digits = 9;
  options.number.digits = 8;
  CompleteFromLocale(options, &OddValue);
  return options;
}

TEST_F(LocaleDefaultsTest, OnlySymbolsOfOneCharacterReplaceWhatWasThere) {
  EXPECT_EQ(CompletedFrom({.thousand = u"'"}).currency.thousandSymbol, u'\'');
  for (const std::u16string_view odd : {u"", u"''", u"abc"}) {
    SCOPED_TRACE(::testing::PrintToString(std::u16string(odd)));
    EXPECT_EQ(CompletedFrom({.thousand = std::u16string(odd)}).currency.thousandSymbol, u'_');
    EXPECT_EQ(CompletedFrom({.decimal = std::u16string(odd)}).currency.decimalSymbol, u'!');
  }
}

TEST_F(LocaleDefaultsTest, ValuesThatDoNotFitTheirBuffersAreMissing) {
  const std::u16string currency(12, u'c');
  EXPECT_EQ(CompletedFrom({.currency = currency}).currency.symbol, currency);
  EXPECT_EQ(CompletedFrom({.currency = currency + u'c'}).currency.symbol, u"");

  const std::u16string pattern(79, u'y');
  EXPECT_EQ(CompletedFrom({.shortDate = pattern}).dateTimeFormat, pattern + u" H:mm");
  EXPECT_EQ(CompletedFrom({.shortDate = pattern + u'y'}).dateTimeFormat, u" H:mm");
  const std::u16string time(79, u'm');
  EXPECT_EQ(CompletedFrom({.time = time}).dateTimeFormat, u"d/M/yy " + time);
  EXPECT_EQ(CompletedFrom({.time = time + u'm'}).dateTimeFormat, u"d/M/yy ");

  EXPECT_EQ(CompletedFrom({.digits = u"7"}).number.digits, 7u);
  EXPECT_EQ(CompletedFrom({.digits = u"10"}).number.digits, 8u);
  EXPECT_EQ(CompletedFrom({.digits = u"10"}).currency.digits, 9u);
  EXPECT_FALSE(CompletedFrom({.leadingZeros = u"11"}).number.leadingZeros);
}

TEST_F(LocaleDefaultsTest, MarksOfTheDayPeriodGoFromAnyTimeFormat) {
  EXPECT_EQ(CompletedFrom({.time = u"tt hh:mm"}).dateTimeFormat, u"d/M/yy HH:mm");
  EXPECT_EQ(CompletedFrom({.time = u"h 'at' mm"}).dateTimeFormat, u"d/M/yy H 'a ' mm");
  EXPECT_EQ(CompletedFrom({.time = u"hh:mm"}).dateTimeFormat, u"d/M/yy hh:mm");
}

}  // namespace
}  // namespace TextFile
