// JSON, as the program writes it.
//
//   AppendJsonString(output, u"a\"b");  // "a\"b"
//
// Strings carry other text than ASCII as UTF-8; control characters and lone surrogates are escaped.
// Numbers that JSON does not know are the strings "inf", "-inf" and "nan".
#pragma once

#include <cstdint>
#include <string_view>

#include "Output.h"

namespace TextTables {

void AppendJsonString(Output& output, std::u16string_view text);
// ASCII only.
void AppendJsonString(Output& output, std::string_view text);

void AppendJsonNumber(Output& output, double value);
void AppendJsonNumber(Output& output, float value);

}  // namespace TextTables
