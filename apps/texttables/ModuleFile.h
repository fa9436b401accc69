// Where the module is, and its entries.
#pragma once

#include <optional>
#include <string>

#include "platform/Modules.h"

namespace TextTables {

// The module that was installed with the program: beside it, else in the library folder. Throws a
// Refusal when there is none.
std::u16string InstalledModule();

// A full path for `fileName`, so that the system does not search its library folders for it.
std::u16string FullPath(const std::u16string& fileName);

// Loads the module that the user has named, else the one that was installed with the program.
// Throws UsageError when the first cannot be loaded, and a Refusal for the second.
HMODULE LoadModule(const std::optional<std::u16string>& named);

// The entry `name`; null when the module has none. `Function` is a pointer to its type.
template <class Function>
Function EntryOf(HMODULE module, const char* name) {
  // Through a neutral pointer: the compiler warns of a cast between unlike function types.
  return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
}

}  // namespace TextTables
