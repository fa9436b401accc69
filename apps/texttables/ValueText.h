// Values as plain text, for the formats that have no types of their own.
#pragma once

#include <string>

#include "Output.h"
#include "platform/OleAutomation.h"

namespace TextTables {

// Everything but text: numbers, ISO 8601 dates, and nothing for blank values.
void AppendPlainValue(Output& output, const VARIANT& value, LONG fieldType);

// A value of a kind that no text table has, converted to text by the host's rules. Empty when
// there is no conversion.
std::u16string ConvertedText(const VARIANT& value);

}  // namespace TextTables
