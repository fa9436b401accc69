// Feeds arbitrary text to the number and currency parsers. The first byte holds switches: two bits
// for the decimal symbol, one for the old field types, one for a currency symbol.
//
// Holds: the classifier and the converter agree; narrower types convert to the value of the wider;
// the shorter ways give what the exact one gives; a number without grouping converts to what the C
// library reads; white space around it does not
// matter; a refused amount leaves the value alone.

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "FuzzInput.h"
#include "host/CoreSupport/CharacterClasses.h"
#include "inference/NumberParsing.h"
#include "inference/PlainCells.h"

namespace {

using Fuzz::Check;
using TextFile::FieldType;
using TextFile::NumberValue;
using TextFile::NumberFormat::Settings;

struct Reading {
  bool done = false;
  NumberValue value;
};

Reading Convert(const Settings& settings, std::u16string_view text, FieldType type) {
  Reading reading;
  reading.done = TextFile::NumberFormat::Convert(settings, text, type, reading.value);
  return reading;
}

bool SameReal(double first, double second) {
  return first == second || (std::isnan(first) && std::isnan(second));
}

void CheckClass(const Settings& settings, std::u16string_view text, std::uint32_t version) {
  const FieldType type = TextFile::NumberFormat::Classify(settings, text, version);
  // The classifier trims first, while for the converter white space belongs to a group of digits.
  text = quenra::TrimWhiteSpace(text);
  const Reading real = Convert(settings, text, FieldType::kDouble);
  const Reading whole = Convert(settings, text, FieldType::kInteger);
  const Reading big = Convert(settings, text, FieldType::kBigInteger);
  switch (type) {
    case FieldType::kUndetermined: {
      // The converter also reads words, and a decimal symbol that is neither dot nor comma.
      const auto isOther = [](char16_t unit) {
        return !quenra::IsWhiteSpace(unit) &&
               std::u16string_view(u"-+0123456789.,Ee").find(unit) == std::u16string_view::npos;
      };
      Check(!real.done || std::any_of(text.begin(), text.end(), isOther));
      return;
    }
    case FieldType::kInteger:
      Check(whole.done && big.done && real.done && whole.value.integer == big.value.integer);
      Check(static_cast<double>(whole.value.integer) == real.value.real);
      return;
    case FieldType::kBigInteger:
      Check(version >= TextFile::kFirstVersionWithNewTypes && !whole.done && big.done);
      Check(static_cast<double>(big.value.integer) == real.value.real);
      return;
    case FieldType::kDouble:
      Check(real.done && std::isfinite(real.value.real) && !whole.done);
      return;
    default:
      Check(false);
  }
}

void CheckTypes(const Settings& settings, std::u16string_view text) {
  const Reading small = Convert(settings, text, FieldType::kSmallInteger);
  const Reading whole = Convert(settings, text, FieldType::kInteger);
  const Reading big = Convert(settings, text, FieldType::kBigInteger);
  if (small.done) Check(whole.done && small.value.integer == whole.value.integer);
  if (whole.done) Check(big.done && whole.value.integer == big.value.integer);
  if (big.done) Check(Convert(settings, text, FieldType::kDouble).done);
  for (const FieldType type : {FieldType::kString, FieldType::kDate, FieldType::kUndetermined})
    Check(!Convert(settings, text, type).done);
}

std::string BytesOf(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) bytes += unit < 0x80 ? static_cast<char>(unit) : '\xC3';
  return bytes;
}

bool SameNumber(FieldType type, const NumberValue& a, const NumberValue& b) {
  if (type == FieldType::kSingle) return SameReal(a.single, b.single);
  if (type == FieldType::kDouble) return SameReal(a.real, b.real);
  return a.integer == b.integer;
}

// The shorter ways give what the exact way gives.
// UTF-16 and UTF-8 are read the same way, and the quickest way is none of its own.
void CheckPlainNumber(char16_t decimalSymbol, std::u16string_view text) {
  const std::string bytes = BytesOf(text);
  const std::string padded = bytes + std::string(TextFile::kPlainNumberBytes, '7');
  const std::string_view view = std::string_view(padded).substr(0, bytes.size());
  TextFile::PlainNumber ofUnits{};
  TextFile::PlainNumber ofBytes{};
  TextFile::PlainNumber quick{};
  const bool isPlain = TextFile::ReadPlainNumber(decimalSymbol, text, ofUnits);
  Check(TextFile::ReadPlainNumber(decimalSymbol, bytes, ofBytes) == isPlain);
  Check(TextFile::QuickestPlainCells().readNumber(decimalSymbol, view, quick) == isPlain);
  if (!isPlain) return;
  for (const TextFile::PlainNumber& number : {ofBytes, quick})
    Check(number.digits == ofUnits.digits && number.decimals == ofUnits.decimals &&
          number.hasDecimalSymbol == ofUnits.hasDecimalSymbol &&
          number.negative == ofUnits.negative);
}

