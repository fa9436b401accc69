// Modules elsewhere than on Windows.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/FileNames.h"
#include "platform/Modules.h"

// The test program is a module like any other: it carries a string table of its own. The programs
// that hold this test export their symbols (ENABLE_EXPORTS), or the table could not be found.
// NOLINTBEGIN(readability-identifier-naming)
// snippet: platform/Modules.h
extern "C" PLATFORM_API const PlatformStringTableEntry quenraStringTable[];
extern "C" const PlatformStringTableEntry quenraStringTable[] = {
    {101, u"Text file"}, {118, u"Gr\u00F6\u00DFe"}, {102, u""}, {0, nullptr}};
// end of snippet
// NOLINTEND(readability-identifier-naming)

namespace {

// A library that every C++ program here has loaded.
constexpr char16_t kLibrary[] = u"libstdc++.so.6";

std::u16string FileOf(HMODULE module) {
  char16_t name[4096];
  const DWORD count = ::GetModuleFileNameW(module, name, 4096);
  return std::u16string(name, count);
}

TEST(ModulesTest, MissingModulesAreReported) {
  EXPECT_EQ(::LoadLibraryW(u"/nonexistent/library.so"), nullptr);
  EXPECT_EQ(::GetLastError(), ERROR_MOD_NOT_FOUND);
  EXPECT_EQ(::LoadLibraryW(nullptr), nullptr);
  EXPECT_EQ(::FreeLibrary(nullptr), FALSE);
  EXPECT_EQ(::GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(ModulesTest, ExportsAreFoundByName) {
  const HMODULE module = ::LoadLibraryW(kLibrary);
  ASSERT_NE(module, nullptr);
  EXPECT_NE(::GetProcAddress(module, "__cxa_throw"), nullptr);
  EXPECT_EQ(::GetProcAddress(module, "noSuchExport"), nullptr);
  EXPECT_EQ(::GetLastError(), ERROR_PROC_NOT_FOUND);
  // The C library's functions are in reach of the module, but not its exports.
  EXPECT_EQ(::GetProcAddress(module, "printf"), nullptr);
  EXPECT_NE(FileOf(module).find(u"libstdc++"), std::u16string::npos);
  EXPECT_EQ(FileOf(module).front(), u'/');
  EXPECT_EQ(::DisableThreadLibraryCalls(module), TRUE);
  EXPECT_EQ(::FreeLibrary(module), TRUE);
}

TEST(ModulesTest, AnAddressLeadsToItsModule) {
  const HMODULE module = ::LoadLibraryW(kLibrary);
  ASSERT_NE(module, nullptr);
  const FARPROC inside = ::GetProcAddress(module, "__cxa_throw");
  HMODULE found = nullptr;
  EXPECT_EQ(::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                     GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                 reinterpret_cast<LPCWSTR>(inside), &found),
            TRUE);
  EXPECT_EQ(found, module);
  EXPECT_EQ(::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, u"\0", &found), TRUE);
  EXPECT_EQ(FileOf(found), FileOf(nullptr));
  EXPECT_EQ(::FreeLibrary(found), TRUE);
  EXPECT_EQ(::GetModuleHandleExW(0, u"no-such-module.so", &found), FALSE);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(::GetModuleHandleExW(0, nullptr, nullptr), FALSE);
  EXPECT_EQ(::FreeLibrary(module), TRUE);
}

TEST(ModulesTest, ShortBuffersCutTheFileName) {
  const std::u16string whole = FileOf(nullptr);
  char16_t name[5] = u"####";
  ::SetLastError(ERROR_SUCCESS);
  EXPECT_EQ(::GetModuleFileNameW(nullptr, name, 5), 5u);
  EXPECT_EQ(::GetLastError(), ERROR_INSUFFICIENT_BUFFER);
  EXPECT_EQ(std::u16string(name), whole.substr(0, 4));
}

TEST(ModulesTest, StringsFollowTheContract) {
  char16_t text[16];
  EXPECT_EQ(::LoadStringW(nullptr, 101, text, 16), 9);
  EXPECT_EQ(std::u16string(text), u"Text file");
  EXPECT_EQ(::LoadStringW(nullptr, 118, text, 4), 3);
  EXPECT_EQ(std::u16string(text), u"Gr\u00F6");
  EXPECT_EQ(::LoadStringW(nullptr, 102, text, 16), 0);
  EXPECT_EQ(text[0], 0);
  const char16_t* whole = nullptr;
  EXPECT_EQ(::LoadStringW(nullptr, 101, reinterpret_cast<LPWSTR>(&whole), 0), 9);
  EXPECT_EQ(whole, std::u16string_view(u"Text file"));
  EXPECT_EQ(::LoadStringW(nullptr, 103, reinterpret_cast<LPWSTR>(&whole), 0), 0);
  EXPECT_EQ(whole, nullptr);
  text[0] = u'#';
  EXPECT_EQ(::LoadStringW(nullptr, 103, text, 16), 0);
  EXPECT_EQ(text[0], 0);
  EXPECT_EQ(::LoadStringW(nullptr, 101, nullptr, 16), 0);
}

TEST(ModulesTest, AModuleWithoutTableHasNoStrings) {
  const HMODULE module = ::LoadLibraryW(kLibrary);
  char16_t text[16];
  EXPECT_EQ(::LoadStringW(module, 101, text, 16), 0);
  EXPECT_EQ(::GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
  ::FreeLibrary(module);
}

}  // namespace

#endif
