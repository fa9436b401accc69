// The loader's errors, where a full disk can be had for a test.
#ifndef _WIN32

#include "module/ModuleTest.h"
#include "support/FileSizeLimit.h"
#include "support/HostTables.h"

namespace quenra::test {
namespace {

using ErrorSourcePosixTest = ModuleTest;

TEST_F(ErrorSourcePosixTest, LoaderNamesSourceAndHelpFile) {
  const auto table = Table(u"t.csv", "Name\nfirst\n");
  ComPtr<HostFieldCollection> fields;
  ASSERT_EQ(table->DescribeFields(0, fields.Receive()), S_OK);
  std::vector<Variant> values;
  values.emplace_back(std::u16string(8000, u'x'));
  const auto row = MakeRow(fields, values);
  ComPtr<IPlugInDatasetLoader> loader;
  ASSERT_EQ(table.As<IPlugInDatasetLoad>()->CreateLoader(nullptr, loader.Receive()), S_OK);
  HRESULT result = S_OK;
  {
    const FileSizeLimit limit(1000);
    // The loader keeps rows back until there are enough of them for a write.
    for (int i = 0; i < 10000 && SUCCEEDED(result); ++i) result = loader->LoadRow(row.Get());
  }
  EXPECT_EQ(result, E_FAIL);
  loader.Reset();
  const auto errors = TakeErrors();
  ASSERT_FALSE(errors.empty());
  EXPECT_EQ(errors.front().sourceText, "\"quenraDataSourcesFile.TextFileWorkspace\"");
  EXPECT_EQ(errors.front().helpFile, "\"TextFile.hlp\"");
}

}  // namespace
}  // namespace quenra::test

#endif
