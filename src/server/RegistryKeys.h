// Texts and whole keys below HKEY_CLASSES_ROOT.
//
//   LSTATUS result = WriteRegistryText(u"workshop.Widget\\CLSID", {}, u"{...}");
#pragma once

#include <string>

#include "platform/Registry.h"

namespace quenra {

// Creates the key if it is missing. An empty `name` is the default value.
LSTATUS WriteRegistryText(const std::u16string& path, const std::u16string& name,
                          const std::u16string& text);

// Creates the key if it is missing.
LSTATUS CreateRegistryKey(const std::u16string& path);

// Deletes the key with its subkeys. A key that does not exist is no error.
LSTATUS DeleteRegistryTree(const std::u16string& path);

}  // namespace quenra
