// Reads dates, times and date-times with an offset out of field texts, by a scanner of our own:
// no locale's date parsing takes part.
//
//   DateClass found;
//   ClassifyDate(u"05.01.2020 10:30", 340, false, found);  // kDate; day first and month first
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/OleAutomation.h"
#include "schema/FieldDefinition.h"

namespace TextFile {

// A set of date orders.
class DateOrders {
 public:
  constexpr void Add(DateOrder order) noexcept { bits_ |= Bit(order); }
  constexpr bool Contains(DateOrder order) const noexcept { return (bits_ & Bit(order)) != 0; }
  constexpr void IntersectWith(DateOrders other) noexcept { bits_ &= other.bits_; }
  constexpr bool empty() const noexcept { return bits_ == 0; }
  constexpr int size() const noexcept {
    return (bits_ >> 1 & 1) + (bits_ >> 2 & 1) + (bits_ >> 3 & 1);
  }
  // The only order of a set of size 1, else kAny.
  constexpr DateOrder Single() const noexcept {
    if (size() != 1) return DateOrder::kAny;
    if (Contains(DateOrder::kMonthDayYear)) return DateOrder::kMonthDayYear;
    return Contains(DateOrder::kDayMonthYear) ? DateOrder::kDayMonthYear : DateOrder::kYearMonthDay;
  }
  constexpr bool operator==(const DateOrders&) const noexcept = default;

 private:
  static constexpr unsigned Bit(DateOrder order) noexcept {
    return 1u << static_cast<unsigned>(order);
  }
  unsigned bits_ = 0;
};

struct DateClass {
  FieldType type = FieldType::kUndetermined;
  DateOrders orders;  // under which the text is a date; empty for a time alone
  bool fractionalSeconds = false;
};

// What the scanner fills. Components that the text does not have are 0.
struct ParsedDateTime {
  SYSTEMTIME time{};  // the day is not checked against its month; wDayOfWeek stays 0
  bool fractionalSeconds = false;
  std::int16_t offsetMinutes = 0;  // how far the time is ahead of UTC
};

// Which kind of date a text is: kDate, kTimestampOffset or kDateOnly, and with `allowTimeOnly`
// kTimeOnly. Below field type version 320 only kDate, whose time may be missing. False for every
// other text; `found` is then unspecified.
bool ClassifyDate(std::u16string_view text, std::uint32_t version, bool allowTimeOnly,
                  DateClass& found) noexcept;

// Reads the whole text as a value of the format's type, order and version. Order kAny takes the
// first of month, day and year first that fits. False leaves `value` unspecified.
bool ParseDateTime(const DateFieldFormat& format, std::u16string_view text,
                   ParsedDateTime& value) noexcept;

// The parts, for tests and for each other. Each starts at `position` (a UTF-16 index) and moves it
// behind what it has read; after a failure it is unspecified.
bool ParseDatePart(std::u16string_view text, std::size_t& position, DateOrder order,
                   SYSTEMTIME& time) noexcept;
bool ParseTimePart(std::uint32_t version, std::u16string_view text, std::size_t& position,
                   ParsedDateTime& value) noexcept;
bool ParseOffsetPart(std::u16string_view text, std::size_t& position,
                     std::int16_t& offsetMinutes) noexcept;

}  // namespace TextFile
