#include "support/TestRegistry.h"

#include <algorithm>
#include <stdexcept>

#include "platform/OleText.h"
#include "support/TestText.h"

namespace quenra::test {
namespace {

constexpr LSTATUS kDone = static_cast<LSTATUS>(ERROR_SUCCESS);

void AppendValue(HKEY key, const std::u16string& name, std::string& line) {
  char16_t text[1024] = {};
  DWORD size = sizeof text;
  if (::RegQueryValueExW(key, AsOle(name.c_str()), nullptr, nullptr, reinterpret_cast<BYTE*>(text),
                         &size) == kDone)
    line += " " + ToUtf8(name) + "=" + ToUtf8(text);
}

std::vector<std::u16string> SubkeysOf(HKEY key) {
  std::vector<std::u16string> names;
  char16_t name[256];
  for (DWORD index = 0;; ++index) {
    DWORD size = 256;
    if (::RegEnumKeyExW(key, index, AsOle(name), &size, nullptr, nullptr, nullptr, nullptr) !=
        kDone)
      break;
    names.emplace_back(name, size);
  }
  std::sort(names.begin(), names.end());
  return names;
}

void DumpKey(const std::u16string& path, std::vector<std::string>& lines) {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, AsOle(path.c_str()), 0, KEY_READ, &key) != kDone) return;
  std::string line = ToUtf8(path) + ":";
  AppendValue(key, u"", line);
  AppendValue(key, u"ThreadingModel", line);
  lines.push_back(line);
  const std::vector<std::u16string> subkeys = SubkeysOf(key);
  ::RegCloseKey(key);
  for (const std::u16string& name : subkeys) DumpKey(path + u'\\' + name, lines);
}

}  // namespace

// An object of the class has put the test's registry in place of the user's.
// NOLINTBEGIN(readability-convert-member-functions-to-static)
std::vector<std::string> TestRegistry::Dump(const std::u16string& path) const {
  std::vector<std::string> lines;
  DumpKey(path, lines);
  return lines;
}

void TestRegistry::Write(const std::u16string& path, const std::u16string& text) const {
  HKEY key = nullptr;
  if (::RegCreateKeyExW(HKEY_CLASSES_ROOT, AsOle(path.c_str()), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_WRITE, nullptr, &key, nullptr) != kDone)
    throw std::runtime_error("cannot create " + ToUtf8(path));
  ::RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>((text.size() + 1) * sizeof(char16_t)));
  ::RegCloseKey(key);
}
// NOLINTEND(readability-convert-member-functions-to-static)

}  // namespace quenra::test
