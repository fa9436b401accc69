// The entry object: what belongs to the data source, opening folders, options.
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/Variant.h"
#include "host/DataCore/DataCoreUtil.h"
#include "host/interfaces/HostClasses.h"
#include "module/ModuleTest.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;

constexpr auto kFolderRejected = static_cast<HRESULT>(0x80040258u);
constexpr auto kTableNotFound = static_cast<HRESULT>(0x80040351u);

struct Entry {
  std::u16string_view name;
  bool isDirectory = false;
};

ComPtr<HostFileNames> NameList(std::initializer_list<Entry> entries) {
  ComPtr<HostFileNames> names;
  EXPECT_EQ(CreateComponentInstance(CLSID_HostFileNames, names.Receive()), S_OK);
  for (const Entry& entry : entries)
    names->Add(BString(entry.name).Get(), entry.isDirectory ? VARIANT_TRUE : VARIANT_FALSE);
  return names;
}

std::vector<std::string> Left(HostFileNames& names) {
  std::vector<std::string> left;
  names.Reset();
  for (;;) {
    BString name;
    VARIANT_BOOL isDirectory = VARIANT_FALSE;
    if (names.Next(name.Receive(), &isDirectory) != S_OK) return left;
    left.push_back(ToUtf8(name.View()));
  }
}

class WorkspaceFactoryTest : public ModuleTest {
 protected:
  void SetUp() override {
    ModuleTest::SetUp();
    factory_ = Factory();
  }
  void TearDown() override {
    DataCoreUtil::SetOption(u"Use31FieldTypeMapping", nullptr);
    factory_.Reset();
    ModuleTest::TearDown();
  }

  HRESULT IsText(VARIANT_BOOL& result) const {
    return factory_->IsTextWorkspace(BString(folder_.Path()).Get(), &result);
  }

  // The type of a column of whole numbers beyond 32 bits: 13, or 3 with the older mapping.
  LONG TypeOfBigNumbers(HostPropertySet* properties) const {
    folder_.Write(u"big.csv", "N\n12345678901\n");
    ComPtr<IPlugInWorkspaceHelper> workspace;
    EXPECT_EQ(factory_->OpenFolderWorkspace(BString(folder_.Path()).Get(), properties,
                                            workspace.Receive()),
              S_OK);
    ComPtr<IPlugInDatasetHelper> table;
    EXPECT_EQ(workspace->OpenDatasetByName(BString(u"big.csv").Get(), table.Receive()), S_OK);
    return Fields(table).at(0).type;
  }

  static ComPtr<HostPropertySet> Properties(const Variant& version) {
    ComPtr<HostPropertySet> properties;
    EXPECT_EQ(CreateComponentInstance(CLSID_HostPropertySet, properties.Receive()), S_OK);
    properties->SetProperty(BString(u"FIELD_TYPE_VERSION").Get(), version.Address());
    return properties;
  }

  HRESULT Open(std::u16string_view folder) const {
    ComPtr<IPlugInWorkspaceHelper> workspace;
    const HRESULT result =
        factory_->OpenFolderWorkspace(BString(folder).Get(), workspace.Receive());
    EXPECT_EQ(FAILED(result), workspace.Get() == nullptr);
    return result;
  }

  HRESULT Set(std::u16string_view name, VARIANT_BOOL* previous) const {
    return factory_.As<IWorkspaceFactoryOpenOptions>()->SetOption(BString(name).Get(), previous);
  }
  HRESULT Clear(std::u16string_view name) const {
    return factory_.As<IWorkspaceFactoryOpenOptions>()->ClearOption(BString(name).Get());
  }

  HRESULT Delimiter(std::u16string_view path, OLECHAR& delimiter) const {
    return factory_.As<ITextFileWorkspaceFactory>()->FieldDelimiter(BString(path).Get(),
                                                                    &delimiter);
  }

  ComPtr<IPlugInWorkspaceFactoryHelper2> factory_;
};

