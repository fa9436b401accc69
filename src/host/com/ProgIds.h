// The ProgIDs of classes, as the registry knows them.
#pragma once

#include "platform/OleAutomation.h"

namespace quenra {

// The ProgID as a new BSTR. REGDB_E_CLASSNOTREG and null when the class is not registered; `progId`
// must not be null.
HRESULT ProgIdOfClass(const CLSID& classId, BSTR* progId) noexcept;

}  // namespace quenra
