// The file behind HKEY_CLASSES_ROOT elsewhere than on Windows.
#ifndef _WIN32

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

#include "platform/Registry.h"
#include "support/TemporaryFolder.h"
#include "support/TestRegistry.h"
#include "support/TestText.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr LSTATUS Status(DWORD error) { return static_cast<LSTATUS>(error); }

class RegistryPosixTest : public ::testing::Test {
 protected:
  RegistryPosixTest() { UseFile(u"registry"); }

  void UseFile(const std::u16string& name) const {
    ::setenv("QUENRA_REGISTRY", folder_.Native(name).c_str(), 1);
  }

  static LSTATUS Open(const char16_t* path) {
    HKEY key = nullptr;
    const LSTATUS result = ::RegOpenKeyExW(HKEY_CLASSES_ROOT, path, 0, KEY_READ, &key);
    if (key != nullptr) ::RegCloseKey(key);
    return result;
  }

  const TestRegistry registry_;  // puts the variable back
  TemporaryFolder folder_;
};

TEST_F(RegistryPosixTest, FileIsReadable) {
  registry_.Write(u"workshop.Widget\\CLSID", u"{1}");
  registry_.Write(u"workshop.Widget", u"A \"widget\" in C:\\");
  registry_.Write(u"Empty", u"");
  EXPECT_EQ(folder_.Read(u"registry"),
            "; The classes of this user's data sources. Changed by the programs that register "
            "them.\n"
            "\n[Empty]\n@=\"\"\n"
            "\n[workshop.Widget]\n@=\"A \\\"widget\\\" in C:\\\\\"\n"
            "\n[workshop.Widget\\CLSID]\n@=\"{1}\"\n");
  EXPECT_THAT(folder_.Names(), ElementsAre(u"registry")) << "no temporary file stays";
}

TEST_F(RegistryPosixTest, FileMayBeWrittenByHand) {
  folder_.Write(u"registry",
                "; mine\r\n[workshop.Widget]\r\n@=\"\\u0041\"\r\n\r\n[WORKSHOP.widget\\Sub]\r\n");
  EXPECT_THAT(registry_.Dump(u"workshop.Widget"),
              ElementsAre("workshop.Widget: =A", "workshop.Widget\\Sub:"));
}

