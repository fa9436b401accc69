// Turns JSON values into the variants that a table's fields take.
//
//   quenra::Variant value;
//   if (!ReadFieldValue(document, node, fields[i].type, value)) ...  // the field cannot hold it
//
// A value is plain JSON, or an object that names its variant kind, as rows --format typed prints
// it.
#pragma once

#include "Fields.h"
#include "JsonReader.h"
#include "host/CoreSupport/Variant.h"

namespace TextTables {

// The node at `index` as a field of that type takes it: VT_NULL for null, else the kind of variant
// that the type has; VT_UNKNOWN for dates with an offset. False, and VT_EMPTY, when the value
// cannot become one without a loss, and for arrays and objects that name no kind.
bool ReadFieldValue(const JsonDocument& document, std::size_t index, LONG fieldType,
                    quenra::Variant& value);

}  // namespace TextTables
