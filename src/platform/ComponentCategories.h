// The component categories that classes implement, kept by the system's registrar.
//
//   RegisterImplementedCategory(CLSID_Widget, CATID_Tools);
//
// On Windows the registrar is asked through ICatRegister. Elsewhere these write what it writes: the
// key "Implemented Categories\<category>" of the class.
#pragma once

#include "platform/ComTypes.h"

// A category that the class already has is no error. On Windows the calling thread's apartment is
// used, or one made for the call.
PLATFORM_API HRESULT RegisterImplementedCategory(REFCLSID classId, REFGUID category) noexcept;

// Takes the category back; one that the class does not have is no error.
PLATFORM_API HRESULT UnregisterImplementedCategory(REFCLSID classId, REFGUID category) noexcept;
