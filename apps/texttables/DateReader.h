// Reads dates in ISO 8601, as IsoDate and IsoTimestamp write them.
//
//   ReadIsoDate(u"2020-01-05T10:30:00+02:00");  // {43835.4375, true, true, 120}
#pragma once

#include <optional>
#include <string_view>

#include "platform/OleAutomation.h"

namespace TextTables {

struct IsoDateTime {
  DATE date = 0;  // local date and time; a time alone is on the day 0
  bool hasDate = false;
  bool hasTime = false;
  std::optional<SHORT> offsetMinutes;
};

// A date (2020-01-05), a time (10:30, 10:30:00, 10:30:00.500), or both with "T" or a blank between
// them and perhaps an offset behind (Z, +02, +0200, +02:00). Of a second's decimals the first three
// count. Nothing for any other text and for days and times that do not exist.
std::optional<IsoDateTime> ReadIsoDate(std::u16string_view text) noexcept;

}  // namespace TextTables
