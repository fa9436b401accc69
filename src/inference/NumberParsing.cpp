#include "inference/NumberParsing.h"

#include <charconv>
#include <limits>
#include <string>

#include "host/CoreSupport/CharacterClasses.h"

namespace TextFile {

namespace {

using quenra::TrimWhiteSpace;

// A text as narrow characters, on the stack for every number of ordinary length.
class NarrowText {
 public:
  explicit NarrowText(std::size_t capacity) {
    if (capacity > sizeof(local_)) {
      heap_.resize(capacity);
      begin_ = heap_.data();
    }
    end_ = begin_;
  }
  NarrowText(const NarrowText&) = delete;
  NarrowText& operator=(const NarrowText&) = delete;

  void Append(char c) noexcept { *end_++ = c; }
  const char* begin() const noexcept { return begin_; }
  const char* end() const noexcept { return end_; }

 private:
  char local_[128];
  std::string heap_;
  char* begin_ = local_;
  char* end_ = local_;
};

// The whole of [begin, end) as one value; false when anything is left over or out of range.
template <class Number>
bool ReadWhole(const char* begin, const char* end, Number& number) noexcept {
  const auto [last, error] = std::from_chars(begin, end, number);
  return error == std::errc() && last == end;
}

template <class Integer>
bool ReadInteger(const char* begin, const char* end, NumberValue& value) noexcept {
  Integer integer = 0;
  if (!ReadWhole(begin, end, integer)) return false;
  value.integer = integer;
  return true;
}

bool ReadAs(FieldType type, const char* begin, const char* end, NumberValue& value) noexcept {
  switch (type) {
    case FieldType::kSmallInteger:
      return ReadInteger<std::int16_t>(begin, end, value);
    case FieldType::kInteger:
      return ReadInteger<std::int32_t>(begin, end, value);
    case FieldType::kBigInteger:
      return ReadInteger<std::int64_t>(begin, end, value);
    case FieldType::kSingle:
      return ReadWhole(begin, end, value.single);
    case FieldType::kDouble:
      return ReadWhole(begin, end, value.real);
    default:
      return false;
  }
}

// Copies the text with "." as decimal symbol and without grouping symbols. False when a character
// is not ASCII.
bool Narrow(const NumberFormat::Settings& settings, std::u16string_view text, NarrowText& narrow) {
  const char16_t grouping = settings.GroupingSymbol();
  for (const char16_t unit : text) {
    if (unit > 127) return false;
    if (unit == grouping) continue;
    narrow.Append(unit == settings.decimalSymbol ? '.' : static_cast<char>(unit));
  }
  return true;
}

// A number of digits and at most one decimal symbol, with nothing else but a minus in front: what
// most numbers are. Its value is digits / 10^decimals.
struct PlainNumber {
  std::uint64_t digits = 0;
  unsigned decimals = 0;
  bool hasDecimalSymbol = false;
  bool negative = false;
};

// False for every other text, which says nothing about whether it is a number.
bool ReadPlainNumber(char16_t decimalSymbol, std::u16string_view text,
                     PlainNumber& number) noexcept {
  constexpr std::size_t kMostUnits = 20;  // 18 digits fit 64 bits, whatever they are
  if (decimalSymbol != u'.' && decimalSymbol != u',') return false;
  if (text.empty() || text.size() > kMostUnits) return false;
  const char16_t* unit = text.data();
  const char16_t* const end = unit + text.size();
  number.negative = *unit == u'-';
  if (number.negative) ++unit;
  const char16_t* const first = unit;
  const char16_t* behindSymbol = nullptr;
  for (; unit != end; ++unit) {
    const unsigned digit = static_cast<unsigned>(*unit) - u'0';
    if (digit <= 9) {
      number.digits = number.digits * 10 + digit;
    } else if (*unit == decimalSymbol && behindSymbol == nullptr) {
      behindSymbol = unit + 1;
    } else {
      return false;
    }
  }
  number.hasDecimalSymbol = behindSymbol != nullptr;
  if (number.hasDecimalSymbol) number.decimals = static_cast<unsigned>(end - behindSymbol);
  const auto count = static_cast<std::size_t>(end - first) - (number.hasDecimalSymbol ? 1 : 0);
  return count >= 1 && count <= 18;
}

template <class Integer>
bool FromPlainInteger(const PlainNumber& number, NumberValue& value) noexcept {
  if (number.hasDecimalSymbol) return false;
  const auto magnitude = static_cast<std::int64_t>(number.digits);
  const std::int64_t integer = number.negative ? -magnitude : magnitude;
  if (integer < std::numeric_limits<Integer>::min() ||
      integer > std::numeric_limits<Integer>::max())
    return false;
  value.integer = integer;
  return true;
}

// Both the digits and the power of ten are exact in `Real`, so the one division rounds correctly.
template <class Real, std::size_t Powers>
bool FromPlainReal(const PlainNumber& number, const Real (&powers)[Powers],
                   std::uint64_t largestExact, Real& value) noexcept {
  if (number.digits > largestExact || number.decimals >= Powers) return false;
  const Real magnitude = static_cast<Real>(number.digits) / powers[number.decimals];
  value = number.negative ? -magnitude : magnitude;
  return true;
}

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr float kSinglePowersOfTen[] = {1e0F, 1e1F, 1e2F, 1e3F, 1e4F, 1e5F,
                                        1e6F, 1e7F, 1e8F, 1e9F, 1e10F};

// False when the type cannot hold the number, or not by this way.
bool FromPlainNumber(const PlainNumber& number, FieldType type, NumberValue& value) noexcept {
  switch (type) {
    case FieldType::kSmallInteger:
      return FromPlainInteger<std::int16_t>(number, value);
    case FieldType::kInteger:
      return FromPlainInteger<std::int32_t>(number, value);
    case FieldType::kBigInteger:
      return FromPlainInteger<std::int64_t>(number, value);
    case FieldType::kSingle:
      return FromPlainReal(number, kSinglePowersOfTen, std::uint64_t{1} << 24, value.single);
    case FieldType::kDouble:
      return FromPlainReal(number, kPowersOfTen, std::uint64_t{1} << 53, value.real);
    default:
      return false;
  }
}

bool HasOnlyNumberCharacters(std::u16string_view text) noexcept {
  for (const char16_t unit : text) {
    const bool digit = unit >= u'0' && unit <= u'9';
    if (!digit && unit != u'.' && unit != u',' && unit != u'-' && unit != u'+' && unit != u'E' &&
        unit != u'e')
      return false;
  }
  return true;
}

}  // namespace

bool NumberFormat::IsValidGrouping(const Settings& settings, std::u16string_view text) noexcept {
  const char16_t grouping = settings.GroupingSymbol();
  bool found = false;
  std::size_t groupLength = 0;
  std::size_t i = 0;
  for (; i < text.size() && text[i] != settings.decimalSymbol; ++i) {
    if (text[i] != grouping) {
      ++groupLength;
      continue;
    }
    if (found ? groupLength != 3 : groupLength > 3) return false;
    found = true;
    groupLength = 0;
  }
  if (!found || (groupLength != 3 && groupLength != 0)) return false;
  if (i == text.size()) return true;
  for (const char16_t unit : text.substr(i + 1))
    if (unit == grouping || unit == settings.decimalSymbol) return false;
  return true;
}

bool NumberFormat::Convert(const Settings& settings, std::u16string_view text, FieldType type,
                           NumberValue& value) {
  PlainNumber plain;
  if (ReadPlainNumber(settings.decimalSymbol, text, plain) && FromPlainNumber(plain, type, value))
    return true;
  return ConvertExactly(settings, text, type, value);
}

bool NumberFormat::ConvertExactly(const Settings& settings, std::u16string_view text,
                                  FieldType type, NumberValue& value) {
  // Judged before trimming: white space counts as part of its group.
  const bool grouped = text.find(settings.GroupingSymbol()) != std::u16string_view::npos;
  if (grouped && !IsValidGrouping(settings, text)) return false;

  text = TrimWhiteSpace(text);
  NarrowText narrow(text.size());
  if (!Narrow(settings, text, narrow)) return false;
  const char* begin = narrow.begin();
  if (begin != narrow.end() && *begin == '+') ++begin;
  return ReadAs(type, begin, narrow.end(), value);
}

FieldType NumberFormat::Classify(const Settings& settings, std::u16string_view text,
                                 std::uint32_t version) {
  text = TrimWhiteSpace(text);
  NumberValue real;
  if (!HasOnlyNumberCharacters(text) || !Convert(settings, text, FieldType::kDouble, real))
    return FieldType::kUndetermined;
  NumberValue whole;
  if (Convert(settings, text, FieldType::kInteger, whole) &&
      static_cast<double>(whole.integer) == real.real)
    return FieldType::kInteger;
  if (version >= kFirstVersionWithNewTypes &&
      Convert(settings, text, FieldType::kBigInteger, whole) &&
      static_cast<double>(whole.integer) == real.real)
    return FieldType::kBigInteger;
  return FieldType::kDouble;
}

}  // namespace TextFile
