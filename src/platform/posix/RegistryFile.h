// The file that stands for HKEY_CLASSES_ROOT, as a tree in memory.
//
//   RegistryKey root;
//   LSTATUS result = ReadRegistry(root);
//   if (const RegistryKey* key = root.Find(path)) ...
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"

// Less-than without regard to case, code unit by code unit.
struct RegistryNameOrder {
  using is_transparent = void;
  bool operator()(std::u16string_view a, std::u16string_view b) const noexcept;
};

struct RegistryKey {
  std::map<std::u16string, RegistryKey, RegistryNameOrder> subkeys;
  std::map<std::u16string, std::u16string, RegistryNameOrder> values;  // "" is the default value

  // Null when there is no such key. The path may be empty.
  RegistryKey* Find(const std::vector<std::u16string>& path);
  // Creates what is missing; `created` says whether the last one was.
  RegistryKey& FindOrCreate(const std::vector<std::u16string>& path, bool& created);
};

// The names between backslashes; empty names are left out. Nullopt when a name cannot be written.
std::optional<std::vector<std::u16string>> SplitRegistryPath(std::u16string_view path);

// A file that is missing is an empty tree. ERROR_REGISTRY_CORRUPT when it cannot be understood.
LSTATUS ReadRegistry(RegistryKey& root);

// Reads the file under its lock, lets `change` work on the tree and, when that answers
// ERROR_SUCCESS, writes the tree back. The file is as before after any failure.
LSTATUS UpdateRegistry(const std::function<LSTATUS(RegistryKey& root)>& change);