TEST_F(WorkspaceFactoryTest, TellsWhatItIs) {
  BString text;
  EXPECT_EQ(factory_->SourceName(text.Receive()), S_OK);
  EXPECT_EQ(ToUtf8(text.View()), "TextFile");
  EXPECT_EQ(factory_->DatasetKindText(10, text.Receive()), S_OK);
  EXPECT_EQ(ToUtf8(text.View()), "Text File");
  for (const LONG type : {0, 1, 5, 9, 11, -1}) {
    BSTR none = text.Get();
    EXPECT_EQ(factory_->DatasetKindText(type, &none), S_OK);
    EXPECT_EQ(none, nullptr) << type;
  }
  for (const VARIANT_BOOL plural : {VARIANT_TRUE, VARIANT_FALSE}) {
    EXPECT_EQ(factory_->WorkspaceKindText(plural, text.Receive()), S_OK);
    EXPECT_EQ(ToUtf8(text.View()), "Text File Data");
  }
  LONG kind = -1;
  EXPECT_EQ(factory_->WorkspaceKind(&kind), S_OK);
  EXPECT_EQ(kind, 0);
  VARIANT_BOOL query = VARIANT_TRUE;
  EXPECT_EQ(factory_->SupportsQueryLanguage(&query), S_OK);
  EXPECT_EQ(query, VARIANT_FALSE);
}

TEST_F(WorkspaceFactoryTest, KindIdIsTheClassIdentifier) {
  ComPtr<HostClassIdentifier> id;
  ASSERT_EQ(factory_->FactoryKindId(id.Receive()), S_OK);
  GUID value{};
  id->GetValue(&value);
  EXPECT_TRUE(IsEqualGUID(value, CLSID_TextFileWorkspaceFactory));
}

TEST_F(WorkspaceFactoryTest, NullArgumentsAreRefused) {
  const BString folder(folder_.Path());
  const auto names = NameList({{u"a.csv"}});
  VARIANT_BOOL result = VARIANT_TRUE;
  BString text(u"before");
  EXPECT_EQ(factory_->SourceName(nullptr), E_POINTER);
  EXPECT_EQ(factory_->DatasetKindText(10, nullptr), E_POINTER);
  EXPECT_EQ(factory_->DatasetKindText(1, nullptr), E_POINTER);
  EXPECT_EQ(factory_->WorkspaceKindText(VARIANT_TRUE, nullptr), E_POINTER);
  EXPECT_EQ(factory_->FactoryKindId(nullptr), E_POINTER);
  EXPECT_EQ(factory_->WorkspaceKind(nullptr), E_POINTER);
  EXPECT_EQ(factory_->SupportsQueryLanguage(nullptr), E_POINTER);
  EXPECT_EQ(factory_->IsTextWorkspace(folder.Get(), nullptr), E_POINTER);
  EXPECT_EQ(factory_->IsTextWorkspace(nullptr, &result), E_POINTER);
  EXPECT_EQ(result, VARIANT_FALSE);
  EXPECT_EQ(factory_->FindWorkspaceFiles(folder.Get(), names.Get(), nullptr), E_POINTER);
  EXPECT_EQ(factory_->FindWorkspaceFiles(nullptr, names.Get(), &result), E_POINTER);
  EXPECT_EQ(factory_->FindWorkspaceFiles(nullptr, nullptr, &result), E_POINTER);
  EXPECT_EQ(factory_->ClaimWorkspaceFiles(folder.Get(), names.Get(), nullptr), E_POINTER);
  EXPECT_EQ(factory_->ClaimWorkspaceFiles(nullptr, names.Get(), text.Receive()), E_POINTER);
  EXPECT_EQ(text.Get(), nullptr);
  EXPECT_THAT(Left(*names), ElementsAre("a.csv"));
  EXPECT_EQ(factory_->OpenFolderWorkspace(folder.Get(), nullptr), E_POINTER);
  EXPECT_EQ(factory_->OpenFolderWorkspace(folder.Get(), nullptr, nullptr), E_POINTER);
}

