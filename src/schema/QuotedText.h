// Texts as values of a delimited file, the short way: one pass from UTF-16 to bytes in the file.
//
//   if (QuotedText::Takes(u',', u'"')) {
//     const QuotedText texts(',', '"');
//     end = texts.Write(u"a, b", place);  // "a, b" between quotes
//   }
#pragma once

#include <cstddef>
#include <string_view>

#include "schema/CleanUnits.h"

namespace TextFile {

// Whether a mark is ASCII and nothing that means something else in a file.
bool IsUsualMark(char16_t mark) noexcept;

class QuotedText {
 public:
  // Usual marks, different, and a quote that is no white space.
  static bool Takes(char16_t delimiter, char16_t quote) noexcept;

  // Three bytes a unit at most, and quotes around them.
  static constexpr std::size_t Room(std::size_t units) noexcept { return 3 * units + 2; }

  // What stands between values and around texts.
  QuotedText(char delimiter, char quote) noexcept : clean_(delimiter, quote) {}

  // Writes `text` as UTF-8 with each quote doubled, between quotes when it holds the delimiter or a
  // line end, or when the first character that is not white space is a quote. A lone surrogate
  // becomes U+FFFD. Answers the end; null, and nothing of use is written, when a character is to be
  // dropped (a zero or a byte 1A): its neighbours may make one character then. `to` has
  // Room(text.size()).
  char* Write(std::u16string_view text, char* to) const noexcept {
    const std::size_t clean = clean_.Write(text.data(), text.size(), to);
    return clean == text.size() ? to + clean : Finish(text, clean, to);
  }

  // Write, where the first `done` units are clean and written, and the next one is not.
  char* Finish(std::u16string_view text, std::size_t done, char* to) const noexcept;

  char Delimiter() const noexcept { return clean_.Delimiter(); }
  char Quote() const noexcept { return clean_.Quote(); }

 private:
  CleanUnits clean_;
};

}  // namespace TextFile
