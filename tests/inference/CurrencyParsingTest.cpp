#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>

#include "inference/NumberParsing.h"
#include "support/ShowText.h"

namespace TextFile {
namespace {

constexpr double kRefused = -99999;

CurrencySettings Settings(std::u16string_view symbol, char16_t thousand, char16_t decimal) {
  CurrencySettings settings;
  settings.symbol = symbol;
  settings.thousandSymbol = thousand;
  settings.decimalSymbol = decimal;
  return settings;
}

double Amount(const CurrencySettings& settings, std::u16string_view text) {
  double amount = 0;
  return ParseCurrency(settings, text, amount) ? amount : kRefused;
}

struct CurrencyCase {
  std::u16string_view text;
  double amount;
  const char* why;
};

constexpr CurrencyCase kDollarCases[] = {
    {u"$5", 5, "symbol and amount"},
    {u"$ 5", 5, "one blank between them"},
    {u"5$", 5, "amount and symbol"},
    {u"5 $", 5, "one blank between them"},
    {u"$1,234.50", 1234.5, "thousands symbol and decimals"},
    {u"$12,34", 1234, "thousands symbols are skipped, wherever they stand between digits"},
    {u"$.5", 0.5, "no digit before the decimal symbol"},
    {u"$5.", 5, "no digit behind it"},
    {u"$5  ", 5, "blanks behind the whole"},
    {u"5 $   ", 5, "blanks behind the whole"},
    {u"-$5", -5, "minus, symbol, amount"},
    {u"-$ 5", -5, "minus, symbol, blank, amount"},
    {u"-5$", -5, "minus, amount, symbol"},
    {u"-5 $", -5, "minus, amount, blank, symbol"},
    {u"-$1,234.5 ", -1234.5, "a blank behind the whole"},
    {u"($5)", -5, "parentheses, symbol, amount"},
    {u"($ 5)", -5, "parentheses, symbol, blank, amount"},
    {u"(5$)", -5, "parentheses, amount, symbol"},
    {u"(5 $)", -5, "parentheses, amount, blank, symbol"},
    {u"($5)  ", -5, "blanks behind the whole"},
    {u"5", kRefused, "no symbol"},
    {u"-5", kRefused, "no symbol"},
    {u"(5)", kRefused, "no symbol"},
    {u"$", kRefused, "no amount"},
    {u"-$", kRefused, "no amount"},
    {u"($)", kRefused, "no amount"},
    {u"$.", kRefused, "no digit"},
    {u"", kRefused, "nothing"},
    {u" ", kRefused, "nothing"},
    {u" $5", kRefused, "a blank before the whole"},
    {u"$  5", kRefused, "two blanks between symbol and amount"},
    {u"5  $", kRefused, "two blanks between amount and symbol"},
    {u"$\u00A05", kRefused, "white space that is not code 32"},
    {u"$5\t", kRefused, "white space behind it that is not code 32"},
    {u"$-5", kRefused, "the minus sign stands before the symbol"},
    {u"- $5", kRefused, "a blank behind the minus sign"},
    {u"+$5", kRefused, "no plus sign"},
    {u"--$5", kRefused, "two minus signs"},
    {u"( $5)", kRefused, "a blank behind the parenthesis"},
    {u"($5 )", kRefused, "a blank before the parenthesis"},
    {u"($5", kRefused, "no closing parenthesis"},
    {u"$5)", kRefused, "no opening parenthesis"},
    {u"(-$5)", kRefused, "two signs of a negative amount"},
    {u"-($5)", kRefused, "two signs of a negative amount"},
    {u"$5$", kRefused, "two symbols"},
    {u"$5.5.5", kRefused, "two decimal symbols"},
    {u"$5e3", kRefused, "amounts have no exponent"},
    {u"$5x", kRefused, "something left over"},
    {u"$5 x", kRefused, "something left over"},
    {u"\u20AC5", kRefused, "another symbol"},
    {u"$\u0665", kRefused, "a digit of another script"},
};

TEST(CurrencyParsingTest, ReadsTheListedFormsAndNoOther) {
  const CurrencySettings dollar = Settings(u"$", u',', u'.');
  for (const CurrencyCase& c : kDollarCases) {
    SCOPED_TRACE(Show(c.text) + ": " + c.why);
    EXPECT_EQ(Amount(dollar, c.text), c.amount);
  }
}

TEST(CurrencyParsingTest, EmptySymbolMeansTheAmountAlone) {
  const CurrencySettings plain = Settings(u"", u',', u'.');
  EXPECT_EQ(Amount(plain, u"5"), 5.0);
  EXPECT_EQ(Amount(plain, u"1,234.5"), 1234.5);
  EXPECT_EQ(Amount(plain, u"-5"), -5.0);
  EXPECT_EQ(Amount(plain, u"(5)"), -5.0);
  EXPECT_EQ(Amount(plain, u"(5) "), -5.0);
  EXPECT_EQ(Amount(plain, u"5  "), 5.0);
  EXPECT_EQ(Amount(plain, u"$5"), kRefused);
  EXPECT_EQ(Amount(plain, u""), kRefused);
  EXPECT_EQ(Amount(plain, u"abc"), kRefused);
}

TEST(CurrencyParsingTest, MapsTheDecimalSymbolOfTheAmount) {
  const CurrencySettings euro = Settings(u"\u20AC", u'.', u',');
  EXPECT_EQ(Amount(euro, u"1.234,50 \u20AC"), 1234.5);
  EXPECT_EQ(Amount(euro, u"\u20AC1.234,50"), 1234.5);
  EXPECT_EQ(Amount(euro, u"-0,5 \u20AC"), -0.5);
  EXPECT_EQ(Amount(euro, u"1,2,3 \u20AC"), kRefused);
  const CurrencySettings odd = Settings(u"$", u',', u':');
  EXPECT_EQ(Amount(odd, u"$1:5"), 1.5);
  EXPECT_EQ(Amount(odd, u"$1.5"), kRefused) << "the point is no decimal symbol here";
}

TEST(CurrencyParsingTest, MatchesSymbolsOfSeveralCharacters) {
  const CurrencySettings krona = Settings(u"kr", u'.', u',');
  EXPECT_EQ(Amount(krona, u"kr 12,5"), 12.5);
  EXPECT_EQ(Amount(krona, u"12,5 kr"), 12.5);
  EXPECT_EQ(Amount(krona, u"(12,5kr)"), -12.5);
  EXPECT_EQ(Amount(krona, u"k 12,5"), kRefused) << "the symbol ends early";
  EXPECT_EQ(Amount(krona, u"12,5 k"), kRefused);
  EXPECT_EQ(Amount(krona, u"KR 12,5"), kRefused) << "letter case counts";
  EXPECT_EQ(Amount(krona, u"kr12,5kr"), kRefused);
  // A symbol that begins with a digit: part of it is read as an amount before the symbol fails.
  const CurrencySettings numeric = Settings(u"1x", u'.', u',');
  EXPECT_EQ(Amount(numeric, u"15 1x"), 15.0);
}

TEST(CurrencyParsingTest, ThousandsSymbolMayBeABlank) {
  const CurrencySettings spaced = Settings(u"zl", u' ', u',');
  EXPECT_EQ(Amount(spaced, u"1 234 567,5 zl"), 1234567.5);
  EXPECT_EQ(Amount(spaced, u"zl 1 234,5"), 1234.5);
  EXPECT_EQ(Amount(spaced, u"-1 234zl"), -1234.0);
  const CurrencySettings narrow = Settings(u"\u20AC", u'\u202F', u',');
  EXPECT_EQ(Amount(narrow, u"1\u202F234,5 \u20AC"), 1234.5);
}

TEST(CurrencyParsingTest, FailureLeavesTheAmountAlone) {
  double amount = 17;
  EXPECT_FALSE(ParseCurrency(Settings(u"$", u',', u'.'), u"$5x", amount));
  EXPECT_EQ(amount, 17);
}

TEST(CurrencyParsingTest, RefusesAmountsBeyondADouble) {
  const CurrencySettings dollar = Settings(u"$", u',', u'.');
  EXPECT_EQ(Amount(dollar, u"$" + std::u16string(400, u'9')), kRefused);
  EXPECT_EQ(Amount(dollar, u"$" + std::u16string(400, u'0') + u"7"), 7.0);
}

TEST(CurrencyParsingTest, RandomTextsAreReadOrRefusedWithTheSymbolInThem) {
  const CurrencySettings dollar = Settings(u"$", u',', u'.');
  constexpr std::u16string_view kUnits = u"$$0159,.-() ";
  std::mt19937 random(3);
  std::u16string text;
  int accepted = 0;
  for (int n = 0; n < 200000; ++n) {
    text.clear();
    for (auto length = random() % 8; length > 0; --length) text += kUnits[random() % kUnits.size()];
    double amount = 0;
    if (!ParseCurrency(dollar, text, amount)) continue;
    ++accepted;
    ASSERT_EQ(std::count(text.begin(), text.end(), u'$'), 1) << Show(text);
    // Negative amounts carry a sign or parentheses, and no other amounts do.
    const bool marked = text.front() == u'-' || text.front() == u'(';
    ASSERT_TRUE(marked ? amount <= 0 : amount >= 0) << Show(text);
  }
  EXPECT_GT(accepted, 100);
}

}  // namespace
}  // namespace TextFile
