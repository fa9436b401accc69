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

// How the system's class loader may share a class's objects among threads. The values are those of
// the registration scheme.
enum class ThreadingModel { kApartment = 0, kFree = 1, kBoth = 2 };

struct ClassEntry {
  CLSID classId;
  std::u16string_view name;  // also the class's part of its ProgIDs
  std::u16string_view description;
  ComPtr<IClassFactory> factory;
  std::vector<GUID> categories;  // the component categories that the class implements
  // A workspace factory belongs to one thread, and what it creates is used by that thread alone:
  // open options, datasets and cursors carry no locks. An apartment of one thread is that promise.
  ThreadingModel threadingModel = ThreadingModel::kApartment;
  const GUID* typeLibrary = nullptr;  // null: the class has none
};

// "quenraDataSourcesFile.<name>", which stands for the newest version
std::u16string ProgId(const ClassEntry& entry);

// "quenraDataSourcesFile.<name>.1"
std::u16string VersionedProgId(const ClassEntry& entry);

// Built by the first call. Lives, with its factories, until the module is unloaded. May throw
// std::bad_alloc, after which the next call tries again.
std::span<const ClassEntry> CreatableClasses();

}  // namespace quenra
