// How many columns text takes on a terminal.
#pragma once

#include <cstddef>
#include <string_view>

namespace TextTables {

// Columns of a terminal: two for East Asian wide characters and emoji, none for combining marks.
std::size_t DisplayWidth(std::u16string_view text) noexcept;

}  // namespace TextTables
