// What the module writes of itself into the registry, and takes back.
#include <boost/filesystem.hpp>

#include "module/ModuleTest.h"
#include "support/TestRegistry.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RegistrationTest : public ModuleTest {
 protected:
  HRESULT Register() const { return module_->Call("quenraDllRegisterServer"); }
  HRESULT Unregister() const { return module_->Call("quenraDllUnregisterServer"); }

  void TearDown() override {
    EXPECT_EQ(Unregister(), S_OK);
    ModuleTest::TearDown();
  }

  // The module's file as the loader names it.
  std::string ModulePath() const {
    char16_t name[1024] = {};
    ::GetModuleFileNameW(module_->Handle(), AsOle(name), 1024);
    return ToUtf8(name);
  }

  static CLSID ClassOf(std::u16string_view progId) {
    CLSID classId{};
    const HRESULT result = ::CLSIDFromProgID(AsOle(std::u16string(progId).c_str()), &classId);
    EXPECT_EQ(result, FAILED(result) ? CO_E_CLASSSTRING : S_OK);
    return classId;
  }

  void ExpectNothingLeft() const {
    for (const char16_t* key : {u"CLSID\\{B2E7A59D-0C38-4AC3-BE0B-F18EB40409C5}",
                                u"CLSID\\{24E457AA-DA94-41FC-A8DB-094CB13D3E6A}",
                                u"quenraDataSourcesFile.TextFileWorkspaceFactory",
                                u"quenraDataSourcesFile.TextFileWorkspaceFactory.1",
                                u"quenraDataSourcesFile.TextFileNativeType",
                                u"quenraDataSourcesFile.TextFileNativeType.1"})
      EXPECT_THAT(registry_.Dump(key), IsEmpty());
  }

  TestRegistry registry_;
};

TEST_F(RegistrationTest, WritesTheKeysOfTheWorkspaceFactory) {
  ASSERT_EQ(Register(), S_OK);
  const std::string key = "CLSID\\{B2E7A59D-0C38-4AC3-BE0B-F18EB40409C5}";
  EXPECT_THAT(
      registry_.Dump(ToUtf16(key)),
      ElementsAre(
          key + ": =Text File Workspace Factory", key + "\\ExtendedErrors:",
          key + "\\ExtendedErrors\\{503C3C40-E32E-4CA6-A6A1-61B7893F5A42}: =Error Lookup Service",
          key + "\\Implemented Categories:",
          key + "\\Implemented Categories\\{C90AC0C1-B581-401A-A719-37DCE48A837C}:",
          key + "\\InprocServer32: =" + ModulePath() + " ThreadingModel=Apartment",
          key + "\\ProgID: =quenraDataSourcesFile.TextFileWorkspaceFactory.1",
          key + "\\VersionIndependentProgID: =quenraDataSourcesFile.TextFileWorkspaceFactory"));
}

TEST_F(RegistrationTest, WritesTheKeysOfTheNativeType) {
  ASSERT_EQ(Register(), S_OK);
  const std::string key = "CLSID\\{24E457AA-DA94-41FC-A8DB-094CB13D3E6A}";
  EXPECT_THAT(
      registry_.Dump(ToUtf16(key)),
      ElementsAre(
          key + ": =Text File Native Type", key + "\\ExtendedErrors:",
          key + "\\ExtendedErrors\\{503C3C40-E32E-4CA6-A6A1-61B7893F5A42}: =Error Lookup Service",
          key + "\\Implemented Categories:",
          key + "\\Implemented Categories\\{5EACC192-228B-483B-B893-485167F2A9E6}:",
          key + "\\InprocServer32: =" + ModulePath() + " ThreadingModel=Apartment",
          key + "\\ProgID: =quenraDataSourcesFile.TextFileNativeType.1",
          key + "\\VersionIndependentProgID: =quenraDataSourcesFile.TextFileNativeType"));
}

