#include "inference/DateFormatting.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "host/CoreSupport/CharacterClasses.h"
#include "inference/Digits.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

constexpr std::u16string_view kHourLetters = u"hH";
constexpr std::u16string_view kTimeWithoutHour = u"hh:mm:ss";
constexpr std::u16string_view kDateBehindTime = u"yyyy-MM-dd";
constexpr std::u16string_view kDateWithoutPattern = u"yyyy-MM-dd HH:mm:ss";

constexpr char16_t ToLowerAscii(char16_t unit) noexcept {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

void AppendPadded(int value, int digits, std::string& bytes) {
  char buffer[12];
  auto* const end = std::to_chars(buffer, buffer + sizeof(buffer), value).ptr;
  const auto length = static_cast<int>(end - buffer);
  bytes.append(static_cast<std::size_t>(std::max(0, digits - length)), '0');
  bytes.append(buffer, end);
}

}  // namespace

DatePattern::DatePattern(std::u16string_view pattern) {
  bool hourSeen = false;
  for (std::size_t i = 0; i < pattern.size();) {
    const char16_t unit = pattern[i];
    if (unit == u'\'') {
      const std::size_t end = std::min(pattern.find(u'\'', i + 1), pattern.size());
      AddText(pattern.substr(i + 1, end - i - 1));
      i = end + 1;
      continue;
    }
    const std::size_t end = std::min(pattern.find_first_not_of(unit, i), pattern.size());
    const int letters = static_cast<int>(end - i);
    const bool minutes = hourSeen && (unit == u'm' || (i > 0 && pattern[i - 1] == u':'));
    switch (ToLowerAscii(unit)) {
      case u'd':
        if (letters <= 2) parts_.push_back({Kind::kDay, letters, {}});
        break;
      case u'm':
        parts_.push_back({minutes ? Kind::kMinute : Kind::kMonth, letters, {}});
        break;
      case u'y':
        parts_.push_back({Kind::kYear, letters, {}});
        break;
      case u'h':
        hourSeen = true;
        parts_.push_back({Kind::kHour, letters, {}});
        break;
      case u's':
        parts_.push_back({Kind::kSecond, letters, {}});
        break;
      default:
        if (unit != u't') AddText(pattern.substr(i, end - i));
        break;
    }
    i = end;
  }
  TrimEnd();
  for (const Part& part : parts_) AddSteps(part);
}

// What is not written, as the "t" of "h:mm tt", must not leave blanks behind the value, which then
// would be no date to a reader.
void DatePattern::TrimEnd() {
  if (parts_.empty() || parts_.back().kind != Kind::kText) return;
  std::string& text = parts_.back().text;
  text.resize(text.find_last_not_of(' ') + 1);
  if (text.empty()) parts_.pop_back();
}

void DatePattern::AddText(std::u16string_view text) {
  if (text.empty()) return;
  if (parts_.empty() || parts_.back().kind != Kind::kText) parts_.push_back({Kind::kText, 0, {}});
  AppendUtf8(text, parts_.back().text);
}

void DatePattern::AddNumber(Number number, bool padded) {
  const bool ends = steps_.empty() || steps_.back().number != Number::kNone;
  if (ends) steps_.push_back({{}, 0, Number::kNone, false});
  steps_.back().number = number;
  steps_.back().padded = padded;
}

void DatePattern::AddSteps(const Part& part) {
  const bool padded = part.letters >= 2;
  switch (part.kind) {
    case Kind::kText:
      for (std::size_t i = 0; i < part.text.size(); i += kStepText) {
        Step step{{}, 0, Number::kNone, false};
        step.length = static_cast<std::uint8_t>(part.text.copy(step.text.data(), kStepText, i));
        steps_.push_back(step);
      }
      return;
    case Kind::kDay:
      return AddNumber(Number::kDay, padded);
    case Kind::kMonth:
      return AddNumber(Number::kMonth, padded);
    case Kind::kYear:
      if (part.letters > 2) AddNumber(Number::kCentury, true);
      return AddNumber(Number::kYear, true);
    case Kind::kHour:
      return AddNumber(Number::kHour, padded);
    case Kind::kMinute:
      return AddNumber(Number::kMinute, padded);
    case Kind::kSecond:
      return AddNumber(Number::kSecond, padded);
  }
}

