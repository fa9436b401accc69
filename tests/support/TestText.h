// Text between UTF-8, which tests print and write into files, and UTF-16.
#pragma once

#include <string>
#include <string_view>

#include "platform/CodePages.h"
#include "platform/OleText.h"

namespace quenra::test {

// Lone surrogates become U+FFFD.
inline std::string ToUtf8(std::u16string_view text) {
  if (text.empty()) return {};
  const int units = static_cast<int>(text.size());
  const auto convert = [&](char* bytes, int size) {
    return ::WideCharToMultiByte(CP_UTF8, 0, AsOle(text.data()), units, bytes, size, nullptr,
                                 nullptr);
  };
  std::string bytes(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  convert(bytes.data(), static_cast<int>(bytes.size()));
  return bytes;
}

inline std::u16string ToUtf16(std::string_view bytes) {
  if (bytes.empty()) return {};
  const int length = static_cast<int>(bytes.size());
  const auto convert = [&](char16_t* text, int size) {
    return ::MultiByteToWideChar(CP_UTF8, 0, bytes.data(), length, AsOle(text), size);
  };
  std::u16string text(static_cast<std::size_t>(convert(nullptr, 0)), u'\0');
  convert(text.data(), static_cast<int>(text.size()));
  return text;
}

}  // namespace quenra::test
