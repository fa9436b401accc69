// Bytes of one line to UTF-16. Each function replaces `line`.
#pragma once

#include <cstddef>
#include <string_view>

#include "reading/UnitBuffer.h"

namespace TextFile {

// Finds the line feed that ends the line at the start of `bytes`, and decodes the line on the way.
// Answers its length in bytes; kNoPlainLine, and `line` is unspecified, when it holds a zero, when
// `line` has no room for it, when it ends within the last bytes or is not well-formed UTF-8 (or not
// ASCII, with `asUtf8` false).
inline constexpr std::size_t kNoPlainLine = static_cast<std::size_t>(-1);
[[nodiscard]] std::size_t WidenLine(std::string_view bytes, bool asUtf8, UnitBuffer& line);

// Ill-formed sequences become U+FFFD.
void DecodeUtf8(std::string_view bytes, UnitBuffer& line);

// False when `bytes` are not well-formed UTF-8; `line` is then unspecified.
[[nodiscard]] bool DecodeStrictUtf8(std::string_view bytes, UnitBuffer& line);

// The process's ANSI code page; bytes without a meaning become what the system makes of them.
void DecodeAnsi(std::string_view bytes, UnitBuffer& line);

// Two bytes a unit, low byte first; an odd last byte is dropped.
void DecodeUtf16LE(std::string_view bytes, UnitBuffer& line);

}  // namespace TextFile
