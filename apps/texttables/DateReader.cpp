#include "DateReader.h"

#include "host/CoreSupport/DatetimeHelper.h"

namespace TextTables {

namespace {

// Takes parts off the front of a text.
class Scanner {
 public:
  explicit Scanner(std::u16string_view text) : text_(text) {}

  bool AtEnd() const noexcept { return text_.empty(); }

  bool Take(char16_t unit) noexcept {
    if (text_.empty() || text_[0] != unit) return false;
    text_.remove_prefix(1);
    return true;
  }

  // Exactly `count` digits.
  template <class Number>
  bool TakeDigits(std::size_t count, Number& value) noexcept {
    if (text_.size() < count) return false;
    unsigned sum = 0;
    for (const char16_t unit : text_.substr(0, count)) {
      if (unit < u'0' || unit > u'9') return false;
      sum = sum * 10 + (unit - u'0');
    }
    text_.remove_prefix(count);
    value = static_cast<Number>(sum);
    return true;
  }

  bool IsDateAhead() const noexcept { return text_.size() > 4 && text_[4] == u'-'; }

 private:
  std::u16string_view text_;
};

bool TakeDate(Scanner& scanner, SYSTEMTIME& time) noexcept {
  return scanner.TakeDigits(4, time.wYear) && scanner.Take(u'-') &&
         scanner.TakeDigits(2, time.wMonth) && scanner.Take(u'-') &&
         scanner.TakeDigits(2, time.wDay);
}

bool TakeDecimals(Scanner& scanner, SYSTEMTIME& time) noexcept {
  unsigned milliseconds = 0;
  unsigned weight = 100;
  unsigned digit = 0;
  bool any = false;
  for (; scanner.TakeDigits(1, digit); weight /= 10, any = true) milliseconds += digit * weight;
  time.wMilliseconds = static_cast<WORD>(milliseconds);
  return any;
}

bool TakeTime(Scanner& scanner, SYSTEMTIME& time) noexcept {
  if (!scanner.TakeDigits(2, time.wHour) || !scanner.Take(u':') ||
      !scanner.TakeDigits(2, time.wMinute))
    return false;
  if (!scanner.Take(u':')) return true;
  if (!scanner.TakeDigits(2, time.wSecond)) return false;
  return !scanner.Take(u'.') || TakeDecimals(scanner, time);
}

bool TakeOffset(Scanner& scanner, std::optional<SHORT>& offset) noexcept {
  if (scanner.Take(u'Z')) {
    offset = SHORT{0};
    return true;
  }
  const bool west = scanner.Take(u'-');
  if (!west && !scanner.Take(u'+')) return false;
  int hours = 0;
  int minutes = 0;
  if (!scanner.TakeDigits(2, hours)) return false;
  const bool more = scanner.Take(u':') || !scanner.AtEnd();
  if (more && !scanner.TakeDigits(2, minutes)) return false;
  if (hours > 23 || minutes > 59) return false;
  const int sum = hours * 60 + minutes;
  offset = static_cast<SHORT>(west ? -sum : sum);
  return true;
}

}  // namespace

std::optional<IsoDateTime> ReadIsoDate(std::u16string_view text) noexcept {
  Scanner scanner(text);
  IsoDateTime result;
  SYSTEMTIME time = {};
  // The day 0.
  time.wYear = 1899;
  time.wMonth = 12;
  time.wDay = 30;
  result.hasDate = scanner.IsDateAhead();
  if (result.hasDate && !TakeDate(scanner, time)) return std::nullopt;
  if (!result.hasDate || scanner.Take(u'T') || scanner.Take(u' ')) {
    if (!TakeTime(scanner, time)) return std::nullopt;
    result.hasTime = true;
  }
  if (!scanner.AtEnd() && result.hasDate && result.hasTime &&
      !TakeOffset(scanner, result.offsetMinutes))
    return std::nullopt;
  if (!scanner.AtEnd() || !quenra::DatetimeHelper::ToOADate(time, result.date)) return std::nullopt;
  return result;
}

}  // namespace TextTables
