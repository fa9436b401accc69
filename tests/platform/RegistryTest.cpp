#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ComponentCategories.h"
#include "platform/OleText.h"
#include "platform/Registry.h"
#include "support/TestRegistry.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr GUID kWidget = {
    0x7d1f0c52, 0x9a3e, 0x4d1b, {0x80, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77}};
constexpr GUID kTools = {
    0x7d1f0c53, 0x9a3e, 0x4d1b, {0x80, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77}};
constexpr char16_t kRoot[] = u"workshop.RegistryTest";
constexpr char16_t kWidgetKey[] = u"CLSID\\{7D1F0C52-9A3E-4D1B-8011-223344556677}";

constexpr LSTATUS Status(DWORD error) { return static_cast<LSTATUS>(error); }

// Through OpenKeys alone, so that every handle is closed.
class RegistryTest : public ::testing::Test {
 protected:
  ~RegistryTest() override {
    for (const HKEY key : open_) ::RegCloseKey(key);
  }

  HKEY Create(const std::u16string& path, DWORD* disposition = nullptr) {
    HKEY key = nullptr;
    EXPECT_EQ(
        ::RegCreateKeyExW(HKEY_CLASSES_ROOT, AsOle(path.c_str()), 0, nullptr,
                          REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, disposition),
        Status(ERROR_SUCCESS));
    open_.push_back(key);
    return key;
  }

  static LSTATUS Delete(const std::u16string& path) {
    return ::RegDeleteKeyW(HKEY_CLASSES_ROOT, AsOle(path.c_str()));
  }

  static LSTATUS Set(HKEY key, const std::u16string& name, const std::u16string& text) {
    return ::RegSetValueExW(key, AsOle(name.c_str()), 0, REG_SZ,
                            reinterpret_cast<const BYTE*>(text.c_str()),
                            static_cast<DWORD>((text.size() + 1) * 2));
  }

  static std::u16string Get(HKEY key, const std::u16string& name) {
    char16_t text[512] = {};
    DWORD size = sizeof text;
    DWORD type = REG_NONE;
    const LSTATUS result = ::RegQueryValueExW(key, AsOle(name.c_str()), nullptr, &type,
                                              reinterpret_cast<BYTE*>(text), &size);
    if (result != Status(ERROR_SUCCESS)) return u"(none)";
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(size, (std::u16string(text).size() + 1) * 2);
    return text;
  }

  TestRegistry registry_;

 private:
  std::vector<HKEY> open_;
};

TEST_F(RegistryTest, KeysAreCreatedWithWhatLeadsToThem) {
  DWORD disposition = 0;
  Create(std::u16string(kRoot) + u"\\One\\Two", &disposition);
  EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
  Create(std::u16string(kRoot) + u"\\One", &disposition);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  EXPECT_THAT(registry_.Dump(kRoot),
              ElementsAre("workshop.RegistryTest:", "workshop.RegistryTest\\One:",
                          "workshop.RegistryTest\\One\\Two:"));
  EXPECT_EQ(Delete(std::u16string(kRoot) + u"\\One\\Two"), Status(ERROR_SUCCESS));
  EXPECT_EQ(Delete(std::u16string(kRoot) + u"\\One"), Status(ERROR_SUCCESS));
  EXPECT_EQ(Delete(kRoot), Status(ERROR_SUCCESS));
}

TEST_F(RegistryTest, NamesCompareWithoutRegardToCase) {
  const HKEY key = Create(std::u16string(kRoot) + u"\\S\u00E4ge");
  EXPECT_EQ(Set(key, u"Gr\u00F6\u00DFe", u"1"), Status(ERROR_SUCCESS));
  DWORD disposition = 0;
  const HKEY same = Create(u"WORKSHOP.registrytest\\s\u00C4GE", &disposition);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  EXPECT_EQ(Get(same, u"GR\u00D6\u00DFE"), u"1");
  EXPECT_EQ(Set(same, u"gr\u00F6\u00DFe", u"2"), Status(ERROR_SUCCESS));
  EXPECT_EQ(Get(key, u"Gr\u00F6\u00DFe"), u"2");
  EXPECT_EQ(Delete(u"Workshop.RegistryTest\\S\u00E4GE"), Status(ERROR_SUCCESS));
  EXPECT_EQ(Delete(u"WORKSHOP.REGISTRYTEST"), Status(ERROR_SUCCESS));
  EXPECT_THAT(registry_.Dump(kRoot), IsEmpty());
}

TEST_F(RegistryTest, TextsComeBackAsTheyWere) {
  const HKEY key = Create(kRoot);
  for (const char16_t* text :
       {u"", u"plain", u"C:\\Program Files\\x.dll", u"\"quoted\" \\u0041", u"two\r\nlines\t",
        u"\u00FC \u6F22 \U0001F600", u"a=b", u"[x]", u" blanks ", u"; no comment"}) {
    EXPECT_EQ(Set(key, u"", text), Status(ERROR_SUCCESS));
    EXPECT_EQ(Set(key, u"a \"name\"=\\", text), Status(ERROR_SUCCESS));
    EXPECT_EQ(Get(key, u""), text);
    EXPECT_EQ(Get(key, u"a \"name\"=\\"), text);
  }
  EXPECT_EQ(Get(key, u"other"), u"(none)");
  EXPECT_EQ(Delete(kRoot), Status(ERROR_SUCCESS));
}

