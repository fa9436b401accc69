// Registration where the system's registry refuses a key.
#ifdef _WIN32

#include "module/ModuleTest.h"
#include "support/TestRegistry.h"

namespace quenra::test {
namespace {

using ::testing::IsEmpty;

using RegistrationFailureWindowsTest = ModuleTest;

TEST_F(RegistrationFailureWindowsTest, RefusedKeyHalfWayIsReported) {
  const TestRegistry registry;
  // A key that is kept in memory alone takes no subkeys that stay.
  HKEY key = nullptr;
  ASSERT_EQ(::RegCreateKeyExW(HKEY_CLASSES_ROOT, L"quenraDataSourcesFile.TextFileWorkspaceFactory",
                              0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &key, nullptr),
            ERROR_SUCCESS);
  ::RegCloseKey(key);
  EXPECT_EQ(module_->Call("quenraDllRegisterServer"), SELFREG_E_CLASS);
  EXPECT_THAT(registry.Dump(u"CLSID\\{B2E7A59D-0C38-4AC3-BE0B-F18EB40409C5}"),
              ::testing::Not(IsEmpty()));
  EXPECT_THAT(registry.Dump(u"CLSID\\{24E457AA-DA94-41FC-A8DB-094CB13D3E6A}"), IsEmpty());
  EXPECT_EQ(module_->Call("quenraDllUnregisterServer"), S_OK);
  EXPECT_THAT(registry.Dump(u"quenraDataSourcesFile.TextFileWorkspaceFactory"), IsEmpty());
}

}  // namespace
}  // namespace quenra::test

#endif
