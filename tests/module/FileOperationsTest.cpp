#include "module/ModuleTest.h"
#include "support/HostTables.h"

namespace quenra::test {
namespace {

using testing::ElementsAre;

class FileOperationsTest : public ModuleTest {
 protected:
  ComPtr<IPlugInDatasetHelper> TableWithEverything() const {
    folder_.Write(u"schema.ini", "[a.csv]\nCol1=Id Text\n[other.csv]\nCol1=X Text\n");
    folder_.Write(u"a.csv.xml", "<about/>");
    return Table(u"a.csv", "Id,Name\n1,one\n");
  }
  static std::string FirstError() {
    const auto errors = TakeErrors();
    return errors.empty() ? "" : errors.front().text;
  }
};

TEST_F(FileOperationsTest, AllThreeAreAllowed) {
  const auto operations = TableWithEverything().As<IPlugInFileOperations>();
  VARIANT_BOOL allowed = VARIANT_FALSE;
  EXPECT_EQ(operations->AllowsCopy(&allowed), S_OK);
  EXPECT_EQ(allowed, VARIANT_TRUE);
  allowed = VARIANT_FALSE;
  EXPECT_EQ(operations->AllowsDelete(&allowed), S_OK);
  EXPECT_EQ(allowed, VARIANT_TRUE);
  allowed = VARIANT_FALSE;
  EXPECT_EQ(operations->AllowsRename(&allowed), S_OK);
  EXPECT_EQ(allowed, VARIANT_TRUE);
  EXPECT_EQ(operations->AllowsCopy(nullptr), E_POINTER);
  EXPECT_EQ(operations->AllowsDelete(nullptr), E_POINTER);
  EXPECT_EQ(operations->AllowsRename(nullptr), E_POINTER);
}

TEST_F(FileOperationsTest, ACopyInAnotherFolderIsAWholeTable) {
  const auto table = TableWithEverything();
  const TemporaryFolder target;
  EXPECT_EQ(table.As<IPlugInFileOperations>()->CopyDataset(BString(u"b.csv").Get(),
                                                           MakeWorkspace(target.Path()).Get()),
            S_OK);
  EXPECT_EQ(target.Read(u"b.csv"), "Id,Name\n1,one\n");
  EXPECT_EQ(target.Read(u"b.csv.xml"), "<about/>");
  EXPECT_EQ(target.Read(u"schema.ini"), "[b.csv]\nCol1=Id Text\n");
  EXPECT_THAT(Rows(table), ElementsAre("BSTR:1|BSTR:one"));
}

TEST_F(FileOperationsTest, SectionsThatStoodUnderTheNewNameAreToldOfASuccess) {
  constexpr auto kSectionStood = static_cast<HRESULT>(0x800700B7u);
  const auto operations = TableWithEverything().As<IPlugInFileOperations>();
  const std::string remark =
      "schema.ini: a section [other.csv] was there before; it stands behind the table's own now";
  EXPECT_EQ(
      operations->CopyDataset(BString(u"other.csv").Get(), MakeWorkspace(folder_.Path()).Get()),
      S_OK);
  auto errors = TakeErrors();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors.front().code, kSectionStood);
  EXPECT_TRUE(errors.front().text.ends_with(remark)) << errors.front().text;
  EXPECT_EQ(folder_.Read(u"schema.ini"),
            "[a.csv]\nCol1=Id Text\n[other.csv]\nCol1=Id Text\n[other.csv]\nCol1=X Text\n");
  folder_.Remove(u"other.csv");
  folder_.Remove(u"other.csv.xml");
  const auto again = TableWithEverything().As<IPlugInFileOperations>();
  BString result;
  EXPECT_EQ(again->RenameDataset(BString(u"other.csv").Get(), result.Receive()), S_OK);
  errors = TakeErrors();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors.front().code, kSectionStood);
  EXPECT_EQ(folder_.Read(u"schema.ini"), "[other.csv]\nCol1=Id Text\n[other.csv]\nCol1=X Text\n");
}

TEST_F(FileOperationsTest, ACopyOfBadArgumentsIsRefused) {
  const auto operations = TableWithEverything().As<IPlugInFileOperations>();
  const auto workspace = MakeWorkspace(folder_.Path());
  EXPECT_EQ(operations->CopyDataset(nullptr, workspace.Get()), E_INVALIDARG);
  EXPECT_EQ(operations->CopyDataset(BString(u"b.csv").Get(), nullptr), E_INVALIDARG);
  EXPECT_EQ(operations->CopyDataset(BString(u"a.csv").Get(), workspace.Get()), E_FAIL);
  EXPECT_EQ(FirstError(), ToUtf8(folder_.Path(u"a.csv")) + ": the file exists already");
  EXPECT_EQ(
      operations->CopyDataset(BString(u"b.csv").Get(), MakeWorkspace(folder_.Path(u"none")).Get()),
      E_FAIL);
  EXPECT_THAT(FirstError(), ::testing::ContainsRegex("none.b\\.csv: "));
  EXPECT_EQ(folder_.Names(), (std::vector<std::u16string>{u"a.csv", u"a.csv.xml", u"schema.ini"}));
}

