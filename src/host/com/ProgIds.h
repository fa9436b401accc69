// The ProgIDs of classes.
//
// On Windows the registry knows them. Elsewhere each module tells those of its own classes before
// it hands out objects:
//
//   RegisterProgId(CLSID_Widget, u"workshop.Widget.1");
#pragma once

#include <string_view>

#include "platform/OleAutomation.h"

namespace quenra {

// Tells the ProgID of a class of this module; a second call for the class replaces the first. Does
// nothing on Windows. Safe from any thread; may throw std::bad_alloc.
void RegisterProgId(const CLSID& classId, std::u16string_view progId);

// The ProgID as a new BSTR. REGDB_E_CLASSNOTREG and null when nobody knows the class; `progId` must
// not be null.
HRESULT ProgIdOfClass(const CLSID& classId, BSTR* progId) noexcept;

}  // namespace quenra
