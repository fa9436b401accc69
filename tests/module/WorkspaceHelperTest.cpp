// One open folder: listing, opening by name, and its plain answers.
#include <algorithm>

#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostClasses.h"
#include "module/ModuleTest.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

constexpr auto kTableNotFound = static_cast<HRESULT>(0x80040351u);
constexpr auto kFileNotOpened = static_cast<HRESULT>(0x80040211u);

class WorkspaceHelperTest : public ModuleTest {
 protected:
  std::vector<ComPtr<IPlugInDatasetInfo>> List(LONG type = 10) const {
    std::vector<ComPtr<IPlugInDatasetInfo>> tables;
    ComPtr<HostArray> array;
    EXPECT_EQ(OpenWorkspace()->EnumerateDatasets(type, array.Receive()), S_OK);
    LONG count = 0;
    array->GetCount(&count);
    for (LONG i = 0; i < count; ++i) {
      ComPtr<IUnknown> element;
      array->GetElement(i, element.Receive());
      tables.push_back(element.As<IPlugInDatasetInfo>());
    }
    return tables;
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& table : List()) {
      BString title;
      EXPECT_EQ(table->DatasetFileTitle(title.Receive()), S_OK);
      names.push_back(ToUtf8(title.View()));
    }
    return names;
  }
};

TEST_F(WorkspaceHelperTest, PlainAnswers) {
  const auto workspace = OpenWorkspace();
  VARIANT_BOOL result = 7;
  EXPECT_EQ(workspace->RowIdIsRecordNumber(&result), S_OK);
  EXPECT_EQ(result, VARIANT_TRUE);
  EXPECT_EQ(workspace->RowCountIsComputed(&result), S_OK);
  EXPECT_EQ(result, VARIANT_FALSE);
  const auto second = workspace.As<IPlugInWorkspaceHelper2>();
  result = 7;
  EXPECT_EQ(second->ReservedQuery1(&result), S_OK);
  EXPECT_EQ(result, VARIANT_FALSE);
  result = 7;
  EXPECT_EQ(second->ReservedQuery2(&result), S_OK);
  EXPECT_EQ(result, VARIANT_FALSE);
  result = 7;
  EXPECT_EQ(second->ReservedQuery3(&result), S_OK);
  EXPECT_EQ(result, VARIANT_FALSE);
  result = 7;
  EXPECT_EQ(workspace.As<IPlugInWorkspaceProperties>()->ReservedQuery(&result), S_OK);
  EXPECT_EQ(result, VARIANT_FALSE);
}

