// Looking for delimiters splits a file into the same fields as taking one character after the
// other.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "reading/DelimitedReader.h"
#include "reading/FixedWidthReader.h"
#include "support/RecordTexts.h"
#include "support/TemporaryFolder.h"

namespace TextFile {
namespace {

std::string RandomBytes(std::mt19937& random, std::string_view characters) {
  std::string bytes;
  switch (random() % 6) {
    case 0:
      bytes = "\xEF\xBB\xBF";
      break;
    case 1:
      bytes = "\xFF\xFE";
      break;
    default:
      break;
  }
  for (std::size_t length = random() % 60; length > 0; --length)
    bytes += characters[random() % characters.size()];
  return bytes;
}

class FastSplittingTest : public ::testing::Test {
 protected:
  TextDatasetDescription Table(std::string_view bytes) {
    TextDatasetDescription table;
    table.name = u"t.csv";
    table.path = folder_.Write(u"t.csv", bytes);
    return table;
  }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(FastSplittingTest, DelimitedFilesGiveTheSameFields) {
  std::mt19937 random(42);
  constexpr std::string_view kCharacters("ab,,,;\"\"\"' \t\r\n\n\0\x1A\xC3\xBC", 19);
  constexpr char16_t kTextDelimiters[] = {u'"', u'\'', 0, u','};
  for (int i = 0; i < 4000; ++i) {
    const std::string bytes = RandomBytes(random, kCharacters);
    TextDatasetDescription table = Table(bytes);
    table.options.textDelimiter = kTextDelimiters[random() % std::size(kTextDelimiters)];
    if (random() % 4 == 0) table.options.recordTerminator = '\r';
    DelimitedReader quick(table);
    DelimitedReader exact(table);
    exact.SplitExactly();
    ASSERT_EQ(FieldsOfRecords(quick), FieldsOfRecords(exact)) << ::testing::PrintToString(bytes);
  }
}

TEST_F(FastSplittingTest, FixedWidthFilesGiveTheSameFields) {
  std::mt19937 random(43);
  constexpr std::string_view kCharacters("abc   \r\n\n\0\x1A\xC3\xBC", 13);
  for (int i = 0; i < 2000; ++i) {
    const std::string bytes = RandomBytes(random, kCharacters);
    TextDatasetDescription table = Table(bytes);
    table.options.fixedLength = true;
    for (std::size_t columns = random() % 5; columns > 0; --columns) {
      table.fields.emplace_back();
      table.fields.back().width = static_cast<std::int32_t>(random() % 6) - 1;
    }
    FixedWidthReader quick(table);
    FixedWidthReader exact(table);
    exact.CutExactly();
    ASSERT_EQ(FieldsOfRecords(quick), FieldsOfRecords(exact)) << ::testing::PrintToString(bytes);
  }
}

}  // namespace
}  // namespace TextFile
