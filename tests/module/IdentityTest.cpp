// COM's rules of identity for every object of the module, aggregation, and error information.
#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostInternalUnknown.h"
#include "module/ModuleTest.h"
#include "support/TestRegistry.h"

namespace quenra::test {
namespace {

struct NamedInterface {
  const char* name;
  const IID& iid;
};
#define INTERFACE(type) \
  { #type, IID_##type }

// Everything that an object of the module may answer.
const NamedInterface kAll[] = {
    INTERFACE(IUnknown),
    INTERFACE(IQUENRAInternalUnknown),
    INTERFACE(IHostClassId),
    INTERFACE(ISupportErrorInfo),
    INTERFACE(HostWorkspaceFactory),
    INTERFACE(IPlugInWorkspaceFactoryHelper),
    INTERFACE(IPlugInWorkspaceFactoryHelper2),
    INTERFACE(IWorkspaceFactoryOpenOptions),
    INTERFACE(ITextFileWorkspaceFactory),
    INTERFACE(IPlugInWorkspaceHelper),
    INTERFACE(IPlugInWorkspaceHelper2),
    INTERFACE(IPlugInMetadataPath),
    INTERFACE(IPlugInCreateDataset),
    INTERFACE(IPlugInWorkspaceProperties),
    INTERFACE(ITextFileWorkspace),
    INTERFACE(IPlugInDatasetInfo),
    INTERFACE(IPlugInDatasetHelper),
    INTERFACE(IPlugInFileOperations),
    INTERFACE(IPlugInDatasetLoad),
    INTERFACE(IPlugInRowCount),
    INTERFACE(IDatasetFileStat),
    INTERFACE(IDatasetFileStat2),
    INTERFACE(IPlugInCursorHelper),
    INTERFACE(IPlugInFastQueryValues),
    INTERFACE(IPlugInDatasetLoader),
    INTERFACE(INativeType),
    INTERFACE(IClassFactory),
    INTERFACE(IErrorInfo),
};
#undef INTERFACE

ComPtr<IUnknown> Query(IUnknown* object, const IID& iid) {
  ComPtr<IUnknown> result;
  if (object->QueryInterface(iid, result.ReceiveVoid()) != S_OK) {
    EXPECT_EQ(result.Get(), nullptr);
    result.Reset();
  }
  return result;
}

std::vector<std::string> AnsweredBy(IUnknown* object) {
  std::vector<std::string> names;
  for (const NamedInterface& each : kAll)
    if (Query(object, each.iid)) names.emplace_back(each.name);
  return names;
}

// Every face answers the same interfaces, with the same identity: reflexive, symmetric, transitive.
void ExpectOneIdentity(IUnknown* object) {
  const ComPtr<IUnknown> identity = Query(object, IID_IUnknown);
  const std::vector<std::string> answered = AnsweredBy(object);
  for (const NamedInterface& from : kAll) {
    const ComPtr<IUnknown> face = Query(object, from.iid);
    if (!face) continue;
    SCOPED_TRACE(from.name);
    EXPECT_EQ(Query(face.Get(), IID_IUnknown), identity);
    EXPECT_EQ(AnsweredBy(face.Get()), answered);
    EXPECT_EQ(face->QueryInterface(from.iid, nullptr), E_POINTER);
    for (const NamedInterface& to : kAll) {
      const ComPtr<IUnknown> other = Query(face.Get(), to.iid);
      if (!other) continue;
      EXPECT_TRUE(Query(other.Get(), from.iid)) << "back from " << to.name;
      EXPECT_EQ(Query(other.Get(), IID_IUnknown), identity) << "from " << to.name;
    }
  }
}

// The count after taking and dropping a reference is the count before.
void ExpectCountsBalance(IUnknown* object) {
  const ULONG before = object->AddRef();
  for (const NamedInterface& each : kAll) Query(object, each.iid);
  EXPECT_EQ(object->AddRef(), before + 1);
  EXPECT_EQ(object->Release(), before);
  EXPECT_EQ(object->Release(), before - 1);
}

HRESULT RefuseToCreate(IUnknown*, const IID&, void** object) {
  *object = nullptr;
  return E_FAIL;
}

class IdentityTest : public ModuleTest {
 protected:
  void SetUp() override {
    ModuleTest::SetUp();
    folder_.Write(u"a.csv", "Id\n1\n");
  }

  static std::string ProgIdOf(IUnknown* object, HRESULT& result) {
    BString text;
    result = QueryFor<IHostClassId>(object)->GetProgID(text.Receive());
    return ToUtf8(text.View());
  }

  static std::string ClassIdErrorOf(IUnknown* object) {
    const auto classId = QueryFor<IHostClassId>(object);
    CLSID id;
    return classId->GetClassID(&id) == E_FAIL && classId->GetProgID(nullptr) == E_POINTER ? "none"
                                                                                          : "some";
  }
};

using ::testing::ElementsAre;

TEST_F(IdentityTest, WorkspaceFactory) {
  const auto factory = Factory();
  EXPECT_THAT(
      AnsweredBy(factory.Get()),
      ElementsAre("IUnknown", "IQUENRAInternalUnknown", "IHostClassId", "HostWorkspaceFactory",
                  "IPlugInWorkspaceFactoryHelper", "IPlugInWorkspaceFactoryHelper2",
                  "IWorkspaceFactoryOpenOptions", "ITextFileWorkspaceFactory"));
  ExpectOneIdentity(factory.Get());
  ExpectCountsBalance(factory.Get());
}

TEST_F(IdentityTest, BothFactoryInterfacesAreOneFace) {
  const auto factory = Factory();
  EXPECT_EQ(static_cast<void*>(factory.As<IPlugInWorkspaceFactoryHelper>().Get()),
            static_cast<void*>(factory.Get()));
}

TEST_F(IdentityTest, WorkspaceHelper) {
  const auto workspace = OpenWorkspace();
  EXPECT_THAT(
      AnsweredBy(workspace.Get()),
      ElementsAre("IUnknown", "IQUENRAInternalUnknown", "IHostClassId", "ISupportErrorInfo",
                  "IPlugInWorkspaceHelper", "IPlugInWorkspaceHelper2", "IPlugInMetadataPath",
                  "IPlugInCreateDataset", "IPlugInWorkspaceProperties", "ITextFileWorkspace"));
  ExpectOneIdentity(workspace.Get());
  ExpectCountsBalance(workspace.Get());
  EXPECT_EQ(ClassIdErrorOf(workspace.Get()), "none");
}

TEST_F(IdentityTest, DatasetHelper) {
  const auto table = OpenTable(u"a.csv");
  EXPECT_THAT(AnsweredBy(table.Get()),
              ElementsAre("IUnknown", "IQUENRAInternalUnknown", "IHostClassId", "ISupportErrorInfo",
                          "IPlugInDatasetInfo", "IPlugInDatasetHelper", "IPlugInFileOperations",
                          "IPlugInDatasetLoad", "IPlugInRowCount", "IDatasetFileStat",
                          "IDatasetFileStat2"));
  ExpectOneIdentity(table.Get());
  ExpectCountsBalance(table.Get());
  EXPECT_EQ(ClassIdErrorOf(table.Get()), "none");
}

TEST_F(IdentityTest, CursorHelper) {
  const auto table = OpenTable(u"a.csv");
  const CursorOverAll cursor(table);
  IUnknown* const object = cursor.Cursor().Get();
  EXPECT_THAT(AnsweredBy(object), ElementsAre("IUnknown", "IQUENRAInternalUnknown", "IHostClassId",
                                              "IPlugInCursorHelper", "IPlugInFastQueryValues"));
  ExpectOneIdentity(object);
  ExpectCountsBalance(object);
  EXPECT_EQ(ClassIdErrorOf(object), "none");
}

TEST_F(IdentityTest, NativeType) {
  const auto type = module_->Create<INativeType>(CLSID_TextFileNativeType);
  EXPECT_THAT(AnsweredBy(type.Get()),
              ElementsAre("IUnknown", "IQUENRAInternalUnknown", "IHostClassId", "INativeType"));
  ExpectOneIdentity(type.Get());
  ExpectCountsBalance(type.Get());
}

TEST_F(IdentityTest, ClassesReportTheirIdentifiersAndProgIds) {
  const TestRegistry registry;
  ASSERT_EQ(module_->Call("quenraDllRegisterServer"), S_OK);
  HRESULT result = E_FAIL;
  const auto factory = Factory();
  CLSID classId{};
  EXPECT_EQ(QueryFor<IHostClassId>(factory.Get())->GetClassID(&classId), S_OK);
  EXPECT_TRUE(IsEqualCLSID(classId, CLSID_TextFileWorkspaceFactory));
  EXPECT_EQ(ProgIdOf(factory.Get(), result), "quenraDataSourcesFile.TextFileWorkspaceFactory.1");
  EXPECT_EQ(result, S_OK);

  const auto type = module_->Create<INativeType>(CLSID_TextFileNativeType);
  EXPECT_EQ(QueryFor<IHostClassId>(type.Get())->GetClassID(&classId), S_OK);
  EXPECT_TRUE(IsEqualCLSID(classId, CLSID_TextFileNativeType));
  EXPECT_EQ(ProgIdOf(type.Get(), result), "quenraDataSourcesFile.TextFileNativeType.1");
  EXPECT_EQ(result, S_OK);

  ASSERT_EQ(module_->Call("quenraDllUnregisterServer"), S_OK);
  EXPECT_EQ(ProgIdOf(type.Get(), result), "");
  EXPECT_EQ(result, REGDB_E_CLASSNOTREG);
}

TEST_F(IdentityTest, ErrorInformationIsSupportedForEveryInterface) {
  const auto support = QueryFor<ISupportErrorInfo>(OpenTable(u"a.csv").Get());
  for (const NamedInterface& each : kAll)
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(each.iid), S_OK) << each.name;
}

TEST_F(IdentityTest, TearOffKeepsItsObjectAlive) {
  ComPtr<ISupportErrorInfo> support = QueryFor<ISupportErrorInfo>(OpenTable(u"a.csv").Get());
  EXPECT_EQ(module_->CanUnloadNow(), S_FALSE);
  const auto info = support.As<IPlugInDatasetInfo>();
  support.Reset();
  LONG kind = 0;
  EXPECT_EQ(info->DatasetKind(&kind), S_OK);
  EXPECT_EQ(kind, 10);
}

TEST_F(IdentityTest, HostsGenericFactoryAppearsOnTheFactory) {
  const auto generic = Factory().As<HostWorkspaceFactory>();
  ASSERT_TRUE(generic);
  ComPtr<HostWorkspace> workspace;
  EXPECT_EQ(generic->OpenWorkspace(BString(folder_.Path()).Get(), workspace.Receive()), S_OK);
  BString path;
  EXPECT_EQ(workspace->WorkspacePath(path.Receive()), S_OK);
  EXPECT_EQ(ToUtf8(path.View()), ToUtf8(folder_.Path()));
}

// The aggregated face counts on the whole object, so that it alone keeps the factory.
TEST_F(IdentityTest, GenericFaceAloneKeepsTheFactory) {
  const auto generic = Factory().As<HostWorkspaceFactory>();
  EXPECT_EQ(module_->CanUnloadNow(), S_FALSE);
  EXPECT_EQ(generic.As<IPlugInWorkspaceFactoryHelper2>(), Factory());
}

TEST_F(IdentityTest, FactoryWorksWithoutTheHostsGenericFactory) {
  SetComponentCreator(CLSID_HostWorkspaceFactory, &RefuseToCreate);
  const auto factory = Factory();
  SetComponentCreator(CLSID_HostWorkspaceFactory, nullptr);
  ASSERT_TRUE(factory);
  EXPECT_FALSE(factory.As<HostWorkspaceFactory>());
  EXPECT_TRUE(factory.As<IHostClassId>());
  ExpectOneIdentity(factory.Get());
  ComPtr<IPlugInWorkspaceHelper> workspace;
  EXPECT_EQ(factory->OpenFolderWorkspace(BString(folder_.Path()).Get(), workspace.Receive()), S_OK);
}

}  // namespace
}  // namespace quenra::test
