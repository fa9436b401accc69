#include "JsonText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "NumberText.h"
#include "TextEncoding.h"

namespace TextTables {

namespace {

constexpr std::size_t kUnitsAtOnce = 8192;
constexpr std::size_t kGreatestEscape = 6;  // \uXXXX

// Whether a character below 128 stands for itself inside a string.
constexpr std::array<bool, 128> kPlain = [] {
  std::array<bool, 128> plain{};
  for (std::size_t i = 0x20; i < plain.size(); ++i) plain[i] = i != '"' && i != '\\' && i != 0x7F;
  return plain;
}();

// The letter of the short escape, or 0.
char ShortEscape(char32_t value) {
  switch (value) {
    case '"':
      return '"';
    case '\\':
      return '\\';
    case '\b':
      return 'b';
    case '\f':
      return 'f';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\t':
      return 't';
    default:
      return 0;
  }
}

char* WriteUnicodeEscape(char* place, char32_t value) {
  constexpr char kDigits[] = "0123456789abcdef";
  *place++ = '\\';
  *place++ = 'u';
  for (int shift = 12; shift >= 0; shift -= 4) *place++ = kDigits[(value >> shift) & 0xF];
  return place;
}

char* WriteSpecial(char* place, char32_t value) {
  if (const char letter = ShortEscape(value)) {
    *place++ = '\\';
    *place++ = letter;
    return place;
  }
  // DEL and the C1 controls are legal in JSON, but a terminal would obey them.
  if (value < 0xA0 || IsSurrogate(value)) return WriteUnicodeEscape(place, value);
  return WriteUtf8(place, value);
}

template <class Number>
void AppendNumber(Output& output, Number value) {
  if (std::isnan(value)) return output.Append("\"nan\"");
  if (std::isinf(value)) return output.Append(value < 0 ? "\"-inf\"" : "\"inf\"");
  AppendShortest(output, value);
}

}  // namespace

void AppendJsonString(Output& output, std::u16string_view text) {
  output.Append('"');
  std::size_t i = 0;
  while (i < text.size()) {
    const std::size_t end = std::min(text.size(), i + kUnitsAtOnce);
    char* place = output.Reserve((end - i) * kGreatestEscape + 4);
    while (i < end) {
      const char16_t unit = text[i];
      if (unit < kPlain.size() && kPlain[unit]) {
        *place++ = static_cast<char>(unit);
        ++i;
        continue;
      }
      const CodePoint point = CodePointAt(text, i);
      place = WriteSpecial(place, point.value);
      i += point.units;
    }
    output.Commit(place);
  }
  output.Append('"');
}

void AppendJsonString(Output& output, std::string_view text) {
  AppendJsonString(output, std::u16string(text.begin(), text.end()));
}

void AppendJsonNumber(Output& output, double value) { AppendNumber(output, value); }
void AppendJsonNumber(Output& output, float value) { AppendNumber(output, value); }

}  // namespace TextTables