TEST_F(WorkspaceHelperTest, NullArgumentsAreRefused) {
  const auto workspace = OpenWorkspace();
  EXPECT_EQ(workspace->RowIdIsRecordNumber(nullptr), E_POINTER);
  EXPECT_EQ(workspace->RowCountIsComputed(nullptr), E_POINTER);
  EXPECT_EQ(workspace->CreateNativeType(10, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(workspace->EnumerateDatasets(10, nullptr), E_POINTER);
  EXPECT_EQ(workspace->EnumerateDatasets(5, nullptr), E_POINTER);
  EXPECT_EQ(workspace->OpenDatasetByName(BString(u"a.csv").Get(), nullptr), E_POINTER);
  const auto second = workspace.As<IPlugInWorkspaceHelper2>();
  EXPECT_EQ(second->ReservedQuery1(nullptr), E_POINTER);
  EXPECT_EQ(second->ReservedQuery2(nullptr), E_POINTER);
  EXPECT_EQ(second->ReservedQuery3(nullptr), E_POINTER);
  EXPECT_EQ(workspace.As<IPlugInMetadataPath>()->MetadataFilePath(BString(u"a").Get(), nullptr),
            E_POINTER);
  const auto properties = workspace.As<IPlugInWorkspaceProperties>();
  EXPECT_EQ(properties->ReservedQuery(nullptr), E_POINTER);
  EXPECT_EQ(properties->SupportsFieldType(1, nullptr), E_POINTER);
}

TEST_F(WorkspaceHelperTest, CreateTableRefusesMissingArguments) {
  const auto create = OpenWorkspace().As<IPlugInCreateDataset>();
  ComPtr<HostFieldCollection> fields;
  ASSERT_EQ(CreateComponentInstance(CLSID_HostFieldCollection, fields.Receive()), S_OK);
  ComPtr<IPlugInDatasetHelper> table;
  const BString name(u"new.csv");
  EXPECT_EQ(create->CreateTable(nullptr, fields.Get(), table.Receive()), E_POINTER);
  EXPECT_EQ(create->CreateTable(BString(u"").Get(), fields.Get(), table.Receive()), E_POINTER);
  EXPECT_EQ(create->CreateTable(name.Get(), nullptr, table.Receive()), E_POINTER);
  EXPECT_EQ(create->CreateTable(name.Get(), fields.Get(), nullptr), E_POINTER);
  EXPECT_THAT(folder_.Names(), ElementsAre());
}

TEST_F(WorkspaceHelperTest, SupportedFieldTypes) {
  const auto properties = OpenWorkspace().As<IPlugInWorkspaceProperties>();
  for (LONG type = -1; type <= 20; ++type) {
    const bool expected = (type >= 0 && type <= 5) || (type >= 13 && type <= 16);
    VARIANT_BOOL supported = 7;
    EXPECT_EQ(properties->SupportsFieldType(type, &supported), S_OK);
    EXPECT_EQ(supported, expected ? VARIANT_TRUE : VARIANT_FALSE) << type;
  }
}

TEST_F(WorkspaceHelperTest, EveryNativeTypeIsNew) {
  const auto workspace = OpenWorkspace();
  ComPtr<INativeType> first;
  ComPtr<INativeType> second;
  EXPECT_EQ(workspace->CreateNativeType(10, BString(u"a").Get(), first.Receive()), S_OK);
  EXPECT_EQ(workspace->CreateNativeType(-5, nullptr, second.Receive()), S_OK);
  EXPECT_TRUE(first);
  EXPECT_NE(first.Get(), second.Get());
}

TEST_F(WorkspaceHelperTest, ListsTablesByExtensionAlone) {
  for (const std::u16string_view name :
       {u"A.CSV", u"b.Txt", u"c.dat", u"schema.ini", u"d.csv.xml", u"e.text", u"f.txt.bak"})
    folder_.Write(name, "x\n");
  EXPECT_THAT(Names(), UnorderedElementsAre("A.CSV", "b.Txt"));
}

TEST_F(WorkspaceHelperTest, BothTableTypesListTables) {
  folder_.Write(u"a.csv", "x\n");
  EXPECT_EQ(List(1).size(), 1u);
  EXPECT_EQ(List(10).size(), 1u);
}

TEST_F(WorkspaceHelperTest, OtherTypesAnswerNothing) {
  folder_.Write(u"a.csv", "x\n");
  const auto workspace = OpenWorkspace();
  for (const LONG type : {0, 2, 5, 9, 11, -1}) {
    auto* const before = reinterpret_cast<HostArray*>(this);
    HostArray* array = before;
    EXPECT_EQ(workspace->EnumerateDatasets(type, &array), S_FALSE);
    EXPECT_EQ(array, before) << "the result is left untouched";
  }
}

TEST_F(WorkspaceHelperTest, ListingSkipsWhatIsNoRegularFile) {
  folder_.Write(u"a.csv", "x\n");
  folder_.MakeFolder(u"x.csv");
  folder_.MakeLink(u"loop.csv", u"loop.csv");
  folder_.MakeLink(u"gone.csv", u"nowhere");
  EXPECT_THAT(Names(), UnorderedElementsAre("a.csv"));
}

TEST_F(WorkspaceHelperTest, ListingFollowsLinksToFiles) {
  folder_.Write(u"a.csv", "x\n");
  if (!folder_.MakeLink(u"link.csv", u"a.csv")) GTEST_SKIP() << "links cannot be made here";
  EXPECT_THAT(Names(), UnorderedElementsAre("a.csv", "link.csv"));
}

TEST_F(WorkspaceHelperTest, ListedTablesAreNotOpenedYet) {
  folder_.Write(u"a.csv", "Id\n1\n");
  const auto tables = List();
  EXPECT_TRUE(Events().empty());
  EXPECT_EQ(Fields(tables.at(0).As<IPlugInDatasetHelper>()).size(), 1u);
  EXPECT_EQ(Events().size(), 2u) << "one begin and one end event";
}

TEST_F(WorkspaceHelperTest, FileThatVanishesAfterTheListingFailsToOpen) {
  folder_.Write(u"a.csv", "Id\n1\n");
  const auto tables = List();
  folder_.Remove(u"a.csv");
  const auto table = tables.at(0).As<IPlugInDatasetHelper>();
  auto* fields = reinterpret_cast<HostFieldCollection*>(this);
  EXPECT_EQ(table->DescribeFields(0, &fields), kFileNotOpened);
  EXPECT_EQ(fields, nullptr);
  const auto errors = TakeErrors();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].code, kFileNotOpened);
  EXPECT_EQ(errors[0].text, "a.csv");
  EXPECT_EQ(OpenResult(u"a.csv"), kTableNotFound);
}

