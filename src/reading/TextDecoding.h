// Bytes of one line to UTF-16. Each function replaces `line`.
#pragma once

#include <string_view>

#include "reading/UnitBuffer.h"

namespace TextFile {

// Ill-formed sequences become U+FFFD.
void DecodeUtf8(std::string_view bytes, UnitBuffer& line);

// False when `bytes` are not well-formed UTF-8; `line` is then unspecified.
[[nodiscard]] bool DecodeStrictUtf8(std::string_view bytes, UnitBuffer& line);

// The process's ANSI code page; bytes without a meaning become what the system makes of them.
void DecodeAnsi(std::string_view bytes, UnitBuffer& line);

// Two bytes a unit, low byte first; an odd last byte is dropped.
void DecodeUtf16LE(std::string_view bytes, UnitBuffer& line);

}  // namespace TextFile
