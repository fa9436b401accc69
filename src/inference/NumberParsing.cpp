#include "inference/NumberParsing.h"

#include <charconv>
#include <cstring>
#include <string>

#include "host/CoreSupport/CharacterClasses.h"
#include "inference/NarrowUnits.h"
#include "inference/PlainNumber.h"

namespace TextFile {

namespace {

using quenra::TrimWhiteSpace;

// A text as narrow characters, on the stack for every number of ordinary length.
class NarrowText {
 public:
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
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

template <class Integer>
bool FromPlainInteger(const PlainNumber& plain, NumberValue& value) noexcept {
  Integer integer = 0;
  if (!PlainInteger(plain, integer)) return false;
  value.integer = integer;
  return true;
}

// False when the type cannot hold the number, or not by this way.
bool FromPlainNumber(const PlainNumber& plain, FieldType type, NumberValue& value) noexcept {
  switch (type) {
    case FieldType::kSmallInteger:
      return FromPlainInteger<std::int16_t>(plain, value);
    case FieldType::kInteger:
      return FromPlainInteger<std::int32_t>(plain, value);
    case FieldType::kBigInteger:
      return FromPlainInteger<std::int64_t>(plain, value);
    case FieldType::kSingle:
      return PlainSingle(plain, value.single);
    case FieldType::kDouble:
      return PlainDouble(plain, value.real);
    default:
      return false;
  }
}

// The characters of a number as they stand, narrow, with "." as decimal symbol: what the exact way
// comes to for every text of at least four characters without white space around it, grouping
// symbols and "+" in front. Those and characters that are not ASCII come out as bytes that no
// number has, so that reading them fails.
class NarrowNumber {
 public:
  static constexpr std::size_t kLeast = 4;
  static constexpr std::size_t kMost = 64;

  // `text` has kLeast to kMost characters.
  template <class Character>
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  NarrowNumber(char16_t decimalSymbol, std::basic_string_view<Character> text) noexcept
      : size_(text.size()) {
    if (size_ >= 8) {
      for (std::size_t i = 0; i + 8 < size_; i += 8) Put<8>(text, i);
      Put<8>(text, size_ - 8);
    } else {
      Put<4>(text, 0);
      Put<4>(text, size_ - 4);
    }
    if (decimalSymbol != u'.') SwapDecimalSymbol(decimalSymbol);
  }

  const char* begin() const noexcept { return bytes_; }
  const char* end() const noexcept { return bytes_ + size_; }

 private:
  template <std::size_t Count, class Character>
  void Put(std::basic_string_view<Character> text, std::size_t at) noexcept {
    const std::uint64_t bytes = NarrowUnits<Count>(text.data() + at);
    std::memcpy(bytes_ + at, &bytes, Count);
  }

  // A "." that is no decimal symbol is a grouping symbol, and must not be taken for one.
  void SwapDecimalSymbol(char16_t decimalSymbol) noexcept {
    for (char* byte = bytes_; byte != bytes_ + size_; ++byte) {
      if (*byte == '.')
        *byte = ',';
      else if (static_cast<unsigned char>(*byte) == decimalSymbol)
        *byte = '.';
    }
  }

  char bytes_[kMost];
  std::size_t size_;
};

// False for every text that needs the exact way, or that is no number.
template <class Character>
bool ReadNarrowNumber(char16_t decimalSymbol, std::basic_string_view<Character> text,
                      FieldType type, NumberValue& value) noexcept {
  if (text.size() < NarrowNumber::kLeast || text.size() > NarrowNumber::kMost) return false;
  if (decimalSymbol != u'.' && decimalSymbol != u',') return false;
  const NarrowNumber narrow(decimalSymbol, text);
  return ReadAs(type, narrow.begin(), narrow.end(), value);
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
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  PlainNumber plain;
  if (ReadPlainNumber(settings.decimalSymbol, text, plain) && FromPlainNumber(plain, type, value))
    return true;
  return ConvertOther(settings, text, type, value);
}

bool NumberFormat::ConvertOther(const Settings& settings, std::u16string_view text, FieldType type,
                                NumberValue& value) {
  return ReadNarrowNumber(settings.decimalSymbol, text, type, value) ||
         ConvertExactly(settings, text, type, value);
}

bool NumberFormat::ConvertBytes(char16_t decimalSymbol, std::string_view text, FieldType type,
                                NumberValue& value) noexcept {
  if (decimalSymbol == u'.') return ReadAs(type, text.data(), text.data() + text.size(), value);
  return ReadNarrowNumber(decimalSymbol, text, type, value);
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
  // Every whole number of 32 bits is the same number as a Double.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  PlainNumber plain;
  std::int32_t plainWhole = 0;
  if (ReadPlainNumber(settings.decimalSymbol, text, plain) && PlainInteger(plain, plainWhole))
    return FieldType::kInteger;
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
