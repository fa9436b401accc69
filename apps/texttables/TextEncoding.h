// UTF-16 text as bytes for terminals, files and pipes.
//
//   AppendUtf8(output, u"Z\u00FCrich");
#pragma once

#include <string>
#include <string_view>

#include "Output.h"

namespace TextTables {

// A code point read from UTF-16, and how many code units it took. A lone surrogate comes back as
// itself.
struct CodePoint {
  char32_t value;
  std::size_t units;
};
inline CodePoint CodePointAt(std::u16string_view text, std::size_t index) noexcept {
  const char16_t unit = text[index];
  if ((unit & 0xFC00) == 0xD800 && index + 1 < text.size() &&
      (text[index + 1] & 0xFC00) == 0xDC00) {
    const auto high = static_cast<char32_t>(unit - 0xD800);
    return {0x10000 + (high << 10) + static_cast<char32_t>(text[index + 1] - 0xDC00), 2};
  }
  return {unit, 1};
}
inline bool IsSurrogate(char32_t value) noexcept { return (value & 0xFFFFF800) == 0xD800; }

// Writes the UTF-8 bytes of `value`, one to four, and answers the place behind them.
char* WriteUtf8(char* place, char32_t value) noexcept;

// Text of a table. A lone surrogate, which UTF-8 cannot spell, becomes U+FFFD.
void AppendUtf8(Output& output, std::u16string_view text);
std::string Utf8(std::u16string_view text);

// A file name as the system spells it, byte for byte, so that it can be used again. On Windows the
// name in UTF-8.
std::string FileNameBytes(std::u16string_view name);

// A message's text. Messages name files, which are spelled as FileNameBytes does; any other lone
// surrogate becomes U+FFFD.
std::string MessageBytes(std::u16string_view text);

}  // namespace TextTables
