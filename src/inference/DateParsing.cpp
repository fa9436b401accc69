#include "inference/DateParsing.h"

#include <limits>

#include "host/CoreSupport/CharacterClasses.h"

namespace TextFile {

namespace {

using quenra::IsWhiteSpace;

constexpr bool IsDigit(char16_t unit) noexcept { return unit >= u'0' && unit <= u'9'; }

// A position in a text, and the small steps every part is made of.
class Scanner {
 public:
  Scanner(std::u16string_view text, std::size_t position) noexcept
      : text_(text), position_(position) {}

  std::size_t position() const noexcept { return position_; }
  bool AtEnd() const noexcept { return position_ >= text_.size(); }
  // Zero at the end, which no expected character equals.
  char16_t Peek() const noexcept { return AtEnd() ? u'\0' : text_[position_]; }

  bool Take(char16_t unit) noexcept {
    if (AtEnd() || text_[position_] != unit) return false;
    ++position_;
    return true;
  }

  // An expected separator. A ". " behind it loses its dot, as in "5.. 1" or "10:. 30".
  bool TakeSeparator(char16_t unit) noexcept {
    if (!Take(unit)) return false;
    SkipDotBeforeBlank();
    return true;
  }

  void SkipDotBeforeBlank() noexcept {
    if (position_ + 1 < text_.size() && text_[position_] == u'.' && text_[position_ + 1] == u' ')
      ++position_;
  }

  // White space, a sign and digits, the way number conversion of the C library reads them. All of
  // it counts as read, also for the length.
  bool TakeNumber(long low, long high, long& value, std::size_t* length = nullptr) noexcept {
    std::size_t i = position_;
    bool negative = false;
    if (i < text_.size() && !IsDigit(text_[i])) {
      while (i < text_.size() && IsWhiteSpace(text_[i])) ++i;
      negative = i < text_.size() && text_[i] == u'-';
      if (negative || (i < text_.size() && text_[i] == u'+')) ++i;
    }
    if (i >= text_.size() || !IsDigit(text_[i])) return false;
    long number = 0;
    for (; i < text_.size() && IsDigit(text_[i]); ++i)
      if (number <= kNumberLimit) number = number * 10 + (text_[i] - u'0');
    value = negative ? -number : number;
    if (length != nullptr) *length = i - position_;
    position_ = i;
    return value >= low && value <= high;
  }

  bool EndsTime() const noexcept {
    return IsWhiteSpace(Peek()) || Peek() == u'+' || Peek() == u'-';
  }

 private:
  // Beyond every range asked for; more digits cannot bring a number back into it.
  static constexpr long kNumberLimit = 1000000;

