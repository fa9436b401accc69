#include "host/CoreSupport/QUENRALocale.h"
#include "module/ModuleTest.h"
#include "support/HostTables.h"
#include "support/OrdinaryUser.h"

namespace quenra::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::string_view kMark = "\xEF\xBB\xBF";

class CreateTableTest : public ModuleTest {
 protected:
  HRESULT Create(std::u16string_view name, const ComPtr<HostFieldCollection>& fields,
                 ComPtr<IPlugInDatasetHelper>& table) const {
    return OpenWorkspace().As<IPlugInCreateDataset>()->CreateTable(BString(name).Get(),
                                                                   fields.Get(), table.Receive());
  }
};

TEST_F(CreateTableTest, TheNewTableIsOpenAndEmpty) {
  ComPtr<IPlugInDatasetHelper> table;
  ASSERT_EQ(Create(u"t.csv", MakeFields({{u"Id", 1}, {u"Name", 4, 20}, {u"Size", 3}}), table),
            S_OK);
  EXPECT_THAT(Fields(table),
              ElementsAre(FieldSeen{"Id", 1, 4, 0, ""}, FieldSeen{"Name", 4, 20, 0, ""},
                          FieldSeen{"Size", 3, 8, 0, ""}));
  EXPECT_THAT(Rows(table), IsEmpty());
  LONG count = -1;
  EXPECT_EQ(table.As<IPlugInRowCount>()->CountRows(0, &count), S_OK);
  EXPECT_EQ(count, 0);
  BString title;
  table.As<IPlugInDatasetInfo>()->DatasetFileTitle(title.Receive());
  EXPECT_EQ(title.View(), u"t.csv");
  EXPECT_TRUE(folder_.Read(u"t.csv").starts_with(std::string(kMark) + "Id,Name,Size"));
}

// The type that a table has when it is opened again.
struct TypeCase {
  LONG asked;
  LONG type;
  LONG length;
};

constexpr TypeCase kTypeCases[] = {
    {0, 0, 2},     {1, 1, 4},     {2, 2, 4},   {3, 3, 8},   {4, 4, 8000}, {5, 5, 8},  {6, 1, 4},
    {10, 4, 8000}, {11, 4, 8000}, {13, 13, 8}, {14, 14, 8}, {15, 15, 8},  {16, 5, 8},
};

TEST_F(CreateTableTest, EveryTypeThatHasATextFormComesBackAsTheFileTells) {
  for (const std::u16string_view locale : {u"en-US", u"de-DE", u"sv-SE", u"hi-IN", u"hu-HU"}) {
    QUENRALocale::SetLocale(locale);
    for (const TypeCase& c : kTypeCases) {
      SCOPED_TRACE(ToUtf8(locale) + " " + std::to_string(c.asked));
      ComPtr<IPlugInDatasetHelper> table;
      ASSERT_EQ(Create(u"t.csv", MakeFields({{u"A", c.asked}}), table), S_OK);
      EXPECT_THAT(Fields(table), ElementsAre(FieldSeen{"A", c.type, c.length, 0, ""}));
      table.Reset();
      EXPECT_THAT(Fields(OpenTable(u"t.csv")),
                  ElementsAre(FieldSeen{"A", c.type, c.length, 0, ""}));
      folder_.Remove(u"t.csv");
      folder_.Remove(u"schema.ini");
    }
  }
}

