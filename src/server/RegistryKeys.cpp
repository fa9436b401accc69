#include "server/RegistryKeys.h"

#include "platform/OleText.h"

namespace quenra {
namespace {

// The greatest length of a key's name, and the terminating zero.
constexpr DWORD kNameUnits = 256;

constexpr LSTATUS Status(DWORD error) { return static_cast<LSTATUS>(error); }
constexpr LSTATUS kDone = Status(ERROR_SUCCESS);

class OpenKey {
 public:
  OpenKey() = default;
  ~OpenKey() {
    if (key_ != nullptr) ::RegCloseKey(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  LSTATUS Create(const std::u16string& path) {
    return ::RegCreateKeyExW(HKEY_CLASSES_ROOT, AsOle(path.c_str()), 0, nullptr,
                             REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key_, nullptr);
  }
  LSTATUS Open(HKEY parent, const std::u16string& path) {
    return ::RegOpenKeyExW(parent, AsOle(path.c_str()), 0, KEY_READ | KEY_WRITE, &key_);
  }
  HKEY Get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

LSTATUS DeleteTree(HKEY parent, const std::u16string& path);

// What lies first moves up when it goes, so the first one is always the next.
LSTATUS DeleteSubkeys(HKEY key) {
  for (;;) {
    std::u16string name(kNameUnits, u'\0');
    DWORD length = kNameUnits;
    const LSTATUS found =
        ::RegEnumKeyExW(key, 0, AsOle(name.data()), &length, nullptr, nullptr, nullptr, nullptr);
    if (found == Status(ERROR_NO_MORE_ITEMS)) return kDone;
    if (found != kDone) return found;
    name.resize(length);
    const LSTATUS deleted = DeleteTree(key, name);
    if (deleted != kDone) return deleted;
  }
}

LSTATUS DeleteTree(HKEY parent, const std::u16string& path) {
  {
    OpenKey key;
    const LSTATUS opened = key.Open(parent, path);
    if (opened != kDone) return opened;
    const LSTATUS emptied = DeleteSubkeys(key.Get());
    if (emptied != kDone) return emptied;
  }
  return ::RegDeleteKeyW(parent, AsOle(path.c_str()));
}

}  // namespace

LSTATUS CreateRegistryKey(const std::u16string& path) {
  OpenKey key;
  return key.Create(path);
}

LSTATUS WriteRegistryText(const std::u16string& path, const std::u16string& name,
                          const std::u16string& text) {
  OpenKey key;
  const LSTATUS created = key.Create(path);
  if (created != kDone) return created;
  // The registry wants the terminating zero counted.
  const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(char16_t));
  return ::RegSetValueExW(key.Get(), AsOle(name.c_str()), 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(text.c_str()), size);
}

LSTATUS DeleteRegistryTree(const std::u16string& path) {
  const LSTATUS result = DeleteTree(HKEY_CLASSES_ROOT, path);
  return result == Status(ERROR_FILE_NOT_FOUND) ? kDone : result;
}

}  // namespace quenra