TEST_F(WorkspaceFactoryTest, FolderWithTextFileIsTextWorkspace) {
  for (const std::u16string_view name :
       {u"a.txt", u"a.CSV", u"a.tsv", u"a.Psv", u"a.tab", u"a.ASC", u".csv", u"x.y.csv"}) {
    folder_.Write(name, "");
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(IsText(result), S_OK) << ToUtf8(name);
    EXPECT_EQ(result, VARIANT_TRUE) << ToUtf8(name);
    folder_.Remove(name);
  }
}

TEST_F(WorkspaceFactoryTest, FolderWithoutTextFilesIsNone) {
  folder_.Write(u"data.dat", "1");
  folder_.Write(u"schema.ini", "");
  folder_.Write(u"data.text", "");
  folder_.Write(u"data.txt.bak", "");
  folder_.Write(u"csv", "");
  folder_.Write(u"data.c\u017Fv", "");  // the long s has a capital S
  folder_.MakeFolder(u"x.csv");
  folder_.MakeLink(u"loop.csv", u"loop.csv");
  folder_.MakeLink(u"gone.csv", u"nowhere");
  VARIANT_BOOL result = VARIANT_TRUE;
  EXPECT_EQ(IsText(result), S_FALSE);
  EXPECT_EQ(result, VARIANT_FALSE);
}

TEST_F(WorkspaceFactoryTest, FilesAndMissingFoldersAreNoTextWorkspace) {
  folder_.Write(u"a.csv", "");
  for (const std::u16string& path :
       {folder_.Path(u"a.csv"), folder_.Path(u"missing"), std::u16string()}) {
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(factory_->IsTextWorkspace(BString(path).Get(), &result), S_FALSE) << ToUtf8(path);
    EXPECT_EQ(result, VARIANT_FALSE);
  }
}

TEST_F(WorkspaceFactoryTest, FindsTextFilesInTheList) {
  VARIANT_BOOL result = VARIANT_FALSE;
  const BString folder(u"anywhere");
  const auto names = NameList({{u"x.csv", true}, {u""}, {u"notes.TXT"}});
  EXPECT_EQ(factory_->FindWorkspaceFiles(folder.Get(), names.Get(), &result), S_OK);
  EXPECT_EQ(result, VARIANT_TRUE);
  EXPECT_THAT(Left(*names), ElementsAre("x.csv", "", "notes.TXT"));

  const auto none = NameList({{u"x.csv", true}, {u"b.shp"}});
  EXPECT_EQ(factory_->FindWorkspaceFiles(folder.Get(), none.Get(), &result), S_FALSE);
  EXPECT_EQ(result, VARIANT_FALSE);
}

TEST_F(WorkspaceFactoryTest, FindsInTheFolderWithoutList) {
  VARIANT_BOOL result = VARIANT_TRUE;
  const BString folder(folder_.Path());
  EXPECT_EQ(factory_->FindWorkspaceFiles(folder.Get(), nullptr, &result), S_FALSE);
  EXPECT_EQ(result, VARIANT_FALSE);
  folder_.Write(u"a.csv", "");
  EXPECT_EQ(factory_->FindWorkspaceFiles(folder.Get(), nullptr, &result), S_OK);
  EXPECT_EQ(result, VARIANT_TRUE);
}

TEST_F(WorkspaceFactoryTest, ClaimsTablesWithTheirMetadata) {
  const auto names = NameList({{u"a.csv"},
                               {u"a.csv.xml"},
                               {u"b.shp"},
                               {u"b.shp.xml"},
                               {u"c.TXT"},
                               {u"d.csv", true},
                               {u"d.csv.xml"}});
  BString workspace;
  EXPECT_EQ(factory_->ClaimWorkspaceFiles(BString(u"/some/where/").Get(), names.Get(),
                                          workspace.Receive()),
            S_OK);
  EXPECT_EQ(ToUtf8(workspace.View()), "/some/where/");
  EXPECT_THAT(Left(*names), ElementsAre("b.shp", "b.shp.xml", "d.csv", "d.csv.xml"));
}

TEST_F(WorkspaceFactoryTest, ClaimsMetadataThatStandsBeforeItsTable) {
  const auto names = NameList({{u"a.csv.xml"}, {u"a.csv"}});
  BString workspace;
  EXPECT_EQ(factory_->ClaimWorkspaceFiles(BString(u"f").Get(), names.Get(), workspace.Receive()),
            S_OK);
  EXPECT_THAT(Left(*names), ElementsAre());
}

