// The switches and properties by which a host tunes how text tables are opened.
#pragma once

#include <string_view>

#include "host/interfaces/HostPropertySet.h"
#include "inference/OpenOptions.h"

namespace quenra {

// Throws an option's switch to its other position than the default; names are compared without
// regard to case. `reported` is what hosts receive in answer. False, and nothing changes, for an
// unknown name.
bool SetOpenOption(TextFile::OpenOptions& options, std::u16string_view name, bool& reported);

// Back to the default. False, and nothing changes, for an unknown name.
bool ClearOpenOption(TextFile::OpenOptions& options, std::u16string_view name);

// The field type version of one workspace: the property "FIELD_TYPE_VERSION" decides when it is
// there, else the host option "Use31FieldTypeMapping". `properties` may be null.
void ApplyFieldTypeVersion(TextFile::OpenOptions& options, HostPropertySet* properties);

}  // namespace quenra
