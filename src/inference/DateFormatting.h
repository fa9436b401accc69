// Dates and times as they are written into a table.
//
//   const DatePattern pattern(u"dd.MM.yyyy HH:mm");
//   pattern.Append(time, bytes);  // "05.01.2020 10:30"
#pragma once

#include <array>
#include <cstddef>
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

  // The same at `to`, the short way; `time` is one that exists, with a year of at most four digits.
  // Answers the end; null, and nothing of use is written, when there are milliseconds to write.
  // `to` has Room().
  char* Write(const SYSTEMTIME& time, char* to) const noexcept;
  std::size_t Room() const noexcept { return steps_.size() * sizeof(Step) + kStepText; }

  // Whether the character is in the text that stands between the numbers.
  bool HasText(char character) const noexcept;

 private:
  enum class Kind : std::uint8_t { kText, kDay, kMonth, kYear, kHour, kMinute, kSecond };
  struct Part {
    Kind kind;
    int letters;       // how often the letter stood
    std::string text;  // kText: UTF-8
  };

  // What Write does for a part: some text, then a number of one or two digits. Longer texts and
  // numbers take more than one step.
  enum class Number : std::uint8_t {
    kNone,
    kDay,
    kMonth,
    kCentury,
    kYear,
    kHour,
    kMinute,
    kSecond
  };
  static constexpr std::size_t kStepText = 8;
  struct Step {
    std::array<char, kStepText> text;
    std::uint8_t length;  // of the text
    Number number;
    bool padded;  // to two digits
  };

  void AddText(std::u16string_view text);
  void TrimEnd();
  void AddSteps(const Part& part);
  void AddNumber(Number number, bool padded);

  std::vector<Part> parts_;
  std::vector<Step> steps_;
};

// The pattern that values of a column are written with: the column's own, else the table's, for
// days alone and times alone the part of it that they need. Where none of both says anything, the
// year comes first.
std::u16string WritingPattern(const DateFieldFormat& format, FieldType type,
                              std::u16string_view tablePattern);

// The order of day, month and year in a pattern, as its first letter tells it; kAny for a pattern
// that begins otherwise.
DateOrder OrderOfPattern(std::u16string_view pattern) noexcept;

// Appends an offset from UTC as "+02:00".
void AppendOffset(int minutes, std::string& bytes);

}  // namespace TextFile
