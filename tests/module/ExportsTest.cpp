// The module's exports, its class factories and its unloading.
#include <atomic>
#include <cstring>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostInternalUnknown.h"
#include "module/ModuleTest.h"

namespace quenra::test {
namespace {

constexpr GUID kNoClass = {0x12345678, 0, 0, {1, 2, 3, 4, 5, 6, 7, 8}};

class ExportsTest : public ModuleTest {
 protected:
  static void RunOnThreads(int count, const std::function<void()>& work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
  }

  ComPtr<IClassFactory> ClassObject(const CLSID& classId) const {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(module_->GetClassObject(classId, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
    return factory;
  }
};

TEST_F(ExportsTest, ClassObjectsAnswerForBothClassesOnly) {
  EXPECT_TRUE(ClassObject(CLSID_TextFileWorkspaceFactory));
  EXPECT_TRUE(ClassObject(CLSID_TextFileNativeType));
  void* result = this;
  EXPECT_EQ(module_->GetClassObject(kNoClass, IID_IClassFactory, &result),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(result, nullptr);
}

TEST_F(ExportsTest, ClassObjectsRefuseOtherInterfaces) {
  for (const CLSID& classId : {CLSID_TextFileWorkspaceFactory, CLSID_TextFileNativeType}) {
    void* result = this;
    EXPECT_EQ(module_->GetClassObject(classId, IID_IErrorInfo, &result), E_NOINTERFACE);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(module_->GetClassObject(classId, IID_IClassFactory, nullptr), E_POINTER);
  }
}

TEST_F(ExportsTest, OnlyTheWorkspaceFactorysClassIsSingleton) {
  const auto singleton = ClassObject(CLSID_TextFileWorkspaceFactory).As<ISingleton>();
  ASSERT_TRUE(singleton);
  EXPECT_EQ(singleton.As<IUnknown>(), ClassObject(CLSID_TextFileWorkspaceFactory).As<IUnknown>());
  EXPECT_FALSE(ClassObject(CLSID_TextFileNativeType).As<ISingleton>());
}

TEST_F(ExportsTest, ClassObjectsAreTheSameAtEveryRequest) {
  EXPECT_EQ(ClassObject(CLSID_TextFileNativeType), ClassObject(CLSID_TextFileNativeType));
}

TEST_F(ExportsTest, FactoriesRefuseAggregationAndNullResults) {
  for (const CLSID& classId : {CLSID_TextFileWorkspaceFactory, CLSID_TextFileNativeType}) {
    const auto factory = ClassObject(classId);
    void* result = this;
    EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_IUnknown, &result), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    result = this;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IErrorInfo, &result), E_NOINTERFACE);
    EXPECT_EQ(result, nullptr);
  }
}

TEST_F(ExportsTest, ThreadHasOneWorkspaceFactoryAndManyNativeTypes) {
  EXPECT_EQ(Factory(), Factory());
  const auto first = module_->Create<INativeType>(CLSID_TextFileNativeType);
  const auto second = module_->Create<INativeType>(CLSID_TextFileNativeType);
  EXPECT_NE(first.Get(), second.Get());
}

TEST_F(ExportsTest, LockKeepsTheModuleLoaded) {
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
  const auto factory = ClassObject(CLSID_TextFileNativeType);
  EXPECT_EQ(module_->CanUnloadNow(), S_OK) << "a class object is no live object";
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(module_->CanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
}

TEST_F(ExportsTest, EveryObjectKeepsTheModuleLoaded) {
  folder_.Write(u"a.csv", "Id\n1\n");
  ComPtr<IPlugInWorkspaceHelper> workspace = OpenWorkspace();
  EXPECT_EQ(module_->CanUnloadNow(), S_FALSE);
  ComPtr<IPlugInDatasetHelper> table;
  ASSERT_EQ(workspace->OpenDatasetByName(BString(u"a.csv").Get(), table.Receive()), S_OK);
  workspace.Reset();
  EXPECT_EQ(module_->CanUnloadNow(), S_FALSE);
  {
    const CursorOverAll cursor(table);
    table.Reset();
    EXPECT_EQ(module_->CanUnloadNow(), S_FALSE);
  }
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
}

TEST_F(ExportsTest, UnloadQueryDropsTheUnusedFactoryWithItsOptions) {
  SetOption(u"ReadAsManyRowsAsNeeded");
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
  VARIANT_BOOL previous = VARIANT_TRUE;
  const auto options = Factory().As<IWorkspaceFactoryOpenOptions>();
  options->SetOption(BString(u"ReadAsManyRowsAsNeeded").Get(), &previous);
  EXPECT_EQ(previous, VARIANT_FALSE) << "a new factory starts with the defaults";
}

TEST_F(ExportsTest, UnloadQueryLeavesAFactoryInUse) {
  const auto factory = Factory();
  EXPECT_EQ(module_->CanUnloadNow(), S_FALSE);
  EXPECT_EQ(Factory(), factory);
}

TEST_F(ExportsTest, SingletonIsDroppedThroughItsInterface) {
  SetOption(u"ReadAsManyRowsAsNeeded");
  EXPECT_EQ(ClassObject(CLSID_TextFileWorkspaceFactory).As<ISingleton>()->DropUnusedInstance(),
            S_OK);
  VARIANT_BOOL previous = VARIANT_TRUE;
  Factory().As<IWorkspaceFactoryOpenOptions>()->SetOption(BString(u"ReadAsManyRowsAsNeeded").Get(),
                                                          &previous);
  EXPECT_EQ(previous, VARIANT_FALSE);
}

TEST_F(ExportsTest, ThreadsHaveFactoriesAndOptionsOfTheirOwn) {
  SetOption(u"InferTimeOnlyFields");
  folder_.Write(u"a.csv", "At\n10:15\n11:20\n");
  const auto factory = Factory();
  LONG otherType = -1;
  bool same = true;
  RunOnThreads(1, [&] {
    same = Factory() == factory;
    otherType = Fields(OpenTable(u"a.csv")).at(0).type;
    EXPECT_EQ(module_->CanUnloadNow(), S_FALSE) << "the other thread's factory lives";
  });
  EXPECT_FALSE(same);
  EXPECT_NE(otherType, 15) << "the option was set on the other thread's factory";
  EXPECT_EQ(Fields(OpenTable(u"a.csv")).at(0).type, 15);
}

TEST_F(ExportsTest, ThreadsReadSideBySide) {
  folder_.Write(u"a.csv", "Id,Name\n1,a\n2,b\n");
  constexpr int kThreads = 8;
  std::atomic<int> right = 0;
  RunOnThreads(kThreads, [&] {
    for (int round = 0; round < 5; ++round)
      right += Rows(OpenTable(u"a.csv")) == std::vector<std::string>{"I4:1|BSTR:a", "I4:2|BSTR:b"};
  });
  EXPECT_EQ(right, kThreads * 5);
}

// A thread that ends does not ask for its instance to be dropped.
TEST_F(ExportsTest, InstancesOfEndedThreadsDoNotKeepTheModule) {
  for (int i = 0; i < 40; ++i) RunOnThreads(1, [this] { EXPECT_TRUE(Factory()); });
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
}

// Some systems give an id again at once.
TEST_F(ExportsTest, ManyThreadsAfterOneAnotherStartWithTheDefaultsAndLeaveNothing) {
  const LONG before = LiveComponentCount();
  for (int i = 0; i < 300; ++i) {
    RunOnThreads(1, [&] {
      VARIANT_BOOL previous = VARIANT_TRUE;
      const auto options = Factory().As<IWorkspaceFactoryOpenOptions>();
      EXPECT_EQ(options->SetOption(BString(u"ReadAsManyRowsAsNeeded").Get(), &previous), S_OK);
      EXPECT_EQ(previous, VARIANT_FALSE);
    });
    ASSERT_LE(LiveComponentCount(), before + 1) << "of the last thread that ended";
  }
}

TEST_F(ExportsTest, InstanceOfAnEndedThreadStaysWhileItIsHeld) {
  ComPtr<IPlugInWorkspaceFactoryHelper2> held;
  RunOnThreads(1, [&] { held = Factory(); });
  EXPECT_EQ(module_->CanUnloadNow(), S_FALSE);
  LONG kind = -1;
  EXPECT_EQ(held->WorkspaceKind(&kind), S_OK);
  held.Reset();
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
}

TEST_F(ExportsTest, RegistrationOfTheUsualEntriesDoesNothing) {
  EXPECT_EQ(module_->Call("DllRegisterServer"), S_OK);
  EXPECT_EQ(module_->Call("DllUnregisterServer"), S_OK);
}

TEST_F(ExportsTest, ModuleCarriesItsTexts) {
  struct TextCase {
    UINT id;
    std::u16string_view text;
  };
  constexpr TextCase kTexts[] = {
      {101, u"Text File"},
      {102, u"Text File Data"},
      {103, u"Missing field name in schema.ini."},
      {104, u"Missing field type in schema.ini."},
      {105, u"Unknown field type in schema.ini."},
      {106, u"Keyword \"Width\" expected after field type in schema.ini."},
      {107, u"Bad value for field width in schema.ini."},
      {108, u"Fixed width files must specify all field in schema.ini."},
      {109, u"Bad date format in schema.ini."},
      {110, u"Duplicate option found in schema.ini."},
      {111, u"Invalid format option in schema.ini."},
      {112, u"Double quote cannot be used as a custom delimiter in schema.ini."},
      {113, u"Invalid value for option in schema.ini."},
      {114, u"Unknown option in schema.ini."},
      {115,
       u"In file %1, field value %2 does not match inferred type of field %3. Generated "
       u"schema.ini. Restart and try again."},
      {116,
       u"In file %1, field value %2 does not match inferred type of field %3, and has already been "
       u"updated in schema.ini. Restart and try again."},
      {117,
       u"In file %1, field value %2 does not match defined type of field %3. Update schema.ini "
       u"file "
       u"and try again."},
      {118,
       u"In file %1, field value %2 does not match inferred type of field %3. Create schema.ini "
       u"file and try again."},
      {119, u""},
      {100, u""},
  };
  for (const TextCase& c : kTexts) {
    char16_t buffer[512];
    const int length = ::LoadStringW(module_->Handle(), c.id, AsOle(buffer), 512);
    EXPECT_EQ(ToUtf8({buffer, static_cast<std::size_t>(length)}), ToUtf8(c.text)) << c.id;
  }
}

#ifdef _WIN32

TEST_F(ExportsTest, ModuleSaysItsVersion) {
  const HRSRC place =
      ::FindResourceW(module_->Handle(), MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
  ASSERT_NE(place, nullptr);
  // In front of the numbers are three words and "VS_VERSION_INFO", filled up to a double word.
  constexpr std::size_t kNumbers = 40;
  ASSERT_GE(::SizeofResource(module_->Handle(), place), kNumbers + sizeof(VS_FIXEDFILEINFO));
  VS_FIXEDFILEINFO info = {};
  const auto* const bytes =
      static_cast<const char*>(::LockResource(::LoadResource(module_->Handle(), place)));
  std::memcpy(&info, bytes + kNumbers, sizeof info);
  EXPECT_EQ(info.dwSignature, 0xFEEF04BDu);
  EXPECT_EQ(std::to_string(HIWORD(info.dwFileVersionMS)) + "." +
                std::to_string(LOWORD(info.dwFileVersionMS)) + "." +
                std::to_string(HIWORD(info.dwFileVersionLS)),
            PROJECT_VERSION_TEXT);
  EXPECT_EQ(info.dwFileType, static_cast<DWORD>(VFT_DLL));
}

#endif

}  // namespace
}  // namespace quenra::test
