// Where the module is.
#pragma once

#include <string>

namespace TextTables {

// The module that was installed with the program: beside it, else in the library folder. Throws a
// Refusal when there is none.
std::u16string InstalledModule();

// A full path for `fileName`, so that the system does not search its library folders for it.
std::u16string FullPath(const std::u16string& fileName);

}  // namespace TextTables
