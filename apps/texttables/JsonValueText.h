// Values of rows as natural JSON: numbers, texts, dates in ISO 8601, null for blanks.
//
//   output.Append(JsonKey(column.name));
//   AppendJsonValue(output, slot.value, column.type);
#pragma once

#include <string>
#include <string_view>

#include "Output.h"
#include "platform/OleAutomation.h"

namespace TextTables {

// The name in quotes with the colon behind it.
std::string JsonKey(std::u16string_view name);

void AppendJsonValue(Output& output, const VARIANT& value, LONG fieldType);

}  // namespace TextTables