TEST_F(FileOperationsTest, ANameThatIsTakenIsToldByItsCode) {
  const auto operations = TableWithEverything().As<IPlugInFileOperations>();
  folder_.Write(u"b.csv", "mine\n");
  const auto expectTold = [&] {
    const auto errors = TakeErrors();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors.front().code, kFileExists);
    EXPECT_EQ(errors.front().text, ToUtf8(folder_.Path(u"b.csv")) + ": the file exists already");
  };
  const BString name(u"b.csv");
  EXPECT_EQ(operations->CopyDataset(name.Get(), MakeWorkspace(folder_.Path()).Get()), E_FAIL);
  expectTold();
  BString result;
  EXPECT_EQ(operations->RenameDataset(name.Get(), result.Receive()), E_FAIL);
  expectTold();
  EXPECT_EQ(folder_.Read(u"b.csv"), "mine\n");
}

// Windows renames no file that is open.
#ifndef _WIN32

TEST_F(FileOperationsTest, ARenamedTableGoesOnUnderItsNewName) {
  const auto table = TableWithEverything();
  const CursorOverAll before(table);
  BString result;
  ASSERT_EQ(
      table.As<IPlugInFileOperations>()->RenameDataset(BString(u"Neu.CSV").Get(), result.Receive()),
      S_OK);
  EXPECT_EQ(result.View(), u"Neu.CSV");
  EXPECT_EQ(folder_.Read(u"schema.ini"), "[Neu.CSV]\nCol1=Id Text\n[other.csv]\nCol1=X Text\n");
  EXPECT_EQ(folder_.Names(),
            (std::vector<std::u16string>{u"Neu.CSV", u"Neu.CSV.xml", u"schema.ini"}));
  BString title;
  table.As<IPlugInDatasetInfo>()->DatasetFileTitle(title.Receive());
  EXPECT_EQ(title.View(), u"Neu.CSV");
  EXPECT_THAT(Rows(table), ElementsAre("BSTR:1|BSTR:one"));
  EXPECT_THAT(Rows(OpenTable(u"Neu.CSV")), ElementsAre("BSTR:1|BSTR:one"));
  EXPECT_EQ(OpenResult(u"a.csv"), static_cast<HRESULT>(0x80040351));
}

#endif

TEST_F(FileOperationsTest, ARefusedNameLeavesTheTableItsOwn) {
  const auto table = TableWithEverything();
  const auto operations = table.As<IPlugInFileOperations>();
  EXPECT_EQ(operations->RenameDataset(BString(u"b.csv").Get(), nullptr), E_POINTER);
  for (const std::u16string_view name : {u"", u"a/b.csv", u"a.csv", u"Schema.ini", u"con"}) {
    BString result;
    EXPECT_EQ(operations->RenameDataset(BString(name).Get(), result.Receive()), E_FAIL);
    EXPECT_EQ(result.Get(), nullptr);
    EXPECT_NE(FirstError(), "") << ToUtf8(name);
  }
  BString result;
  EXPECT_EQ(operations->RenameDataset(nullptr, result.Receive()), E_FAIL);
  EXPECT_THAT(Rows(table), ElementsAre("BSTR:1|BSTR:one"));
  EXPECT_EQ(folder_.Names(), (std::vector<std::u16string>{u"a.csv", u"a.csv.xml", u"schema.ini"}));
}

TEST_F(FileOperationsTest, DeletingLeavesTheOthers) {
  const auto table = TableWithEverything();
  EXPECT_EQ(table.As<IPlugInFileOperations>()->DeleteDataset(), S_OK);
  EXPECT_EQ(folder_.Read(u"schema.ini"), "[other.csv]\nCol1=X Text\n");
  EXPECT_THAT(folder_.Names(), ElementsAre(u"schema.ini"));
  EXPECT_EQ(table.As<IPlugInFileOperations>()->DeleteDataset(), E_FAIL);
  EXPECT_EQ(FirstError(), ToUtf8(folder_.Path(u"a.csv")) + ": there is no such table");
}

TEST_F(FileOperationsTest, WhatACrashLeavesIsNoTable) {
  folder_.Write(u"~a.csv.tmp", "Id\n1\n");
  folder_.Write(u"~a.csv.old", "Id\n1\n");
  folder_.Write(u"b.csv", "Id\n1\n");
  ComPtr<HostArray> tables;
  ASSERT_EQ(OpenWorkspace()->EnumerateDatasets(10, tables.Receive()), S_OK);
  LONG count = 0;
  tables->GetCount(&count);
  EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace quenra::test
