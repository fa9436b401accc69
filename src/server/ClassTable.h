// The classes that hosts can create.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/com/ComPtr.h"

namespace quenra {

// The part that every ProgID of this module begins with.
inline constexpr std::u16string_view kProgIdPrefix = u"quenraDataSourcesFile";
inline constexpr int kProgIdVersion = 1;

struct ClassEntry {
  CLSID classId;
  std::u16string_view name;  // also the class's part of its ProgIDs
  std::u16string_view description;
  ComPtr<IClassFactory> factory;
  std::vector<CATID> categories;  // the component categories that the class implements
};

// "quenraDataSourcesFile.<name>.1"
std::u16string VersionedProgId(const ClassEntry& entry);

// Built by the first call. Lives, with its factories, until the module is unloaded. May throw
// std::bad_alloc, after which the next call tries again.
std::span<const ClassEntry> CreatableClasses();

}  // namespace quenra
