// One column line of schema.ini, such as Col2="First Name" Text Width 40.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "schema/FieldDefinition.h"

namespace TextFile {

// The zero-based column of a key: "Col" and a whole number from 1 to 1,000,000 in plain digits.
// Every other key is none.
std::optional<std::int32_t> ColumnOfKey(std::u16string_view key) noexcept;

// Applies the line `key`=`value` to `field`; what the line does not give stays. Throws ParseError.
void ParseColumnLine(std::u16string_view key, std::u16string_view value, FieldDefinition& field);

}  // namespace TextFile