TEST_F(WorkspaceFactoryTest, ClaimsNothingWithoutTables) {
  const auto names = NameList({{u"a.csv.xml"}, {u"b.shp"}});
  BString workspace(u"before");
  EXPECT_EQ(factory_->ClaimWorkspaceFiles(BString(u"f").Get(), names.Get(), workspace.Receive()),
            S_FALSE);
  EXPECT_EQ(workspace.Get(), nullptr);
  EXPECT_THAT(Left(*names), ElementsAre("a.csv.xml", "b.shp"));
}

TEST_F(WorkspaceFactoryTest, ClaimsTheFolderWithoutList) {
  BString workspace;
  EXPECT_EQ(factory_->ClaimWorkspaceFiles(BString(u"f").Get(), nullptr, workspace.Receive()), S_OK);
  EXPECT_EQ(ToUtf8(workspace.View()), "f");
}

TEST_F(WorkspaceFactoryTest, SeparatorAtTheEndIsDropped) {
  for (const std::u16string_view end : {u"/", u"\\"}) {
    ComPtr<IPlugInWorkspaceHelper> workspace;
    ASSERT_EQ(factory_->OpenFolderWorkspace(BString(folder_.Path() + std::u16string(end)).Get(),
                                            workspace.Receive()),
              S_OK);
    BString path;
    EXPECT_EQ(workspace.As<IPlugInMetadataPath>()->MetadataFilePath(BString(u"x.csv").Get(),
                                                                    path.Receive()),
              S_OK);
    EXPECT_EQ(ToUtf8(path.View()), ToUtf8(folder_.Path(u"x.csv")) + ".xml");
  }
}

TEST_F(WorkspaceFactoryTest, ShortTextsKeepTheirSeparator) {
  EXPECT_EQ(Open(u"?:\\"), kFolderRejected);
  EXPECT_EQ(TakeErrors().at(0).text, "?:\\");
}

TEST_F(WorkspaceFactoryTest, RejectedFoldersAreNamed) {
  folder_.Write(u"a.csv", "Id\n1\n");
  folder_.MakeLink(u"loop", u"loop");
  folder_.MakeLink(u"dangling", u"nowhere");
  for (const std::u16string& path :
       {folder_.Path(u"a.csv"), folder_.Path(u"missing"), folder_.Path(u"loop"),
        folder_.Path(u"dangling"), folder_.Path(u"a.csv/below")}) {
    EXPECT_EQ(Open(path), kFolderRejected);
    const auto errors = TakeErrors();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, kFolderRejected);
    EXPECT_EQ(errors[0].text, ToUtf8(path));
    EXPECT_TRUE(IsEqualGUID(errors[0].source, kTextFileErrorSource));
  }
  ComPtr<IPlugInWorkspaceHelper> workspace;
  EXPECT_EQ(factory_->OpenFolderWorkspace(nullptr, workspace.Receive()), kFolderRejected);
}

TEST_F(WorkspaceFactoryTest, LinkToFolderIsOpened) {
  folder_.MakeFolder(u"real");
  folder_.MakeLink(u"link", u"real");
  EXPECT_EQ(Open(folder_.Path(u"link")), S_OK);
}

TEST_F(WorkspaceFactoryTest, OnlyTheExactVersionSelectsTheOlderMapping) {
  EXPECT_EQ(TypeOfBigNumbers(nullptr), 13);
  EXPECT_EQ(TypeOfBigNumbers(Properties(Variant(u"13.1")).Get()), 3);
  EXPECT_EQ(TypeOfBigNumbers(Properties(Variant(u"13.10")).Get()), 13);
  EXPECT_EQ(TypeOfBigNumbers(Properties(Variant(13.1)).Get()), 13);
  EXPECT_EQ(TypeOfBigNumbers(nullptr), 13) << "the choice is one workspace's";
}

