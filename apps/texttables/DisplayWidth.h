// Text on a terminal: what it shows and how many columns that takes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TextTables {

// `text` with control characters spelled out (\t, \n, \r, \u001b), so that a table stays aligned
// and no file's content can command the terminal.
std::u16string WithoutControls(std::u16string_view text);

// Columns of a terminal: two for East Asian wide characters and emoji, none for combining marks.
std::size_t DisplayWidth(std::u16string_view text) noexcept;

}  // namespace TextTables
