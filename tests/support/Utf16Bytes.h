// A text as the bytes of a file in UTF-16 with the low byte first.
#pragma once

#include <string>
#include <string_view>

inline std::string Utf16Bytes(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

inline std::string Utf16File(std::u16string_view text) { return "\xFF\xFE" + Utf16Bytes(text); }
