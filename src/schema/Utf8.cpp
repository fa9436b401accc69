#include "schema/Utf8.h"

namespace TextFile {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHigh(char16_t unit) noexcept { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLow(char16_t unit) noexcept { return unit >= 0xDC00 && unit < 0xE000; }

// The code point at `i`, and whether its units were well formed; `i` moves behind it.
struct CodePoint {
  char32_t value;
  bool wellFormed;
};

CodePoint TakeCodePoint(std::u16string_view text, std::size_t& i) noexcept {
  const char16_t unit = text[i++];
  if (IsHigh(unit) && i < text.size() && IsLow(text[i]))
    return {0x10000u + ((unit & 0x3FFu) << 10) + (text[i++] & 0x3FFu), true};
  if (IsHigh(unit) || IsLow(unit)) return {kReplacement, false};
  return {unit, true};
}

constexpr char Byte(char32_t value) noexcept { return static_cast<char>(value); }

char* WriteCodePoint(char32_t point, char* to) noexcept {
  if (point < 0x80) {
    *to++ = Byte(point);
  } else if (point < 0x800) {
    *to++ = Byte(0xC0 | point >> 6);
    *to++ = Byte(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    *to++ = Byte(0xE0 | point >> 12);
    *to++ = Byte(0x80 | (point >> 6 & 0x3F));
    *to++ = Byte(0x80 | (point & 0x3F));
  } else {
    *to++ = Byte(0xF0 | point >> 18);
    *to++ = Byte(0x80 | (point >> 12 & 0x3F));
    *to++ = Byte(0x80 | (point >> 6 & 0x3F));
    *to++ = Byte(0x80 | (point & 0x3F));
  }
  return to;
}

}  // namespace

void AppendUtf8(std::u16string_view text, std::string& bytes) {
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] < 0x80) {
      bytes += static_cast<char>(text[i++]);
      continue;
    }
    char character[4];
    bytes.append(character, WriteCharacter(text, i, character));
  }
}

char* WriteCharacter(std::u16string_view text, std::size_t& i, char* to) noexcept {
  return WriteCodePoint(TakeCodePoint(text, i).value, to);
}

std::u16string_view CutText(std::u16string_view text, std::size_t length) noexcept {
  if (text.size() <= length) return text;
  if (length > 0 && IsHigh(text[length - 1]) && IsLow(text[length])) --length;
  return text.substr(0, length);
}

bool IsWellFormedText(std::u16string_view text) noexcept {
  for (std::size_t i = 0; i < text.size();)
    if (!TakeCodePoint(text, i).wellFormed) return false;
  return true;
}

}  // namespace TextFile
