// Where the host is told that an error comes from.
#include "module/ModuleTest.h"
#include "support/HostTables.h"

namespace quenra::test {
namespace {

// The quotes are part of the texts.
constexpr char kSource[] = "\"quenraDataSourcesFile.TextFileWorkspace\"";
constexpr char kHelpFile[] = "\"TextFile.hlp\"";

class ErrorSourceTest : public ModuleTest {
 protected:
  static void ExpectSource(const char* source, const char* helpFile) {
    const auto errors = TakeErrors();
    ASSERT_FALSE(errors.empty());
    for (const ErrorSeen& error : errors) {
      EXPECT_EQ(error.sourceText, source) << error.text;
      EXPECT_EQ(error.helpFile, helpFile) << error.text;
    }
  }
};

TEST_F(ErrorSourceTest, WorkspaceNamesSourceAndHelpFile) {
  ComPtr<IPlugInDatasetHelper> table;
  EXPECT_EQ(OpenWorkspace().As<IPlugInCreateDataset>()->CreateTable(
                BString(u"../t.csv").Get(), MakeFields({{u"Id", 1}}).Get(), table.Receive()),
            E_FAIL);
  ExpectSource(kSource, kHelpFile);
}

TEST_F(ErrorSourceTest, TableNamesSourceAndHelpFile) {
  folder_.Write(u"a.csv", "Id\n1\n");
  const auto table = OpenTable(u"a.csv");
  folder_.Remove(u"a.csv");
  EXPECT_EQ(table.As<IPlugInFileOperations>()->DeleteDataset(), E_FAIL);
  ExpectSource(kSource, kHelpFile);

  folder_.Write(u"a.csv", "Id\n1\n");
  folder_.Write(u"schema.ini", "[a.csv]\nCol1=Id Money\n");
  OpenResult(u"a.csv");
  ExpectSource(kSource, kHelpFile);
}

// The factory and the cursor name no source to who asks them (ISupportErrorInfo), nor do their
// errors.
TEST_F(ErrorSourceTest, FactoryAndCursorNameNone) {
  ComPtr<IPlugInWorkspaceHelper> workspace;
  EXPECT_TRUE(FAILED(Factory()->OpenFolderWorkspace(BString(folder_.Path(u"missing")).Get(),
                                                    workspace.Receive())));
  ExpectSource("", "");

  folder_.Write(u"a.csv", "Id\nx\n");
  folder_.Write(u"schema.ini", "[a.csv]\nColNameHeader=True\nCol1=Id Long\n");
  EXPECT_EQ(Rows(OpenTable(u"a.csv")), std::vector<std::string>{"NULL"});
  ExpectSource("", "");
}

// The newest 64 are copied when the chain is cut, and keep what they say.
TEST_F(ErrorSourceTest, ErrorsOfAChainThatIsCutKeepTheirSource) {
  folder_.Write(u"a.csv", "Id\n1\n");
  folder_.Write(u"schema.ini", "[a.csv]\nCol1=Id Money\n");
  for (int i = 0; i < 70; ++i) OpenResult(u"a.csv");
  ExpectSource(kSource, kHelpFile);
}

}  // namespace
}  // namespace quenra::test
