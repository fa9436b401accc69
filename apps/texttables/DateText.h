// Dates in ISO 8601.
//
//   output.Append(IsoDate(43835.4375, DateParts::kBoth).View());  // 2020-01-05T10:30:00
#pragma once

#include <cstddef>
#include <string_view>

#include "host/interfaces/HostTimestampOffset.h"
#include "platform/OleAutomation.h"

namespace TextTables {

enum class DateParts { kBoth, kDate, kTime };

// What a field's type code says of its dates.
DateParts DatePartsOfField(LONG fieldType) noexcept;

// A text of its own, without an allocation. Empty when there is no such date.
struct IsoText {
  char text[40] = {};
  std::size_t length = 0;

  std::string_view View() const noexcept { return {text, length}; }
};

// Milliseconds are written when there are any. Empty when `date` is outside the years 100..9999.
IsoText IsoDate(DATE date, DateParts parts) noexcept;

// Date and time followed by the offset: +02:00, -03:30, +00:00.
IsoText IsoTimestamp(DATE date, int offsetMinutes) noexcept;

// Seconds since 1970-01-01 UTC as 2020-01-05T10:30:00Z.
IsoText IsoUnixTime(LONG seconds) noexcept;

// The two values of the host's timestamp object.
struct Timestamp {
  DATE date = 0.0;
  SHORT offsetMinutes = 0;
};

// False when `object` is null or no such object.
bool ReadTimestamp(IUnknown* object, Timestamp& timestamp) noexcept;

}  // namespace TextTables
