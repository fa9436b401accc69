// The hosts that are installed as examples, as programs of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ProcessRunner.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace quenra::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

// What they print, without what Windows puts before a line end.
std::string OutputOf(const std::string& program, const std::vector<std::string>& arguments) {
  ProcessRequest request;
  request.program = program;
  request.arguments = arguments;
  const ProcessResult result = RunProcess(request);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  std::string output = result.output;
  std::erase(output, '\r');
  return output;
}

TEST(HostExamplesTest, HostInCppWritesAndReadsATable) {
  const TemporaryFolder folder;
  folder.Write(u"stamps.csv", "At\n2020-01-05T10:30:00+01:00\n");
  const std::string output = OutputOf(TEXT_TABLE_HOST, {ToUtf8(folder.Path())});
  // The tables come in the order of the file system.
  EXPECT_THAT(output, HasSubstr("table: towns.csv\n"
                                "row: 1 Z\xC3\xBCrich\n"
                                "row: 2 Basel, BS\n"));
  EXPECT_THAT(output, HasSubstr("table: stamps.csv\nrow: a time 60 minutes east\n"));
  EXPECT_THAT(output, HasSubstr("\nerror: 0x80004005 "
                                "\"quenraDataSourcesFile.TextFileWorkspace\": "));
  EXPECT_THAT(output, EndsWith("\nerror: 0x80040258 : missing\nobjects left: 0\n"));
}

// It releases the field map after the cursor: a map that is still locked cannot be cleared, and the
// program ends with that error.
TEST(HostExamplesTest, HostInPlainCReadsATable) {
  const TemporaryFolder folder;
  folder.Write(u"a.csv",
               "Id,Name,Share\n1,Ann,0.5\n2,B\xC3\xB6"
               "b,\n");
  EXPECT_EQ(OutputOf(PLAIN_C_HOST, {ToUtf8(folder.Path()), "a.csv"}),
            "1|Ann|0.5\n2|B\xC3\xB6"
            "b|\n2 rows\n");
}

}  // namespace
}  // namespace quenra::test