TEST_F(WorkspaceHelperTest, FailedOpenCanBeTriedAgain) {
  folder_.Write(u"a.csv", "Id;At\n1;2\n");
  const auto table = List().at(0).As<IPlugInDatasetHelper>();
  folder_.Write(u"schema.ini", "[a.csv]\nFormat=TabDelimited\nNonsense=1\n");
  LONG count = 0;
  const auto rows = table.As<IPlugInRowCount>();
  EXPECT_TRUE(FAILED(rows->CountRows(0, &count)));
  folder_.Remove(u"schema.ini");
  EXPECT_EQ(rows->CountRows(0, &count), S_OK);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(Fields(table).size(), 2u) << "nothing of the failed section is kept";
}

TEST_F(WorkspaceHelperTest, OpensFilesWithOtherExtensions) {
  folder_.Write(u"c.dat", "Id\n1\n");
  EXPECT_THAT(Rows(OpenTable(u"c.dat")), ElementsAre("I4:1"));
}

TEST_F(WorkspaceHelperTest, NamesThatLeadElsewhereAreNotFound) {
  folder_.MakeFolder(u"other");
  folder_.Write(u"other/x.csv", "Id\n1\n");
  folder_.Write(u"y.csv", "Id\n1\n");
  for (const std::u16string_view name : {u"..\\other\\x.csv", u"other/x.csv", u"other/../y.csv",
                                         u"./y.csv", u"/y.csv", u"missing.csv", u"", u"y.csv/"})
    EXPECT_EQ(OpenResult(name), kTableNotFound) << ToUtf8(name);
  ComPtr<IPlugInDatasetHelper> table;
  EXPECT_EQ(OpenWorkspace()->OpenDatasetByName(nullptr, table.Receive()), kTableNotFound);
}

TEST_F(WorkspaceHelperTest, FolderNamedLikeATableDoesNotOpen) {
  folder_.MakeFolder(u"x.csv");
  EXPECT_EQ(OpenResult(u"x.csv"), kFileNotOpened);
  const auto errors = TakeErrors();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].code, kFileNotOpened);
  EXPECT_EQ(errors[0].text, "x.csv");
  EXPECT_TRUE(IsEqualGUID(errors[0].source, kTextFileErrorSource));
}

TEST_F(WorkspaceHelperTest, EveryOpenGivesATableOfItsOwn) {
  folder_.Write(u"a.csv", "Id\n1\n");
  const auto workspace = OpenWorkspace();
  ComPtr<IPlugInDatasetHelper> first;
  ComPtr<IPlugInDatasetHelper> second;
  const BString name(u"a.csv");
  EXPECT_EQ(workspace->OpenDatasetByName(name.Get(), first.Receive()), S_OK);
  EXPECT_EQ(workspace->OpenDatasetByName(name.Get(), second.Receive()), S_OK);
  EXPECT_NE(first.Get(), second.Get());
}

