// The registered module in the hands of the system: nothing here loads it, and nothing but the
// system unloads it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>

#include "host/CoreSupport/BString.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/DataSourceClasses.h"
#include "host/interfaces/HostErrors.h"
#include "host/interfaces/HostInternalUnknown.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"
#include "hosts/c/PlainCHost.h"
#include "module/ModuleTest.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;

constexpr wchar_t kModuleName[] = L"quenraDataSourcesFile.dll";

// An apartment of one thread, as a desktop host's.
class Apartment {
 public:
  Apartment() { EXPECT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK); }
  ~Apartment() { ::CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

bool ModuleIsLoaded() { return ::GetModuleHandleW(kModuleName) != nullptr; }

// snippet: registered
HRESULT NewRegisteredFactory(ComPtr<IPlugInWorkspaceFactoryHelper2>& factory) {
  CLSID classId = {};
  const HRESULT result =
      ::CLSIDFromProgID(L"quenraDataSourcesFile.TextFileWorkspaceFactory", &classId);
  if (FAILED(result)) return result;
  return ::CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER,
                            kInterfaceId<IPlugInWorkspaceFactoryHelper2>, factory.ReceiveVoid());
}
// end of snippet

ComPtr<IPlugInWorkspaceFactoryHelper2> NewFactory() {
  ComPtr<IPlugInWorkspaceFactoryHelper2> factory;
  EXPECT_EQ(NewRegisteredFactory(factory), S_OK);
  return factory;
}

ComPtr<IPlugInWorkspaceHelper> OpenFolder(const ComPtr<IPlugInWorkspaceFactoryHelper2>& factory,
                                          const std::u16string& folder) {
  const BString path(folder);
  ComPtr<IPlugInWorkspaceHelper> workspace;
  EXPECT_EQ(factory->OpenFolderWorkspace(path.Get(), workspace.Receive()), S_OK);
  return workspace;
}

HRESULT OpenTable(const ComPtr<IPlugInWorkspaceHelper>& workspace, std::u16string_view name,
                  ComPtr<IPlugInDatasetHelper>& table) {
  const BString text(name);
  return workspace->OpenDatasetByName(text.Get(), table.Receive());
}

class ComHostTest : public ::testing::Test {
 protected:
  static HRESULT CallModule(const char* name) {
    const HMODULE module = ::LoadLibraryW(ToWide(MODULE_FILE).c_str());
    if (module == nullptr) return E_FAIL;
    using Entry = HRESULT(STDAPICALLTYPE*)();
    const auto entry =
        reinterpret_cast<Entry>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
    const HRESULT result = entry != nullptr ? entry() : E_NOTIMPL;
    ::FreeLibrary(module);
    return result;
  }

  static std::wstring ToWide(std::string_view text) {
    const std::u16string units = ToUtf16(text);
    return std::wstring(units.begin(), units.end());
  }

  static void SetUpTestSuite() { ASSERT_EQ(CallModule("quenraDllRegisterServer"), S_OK); }
  static void TearDownTestSuite() { EXPECT_EQ(CallModule("quenraDllUnregisterServer"), S_OK); }

  void SetUp() override { ASSERT_FALSE(ModuleIsLoaded()); }

  // What a host calls when it is idle.
  static void ExpectModuleToGo() {
    EXPECT_TRUE(ModuleIsLoaded());
    ::CoFreeUnusedLibraries();
    EXPECT_FALSE(ModuleIsLoaded());
  }

  TemporaryFolder folder_;
};

