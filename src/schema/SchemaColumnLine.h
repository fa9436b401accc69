// One column line of schema.ini, such as Col2="First Name" Text Width 40.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "schema/FieldDefinition.h"

namespace TextFile {

// The zero-based column of a key: "Col" and a whole number from 1 to 1,000,000 in plain digits.
// Every other key is none.
std::optional<std::int32_t> ColumnOfKey(std::u16string_view key) noexcept;

// Applies the line `key`=`value` to `field`; what the line does not give stays. Throws ParseError.
void ParseColumnLine(std::u16string_view key, std::u16string_view value, FieldDefinition& field);

// What stands between the word Date and the end of the line, or a Width clause, so that the line is
// read back with this pattern: a blank and the pattern, with quotes where they are needed. Blanks
// in front of the pattern are dropped. Empty for a pattern that no line gives.
std::u16string DatePatternClause(std::u16string_view pattern, bool widthFollows);

}  // namespace TextFile
