// How many columns text takes on a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TextTables {

// Columns of a terminal: see ColumnsOf in host/CoreSupport/CharacterWidth.h.
std::size_t DisplayWidth(std::u16string_view text) noexcept;

// `text` if it takes no more than `columns` columns, at least one; else its beginning and "…",
// which together take no more.
std::u16string CutToWidth(std::u16string_view text, std::size_t columns);

}  // namespace TextTables