TEST_F(CreateTableTest, TypesWithoutATextFormAreRefusedAndNothingIsMade) {
  for (const LONG type : {7, 8, 9, 12}) {
    ComPtr<IPlugInDatasetHelper> table;
    EXPECT_EQ(Create(u"t.csv", MakeFields({{u"Id", 1}, {u"Shape", type}}), table),
              static_cast<HRESULT>(0x80040203));
    EXPECT_FALSE(table);
  }
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(CreateTableTest, ATextOfNoLengthHas8000) {
  ComPtr<IPlugInDatasetHelper> table;
  ASSERT_EQ(Create(u"t.csv", MakeFields({{u"A", 4, 0}, {u"B", 4, -3}, {u"C", 10}}), table), S_OK);
  EXPECT_EQ(folder_.Read(u"schema.ini"),
            "[t.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=A Text Width 8000\n"
            "Col2=B Text Width 8000\nCol3=C Text\n");
}

TEST_F(CreateTableTest, DatesKeepPrecision1WhileTheTableIsOpen) {
  ComPtr<IPlugInDatasetHelper> table;
  ASSERT_EQ(
      Create(u"t.csv", MakeFields({{u"A", 5, 0, 1}, {u"B", 5, 0, 0}, {u"C", 5, 0, 2}}), table),
      S_OK);
  EXPECT_THAT(Fields(table), ElementsAre(FieldSeen{"A", 5, 8, 1, ""}, FieldSeen{"B", 5, 8, 0, ""},
                                         FieldSeen{"C", 5, 8, 0, ""}));
}

TEST_F(CreateTableTest, BadArgumentsMakeNothing) {
  const auto workspace = OpenWorkspace().As<IPlugInCreateDataset>();
  const auto fields = MakeFields({{u"Id", 1}});
  const BString name(u"t.csv");
  ComPtr<IPlugInDatasetHelper> table;
  EXPECT_EQ(workspace->CreateTable(nullptr, fields.Get(), table.Receive()), E_POINTER);
  EXPECT_EQ(workspace->CreateTable(BString(u"").Get(), fields.Get(), table.Receive()), E_POINTER);
  EXPECT_EQ(workspace->CreateTable(name.Get(), nullptr, table.Receive()), E_POINTER);
  EXPECT_EQ(workspace->CreateTable(name.Get(), fields.Get(), nullptr), E_POINTER);
  EXPECT_FALSE(table);
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(CreateTableTest, ARefusedNameIsAnErrorWithItsReason) {
  ComPtr<IPlugInDatasetHelper> table;
  EXPECT_EQ(Create(u"../t.csv", MakeFields({{u"Id", 1}}), table), E_FAIL);
  const auto errors = TakeErrors();
  ASSERT_FALSE(errors.empty());
  EXPECT_EQ(errors.front().code, E_FAIL);
  EXPECT_EQ(errors.front().text, "../t.csv: the name holds a path separator");
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(CreateTableTest, ASchemaIniErrorIsToldAsSuch) {
  folder_.Write(u"schema.ini", "[t.csv]\nCol1=A Nonsense\n");
  ComPtr<IPlugInDatasetHelper> table;
  EXPECT_EQ(Create(u"t.csv", MakeFields({{u"Id", 1}}), table), static_cast<HRESULT>(0x80040311));
  const auto errors = TakeErrors();
  ASSERT_FALSE(errors.empty());
  EXPECT_THAT(errors.front().text, StartsWith("t.csv\n\tUnknown field type in schema.ini."));
  EXPECT_FALSE(folder_.Exists(u"t.csv"));
}

TEST_F(CreateTableTest, ANewTableKeepsAFileOfItsName) {
  folder_.Write(u"t.csv", "mine\n");
  const auto workspace = OpenWorkspace().As<ITextFileWorkspace>();
  const auto fields = MakeFields({{u"Id", 1}});
  ComPtr<IPlugInDatasetHelper> table;
  EXPECT_EQ(workspace->CreateNewTable(BString(u"t.csv").Get(), fields.Get(), table.Receive()),
            kFileExists);
  EXPECT_FALSE(table);
  const auto errors = TakeErrors();
  ASSERT_FALSE(errors.empty());
  EXPECT_EQ(errors.front().code, kFileExists);
  EXPECT_EQ(errors.front().text, ToUtf8(folder_.Path(u"t.csv")) + ": the file exists already");
  EXPECT_EQ(folder_.Read(u"t.csv"), "mine\n");
  EXPECT_FALSE(folder_.Exists(u"schema.ini"));

  EXPECT_EQ(workspace->CreateNewTable(BString(u"n.csv").Get(), fields.Get(), table.Receive()),
            S_OK);
  EXPECT_TRUE(table);
  EXPECT_TRUE(folder_.Read(u"n.csv").starts_with(kMark));
  EXPECT_EQ(workspace->CreateNewTable(nullptr, fields.Get(), table.Receive()), E_POINTER);
  EXPECT_EQ(workspace->CreateNewTable(BString(u"m.csv").Get(), nullptr, table.Receive()),
            E_POINTER);
  EXPECT_EQ(workspace->CreateNewTable(BString(u"m.csv").Get(), fields.Get(), nullptr), E_POINTER);
}

// A file that may be written and not read keeps its rights, and then cannot be opened.
TEST_F(CreateTableTest, NothingFailsOnceTheTableIsReplaced) {
  namespace fs = boost::filesystem;
  fs::permissions(folder_.Native(), fs::perms::all_all);
  ComPtr<IPlugInDatasetHelper> table;
  {
    const OrdinaryUser ordinary;
    folder_.Write(u"t.csv", "old\n");
    fs::permissions(folder_.Native(u"t.csv"), fs::perms::owner_write);
    EXPECT_EQ(Create(u"t.csv", MakeFields({{u"Id", 1}}), table), S_OK);
    EXPECT_TRUE(table);
  }
  TakeErrors();
  fs::permissions(folder_.Native(u"t.csv"), fs::perms::owner_all);
  EXPECT_TRUE(folder_.Read(u"t.csv").starts_with(kMark));
  EXPECT_THAT(Fields(table), ElementsAre(FieldSeen{"Id", 1, 4, 0, ""})) << "opened when it is used";
}

TEST_F(CreateTableTest, WithoutFieldsThereIsATable) {
  ComPtr<IPlugInDatasetHelper> table;
  ASSERT_EQ(Create(u"t.csv", MakeFields({}), table), S_OK);
  EXPECT_TRUE(table);
  EXPECT_TRUE(folder_.Read(u"t.csv").starts_with(kMark));
}

}  // namespace
}  // namespace quenra::test