TEST_F(WorkspaceHelperTest, MetadataStandsBesideTheTable) {
  BString path;
  EXPECT_EQ(OpenWorkspace().As<IPlugInMetadataPath>()->MetadataFilePath(BString(u"x.csv").Get(),
                                                                        path.Receive()),
            S_OK);
  EXPECT_EQ(ToUtf8(path.View()), ToUtf8(folder_.Path(u"x.csv.xml")));
}

TEST_F(WorkspaceHelperTest, ErrorSourceIsOfferedForEveryInterface) {
  EXPECT_TRUE(OpenWorkspace().As<ISupportErrorInfo>());
}

#ifndef _WIN32
TEST_F(WorkspaceHelperTest, NamesThatAreNotUtf8AreListedAndOpened) {
  const std::u16string name = u"caf\xDCE9.csv";  // the byte E9, alone
  folder_.Write(name, "Id\n1\n");
  const auto tables = List();
  ASSERT_EQ(tables.size(), 1u);
  BString title;
  EXPECT_EQ(tables[0]->DatasetFileTitle(title.Receive()), S_OK);
  EXPECT_EQ(title.View(), name);
  EXPECT_THAT(Rows(OpenTable(name)), ElementsAre("I4:1"));
}
#endif

TEST_F(WorkspaceHelperTest, NativeTypeTellsItsKind) {
  ComPtr<INativeType> type;
  ASSERT_EQ(OpenWorkspace()->CreateNativeType(10, nullptr, type.Receive()), S_OK);
  BString name;
  EXPECT_EQ(type->Name(name.Receive()), S_OK);
  EXPECT_EQ(ToUtf8(name.View()), "Text File");
  EXPECT_EQ(type->Name(nullptr), E_POINTER);
  ComPtr<HostClassIdentifier> id;
  ASSERT_EQ(type->NativeTypeId(id.Receive()), S_OK);
  GUID value{};
  id->GetValue(&value);
  EXPECT_TRUE(IsEqualGUID(value, CLSID_TextFileNativeType));
  EXPECT_EQ(type->NativeTypeId(nullptr), E_POINTER);
}

HRESULT RefuseToCreate(IUnknown*, const IID&, void** object) {
  *object = nullptr;
  return E_ACCESSDENIED;
}

TEST_F(WorkspaceHelperTest, HostsThatCannotMakeObjects) {
  folder_.Write(u"a.csv", "Id\n1\n");
  const auto workspace = OpenWorkspace();
  const auto table = OpenTable(u"a.csv");
  ComPtr<INativeType> type;
  ASSERT_EQ(workspace->CreateNativeType(10, nullptr, type.Receive()), S_OK);
  for (const CLSID& classId :
       {CLSID_HostArray, CLSID_HostClassIdentifier, CLSID_HostFieldCollection})
    SetComponentCreator(classId, &RefuseToCreate);

  ComPtr<HostArray> array;
  EXPECT_EQ(workspace->EnumerateDatasets(10, array.Receive()), E_OUTOFMEMORY);
  auto* id = reinterpret_cast<HostClassIdentifier*>(this);
  EXPECT_EQ(type->NativeTypeId(&id), E_FAIL);
  EXPECT_EQ(id, nullptr);
  auto* fields = reinterpret_cast<HostFieldCollection*>(this);
  EXPECT_EQ(table->DescribeFields(0, &fields), E_ACCESSDENIED);
  EXPECT_EQ(fields, nullptr);

  for (const CLSID& classId :
       {CLSID_HostArray, CLSID_HostClassIdentifier, CLSID_HostFieldCollection})
    SetComponentCreator(classId, nullptr);
  EXPECT_EQ(Fields(table).size(), 1u) << "a later attempt succeeds";
}

}  // namespace
}  // namespace quenra::test
