// What a host meets at the edges of the contract, as docs/host-interfaces.md tells it.
#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostClasses.h"
#include "module/ModuleTest.h"
#include "support/HostTables.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;

constexpr auto kTableNotFound = static_cast<HRESULT>(0x80040351u);
constexpr auto kFolderRejected = static_cast<HRESULT>(0x80040258u);

class HostBorderTest : public ModuleTest {
 protected:
  static LONG RowsCounted(const ComPtr<IPlugInDatasetHelper>& table) {
    LONG count = -2;
    EXPECT_EQ(table.As<IPlugInRowCount>()->CountRows(0, &count), S_OK);
    return count;
  }

  static HRESULT Fetch(const ComPtr<IPlugInDatasetHelper>& table, const VARIANT& map) {
    ComPtr<IPlugInCursorHelper> cursor;
    return table->FetchAllRows(0, nullptr, map, cursor.Receive());
  }
};

TEST_F(HostBorderTest, NullNamesAreEmptyOnes) {
  folder_.Write(u"a.csv", "Id\n1\n");
  const auto workspace = OpenWorkspace();
  const auto table = OpenTable(u"a.csv");
  for (const BString& name : {BString(), BString(u"")}) {
    ComPtr<IPlugInDatasetHelper> none;
    EXPECT_EQ(workspace->OpenDatasetByName(name.Get(), none.Receive()), kTableNotFound);
    BString path;
    EXPECT_EQ(workspace.As<IPlugInMetadataPath>()->MetadataFilePath(name.Get(), path.Receive()),
              S_OK);
    EXPECT_THAT(ToUtf8(path.View()), EndsWith(".xml"));
    EXPECT_EQ(workspace.As<IPlugInCreateDataset>()->CreateTable(
                  name.Get(), MakeFields({{u"Id", 1}}).Get(), none.Receive()),
              E_POINTER);
    const auto files = table.As<IPlugInFileOperations>();
    EXPECT_EQ(files->CopyDataset(name.Get(), MakeWorkspace(folder_.Path()).Get()), E_INVALIDARG);
    EXPECT_EQ(files->RenameDataset(name.Get(), path.Receive()), E_FAIL);
    const auto options = Factory().As<IWorkspaceFactoryOpenOptions>();
    EXPECT_EQ(options->SetOption(name.Get(), nullptr), E_INVALIDARG);
    EXPECT_EQ(options->ClearOption(name.Get()), E_INVALIDARG);
    OLECHAR delimiter = 1;
    EXPECT_EQ(Factory().As<ITextFileWorkspaceFactory>()->FieldDelimiter(name.Get(), &delimiter),
              E_INVALIDARG);
    ComPtr<IPlugInWorkspaceHelper> refused;
    EXPECT_EQ(Factory()->OpenFolderWorkspace(name.Get(), refused.Receive()), kFolderRejected);
  }
  EXPECT_EQ(table.As<IPlugInFileOperations>()->CopyDataset(BString(u"b.csv").Get(), nullptr),
            E_INVALIDARG);
}

TEST_F(HostBorderTest, TableWhoseFileHasGoneKeepsItsFieldsAndHasNoRows) {
  const auto table = Table(u"a.csv", "Id\n1\n2\n");
  EXPECT_EQ(RowsCounted(table), 2);
  folder_.Remove(u"a.csv");
  EXPECT_EQ(Fields(table).size(), 1u);
  EXPECT_EQ(RowsCounted(table), 0);
  EXPECT_THAT(Rows(table), ElementsAre());
  LONGLONG size = -1;
  EXPECT_EQ(table.As<IDatasetFileStat2>()->FileSize64(&size), S_OK);
  EXPECT_EQ(size, 0);
  LONG time = -1;
  EXPECT_EQ(table.As<IDatasetFileStat>()->FileTime(2, &time), S_OK);
  EXPECT_EQ(time, 0);
  ComPtr<IPlugInDatasetLoader> loader;
  EXPECT_EQ(table.As<IPlugInDatasetLoad>()->CreateLoader(nullptr, loader.Receive()), E_FAIL);
  const auto files = table.As<IPlugInFileOperations>();
  BString name;
  EXPECT_EQ(files->CopyDataset(BString(u"b.csv").Get(), MakeWorkspace(folder_.Path()).Get()),
            E_FAIL);
  EXPECT_EQ(files->RenameDataset(BString(u"b.csv").Get(), name.Receive()), E_FAIL);
  EXPECT_EQ(files->DeleteDataset(), E_FAIL);
}

