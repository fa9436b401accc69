// UTF-16 text to the bytes that are written.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TextFile {

// Appends `text` as UTF-8. A lone surrogate becomes U+FFFD.
void AppendUtf8(std::u16string_view text, std::string& bytes);

// Writes the character at `i` as AppendUtf8 does, moves `i` behind it and answers the end of what
// it has written: three bytes a code unit at most.
char* WriteCharacter(std::u16string_view text, std::size_t& i, char* to) noexcept;

// The first `length` code units at most, without the first half of a surrogate pair at the end.
std::u16string_view CutText(std::u16string_view text, std::size_t length) noexcept;

// Whether `text` can be written as UTF-8 and read back: it has no lone surrogate.
bool IsWellFormedText(std::u16string_view text) noexcept;

}  // namespace TextFile