char* DatePattern::Write(const SYSTEMTIME& time, char* to) const noexcept {
  // In the order of Number.
  const std::array<WORD, 8> numbers = {0,
                                       time.wDay,
                                       time.wMonth,
                                       static_cast<WORD>(time.wYear / 100),
                                       static_cast<WORD>(time.wYear % 100),
                                       time.wHour,
                                       time.wMinute,
                                       time.wSecond};
  for (const Step& step : steps_) {
    std::memcpy(to, step.text.data(), kStepText);
    to += step.length;
    if (step.number == Number::kNone) continue;
    if (step.number == Number::kSecond && time.wMilliseconds != 0) return nullptr;
    to = WriteUpToTwoDigits(numbers[static_cast<std::size_t>(step.number)], step.padded, to);
  }
  return to;
}

bool DatePattern::HasText(char character) const noexcept {
  return std::any_of(parts_.begin(), parts_.end(), [character](const Part& part) {
    return part.text.find(character) != std::string::npos;
  });
}

void DatePattern::Append(const SYSTEMTIME& time, std::string& bytes) const {
  for (const Part& part : parts_) {
    const int digits = std::min(part.letters, 2);
    switch (part.kind) {
      case Kind::kText:
        bytes += part.text;
        break;
      case Kind::kDay:
        AppendPadded(time.wDay, digits, bytes);
        break;
      case Kind::kMonth:
        AppendPadded(time.wMonth, digits, bytes);
        break;
      case Kind::kYear:
        if (part.letters <= 2)
          AppendPadded(time.wYear % 100, 2, bytes);
        else
          AppendPadded(time.wYear, 4, bytes);
        break;
      case Kind::kHour:
        AppendPadded(time.wHour, digits, bytes);
        break;
      case Kind::kMinute:
        AppendPadded(time.wMinute, digits, bytes);
        break;
      case Kind::kSecond:
        AppendPadded(time.wSecond, digits, bytes);
        if (time.wMilliseconds == 0) break;
        bytes += '.';
        AppendPadded(time.wMilliseconds, 3, bytes);
        break;
    }
  }
}

std::u16string WritingPattern(const DateFieldFormat& format, FieldType type,
                              std::u16string_view tablePattern) {
  const std::u16string_view pattern =
      format.pattern.empty() ? tablePattern : std::u16string_view(format.pattern);
  const std::size_t hour = std::min(pattern.find_first_of(kHourLetters), pattern.size());
  if (type == FieldType::kTimeOnly)
    return std::u16string(hour < pattern.size() ? pattern.substr(hour) : kTimeWithoutHour);
  if (type != FieldType::kDateOnly)
    return std::u16string(pattern.empty() ? kDateWithoutPattern : pattern);

  std::u16string_view day = quenra::TrimWhiteSpace(pattern.substr(0, hour));
  // The "T" between day and time belongs to neither.
  if (hour < pattern.size() && day.ends_with(u'T')) day.remove_suffix(1);
  return std::u16string(day.empty() ? kDateBehindTime : day);
}

DateOrder OrderOfPattern(std::u16string_view pattern) noexcept {
  switch (pattern.empty() ? u'\0' : ToLowerAscii(pattern.front())) {
    case u'm':
      return DateOrder::kMonthDayYear;
    case u'd':
      return DateOrder::kDayMonthYear;
    case u'y':
      return DateOrder::kYearMonthDay;
    default:
      return DateOrder::kAny;
  }
}

void AppendOffset(int minutes, std::string& bytes) {
  bytes += minutes < 0 ? '-' : '+';
  AppendPadded(std::abs(minutes) / 60, 2, bytes);
  bytes += ':';
  AppendPadded(std::abs(minutes) % 60, 2, bytes);
}

}  // namespace TextFile
