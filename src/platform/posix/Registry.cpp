#include "platform/Registry.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <new>

#include "platform/posix/RegistryFile.h"

// A handle is a key's path: the key itself may have gone by the time of the next call.
struct PlatformRegistryKey {
  std::vector<std::u16string> path;
};

namespace {

using Path = std::vector<std::u16string>;

constexpr LSTATUS Status(DWORD error) { return static_cast<LSTATUS>(error); }

constexpr LSTATUS kDone = Status(ERROR_SUCCESS);

// Nullopt for a null handle, a name that cannot be one, and too many of them.
std::optional<Path> FullPath(HKEY key, LPCWSTR below) {
  if (key == nullptr) return std::nullopt;
  const auto names = SplitRegistryPath(below != nullptr ? below : u"");
  if (!names) return std::nullopt;
  Path path;
  if (key != HKEY_CLASSES_ROOT) path = key->path;
  path.insert(path.end(), names->begin(), names->end());
  if (path.size() > kDeepestRegistryPath) return std::nullopt;
  return path;
}

std::u16string NameOf(LPCWSTR name) { return name != nullptr ? name : u""; }

// Runs a call's work, which may exhaust memory.
template <class Work>
LSTATUS Guarded(Work work) noexcept try {
  return work();
} catch (const std::bad_alloc&) {
  return Status(ERROR_NOT_ENOUGH_MEMORY);
} catch (...) {
  return Status(ERROR_REGISTRY_IO_FAILED);
}

// The key behind a handle for a call that reads.
template <class Work>
LSTATUS WithKey(HKEY key, Work work) noexcept {
  return Guarded([&]() -> LSTATUS {
    const auto path = FullPath(key, nullptr);
    if (!path) return Status(ERROR_INVALID_HANDLE);
    RegistryKey root;
    const LSTATUS result = ReadRegistry(root);
    if (result != kDone) return result;
    RegistryKey* const found = root.Find(*path);
    return found != nullptr ? work(*found) : Status(ERROR_KEY_DELETED);
  });
}

}  // namespace

extern "C" {

LSTATUS RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD, LPWSTR, DWORD, REGSAM,
                        const SECURITY_ATTRIBUTES*, HKEY* result, LPDWORD disposition) {
  if (result == nullptr) return Status(ERROR_INVALID_PARAMETER);
  *result = nullptr;
  return Guarded([&]() -> LSTATUS {
    auto full = FullPath(key, path);
    if (!full) return Status(key == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
    bool created = false;
    const LSTATUS status = UpdateRegistry([&](RegistryKey& root) {
      root.FindOrCreate(*full, created);
      return kDone;
    });
    if (status != kDone) return status;
    if (disposition != nullptr)
      *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    *result = new PlatformRegistryKey{std::move(*full)};
    return kDone;
  });
}

LSTATUS RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD, REGSAM, HKEY* result) {
  if (result == nullptr) return Status(ERROR_INVALID_PARAMETER);
  *result = nullptr;
  return Guarded([&]() -> LSTATUS {
    auto full = FullPath(key, path);
    if (!full) return Status(key == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
    RegistryKey root;
    const LSTATUS status = ReadRegistry(root);
    if (status != kDone) return status;
    if (root.Find(*full) == nullptr) return Status(ERROR_FILE_NOT_FOUND);
    *result = new PlatformRegistryKey{std::move(*full)};
    return kDone;
  });
}

LSTATUS RegCloseKey(HKEY key) {
  if (key == nullptr) return Status(ERROR_INVALID_HANDLE);
  if (key != HKEY_CLASSES_ROOT) delete key;
  return kDone;
}

LSTATUS RegSetValueExW(HKEY key, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
  if (type != REG_SZ || (data == nullptr && size > 0)) return Status(ERROR_INVALID_PARAMETER);
  return Guarded([&]() -> LSTATUS {
    const auto path = FullPath(key, nullptr);
    if (!path) return Status(ERROR_INVALID_HANDLE);
    std::u16string text(size / sizeof(char16_t), u'\0');
    if (!text.empty()) std::memcpy(text.data(), data, text.size() * sizeof(char16_t));
    text.resize(std::min(text.find(u'\0'), text.size()));
    return UpdateRegistry([&](RegistryKey& root) {
      RegistryKey* const found = root.Find(*path);
      if (found == nullptr) return Status(ERROR_KEY_DELETED);
      found->values.insert_or_assign(NameOf(name), text);
      return kDone;
    });
  });
}

LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD, LPDWORD type, BYTE* data, LPDWORD size) {
  if (data != nullptr && size == nullptr) return Status(ERROR_INVALID_PARAMETER);
  return WithKey(key, [&](const RegistryKey& found) -> LSTATUS {
    const auto value = found.values.find(NameOf(name));
    if (value == found.values.end()) return Status(ERROR_FILE_NOT_FOUND);
    if (type != nullptr) *type = REG_SZ;
    if (size == nullptr) return kDone;
    const auto needed = static_cast<DWORD>((value->second.size() + 1) * sizeof(char16_t));
    const bool fits = data != nullptr && *size >= needed;
    if (fits) std::memcpy(data, value->second.c_str(), needed);
    *size = needed;
    return fits || data == nullptr ? kDone : Status(ERROR_MORE_DATA);
  });
}

LSTATUS RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD size, LPDWORD, LPWSTR, LPDWORD,
                      FILETIME*) {
  if (name == nullptr || size == nullptr) return Status(ERROR_INVALID_PARAMETER);
  return WithKey(key, [&](const RegistryKey& found) -> LSTATUS {
    if (index >= found.subkeys.size()) return Status(ERROR_NO_MORE_ITEMS);
    const std::u16string& text =
        std::next(found.subkeys.begin(), static_cast<std::ptrdiff_t>(index))->first;
    if (text.size() >= *size) return Status(ERROR_MORE_DATA);
    name[text.copy(name, text.size())] = 0;
    *size = static_cast<DWORD>(text.size());
    return kDone;
  });
}

LSTATUS RegDeleteKeyW(HKEY key, LPCWSTR path) {
  return Guarded([&]() -> LSTATUS {
    auto full = FullPath(key, path);
    if (!full) return Status(key == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
    if (full->empty()) return Status(ERROR_ACCESS_DENIED);
    const std::u16string last = std::move(full->back());
    full->pop_back();
    return UpdateRegistry([&](RegistryKey& root) {
      RegistryKey* const parent = root.Find(*full);
      if (parent == nullptr) return Status(ERROR_FILE_NOT_FOUND);
      const auto found = parent->subkeys.find(last);
      if (found == parent->subkeys.end()) return Status(ERROR_FILE_NOT_FOUND);
      if (!found->second.subkeys.empty()) return Status(ERROR_ACCESS_DENIED);
      parent->subkeys.erase(found);
      return kDone;
    });
  });
}

LPVOID CoTaskMemAlloc(SIZE_T size) { return std::malloc(size != 0 ? size : 1); }

void CoTaskMemFree(LPVOID memory) { std::free(memory); }

}  // extern "C"
