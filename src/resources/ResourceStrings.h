// The module's texts in the user's language.
//
//   AttachResources(module);                  // when the module is loaded
//   LoadResourceString(kTextFileText);        // u"Text File"
#pragma once

#include <cstdint>
#include <string>

#include "platform/Modules.h"

namespace quenra {

// Keeps the module's own handle and finds the module with its texts in the user's language, which
// is the module itself when there is none. Called once, before any other use of the module.
void AttachResources(HMODULE module) noexcept;

// Lets go of the texts' module when that is another one. No text can be loaded afterwards.
void DetachResources() noexcept;

// The module's own handle; null when it is not attached.
HMODULE OwnModule() noexcept;

// A text of the string table; a text that the translation lacks comes from the module itself.
// Empty when there is none.
std::u16string LoadResourceString(std::uint32_t id);

}  // namespace quenra
