// Dates and times as they are written into a table.
//
//   const DatePattern pattern(u"dd.MM.yyyy HH:mm");
//   pattern.Append(time, bytes);  // "05.01.2020 10:30"
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/OleAutomation.h"
#include "schema/FieldDefinition.h"

namespace TextFile {

// A pattern taken apart once for all values of a column.
//
// Letters: d, M, y, H, h, m, s in any number; the case of d and y does not matter, and m means the
// month as long as no hour has stood before it. One letter writes no leading zero, two write one;
// a year of fewer than three letters has two digits, else four. Hours count to 23, since nothing
// that is read back tells morning from afternoon: "t" writes nothing. Names of days are left out
// and names of months are written as numbers. Text in apostrophes and every other character is
// written as it stands.
class DatePattern {
 public:
  DatePattern() = default;
  explicit DatePattern(std::u16string_view pattern);

  bool empty() const noexcept { return parts_.empty(); }

  // Appends UTF-8. Milliseconds that are not zero follow the seconds as a fraction.
  void Append(const SYSTEMTIME& time, std::string& bytes) const;

 private:
  enum class Kind : std::uint8_t { kText, kDay, kMonth, kYear, kHour, kMinute, kSecond };
  struct Part {
    Kind kind;
    int letters;       // how often the letter stood
    std::string text;  // kText: UTF-8
  };

  void AddText(std::u16string_view text);

  std::vector<Part> parts_;
};

// The pattern that values of a column are written with: the column's own, else the table's, for
// days alone and times alone the part of it that they need.
std::u16string WritingPattern(const DateFieldFormat& format, FieldType type,
                              std::u16string_view tablePattern);

// The order of day, month and year in a pattern, as its first letter tells it; kAny for a pattern
// that begins otherwise.
DateOrder OrderOfPattern(std::u16string_view pattern) noexcept;

// Appends an offset from UTC as "+02:00".
void AppendOffset(int minutes, std::string& bytes);

}  // namespace TextFile