TEST_F(RegistrationTest, WritesBothProgIdsOfEachClass) {
  ASSERT_EQ(Register(), S_OK);
  for (const auto& [name, classId] :
       {std::pair<std::string, std::string>{"quenraDataSourcesFile.TextFileWorkspaceFactory",
                                            "{B2E7A59D-0C38-4AC3-BE0B-F18EB40409C5}"},
        {"quenraDataSourcesFile.TextFileNativeType", "{24E457AA-DA94-41FC-A8DB-094CB13D3E6A}"}}) {
    EXPECT_THAT(registry_.Dump(ToUtf16(name)),
                ElementsAre(name + ": =" + name, name + "\\CLSID: =" + classId,
                            name + "\\CurVer: =" + name + ".1"));
    EXPECT_THAT(registry_.Dump(ToUtf16(name + ".1")),
                ElementsAre(name + ".1: =" + name + ".1", name + ".1\\CLSID: =" + classId));
  }
}

TEST_F(RegistrationTest, HostsFindTheClassesByProgId) {
  ASSERT_EQ(Register(), S_OK);
  EXPECT_TRUE(IsEqualCLSID(ClassOf(u"quenraDataSourcesFile.TextFileWorkspaceFactory"),
                           CLSID_TextFileWorkspaceFactory));
  EXPECT_TRUE(IsEqualCLSID(ClassOf(u"QUENRAdatasourcesfile.textfilenativetype.1"),
                           CLSID_TextFileNativeType))
      << "without regard to case";
  EXPECT_TRUE(IsEqualCLSID(ClassOf(u"quenraDataSourcesFile.TextFileNativeType.2"), CLSID{}));
}

TEST_F(RegistrationTest, RegisteringAgainChangesNothing) {
  ASSERT_EQ(Register(), S_OK);
  const auto once = registry_.Dump(u"CLSID\\{B2E7A59D-0C38-4AC3-BE0B-F18EB40409C5}");
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(registry_.Dump(u"CLSID\\{B2E7A59D-0C38-4AC3-BE0B-F18EB40409C5}"), once);
}

TEST_F(RegistrationTest, UnregisteringLeavesNothing) {
  ASSERT_EQ(Register(), S_OK);
  // Another program has added to the class: its keys go with the class.
  registry_.Write(u"clsid\\{b2e7a59d-0c38-4ac3-be0b-f18eb40409c5}\\Other\\Deeper", u"x");
  EXPECT_EQ(Unregister(), S_OK);
  ExpectNothingLeft();
  EXPECT_EQ(Unregister(), S_OK) << "what is not there need not be taken back";
}

TEST_F(RegistrationTest, OtherClassesAndProgIdsStay) {
  const std::u16string other = u"CLSID\\{B2E7A59D-0C38-4AC3-BE0B-000000000000}";
  registry_.Write(other, u"Other");
  registry_.Write(u"quenraDataSourcesFile.TextFileWorkspaceFactory.10", u"Other");
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(Unregister(), S_OK);
  EXPECT_THAT(registry_.Dump(other), ElementsAre(ToUtf8(other) + ": =Other"));
  EXPECT_THAT(registry_.Dump(u"quenraDataSourcesFile.TextFileWorkspaceFactory.10"),
              ElementsAre("quenraDataSourcesFile.TextFileWorkspaceFactory.10: =Other"));
  ::RegDeleteKeyW(HKEY_CLASSES_ROOT, AsOle(other.c_str()));
  ::RegDeleteKeyW(HKEY_CLASSES_ROOT, AsOle(u"quenraDataSourcesFile.TextFileWorkspaceFactory.10"));
}

TEST_F(RegistrationTest, TheUsualEntriesWriteNothing) {
  EXPECT_EQ(module_->Call("DllRegisterServer"), S_OK);
  ExpectNothingLeft();
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(module_->Call("DllUnregisterServer"), S_OK);
  EXPECT_TRUE(
      IsEqualCLSID(ClassOf(u"quenraDataSourcesFile.TextFileNativeType"), CLSID_TextFileNativeType))
      << "nor do they take anything back";
}

}  // namespace
}  // namespace quenra::test
