// Numbers as they are written into a table.
#pragma once

#include <string>

#include "inference/NumberParsing.h"
#include "schema/TableSchema.h"

namespace TextFile::NumberFormat {

// How many digits of a kSingle or kDouble follow the decimal symbol.
int DigitsOf(const Settings& settings, FieldType type) noexcept;

// Appends the number of a numeric type as UTF-8. Whole numbers have no grouping; floating-point
// numbers are in fixed notation with the table's NumberDigits, or 7 (kSingle) and 15 (kDouble)
// digits when the section does not give them, behind the table's decimal symbol.
void AppendNumber(const Settings& settings, FieldType type, const NumberValue& value,
                  std::string& bytes);

// The same without the shorter way for usual numbers, which writes the same bytes.
void AppendNumberExactly(const Settings& settings, FieldType type, const NumberValue& value,
                         std::string& bytes);

// AppendNumber with at most `width` characters: digits behind the decimal symbol go until it fits.
// False, and nothing is appended, when the whole part alone is too long.
[[nodiscard]] bool AppendNumberWithin(const Settings& settings, FieldType type,
                                      const NumberValue& value, std::size_t width,
                                      std::string& bytes);

}  // namespace TextFile::NumberFormat
