// UTF-16 text to the bytes that are written.
#pragma once

#include <string>
#include <string_view>

namespace TextFile {

// Appends `text` as UTF-8. A lone surrogate becomes U+FFFD.
void AppendUtf8(std::u16string_view text, std::string& bytes);

// Whether `text` can be written as UTF-8 and read back: it has no lone surrogate.
bool IsWellFormedText(std::u16string_view text) noexcept;

}  // namespace TextFile