void CheckShorterWays(const Settings& settings, std::u16string_view text) {
  for (const FieldType type : {FieldType::kSmallInteger, FieldType::kInteger,
                               FieldType::kBigInteger, FieldType::kSingle, FieldType::kDouble}) {
    const Reading quick = Convert(settings, text, type);
    NumberValue exact;
    Check(TextFile::NumberFormat::ConvertExactly(settings, text, type, exact) == quick.done);
    if (quick.done) Check(SameNumber(type, exact, quick.value));
    NumberValue ofBytes;
    if (TextFile::NumberFormat::ConvertBytes(settings.decimalSymbol, BytesOf(text), type, ofBytes))
      Check(quick.done && SameNumber(type, exact, ofBytes));
  }
  CheckPlainNumber(settings.decimalSymbol, text);
}

// What the C library makes of digits, sign, decimal symbol and exponent alone.
void CheckAgainstLibrary(const Settings& settings, std::u16string_view text) {
  std::string narrow;
  for (const char16_t unit : text) {
    const bool digit = unit >= u'0' && unit <= u'9';
    if (!digit && unit != u'-' && unit != u'e' && unit != u'E' && unit != settings.decimalSymbol)
      return;
    narrow += unit == settings.decimalSymbol ? '.' : static_cast<char>(unit);
  }
  char* end = nullptr;
  const double expected = std::strtod(narrow.c_str(), &end);
  const bool whole = !narrow.empty() && *end == '\0';
  const Reading real = Convert(settings, text, FieldType::kDouble);
  // The library also answers values that are too great or too small, which are refused here.
  if (real.done) Check(whole && SameReal(real.value.real, expected));
  if (whole && std::isnormal(expected)) Check(real.done);
}

void CheckSpaces(const Settings& settings, std::u16string_view text) {
  if (text.find(settings.GroupingSymbol()) != std::u16string_view::npos) return;
  const std::u16string wide = u" \t\u3000" + std::u16string(text) + u"\n\u00A0";
  for (const FieldType type : {FieldType::kInteger, FieldType::kDouble}) {
    const Reading plain = Convert(settings, text, type);
    const Reading spaced = Convert(settings, wide, type);
    Check(plain.done == spaced.done);
    if (plain.done && type == FieldType::kInteger)
      Check(plain.value.integer == spaced.value.integer);
    if (plain.done && type == FieldType::kDouble)
      Check(SameReal(plain.value.real, spaced.value.real));
  }
}

void CheckGrouping(const Settings& settings, std::u16string_view text) {
  const bool grouped = text.find(settings.GroupingSymbol()) != std::u16string_view::npos;
  const bool valid = TextFile::NumberFormat::IsValidGrouping(settings, text);
  Check(grouped || !valid);
  if (!grouped) return;
  const Reading real = Convert(settings, text, FieldType::kDouble);
  Check(valid || !real.done);
  // White space inside could come to stand at an end.
  if (!valid || std::any_of(text.begin(), text.end(), &quenra::IsWhiteSpace)) return;
  std::u16string bare(text);
  std::erase(bare, settings.GroupingSymbol());
  const Reading other = Convert(settings, bare, FieldType::kDouble);
  Check(real.done == other.done);
  if (real.done) Check(SameReal(real.value.real, other.value.real));
}

void CheckCurrency(const TextFile::CurrencySettings& settings, std::u16string_view text) {
  constexpr double kUntouched = 123456.75;
  double amount = kUntouched;
  const bool read = TextFile::ParseCurrency(settings, text, amount);
  if (!read) {
    Check(amount == kUntouched);
    return;
  }
  Check(std::isfinite(amount));
  if (text.empty() || text.front() < u'0' || text.front() > u'9') return;
  double negative = 0;
  Check(TextFile::ParseCurrency(settings, u'-' + std::u16string(text), negative));
  Check(negative == -amount);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::FuzzInput input(data, size);
  const unsigned switches = input.TakeSwitches();
  const std::u16string text = input.RestAsText();

  Settings settings;
  settings.decimalSymbol = u".,;'"[switches & 0x03];
  const std::uint32_t version =
      (switches & 0x04) != 0 ? TextFile::kOldFieldTypeVersion : TextFile::kCurrentFieldTypeVersion;
  CheckClass(settings, text, version);
  CheckTypes(settings, text);
  CheckShorterWays(settings, text);
  CheckAgainstLibrary(settings, text);
  CheckSpaces(settings, text);
  CheckGrouping(settings, text);

  TextFile::CurrencySettings currency;
  if ((switches & 0x08) != 0) currency.symbol = u"kr.";
  CheckCurrency(currency, text);
  return 0;
}
