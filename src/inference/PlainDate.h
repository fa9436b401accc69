// Reads plain dates: a year of four digits, months, days and times of two, and nothing else, as
// most programs write them.
//
//   PlainDate date;
//   if (HasPlainDates(format) && ReadPlainDate(format, u"2024-02-29 10:30:00", date)) ...
//
// What is refused here is not refused for good: the caller goes on with the exact way, which gives
// the same value for everything that is read here.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/CoreSupport/OleDays.h"
#include "inference/NarrowUnits.h"
#include "schema/FieldDefinition.h"

namespace TextFile {

struct PlainDate {
  quenra::CivilDay day{};  // not checked against its month
  int seconds = 0;         // since midnight
};

namespace PlainDateSteps {

// Two digits; 100 or more for anything else.
template <class Character>
constexpr int TwoDigits(const Character* units) noexcept {
  const unsigned tens = static_cast<unsigned>(units[0]) - u'0';
  const unsigned ones = static_cast<unsigned>(units[1]) - u'0';
  return tens <= 9 && ones <= 9 ? static_cast<int>(tens * 10 + ones) : 100;
}

constexpr std::uint64_t ByteAt(unsigned index, std::uint64_t byte) noexcept {
  return byte << (8 * index);
}

// Eight characters at once, as differences from "0"; none when others than those at `first` and
// `second` are no digits, or these are. Each pair of digits is weighed in its first byte.
struct EightCharacters {
  std::uint64_t differences;
  std::uint64_t pairs;

  constexpr int Pair(unsigned index) const noexcept {
    return static_cast<int>(pairs >> (8 * index) & 0xFF);
  }
  constexpr unsigned Difference(unsigned index) const noexcept {
    return static_cast<unsigned>(differences >> (8 * index) & 0xFF);
  }
};
template <class Character>
[[gnu::always_inline]] inline bool ReadEight(const Character* units, unsigned first,
                                             unsigned second, EightCharacters& eight) noexcept {
  eight.differences = NarrowUnits<8>(units) ^ kDigitZeros;
  if (NotBelowTen(eight.differences) != (ByteAt(first, 0x80) | ByteAt(second, 0x80))) return false;
  const std::uint64_t digits = eight.differences & ~(ByteAt(first, 0xFF) | ByteAt(second, 0xFF));
  eight.pairs = digits * 10 + (digits >> 8);
  return true;
}

// Ten characters: "2024-02-29".
template <class Character>
[[gnu::always_inline]] inline bool ReadDayFromYear(const Character* units,
                                                   quenra::CivilDay& day) noexcept {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  EightCharacters eight;
  if (!ReadEight(units, 4, 7, eight)) return false;
  constexpr unsigned kFirstSeparator = u'-' ^ u'0';  // "-", "." and "/" follow one another
  static_assert((u'.' ^ u'0') == kFirstSeparator + 1 && (u'/' ^ u'0') == kFirstSeparator + 2);
  const unsigned separator = eight.Difference(4);
  if (separator - kFirstSeparator > 2 || separator != eight.Difference(7)) return false;
  day = {eight.Pair(0) * 100 + eight.Pair(2), eight.Pair(5), TwoDigits(units + 8)};
  return day.month >= 1 && day.month <= 12 && day.day >= 1 && day.day <= 31;
}

// Eight characters: "10:30:00".
template <class Character>
[[gnu::always_inline]] inline bool ReadTimeToSecond(const Character* units, int& seconds) noexcept {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  EightCharacters eight;
  constexpr unsigned kColon = u':' ^ u'0';
  if (!ReadEight(units, 2, 5, eight) || eight.Difference(2) != kColon ||
      eight.Difference(5) != kColon)
    return false;
  seconds = (eight.Pair(0) * 60 + eight.Pair(3)) * 60 + eight.Pair(6);
  return eight.Pair(0) <= 23 && eight.Pair(3) <= 59 && eight.Pair(6) <= 59;
}

// Ten characters: "2024-02-29", or with the year at the end.
template <class Character>
[[gnu::always_inline]] inline bool ReadDay(DateOrder order, const Character* units,
                                           quenra::CivilDay& day) noexcept {
  if (order == DateOrder::kYearMonthDay) return ReadDayFromYear(units, day);
  const Character separator = units[2];
  if (separator != u'-' && separator != u'.' && separator != u'/') return false;
  if (units[5] != separator) return false;

  const int first = TwoDigits(units);
  const int second = TwoDigits(units + 3);
  const int century = TwoDigits(units + 6);
  const int yearOfCentury = TwoDigits(units + 8);
  const bool dayFirst = order == DateOrder::kDayMonthYear;
  day = {century * 100 + yearOfCentury, dayFirst ? second : first, dayFirst ? first : second};
  return century < 100 && yearOfCentury < 100 && day.month >= 1 && day.month <= 12 &&
         day.day >= 1 && day.day <= 31;
}

// "T10:30", " 10:30" or the same with seconds.
template <class Character>
[[gnu::always_inline]] inline bool ReadTimeOfDay(std::basic_string_view<Character> text,
                                                 int& seconds) noexcept {
  if ((text.size() != 6 && text.size() != 9) || (text[0] != u'T' && text[0] != u' ')) return false;
  if (text.size() == 9) return ReadTimeToSecond(text.data() + 1, seconds);
  if (text[3] != u':') return false;
  const int hour = TwoDigits(text.data() + 1);
  const int minute = TwoDigits(text.data() + 4);
  seconds = (hour * 60 + minute) * 60;
  return hour <= 23 && minute <= 59;
}

template <class Character>
[[gnu::always_inline]] inline bool Read(const DateFieldFormat& format,
                                        std::basic_string_view<Character> text,
                                        PlainDate& date) noexcept {
  constexpr std::size_t kDayLength = 10;
  if (text.size() < kDayLength) return false;
  if (!ReadDay(format.order, text.data(), date.day)) return false;
  text.remove_prefix(kDayLength);
  if (format.type == FieldType::kDateOnly) return text.empty();
  return ReadTimeOfDay(text, date.seconds);
}

}  // namespace PlainDateSteps

// Whether values of the format may be plain.
constexpr bool HasPlainDates(const DateFieldFormat& format) noexcept {
  return (format.type == FieldType::kDate || format.type == FieldType::kDateOnly) &&
         format.order != DateOrder::kAny;
}

// Whether `text` is a plain value of the format, which may have plain ones. False for every other
// text, which says nothing about whether it is a date; `date`, a fresh one, is then unspecified.
inline bool ReadPlainDate(const DateFieldFormat& format, std::u16string_view text,
                          PlainDate& date) noexcept {
  return PlainDateSteps::Read(format, text, date);
}
// The same of the bytes of UTF-8.
inline bool ReadPlainDate(const DateFieldFormat& format, std::string_view text,
                          PlainDate& date) noexcept {
  return PlainDateSteps::Read(format, text, date);
}

}  // namespace TextFile