TEST_F(HostBorderTest, NumbersReadFromTextAreTaggedAndTheTextIsNot) {
  const auto table = Table(u"a.csv",
                           "Where\n\"48\xC2\xB0N, 11\xC2\xB0"
                           "E\"\n");
  std::vector<std::string> tags;
  for (const FieldSeen& field : Fields(table)) tags.push_back(field.name + ":" + field.tag);
  EXPECT_THAT(tags, ElementsAre("Where:", "Where_X:virtual coordinate field",
                                "Where_Y:virtual coordinate field"));
}

TEST_F(HostBorderTest, FieldMapIsLockedUntilItsCursorHasGone) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  VARIANT map;
  ::VariantInit(&map);
  map.vt = VT_ARRAY | VT_I4;
  map.parray = ::SafeArrayCreateVector(VT_I4, 0, 1);
  ComPtr<IPlugInCursorHelper> cursor;
  ASSERT_EQ(table->FetchAllRows(0, nullptr, map, cursor.Receive()), S_OK);
  EXPECT_EQ(::VariantClear(&map), DISP_E_ARRAYISLOCKED);
  cursor.Reset();
  EXPECT_EQ(::VariantClear(&map), S_OK);
}

TEST_F(HostBorderTest, MapsThatAreNoArrayHaveNoEntries) {
  const auto table = Table(u"a.csv", "Id,Name\n1,x\n");
  VARIANT map;
  ::VariantInit(&map);
  EXPECT_EQ(Fetch(table, map), S_OK);
  map.vt = VT_I4;
  EXPECT_EQ(Fetch(table, map), S_OK);
  map.vt = VT_ARRAY | VT_I2;
  map.parray = ::SafeArrayCreateVector(VT_I2, 0, 2);
  EXPECT_EQ(Fetch(table, map), E_INVALIDARG);
  EXPECT_EQ(::VariantClear(&map), S_OK) << "it is not locked after a refusal";
  SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
  map.vt = VT_ARRAY | VT_I4;
  map.parray = ::SafeArrayCreate(VT_I4, 2, bounds);
  EXPECT_EQ(Fetch(table, map), E_INVALIDARG);
  EXPECT_EQ(::VariantClear(&map), S_OK);
}

TEST_F(HostBorderTest, FieldsBehindTheMapAreNotWanted) {
  const auto table = Table(u"a.csv", "Id,Name\n1,x\n");
  const FieldMapArray map({0});
  ComPtr<IPlugInCursorHelper> cursor;
  ASSERT_EQ(table->FetchAllRows(0, nullptr, map.AsVariant(), cursor.Receive()), S_OK);
  Slots slots(2);
  EXPECT_EQ(cursor.As<IPlugInFastQueryValues>()->ReadRecordValuesFast(slots.Data()), S_OK);
  EXPECT_THAT(slots.Dump(), ElementsAre("I4:1", "untouched"));
  EXPECT_EQ(cursor.As<IPlugInFastQueryValues>()->ReadRecordValuesFast(nullptr), E_POINTER);
}

TEST_F(HostBorderTest, RowsAreSeenWhenTheLoaderGoes) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  ComPtr<HostFieldCollection> fields;
  ASSERT_EQ(table->DescribeFields(0, fields.Receive()), S_OK);
  ComPtr<IPlugInDatasetLoader> loader;
  ASSERT_EQ(table.As<IPlugInDatasetLoad>()->CreateLoader(nullptr, loader.Receive()), S_OK);
  EXPECT_EQ(loader->LoadRow(nullptr), E_INVALIDARG);
  std::vector<Variant> values;
  values.emplace_back(LONG{2});
  EXPECT_EQ(loader->LoadRow(MakeRow(fields, values).Get()), S_OK);
  EXPECT_EQ(RowsCounted(table), 1) << "the row is kept back";
  loader.Reset();
  EXPECT_EQ(RowsCounted(table), 2);
}

TEST_F(HostBorderTest, LengthMayBeAnyNumber) {
  ComPtr<HostFieldEdit> edit;
  ASSERT_EQ(CreateComponentInstance(CLSID_HostField, edit.Receive()), S_OK);
  EXPECT_EQ(edit->SetLength(-1), S_OK);
  EXPECT_EQ(edit->SetType(-1), E_INVALIDARG);
  EXPECT_EQ(edit->SetPrecision(-1), E_INVALIDARG);
}

}  // namespace
}  // namespace quenra::test