  std::u16string_view text_;
  std::size_t position_;
};

constexpr long kWordLimit = 65535;  // every component is stored in 16 bits

bool TakeYear(Scanner& scanner, SYSTEMTIME& time) noexcept {
  long value = 0;
  std::size_t length = 0;
  if (!scanner.TakeNumber(0, kWordLimit, value, &length)) return false;
  if (length == 2) value += value < 51 ? 2000 : 1900;
  time.wYear = static_cast<WORD>(value);
  return true;
}

bool TakeDateComponent(Scanner& scanner, char letter, SYSTEMTIME& time) noexcept {
  if (letter == 'y') return TakeYear(scanner, time);
  long value = 0;
  if (!scanner.TakeNumber(1, letter == 'm' ? 12 : 31, value)) return false;
  (letter == 'm' ? time.wMonth : time.wDay) = static_cast<WORD>(value);
  return true;
}

const char* LettersOf(DateOrder order) noexcept {
  switch (order) {
    case DateOrder::kMonthDayYear:
      return "mdy";
    case DateOrder::kDayMonthYear:
      return "dmy";
    default:
      return "ymd";
  }
}

bool TakeDate(Scanner& scanner, DateOrder order, SYSTEMTIME& time) noexcept {
  const char* letters = LettersOf(order);
  if (!TakeDateComponent(scanner, letters[0], time)) return false;
  const char16_t separator = scanner.Peek();
  if (separator != u'-' && separator != u'.' && separator != u'/') return false;
  if (!scanner.TakeSeparator(separator)) return false;
  if (!TakeDateComponent(scanner, letters[1], time)) return false;
  if (!scanner.TakeSeparator(separator)) return false;
  if (!TakeDateComponent(scanner, letters[2], time)) return false;
  if (separator == u'.') scanner.Take(u'.');
  while (scanner.Take(u' ')) {
  }
  return true;
}

// One digit counts as tenths, two as hundredths, three or more as milliseconds as they stand.
bool TakeFraction(Scanner& scanner, ParsedDateTime& value) noexcept {
  long fraction = 0;
  std::size_t length = 0;
  if (!scanner.TakeSeparator(u'.') || !scanner.TakeNumber(0, 999, fraction, &length)) return false;
  if (length == 1) fraction *= 100;
  if (length == 2) fraction *= 10;
  value.time.wMilliseconds = static_cast<WORD>(fraction);
  value.fractionalSeconds = true;
  return true;
}

bool TakeTime(Scanner& scanner, std::uint32_t version, ParsedDateTime& value) noexcept {
  SYSTEMTIME& time = value.time;
  time.wHour = time.wMinute = time.wSecond = time.wMilliseconds = 0;
  value.fractionalSeconds = false;
  if (scanner.AtEnd()) return version < kFirstVersionWithNewTypes;
  scanner.Take(u'T');
  long number = 0;
  if (!scanner.TakeNumber(0, 23, number) || !scanner.TakeSeparator(u':')) return false;
  time.wHour = static_cast<WORD>(number);
  if (!scanner.TakeNumber(0, 59, number)) return false;
  time.wMinute = static_cast<WORD>(number);
  if (scanner.AtEnd() || scanner.EndsTime()) return true;
  if (!scanner.TakeSeparator(u':') || !scanner.TakeNumber(0, 59, number)) return false;
  time.wSecond = static_cast<WORD>(number);
  if (version < kFirstVersionWithNewTypes || scanner.AtEnd() || scanner.EndsTime()) return true;
  return TakeFraction(scanner, value);
}

bool TakeOffset(Scanner& scanner, std::int16_t& offsetMinutes) noexcept {
  offsetMinutes = 0;
  if (scanner.Take(u' ')) scanner.SkipDotBeforeBlank();
  const char16_t sign = scanner.Peek();
  if (sign != u'+' && sign != u'-') return true;
  scanner.Take(sign);
  constexpr long kLow = std::numeric_limits<std::int16_t>::min();
  constexpr long kHigh = std::numeric_limits<std::int16_t>::max();
  long hours = 0;
  long minutes = 0;
  if (!scanner.TakeNumber(kLow, kHigh, hours) || !scanner.TakeSeparator(u':') ||
      !scanner.TakeNumber(kLow, kHigh, minutes))
    return false;
  const long offset = hours * 60 + minutes;
  // Kept in 16 bits without a range check, so what does not fit wraps around.
  offsetMinutes = static_cast<std::int16_t>(sign == u'-' ? -offset : offset);
  return true;
}

// What follows the day in a value of `type`, up to the end of the text.
bool TakeRest(Scanner& scanner, FieldType type, std::uint32_t version,
              ParsedDateTime& value) noexcept {
  if (type != FieldType::kDateOnly && !TakeTime(scanner, version, value)) return false;
  if (type == FieldType::kTimestampOffset && !TakeOffset(scanner, value.offsetMinutes))
    return false;
  if (type == FieldType::kDate) scanner.Take(u'Z');
  return scanner.AtEnd();
}

// The orders under which the whole text is a value of `type`.
bool ClassifyAs(FieldType type, std::u16string_view text, std::uint32_t version,
                DateClass& found) noexcept {
  found = {type, {}, false};
  for (const DateOrder order :
       {DateOrder::kYearMonthDay, DateOrder::kDayMonthYear, DateOrder::kMonthDayYear}) {
    Scanner scanner(text, 0);
    ParsedDateTime value;
    if (!TakeDate(scanner, order, value.time) || !TakeRest(scanner, type, version, value)) continue;
    found.orders.Add(order);
    found.fractionalSeconds = value.fractionalSeconds;
  }
  return !found.orders.empty();
}

// Every date and time begins with a number (white space, a sign or a digit), a time perhaps with
// "T". Behind that a date has one separator twice, and a time a colon.
bool MayBeDate(std::u16string_view text) noexcept {
  if (text.empty()) return false;
  const char16_t first = text.front();
  if (!IsDigit(first) && first != u'+' && first != u'-' && first != u'T' && !IsWhiteSpace(first))
    return false;
  // Most numbers leave here, whole or not.
  unsigned dashes = 0;
  unsigned dots = 0;
  unsigned slashes = 0;
  for (const char16_t unit : text.substr(1)) {
    if (IsDigit(unit)) continue;
    if (unit == u':') return true;
    if ((unit == u'-' && ++dashes == 2) || (unit == u'.' && ++dots == 2) ||
        (unit == u'/' && ++slashes == 2))
      return true;
  }
  return false;
}

}  // namespace

bool ParseDatePart(std::u16string_view text, std::size_t& position, DateOrder order,
                   SYSTEMTIME& time) noexcept {
  Scanner scanner(text, position);
  const bool parsed = TakeDate(scanner, order, time);
  position = scanner.position();
  return parsed;
}

bool ParseTimePart(std::uint32_t version, std::u16string_view text, std::size_t& position,
                   ParsedDateTime& value) noexcept {
  Scanner scanner(text, position);
  const bool parsed = TakeTime(scanner, version, value);
  position = scanner.position();
  return parsed;
}

bool ParseOffsetPart(std::u16string_view text, std::size_t& position,
                     std::int16_t& offsetMinutes) noexcept {
  Scanner scanner(text, position);
  const bool parsed = TakeOffset(scanner, offsetMinutes);
  position = scanner.position();
  return parsed;
}

bool ClassifyDate(std::u16string_view text, std::uint32_t version, bool allowTimeOnly,
                  DateClass& found) noexcept {
  if (!MayBeDate(text)) return false;
  if (ClassifyAs(FieldType::kDate, text, version, found)) return true;
  if (version < kFirstVersionWithNewTypes) return false;
  if (ClassifyAs(FieldType::kTimestampOffset, text, version, found)) return true;
  if (ClassifyAs(FieldType::kDateOnly, text, version, found)) return true;
  if (!allowTimeOnly) return false;

  Scanner scanner(text, 0);
  ParsedDateTime value;
  if (!TakeTime(scanner, version, value) || !scanner.AtEnd()) return false;
  found = {FieldType::kTimeOnly, {}, value.fractionalSeconds};
  return true;
}

bool ParseDateTime(const DateFieldFormat& format, std::u16string_view text,
                   ParsedDateTime& value) noexcept {
  value = {};
  Scanner scanner(text, 0);
  if (format.type != FieldType::kTimeOnly) {
    if (format.order != DateOrder::kAny) {
      if (!TakeDate(scanner, format.order, value.time)) return false;
    } else {
      // The reverse of the sequence in which texts are classified.
      bool taken = false;
      for (const DateOrder order :
           {DateOrder::kMonthDayYear, DateOrder::kDayMonthYear, DateOrder::kYearMonthDay}) {
        scanner = Scanner(text, 0);
        value.time = {};
        taken = TakeDate(scanner, order, value.time);
        if (taken) break;
      }
      if (!taken) return false;
    }
  }
  return TakeRest(scanner, format.type, format.version, value);
}

}  // namespace TextFile