TEST_F(WorkspaceFactoryTest, HostOptionDecidesWhenThePropertyIsAbsent) {
  DataCoreUtil::SetOption(u"Use31FieldTypeMapping", Variant(LONG{1}).Address());
  EXPECT_EQ(TypeOfBigNumbers(nullptr), 3);
  ComPtr<HostPropertySet> empty;
  ASSERT_EQ(CreateComponentInstance(CLSID_HostPropertySet, empty.Receive()), S_OK);
  EXPECT_EQ(TypeOfBigNumbers(empty.Get()), 3);
  EXPECT_EQ(TypeOfBigNumbers(Properties(Variant(u"13.10")).Get()), 13)
      << "the option is not consulted";
  EXPECT_EQ(TypeOfBigNumbers(Properties(Variant(u"13.1")).Get()), 3);

  DataCoreUtil::SetOption(u"Use31FieldTypeMapping", Variant(u"1").Address());
  EXPECT_EQ(TypeOfBigNumbers(nullptr), 3) << "a text that converts to 1";
  DataCoreUtil::SetOption(u"Use31FieldTypeMapping", Variant(u"yes").Address());
  EXPECT_EQ(TypeOfBigNumbers(nullptr), 13);
  DataCoreUtil::SetOption(u"Use31FieldTypeMapping", Variant(LONG{2}).Address());
  EXPECT_EQ(TypeOfBigNumbers(nullptr), 13);
}

TEST_F(WorkspaceFactoryTest, OptionsReportTheirFormerState) {
  struct OptionCase {
    std::u16string_view name;
    VARIANT_BOOL first;
    VARIANT_BOOL second;
  };
  const OptionCase cases[] = {
      {u"ReadAsManyRowsAsNeeded", VARIANT_FALSE, VARIANT_TRUE},
      {u"DoNotAutoGenerateLatLongFields", VARIANT_FALSE, VARIANT_TRUE},
      {u"InferTimeOnlyFields", VARIANT_TRUE, VARIANT_FALSE},  // the other way round
  };
  for (const OptionCase& c : cases) {
    SCOPED_TRACE(ToUtf8(c.name));
    VARIANT_BOOL previous = 7;
    EXPECT_EQ(Set(c.name, &previous), S_OK);
    EXPECT_EQ(previous, c.first);
    EXPECT_EQ(Set(c.name, &previous), S_OK);
    EXPECT_EQ(previous, c.second);
    EXPECT_EQ(Clear(c.name), S_OK);
    EXPECT_EQ(Set(c.name, &previous), S_OK);
    EXPECT_EQ(previous, c.first) << "after it was cleared";
    EXPECT_EQ(Set(c.name, nullptr), S_OK);
  }
}

TEST_F(WorkspaceFactoryTest, OptionNamesIgnoreLetterCase) {
  VARIANT_BOOL previous = VARIANT_TRUE;
  EXPECT_EQ(Set(u"readASmanyrowsasneeded", &previous), S_OK);
  EXPECT_EQ(Set(u"ReadAsManyRowsAsNeeded", &previous), S_OK);
  EXPECT_EQ(previous, VARIANT_TRUE);
}

TEST_F(WorkspaceFactoryTest, UnknownOptionsAreRefused) {
  const auto options = factory_.As<IWorkspaceFactoryOpenOptions>();
  VARIANT_BOOL previous = 7;
  EXPECT_EQ(options->SetOption(nullptr, &previous), E_INVALIDARG);
  EXPECT_EQ(options->ClearOption(nullptr), E_INVALIDARG);
  for (const std::u16string_view name : {u"", u"Read", u"InferTimeOnlyFields ", u"x"}) {
    EXPECT_EQ(Set(name, &previous), E_INVALIDARG);
    EXPECT_EQ(Clear(name), E_INVALIDARG);
  }
  EXPECT_EQ(previous, 7);
}