TEST_F(ComHostTest, ReadsEveryValueAndLetsTheModuleGo) {
  folder_.Write(u"a.csv",
                "Small,Whole,Real,Text,When,Where\n"
                "1,70000,1.5,\xC3\xBC,2020-01-05 10:30:00,\"48\xC2\xB0N, 11\xC2\xB0"
                "E\"\n"
                "2,,2.25,plain,2021-01-05 00:00:00,\"49\xC2\xB0N, 12\xC2\xB0"
                "E\"\n");
  folder_.Write(u"schema.ini",
                "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\n"
                "Col1=Small Short\nCol2=Whole Long\nCol3=Real Double\nCol4=Text Text\n"
                "Col5=When DateTime\nCol6=Where Text\n");
  const Apartment apartment;
  {
    const auto workspace = OpenFolder(NewFactory(), folder_.Path());
    ComPtr<IPlugInDatasetHelper> table;
    ASSERT_EQ(OpenTable(workspace, u"a.csv", table), S_OK);
    EXPECT_THAT(Rows(table), ElementsAre("I2:1|I4:70000|R8:1.5|BSTR:\xC3\xBC|DATE:43835.4375|"
                                         "BSTR:48\xC2\xB0N, 11\xC2\xB0"
                                         "E",
                                         "I2:2|NULL|R8:2.25|BSTR:plain|DATE:44201|"
                                         "BSTR:49\xC2\xB0N, 12\xC2\xB0"
                                         "E"));
    ::CoFreeUnusedLibraries();
    EXPECT_TRUE(ModuleIsLoaded()) << "while there are objects";
  }
  ExpectModuleToGo();
}

TEST_F(ComHostTest, ErrorsReachTheHostThroughTheSystem) {
  folder_.Write(u"a.csv", "Id\n1\n");
  folder_.Write(u"schema.ini", "[a.csv]\nCol1=Id Number\n");
  const Apartment apartment;
  {
    const auto workspace = OpenFolder(NewFactory(), folder_.Path());
    const auto support = workspace.As<ISupportErrorInfo>();
    ASSERT_TRUE(support);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IPlugInWorkspaceHelper), S_OK);
    ComPtr<IPlugInDatasetHelper> table;
    EXPECT_EQ(static_cast<DWORD>(OpenTable(workspace, u"a.csv", table)), 0x80040311u);
    ComPtr<IErrorInfo> error;
    ASSERT_EQ(::GetErrorInfo(0, error.Receive()), S_OK);
    BString text;
    EXPECT_EQ(error->GetDescription(text.Receive()), S_OK);
    EXPECT_NE(text.View().find(u"Unknown field type in schema.ini."), std::u16string_view::npos)
        << ToUtf8(text.View());
    GUID source = {};
    EXPECT_EQ(error->GetGUID(&source), S_OK);
    EXPECT_TRUE(IsEqualGUID(source, kTextFileErrorSource));
    ComPtr<IErrorInfo> none;
    EXPECT_EQ(::GetErrorInfo(0, none.Receive()), S_FALSE) << "it is read once";
  }
  ExpectModuleToGo();
}

TEST_F(ComHostTest, ChainedErrorsAreReadOneByOne) {
  folder_.Write(u"a.csv", "Id,Sum\n1,x\ny,2\n");
  folder_.Write(u"schema.ini", "[a.csv]\nColNameHeader=True\nCol1=Id Long\nCol2=Sum Long\n");
  const Apartment apartment;
  {
    const auto workspace = OpenFolder(NewFactory(), folder_.Path());
    ComPtr<IPlugInDatasetHelper> table;
    ASSERT_EQ(OpenTable(workspace, u"a.csv", table), S_OK);
    EXPECT_THAT(Rows(table), ElementsAre("I4:1|NULL", "NULL|I4:2"));
    std::vector<std::string> texts;
    for (const ErrorSeen& error : TakeErrors()) {
      EXPECT_EQ(static_cast<DWORD>(error.code), 0x80040955u);
      EXPECT_TRUE(IsEqualGUID(error.source, kTextFileErrorSource));
      texts.push_back(error.text);
    }
    EXPECT_THAT(texts, ElementsAre("In file a.csv, field value y does not match defined type of "
                                   "field Id. Update schema.ini file and try again.",
                                   "In file a.csv, field value x does not match defined type of "
                                   "field Sum. Update schema.ini file and try again."));
  }
  ExpectModuleToGo();
}

