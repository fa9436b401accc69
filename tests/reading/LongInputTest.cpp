// Inputs that are long and hostile but short enough to read in a moment. Work that grows with the
// square of their length would keep these tests busy until their time limit.
#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <fstream>
#include <string>
#include <string_view>

#include "platform/FileNames.h"
#include "reading/OpenTextDataset.h"
#include "reading/ReaderFactory.h"
#include "schema/SchemaIniReader.h"

namespace TextFile {
namespace {

constexpr std::size_t kMany = 2000000;

class LongInputTest : public testing::Test {
 protected:
  LongInputTest()
      : folder_(boost::filesystem::temp_directory_path() /
                boost::filesystem::unique_path("long-input-%%%%-%%%%-%%%%")) {
    boost::filesystem::create_directory(folder_);
  }
  ~LongInputTest() override { boost::filesystem::remove_all(folder_); }

  void Write(const char* name, std::string_view bytes) const {
    std::ofstream file((folder_ / name).c_str(), std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.flush());
  }

  std::u16string Folder() const { return FileNameFromNative(folder_.native()); }

 private:
  boost::filesystem::path folder_;
};

TEST_F(LongInputTest, ReadsManyQuotesBehindMuchWhiteSpace) {
  std::string row(kMany, ' ');
  row += 'x';
  for (std::size_t i = 0; i < kMany; ++i) row += "\"y";
  Write("a.csv", row + ",1\n");

  TextDatasetDescription table;
  table.path = JoinPath(Folder(), u"a.csv");
  const ReaderPtr reader = MakeReader(table);
  ASSERT_TRUE(reader->ReadRecord());
  ASSERT_EQ(reader->record().size(), 2u);
  // Every one of these quotes is an ordinary character.
  EXPECT_EQ(reader->record()[0].size(), row.size());
  EXPECT_EQ(reader->record()[1], u"1");
}

TEST_F(LongInputTest, NamesAsLongAsTheirLineAreTaken) {
  const std::string name(200000, 'x');
  const std::u16string expected(name.begin(), name.end());
  struct {
    const char* why;
    std::string header;
    std::size_t records;  // header and rows
  } const cases[] = {
      {"as it stands", name + "\nabc\n", 2},
      {"blanks around it", "  " + name + " \nabc\n", 2},
      {"quotes around it", "\"" + name + "\"\nabc\n", 2},
      {"CR LF", name + "\r\nabc\r\n", 2},
      {"CRs", name + "\rabc\rabd\r", 3},
      {"no line end", name, 1},
      {"blank lines", "\n\n" + name + "\n\n", 1},
  };
  // No blank is tried as delimiter then.
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\n");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    Write("a.csv", c.header);
    TextDatasetDescription table = DescribeFile(Folder(), u"a.csv");
    auto status = OpenDatasetStatus::kScanFailed;
    ASSERT_TRUE(OpenTextDataset(table, {}, status));
    ASSERT_EQ(table.fields.size(), 1u);
    EXPECT_TRUE(table.fields[0].name == expected);
    const ReaderPtr reader = MakeReader(table);
    std::size_t records = 0;
    while (reader->ReadRecord()) ++records;
    EXPECT_EQ(records, c.records);
  }
}

TEST_F(LongInputTest, ReadsSchemaIniWithAQuoteOverManyLines) {
  Write("schema.ini",
        "[a.csv]\nCurrencySymbol=\"" + std::string(kMany, '\n') + "\"\nMaxScanRows=7\n");
  SchemaOptions options;
  ASSERT_TRUE(ReadSchemaSection(SchemaIniPaths(Folder()), u"a.csv", options));
  EXPECT_EQ(options.currency.symbol.size(), kMany + 2);
  EXPECT_EQ(options.maxScanRows, 7u);
}

}  // namespace
}  // namespace TextFile