TEST_F(WorkspaceFactoryTest, OpenWorkspacesKeepTheOptionsTheyTook) {
  folder_.Write(u"a.csv", "At\n10:15\n11:20\n");
  const auto workspace = OpenWorkspace();
  SetOption(u"InferTimeOnlyFields");
  ComPtr<IPlugInDatasetHelper> table;
  ASSERT_EQ(workspace->OpenDatasetByName(BString(u"a.csv").Get(), table.Receive()), S_OK);
  EXPECT_NE(Fields(table).at(0).type, 15);
  EXPECT_EQ(Fields(OpenTable(u"a.csv")).at(0).type, 15);
}

TEST_F(WorkspaceFactoryTest, ReadAsManyRowsAsNeededLiftsTheLimit) {
  std::string bytes = "N\n";
  for (int i = 0; i < 150; ++i) bytes += "1\n";
  folder_.Write(u"a.csv", bytes + "1.5\n");
  EXPECT_EQ(Fields(OpenTable(u"a.csv")).at(0).type, 1);
  SetOption(u"ReadAsManyRowsAsNeeded");
  EXPECT_EQ(Fields(OpenTable(u"a.csv")).at(0).type, 3);
}

TEST_F(WorkspaceFactoryTest, DelimiterOfAFile) {
  struct DelimiterCase {
    std::u16string_view name;
    std::string_view bytes;
    char16_t delimiter;
  };
  const DelimiterCase cases[] = {
      {u"a.tab", "a\tb\n1\t2\n", 9},
      {u"a.psv", "a|b\n1|2\n", 124},
      {u"a.csv", "a,b\n1,2\n", 44},
      {u"b.csv", "a;b\n1;2\n", 59},
  };
  for (const DelimiterCase& c : cases) {
    folder_.Write(c.name, c.bytes);
    OLECHAR delimiter = 7;
    EXPECT_EQ(Delimiter(folder_.Path(c.name), delimiter), S_OK);
    EXPECT_EQ(delimiter, c.delimiter) << ToUtf8(c.name);
  }
}

TEST_F(WorkspaceFactoryTest, DelimiterIsWidenedFromOneSignedByte) {
  folder_.Write(u"schema.ini",
                "[a.csv]\nFormat=Delimited(\xC2\xA7)\n[f.csv]\nFormat=FixedLength\n"
                "Col1=A Text Width 2\n");
  folder_.Write(u"a.csv",
                "a\xC2\xA7"
                "b\n1\xC2\xA7"
                "2\n");
  folder_.Write(u"f.csv", "ab\n");
  OLECHAR delimiter = 7;
  EXPECT_EQ(Delimiter(folder_.Path(u"a.csv"), delimiter), S_OK);
  EXPECT_EQ(delimiter, 0xFFA7);
  EXPECT_EQ(Delimiter(folder_.Path(u"f.csv"), delimiter), S_OK);
  EXPECT_EQ(delimiter, 0) << "fixed-length files have none";
}

TEST_F(WorkspaceFactoryTest, DelimiterRefusals) {
  const auto text = factory_.As<ITextFileWorkspaceFactory>();
  OLECHAR delimiter = 7;
  EXPECT_EQ(text->FieldDelimiter(nullptr, &delimiter), E_INVALIDARG);
  EXPECT_EQ(Delimiter(u"", delimiter), E_INVALIDARG);
  folder_.Write(u"a.csv", "a,b\n");
  EXPECT_EQ(text->FieldDelimiter(BString(folder_.Path(u"a.csv")).Get(), nullptr), E_POINTER);
  delimiter = 7;
  EXPECT_EQ(Delimiter(folder_.Path(u"missing.csv"), delimiter), kTableNotFound);
  EXPECT_EQ(delimiter, 0);
  EXPECT_EQ(Delimiter(folder_.Path(u"missing/a.csv"), delimiter), kTableNotFound);
  folder_.MakeFolder(u"x.csv");
  EXPECT_EQ(Delimiter(folder_.Path(u"x.csv"), delimiter), E_FAIL) << "a folder does not open";
  folder_.Write(u"schema.ini", "[a.csv]\nNonsense=1\n");
  EXPECT_EQ(Delimiter(folder_.Path(u"a.csv"), delimiter), E_FAIL);
  EXPECT_EQ(delimiter, 0);
}

}  // namespace
}  // namespace quenra::test
