// The keys and values of HKEY_CLASSES_ROOT in memory, and as the text of a file.
//
//   RegistryKey root;
//   if (!ParseRegistry(u"[a\\b]\n@=\"x\"\n", root)) ...
//   root.Find({u"a", u"b"})->values[u""];  // u"x"
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ComTypes.h"

// As on Windows. Work on a tree calls itself for each level, and no more than these.
inline constexpr std::size_t kDeepestRegistryPath = 512;  // names
inline constexpr std::size_t kLongestRegistryName = 255;  // UTF-16 code units

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

// The names between backslashes; empty names are left out. Nullopt when a name cannot be written,
// and for more or longer names than there may be.
std::optional<std::vector<std::u16string>> SplitRegistryPath(std::u16string_view path);

// Adds what the text says to `root`. False, and `root` is of no use, when a line is neither a key,
// a value, a comment nor empty.
PLATFORM_API bool ParseRegistry(std::u16string_view text, RegistryKey& root);

// The text that gives the tree back, in the bytes of a file.
PLATFORM_API std::string RegistryText(const RegistryKey& root);