TEST_F(RegistryTest, SizesAreAskedForAndChecked) {
  const HKEY key = Create(kRoot);
  Set(key, u"", u"abc");
  DWORD size = 0;
  EXPECT_EQ(::RegQueryValueExW(key, nullptr, nullptr, nullptr, nullptr, &size),
            Status(ERROR_SUCCESS));
  EXPECT_EQ(size, 8u);
  BYTE small[6];
  size = sizeof small;
  EXPECT_EQ(::RegQueryValueExW(key, nullptr, nullptr, nullptr, small, &size),
            Status(ERROR_MORE_DATA));
  EXPECT_EQ(size, 8u);
  EXPECT_EQ(::RegQueryValueExW(key, AsOle(u"none"), nullptr, nullptr, nullptr, &size),
            Status(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(Delete(kRoot), Status(ERROR_SUCCESS));
}

TEST_F(RegistryTest, SubkeysAreCountedUp) {
  Create(std::u16string(kRoot) + u"\\Abc");
  const HKEY key = Create(kRoot);
  char16_t name[8];
  DWORD size = 8;
  EXPECT_EQ(::RegEnumKeyExW(key, 0, AsOle(name), &size, nullptr, nullptr, nullptr, nullptr),
            Status(ERROR_SUCCESS));
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(std::u16string(name), u"Abc");
  size = 3;
  EXPECT_EQ(::RegEnumKeyExW(key, 0, AsOle(name), &size, nullptr, nullptr, nullptr, nullptr),
            Status(ERROR_MORE_DATA));
  size = 8;
  EXPECT_EQ(::RegEnumKeyExW(key, 1, AsOle(name), &size, nullptr, nullptr, nullptr, nullptr),
            Status(ERROR_NO_MORE_ITEMS));
  EXPECT_EQ(Delete(std::u16string(kRoot) + u"\\Abc"), Status(ERROR_SUCCESS));
  EXPECT_EQ(Delete(kRoot), Status(ERROR_SUCCESS));
}

TEST_F(RegistryTest, KeyWithSubkeysIsNotDeleted) {
  Create(std::u16string(kRoot) + u"\\Below");
  EXPECT_EQ(Delete(kRoot), Status(ERROR_ACCESS_DENIED));
  EXPECT_EQ(Delete(std::u16string(kRoot) + u"\\Below"), Status(ERROR_SUCCESS));
  EXPECT_EQ(Delete(kRoot), Status(ERROR_SUCCESS));
  EXPECT_EQ(Delete(kRoot), Status(ERROR_FILE_NOT_FOUND));
}

TEST_F(RegistryTest, DeletedKeyHasNoValues) {
  const HKEY key = Create(kRoot);
  EXPECT_EQ(Delete(kRoot), Status(ERROR_SUCCESS));
  EXPECT_EQ(Set(key, u"", u"late"), Status(ERROR_KEY_DELETED));
  HKEY none = key;
  EXPECT_EQ(::RegOpenKeyExW(HKEY_CLASSES_ROOT, AsOle(kRoot), 0, KEY_READ, &none),
            Status(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(none, nullptr);
}

TEST_F(RegistryTest, ProgIdsAndClassesNameEachOther) {
  CLSID classId = kTools;
  EXPECT_EQ(::CLSIDFromProgID(AsOle(kRoot), &classId), CO_E_CLASSSTRING);
  EXPECT_TRUE(IsEqualCLSID(classId, CLSID{}));
  LPOLESTR progId = nullptr;
  EXPECT_EQ(::ProgIDFromCLSID(kWidget, &progId), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(progId, nullptr);

  registry_.Write(std::u16string(kRoot) + u"\\CLSID", u"{7d1f0c52-9a3e-4d1b-8011-223344556677}");
  registry_.Write(std::u16string(kWidgetKey) + u"\\ProgID", kRoot);
  EXPECT_EQ(::CLSIDFromProgID(AsOle(kRoot), &classId), S_OK);
  EXPECT_TRUE(IsEqualCLSID(classId, kWidget));
  EXPECT_EQ(::ProgIDFromCLSID(kWidget, &progId), S_OK);
  EXPECT_EQ(std::u16string(AsText(progId)), kRoot);
  ::CoTaskMemFree(progId);

  Delete(std::u16string(kRoot) + u"\\CLSID");
  Delete(kRoot);
  Delete(std::u16string(kWidgetKey) + u"\\ProgID");
  Delete(kWidgetKey);
}

TEST_F(RegistryTest, CategoriesAreKeysOfTheClass) {
  registry_.Write(kWidgetKey, u"Widget");
  EXPECT_EQ(RegisterImplementedCategory(kWidget, kTools), S_OK);
  EXPECT_EQ(RegisterImplementedCategory(kWidget, kTools), S_OK);
  const std::string key = "CLSID\\{7D1F0C52-9A3E-4D1B-8011-223344556677}";
  EXPECT_THAT(
      registry_.Dump(kWidgetKey),
      ElementsAre(key + ": =Widget", key + "\\Implemented Categories:",
                  key + "\\Implemented Categories\\{7D1F0C53-9A3E-4D1B-8011-223344556677}:"));
  EXPECT_EQ(UnregisterImplementedCategory(kWidget, kTools), S_OK);
  EXPECT_EQ(UnregisterImplementedCategory(kWidget, kTools), S_OK);
  EXPECT_THAT(registry_.Dump(std::u16string(kWidgetKey) +
                             u"\\Implemented Categories\\{7D1F0C53-9A3E-4D1B-8011-223344556677}"),
              IsEmpty());
  Delete(std::u16string(kWidgetKey) + u"\\Implemented Categories");
  Delete(kWidgetKey);
  EXPECT_EQ(UnregisterImplementedCategory(kWidget, kTools), S_OK);
}

}  // namespace
}  // namespace quenra::test
