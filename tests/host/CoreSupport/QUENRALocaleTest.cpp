#include <boost/filesystem.hpp>

#include "host/CoreSupport/QUENRALocale.h"
#include "platform/CodePages.h"
#include "platform/FileNames.h"
#include "platform/OleText.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

using QUENRALocaleTest = HostTest;

TEST_F(QUENRALocaleTest, StartsWithTheUsersLocale) {
  EXPECT_EQ(QUENRALocale::GetLocale(), LOCALE_USER_DEFAULT);
  EXPECT_EQ(QUENRALocale::GetAnsiCodePage(), ::GetACP());
}

TEST_F(QUENRALocaleTest, ValuesFollowTheLocaleSet) {
  ASSERT_TRUE(QUENRALocale::SetLocale(u"de-DE"));
  EXPECT_EQ(QUENRALocale::GetLocale(), 0x0407u);
  EXPECT_EQ(QUENRALocale::Value(LOCALE_SDECIMAL, 4), u",");
  ASSERT_TRUE(QUENRALocale::SetLocale(u"en-US"));
  EXPECT_EQ(QUENRALocale::Value(LOCALE_SDECIMAL, 4), u".");
  QUENRALocale::ResetLocale();
  EXPECT_EQ(QUENRALocale::GetLocale(), LOCALE_USER_DEFAULT);
}

TEST_F(QUENRALocaleTest, ValueThatDoesNotFitIsEmpty) {
  ASSERT_TRUE(QUENRALocale::SetLocale(u"en-US"));
  EXPECT_EQ(QUENRALocale::Value(LOCALE_SDECIMAL, 2), u".") << "the zero fits as well";
  EXPECT_EQ(QUENRALocale::Value(LOCALE_SDECIMAL, 1), u"");
  EXPECT_EQ(QUENRALocale::Value(LOCALE_SDECIMAL, 0), u"");
  EXPECT_EQ(QUENRALocale::Value(LOCALE_SDECIMAL, -1), u"");
}

TEST_F(QUENRALocaleTest, UnknownLocaleChangesNothing) {
  ASSERT_TRUE(QUENRALocale::SetLocale(u"de-DE"));
  EXPECT_FALSE(QUENRALocale::SetLocale(u"no such locale"));
  EXPECT_FALSE(QUENRALocale::SetLocale(std::u16string_view(u"en\0US", 5)));
  EXPECT_EQ(QUENRALocale::GetLocale(), 0x0407u);
}

TEST_F(QUENRALocaleTest, AnsiCodePageFollowsTheLocale) {
  ASSERT_TRUE(QUENRALocale::SetLocale(u"pl-PL"));
  EXPECT_EQ(QUENRALocale::GetAnsiCodePage(), 1250u);
  ASSERT_TRUE(QUENRALocale::SetLocale(u"ru-RU"));
  EXPECT_EQ(QUENRALocale::GetAnsiCodePage(), 1251u);
  ASSERT_TRUE(QUENRALocale::SetLocale(u"ja-JP"));
  EXPECT_EQ(QUENRALocale::GetAnsiCodePage(), 932u);
  ASSERT_TRUE(QUENRALocale::SetLocale(u"hi-IN"));
  EXPECT_EQ(QUENRALocale::GetAnsiCodePage(), ::GetACP()) << "Hindi has no code page of its own";
}

TEST_F(QUENRALocaleTest, AnsiCodePageSetByTheApplicationWins) {
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(1253));
  ASSERT_TRUE(QUENRALocale::SetLocale(u"pl-PL"));
  EXPECT_EQ(QUENRALocale::GetAnsiCodePage(), 1253u);
  EXPECT_FALSE(QUENRALocale::SetAnsiCodePage(99999));
  EXPECT_EQ(QUENRALocale::GetAnsiCodePage(), 1253u);
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(0));
  EXPECT_EQ(QUENRALocale::GetAnsiCodePage(), 1250u);
}

#ifndef _WIN32

std::u16string FileOf(HMODULE module) {
  std::u16string path(4096, u'\0');
  path.resize(::GetModuleFileNameW(module, AsOle(path.data()), static_cast<DWORD>(path.size())));
  return path;
}

// A folder with copies of a library that does nothing when it is loaded twice.
class LocalizedResourcesTest : public HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    folder_ = boost::filesystem::temp_directory_path() /
              boost::filesystem::unique_path("localized-%%%%%%%%");
    boost::filesystem::create_directory(folder_);
    const HMODULE library = ::LoadLibraryW(u"libm.so.6");
    ASSERT_NE(library, nullptr);
    original_ = NativeFromFileName(FileOf(library));
    ::FreeLibrary(library);
    CopyTo("sample.so");
    module_ = ::LoadLibraryW(FileNameFromNative((folder_ / "sample.so").native()).c_str());
    ASSERT_NE(module_, nullptr);
  }
  void TearDown() override {
    ::FreeLibrary(module_);
    boost::filesystem::remove_all(folder_);
    HostTest::TearDown();
  }

  void CopyTo(const char* name) {
    boost::filesystem::copy_file(boost::filesystem::canonical(original_), folder_ / name);
  }

  // The leaf name of the module found, or "" for the module itself.
  std::string Found() const {
    const HMODULE found = QUENRALocale::LoadLocalizedRes(module_);
    if (found == module_) return "";
    const boost::filesystem::path path(NativeFromFileName(FileOf(found)));
    ::FreeLibrary(found);
    return path.filename().string();
  }

  boost::filesystem::path folder_;
  std::string original_;
  HMODULE module_ = nullptr;
};

TEST_F(LocalizedResourcesTest, ModuleItselfWhenThereIsNone) {
  ASSERT_TRUE(QUENRALocale::SetLocale(u"de-DE"));
  EXPECT_EQ(Found(), "");
}

TEST_F(LocalizedResourcesTest, FullNameBeforeLanguage) {
  CopyTo("sample.de.so");
  ASSERT_TRUE(QUENRALocale::SetLocale(u"de-DE"));
  EXPECT_EQ(Found(), "sample.de.so");
  CopyTo("sample.de-DE.so");
  EXPECT_EQ(Found(), "sample.de-DE.so");
  ASSERT_TRUE(QUENRALocale::SetLocale(u"de-CH"));
  EXPECT_EQ(Found(), "sample.de.so");
  ASSERT_TRUE(QUENRALocale::SetLocale(u"fr-FR"));
  EXPECT_EQ(Found(), "");
}

TEST_F(LocalizedResourcesTest, FileThatIsNoModuleIsPassedOver) {
  boost::filesystem::copy_file("/etc/passwd", folder_ / "sample.de-DE.so");
  ASSERT_TRUE(QUENRALocale::SetLocale(u"de-DE"));
  EXPECT_EQ(Found(), "");
}

#endif

}  // namespace
}  // namespace quenra
