// The file that stands for HKEY_CLASSES_ROOT.
//
//   RegistryKey root;
//   LSTATUS result = ReadRegistry(root);
//   if (const RegistryKey* key = root.Find(path)) ...
#pragma once

#include <functional>

#include "platform/Registry.h"
#include "platform/posix/RegistryTree.h"

// A file that is missing is an empty tree. ERROR_REGISTRY_CORRUPT when it cannot be understood,
// ERROR_BAD_FILE_TYPE for anything but a regular file, which is not opened, and
// ERROR_FILE_TOO_LARGE for one that is larger than any registry.
LSTATUS ReadRegistry(RegistryKey& root);

// Reads the file under its lock, lets `change` work on the tree and, when that answers
// ERROR_SUCCESS, writes the tree back. The file is as before after any failure.
LSTATUS UpdateRegistry(const std::function<LSTATUS(RegistryKey& root)>& change);