TEST_F(RegistryPosixTest, NamesThatAreNoUtf8Survive) {
  registry_.Write(u"workshop.Widget", u"/folder/\xDCE9/x.so");
  EXPECT_NE(folder_.Read(u"registry").find("@=\"/folder/\\uDCE9/x.so\""), std::string::npos);
  HKEY key = nullptr;
  ASSERT_EQ(::RegOpenKeyExW(HKEY_CLASSES_ROOT, u"workshop.Widget", 0, KEY_READ, &key),
            Status(ERROR_SUCCESS));
  char16_t text[32] = {};
  DWORD size = sizeof text;
  ::RegQueryValueExW(key, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
  ::RegCloseKey(key);
  EXPECT_EQ(std::u16string(text), u"/folder/\xDCE9/x.so");
}

TEST_F(RegistryPosixTest, FileThatCannotBeUnderstoodIsLeftAlone) {
  for (const char* bytes : {"@=\"value of no key\"\n", "[open\n", "[]\n", "[a]\nname=1\n",
                            "[a]\n@=\"open\n", "[a]\n@=\"x\" y\n", "[a]\n@=\"\\u00\"\n"}) {
    folder_.Write(u"registry", bytes);
    SCOPED_TRACE(bytes);
    EXPECT_EQ(Open(u"a"), Status(ERROR_REGISTRY_CORRUPT));
    HKEY key = nullptr;
    EXPECT_EQ(::RegCreateKeyExW(HKEY_CLASSES_ROOT, u"b", 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                                nullptr),
              Status(ERROR_REGISTRY_CORRUPT));
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(folder_.Read(u"registry"), bytes);
    CLSID classId;
    EXPECT_EQ(::CLSIDFromProgID(u"a", &classId), REGDB_E_READREGDB);
  }
}

TEST_F(RegistryPosixTest, MissingFoldersAreMade) {
  UseFile(u"one/two/registry");
  EXPECT_EQ(Open(u"a"), Status(ERROR_FILE_NOT_FOUND));
  registry_.Write(u"a", u"1");
  EXPECT_EQ(Open(u"a"), Status(ERROR_SUCCESS));
  EXPECT_TRUE(folder_.Exists(u"one/two/registry"));
}

TEST_F(RegistryPosixTest, ConfigurationFolderIsTheDefault) {
  const char* const before = std::getenv("XDG_CONFIG_HOME");
  const std::string kept = before != nullptr ? before : "";
  ::unsetenv("QUENRA_REGISTRY");
  ::setenv("XDG_CONFIG_HOME", folder_.Native(u"config").c_str(), 1);
  registry_.Write(u"a", u"1");
  EXPECT_TRUE(folder_.Exists(u"config/quenra/registry"));
  if (before != nullptr)
    ::setenv("XDG_CONFIG_HOME", kept.c_str(), 1);
  else
    ::unsetenv("XDG_CONFIG_HOME");
}

TEST_F(RegistryPosixTest, NamesThatNoLineHoldsAreRefused) {
  for (const char16_t* path : {u"two\nlines", u"lone\xD800", u"a\\b\x7F"}) {
    HKEY key = nullptr;
    EXPECT_EQ(::RegCreateKeyExW(HKEY_CLASSES_ROOT, path, 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                                nullptr),
              Status(ERROR_INVALID_PARAMETER));
  }
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

// The limits are Windows': 512 levels, and names of 255 characters.
TEST_F(RegistryPosixTest, DeepPathsAndLongNamesAreRefused) {
  const auto path = [](std::size_t names) {
    std::u16string text = u"a";
    for (std::size_t i = 1; i < names; ++i) text += u"\\a";
    return text;
  };
  const std::u16string longest(255, u'n');
  registry_.Write(path(512), u"x");
  registry_.Write(longest, u"x");
  EXPECT_EQ(Open(path(512).c_str()), Status(ERROR_SUCCESS));
  EXPECT_EQ(Open(longest.c_str()), Status(ERROR_SUCCESS));
  for (const std::u16string& refused : {path(513), path(500000), longest + u"n"}) {
    EXPECT_EQ(Open(refused.c_str()), Status(ERROR_INVALID_PARAMETER));
    HKEY key = nullptr;
    EXPECT_EQ(::RegCreateKeyExW(HKEY_CLASSES_ROOT, refused.c_str(), 0, nullptr, 0, KEY_WRITE,
                                nullptr, &key, nullptr),
              Status(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(key, nullptr);
  }
  HKEY deep = nullptr;
  ASSERT_EQ(::RegOpenKeyExW(HKEY_CLASSES_ROOT, path(300).c_str(), 0, KEY_READ, &deep),
            Status(ERROR_SUCCESS));
  HKEY key = nullptr;
  EXPECT_EQ(
      ::RegCreateKeyExW(deep, path(213).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
      Status(ERROR_INVALID_PARAMETER))
      << "below a key that is open, the whole path counts";
  EXPECT_EQ(key, nullptr);
  ::RegCloseKey(deep);
}

TEST_F(RegistryPosixTest, FileThatGrowsTooLargeStaysAsItWas) {
  registry_.Write(u"a", std::u16string(1000000, u'x'));
  const std::string before = folder_.Read(u"registry");
  HKEY key = nullptr;
  ASSERT_EQ(::RegOpenKeyExW(HKEY_CLASSES_ROOT, u"a", 0, KEY_WRITE, &key), Status(ERROR_SUCCESS));
  const std::u16string more(100000, u'x');
  EXPECT_EQ(::RegSetValueExW(key, u"more", 0, REG_SZ, reinterpret_cast<const BYTE*>(more.c_str()),
                             static_cast<DWORD>(more.size() * sizeof(char16_t))),
            Status(ERROR_FILE_TOO_LARGE));
  ::RegCloseKey(key);
  EXPECT_EQ(folder_.Read(u"registry"), before);
  EXPECT_THAT(folder_.Names(), ElementsAre(u"registry"));
}

TEST_F(RegistryPosixTest, WritersOnManyThreadsLoseNothing) {
  std::vector<std::thread> writers;
  for (char16_t name = u'a'; name < u'e'; ++name)
    writers.emplace_back([this, name] {
      for (char16_t number = u'0'; number <= u'9'; ++number)
        registry_.Write(std::u16string(u"k\\") + name + number, u"x");
    });
  for (std::thread& writer : writers) writer.join();
  EXPECT_THAT(registry_.Dump(u"k"), SizeIs(41));
}

}  // namespace
}  // namespace quenra::test

#endif
