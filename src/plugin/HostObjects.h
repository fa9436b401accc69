// Putting together host objects.
#pragma once

#include <memory>

#include "host/com/ComPtr.h"
#include "host/interfaces/HostClassIdentifier.h"
#include "host/interfaces/HostFields.h"
#include "schema/FieldList.h"

namespace quenra {

// A new host object that holds `classId`. E_POINTER for a null result; null and E_FAIL when the
// host cannot make one. The caller releases it.
HRESULT NewClassIdentifier(const CLSID& classId, HostClassIdentifier** result) noexcept;

// The host's field collection of a table's fields, in order. Of very many fields it asks for those
// that are wanted, as long as it lives, if the host's collection can. `*result` is left alone, and
// the failure of the host's object is answered, when one cannot be made. May throw std::bad_alloc.
HRESULT NewFieldCollection(const std::shared_ptr<const TextFile::FieldList>& fields,
                           ComPtr<HostFieldCollection>& result);

}  // namespace quenra
