// UTF-16 text as ASCII, for the messages of failed tests.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

// In quotes; everything beyond printable ASCII as \uXXXX.
inline std::string Show(std::u16string_view text) {
  std::string shown = "\"";
  for (const char16_t unit : text) {
    if (unit >= 0x20 && unit < 0x7F) {
      shown.push_back(static_cast<char>(unit));
    } else {
      char escape[8];
      std::snprintf(escape, sizeof(escape), "\\u%04X", static_cast<unsigned>(unit));
      shown += escape;
    }
  }
  return shown + '"';
}
