// Registration where the registry's file cannot be written.
#ifndef _WIN32

#include <boost/filesystem.hpp>
#include <cstdlib>

#include "module/ModuleTest.h"
#include "support/FileSizeLimit.h"
#include "support/OrdinaryUser.h"
#include "support/TestRegistry.h"

namespace quenra::test {
namespace {

namespace fs = boost::filesystem;

using ::testing::IsEmpty;
using ::testing::SizeIs;

class RegistrationFailurePosixTest : public ModuleTest {
 protected:
  HRESULT Register() const { return module_->Call("quenraDllRegisterServer"); }
  HRESULT Unregister() const { return module_->Call("quenraDllUnregisterServer"); }

  static void UseFile(const std::u16string& path) {
    ::setenv("QUENRA_REGISTRY", ToUtf8(path).c_str(), 1);
  }

  const TestRegistry registry_;  // puts the variable back
};

TEST_F(RegistrationFailurePosixTest, FullDiskHalfWayIsReported) {
  UseFile(folder_.Path(u"registry"));
  {
    const FileSizeLimit limit(900);
    EXPECT_EQ(Register(), SELFREG_E_CLASS);
    EXPECT_EQ(::GetLastError(), ERROR_DISK_FULL);
  }
  EXPECT_THAT(registry_.Dump(u"CLSID\\{B2E7A59D-0C38-4AC3-BE0B-F18EB40409C5}"),
              ::testing::Not(IsEmpty()))
      << "the entries before the failure are whole";
  EXPECT_THAT(registry_.Dump(u"CLSID\\{24E457AA-DA94-41FC-A8DB-094CB13D3E6A}"), IsEmpty());
  EXPECT_THAT(folder_.Names(), SizeIs(1)) << "no temporary file is left";
  EXPECT_EQ(Register(), S_OK) << "with room again it goes on";
  EXPECT_EQ(Unregister(), S_OK);
}

TEST_F(RegistrationFailurePosixTest, FolderThatCannotBeMadeIsReported) {
  folder_.Write(u"file", "");
  UseFile(folder_.Path(u"file/registry"));
  EXPECT_EQ(Register(), SELFREG_E_CLASS);
  EXPECT_EQ(Unregister(), SELFREG_E_CLASS);
}

TEST_F(RegistrationFailurePosixTest, FolderWithoutRightsIsReported) {
  UseFile(folder_.Path(u"registry"));
  fs::permissions(folder_.Native(), fs::perms(0555));
  {
    const OrdinaryUser user;
    for (const char* const call : {"quenraDllRegisterServer", "quenraDllUnregisterServer"}) {
      ::SetLastError(ERROR_SUCCESS);
      EXPECT_EQ(module_->Call(call), SELFREG_E_CLASS) << call;
      EXPECT_EQ(::GetLastError(), ERROR_ACCESS_DENIED) << call;
    }
  }
  fs::permissions(folder_.Native(), fs::perms(0755));
}

TEST_F(RegistrationFailurePosixTest, FileThatIsNoRegistryIsLeftAlone) {
  folder_.Write(u"registry", "not a registry\n");
  UseFile(folder_.Path(u"registry"));
  EXPECT_EQ(Register(), SELFREG_E_CLASS);
  EXPECT_EQ(Unregister(), SELFREG_E_CLASS);
  EXPECT_EQ(folder_.Read(u"registry"), "not a registry\n");
}

TEST_F(RegistrationFailurePosixTest, ModulePathThatIsTooLongIsRefused) {
  UseFile(folder_.Path(u"registry"));
  const std::u16string part(130, u'x');
  const std::u16string deep = part + u"/" + part;
  fs::create_directories(folder_.Native(deep));
  const std::u16string copy = deep + u"/quenraDataSourcesFile.so";
  fs::copy_file(MODULE_FILE, folder_.Native(copy));
  const HMODULE module = ::LoadLibraryW(AsOle(folder_.Path(copy).c_str()));
  ASSERT_NE(module, nullptr);
  using Entry = HRESULT(STDAPICALLTYPE*)();
  const auto entry = reinterpret_cast<Entry>(
      reinterpret_cast<void*>(::GetProcAddress(module, "quenraDllRegisterServer")));
  EXPECT_EQ(entry(), E_FAIL);
  EXPECT_FALSE(folder_.Exists(u"registry"));
  ::FreeLibrary(module);
}

}  // namespace
}  // namespace quenra::test

#endif
