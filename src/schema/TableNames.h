// Which names a table may be given.
#pragma once

#include <string_view>

namespace TextFile {

// Empty for a name that a new table may have, else the reason against it: names that are empty,
// hold a path separator, mean a folder, belong to schema.ini, or that Windows reserves. Every
// system refuses the same names, so that folders can be moved between them.
std::u16string_view WhyNotATableName(std::u16string_view name) noexcept;

}  // namespace TextFile
