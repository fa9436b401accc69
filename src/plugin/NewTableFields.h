// The columns of a new table, from the fields that the host asks for.
#pragma once

#include <vector>

#include "host/interfaces/HostFields.h"
#include "schema/FieldDefinition.h"

namespace quenra {

// 0x80040203 when a field's type cannot stand in a text table (7, 8, 9 and 12); failures of the
// host's objects are handed on. `definitions` is complete after S_OK only.
HRESULT DefinitionsFrom(HostFieldCollection& fields,
                        std::vector<TextFile::FieldDefinition>& definitions);

}  // namespace quenra
