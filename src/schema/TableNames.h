// Which names a table may be given.
#pragma once

#include <string>
#include <string_view>

namespace TextFile {

// Empty for a name that a new table may have, else the reason against it: names that are empty,
// hold a path separator, mean a folder, belong to schema.ini, or that Windows reserves. Every
// system refuses the same names, so that folders can be moved between them.
std::u16string_view WhyNotATableName(std::u16string_view name) noexcept;

// Whether the name is that of schema.ini or of its temporary companion.
bool IsReservedFile(std::u16string_view name) noexcept;

// The name that a table's file `name` has while it is not finished or about to go. No listing takes
// it for a table, and the same file has the same one again, so that nothing piles up after crashes.
std::u16string TemporaryNameOf(std::u16string_view name, std::u16string_view extension);

}  // namespace TextFile