TEST_F(ComHostTest, ObjectsNameTheirClass) {
  const Apartment apartment;
  {
    const auto identity = NewFactory().As<IHostClassId>();
    ASSERT_TRUE(identity);
    CLSID classId = {};
    EXPECT_EQ(identity->GetClassID(&classId), S_OK);
    EXPECT_TRUE(IsEqualCLSID(classId, CLSID_TextFileWorkspaceFactory));
    BString progId;
    EXPECT_EQ(identity->GetProgID(progId.Receive()), S_OK);
    EXPECT_EQ(progId.View(), u"quenraDataSourcesFile.TextFileWorkspaceFactory.1");
  }
  ExpectModuleToGo();
}

TEST_F(ComHostTest, OneApartmentHasOneFactory) {
  const Apartment apartment;
  {
    const auto factory = NewFactory();
    EXPECT_EQ(NewFactory().As<IUnknown>(), factory.As<IUnknown>());
  }
  ExpectModuleToGo();
}

TEST_F(ComHostTest, TwoApartmentsHaveTwoFactories) {
  const Apartment apartment;
  {
    const auto factory = NewFactory();
    const BString option(u"ReadAsManyRowsAsNeeded");
    ASSERT_EQ(factory.As<IWorkspaceFactoryOpenOptions>()->SetOption(option.Get(), nullptr), S_OK);
    std::thread other([&factory] {
      const Apartment second;
      const auto theirs = NewFactory();
      EXPECT_NE(theirs.As<IUnknown>(), factory.As<IUnknown>());
      // What this thread sets, the other does not have.
      VARIANT_BOOL previous = VARIANT_TRUE;
      const BString same(u"ReadAsManyRowsAsNeeded");
      EXPECT_EQ(theirs.As<IWorkspaceFactoryOpenOptions>()->SetOption(same.Get(), &previous), S_OK);
      EXPECT_EQ(previous, VARIANT_FALSE);
    });
    other.join();
    VARIANT_BOOL previous = VARIANT_FALSE;
    EXPECT_EQ(factory.As<IWorkspaceFactoryOpenOptions>()->SetOption(option.Get(), &previous), S_OK);
    EXPECT_EQ(previous, VARIANT_TRUE);
  }
  ExpectModuleToGo();
}

TEST_F(ComHostTest, ClassesAreNotAggregated) {
  const Apartment apartment;
  {
    const auto outer = NewFactory();
    ComPtr<IUnknown> inner;
    EXPECT_EQ(::CoCreateInstance(CLSID_TextFileWorkspaceFactory, outer.Get(), CLSCTX_INPROC_SERVER,
                                 IID_IUnknown, inner.ReceiveVoid()),
              CLASS_E_NOAGGREGATION);
  }
  ExpectModuleToGo();
}

void AddRow(const FieldValue* values, LONG count, void* context) {
  std::string row;
  for (LONG i = 0; i < count; ++i) row += (i == 0 ? "" : "|") + Dump(values[i].value);
  static_cast<std::vector<std::string>*>(context)->push_back(row);
}

TEST_F(ComHostTest, PlainCReadsTheSameTable) {
  folder_.Write(u"a.csv",
                "Id,Name\n1,Ann\n2,B\xC3\xB6"
                "b\n");
  const Apartment apartment;
  {
    const auto known = NewFactory();
    auto* const factory =
        reinterpret_cast<Object*>(static_cast<IPlugInWorkspaceFactoryHelper*>(known.Get()));
    const std::wstring folder(folder_.Path().begin(), folder_.Path().end());
    std::vector<std::string> rows;
    LONG count = 0;
    EXPECT_EQ(::ReadTable(factory, folder.c_str(), L"a.csv", &AddRow, &rows, &count), S_OK);
    EXPECT_EQ(count, 2);
    EXPECT_THAT(rows, ElementsAre("I4:1|BSTR:Ann",
                                  "I4:2|BSTR:B\xC3\xB6"
                                  "b"));
    BString progId;
    EXPECT_EQ(::ProgIdOf(factory, progId.Receive()), S_OK);
    EXPECT_EQ(progId.View(), u"quenraDataSourcesFile.TextFileWorkspaceFactory.1");
  }
  ExpectModuleToGo();
}

}  // namespace
}  // namespace quenra::test
