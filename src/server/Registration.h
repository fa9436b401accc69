// What the module writes down of itself in the registry.
#pragma once

#include "platform/ComTypes.h"

namespace quenra {

// Writes the entries of every creatable class. Stops at the first failure, without taking back what
// is written: E_FAIL when the module's file has no name that could be written, SELFREG_E_CLASS when
// the registry or the registrar of categories refuses.
HRESULT RegisterClasses();

// Takes the entries back; entries that are missing are no error. Goes on with the next class after
// a failure, and then answers SELFREG_E_CLASS.
HRESULT UnregisterClasses();

}  // namespace quenra
