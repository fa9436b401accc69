#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "inference/CoordinateColumns.h"
#include "support/OpenedTable.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

// Both coordinates in one text, and one each, in UTF-8.
constexpr std::string_view kBoth = "40\xC2\xB0 26' 46\" N 79\xC2\xB0 58' 56\" W";
constexpr std::string_view kLatitude = "40\xC2\xB0 26' 46\" N";
constexpr std::string_view kLongitude = "79\xC2\xB0 58' 56\" W";

OpenOptions Without() {
  OpenOptions options;
  options.generateLatLongFields = false;
  return options;
}

class CoordinateColumnsTest : public ::testing::Test {
 protected:
  // Tab-separated, without quoting, so that coordinates stand as they are.
  OpenedTable Open(const std::string& bytes, const OpenOptions& options = {},
                   const std::string& columns = {}) {
    folder_.Write("t.tsv", bytes);
    folder_.Write("schema.ini", "[t.tsv]\nFormat=TabDelimited\nTextDelimiter=NONE\n" + columns);
    return OpenedTable(folder_, u"t.tsv", options);
  }
  std::string Fields(const std::string& bytes, const OpenOptions& options = {},
                     const std::string& columns = {}) {
    return Open(bytes, options, columns).Fields();
  }
  static std::string Row(std::initializer_list<std::string_view> texts) {
    std::string row;
    for (const std::string_view text : texts) {
      if (!row.empty()) row += '\t';
      row += text;
    }
    return row + '\n';
  }

  UserLocale locale_{u"en-US"};
  TemporaryFolder folder_;
};

TEST_F(CoordinateColumnsTest, OneTextIsFollowedByTwoDoubles) {
  OpenedTable table = Open("Location\tn\n" + Row({kBoth, "1"}));
  EXPECT_EQ(table.Fields(), "Location:text Location_X:double[x] Location_Y:double[x] n:int");
  EXPECT_GT(table.field(0).coordinateFormat, 0) << "the notation's code is on the text field";
  EXPECT_FALSE(table.field(0).isCoordinate);
  for (const std::size_t i : {std::size_t{1}, std::size_t{2}}) {
    EXPECT_EQ(table.field(i).width, 8000);
    EXPECT_EQ(table.field(i).dateFormat.version, 340u);
    EXPECT_EQ(table.field(i).coordinateFormat, 0);
  }
}

TEST_F(CoordinateColumnsTest, TwoTextsAreFollowedByTwoDoubles) {
  OpenedTable table = Open("lat\tlon\tn\n" + Row({kLatitude, kLongitude, "1"}));
  EXPECT_EQ(table.Fields(), "lat:text lon:text lat_D:double[d] lon_D:double[d] n:int");
  EXPECT_EQ(table.field(0).coordinateFormat, 0);
  EXPECT_GT(table.field(1).coordinateFormat, 0) << "the second text field carries the code";
}

TEST_F(CoordinateColumnsTest, NumbersAreNeverCandidates) {
  EXPECT_EQ(Fields("lat\tlon\n40.5\t-79.9\n"), "lat:double lon:double");
  EXPECT_EQ(Fields("lat\tlon\n40\t-79\n"), "lat:int lon:int");
  EXPECT_EQ(Fields("a\n12\n" + Row({kBoth})), "a:text")
      << "a column whose first value is not text is out, though it becomes text";
  EXPECT_EQ(Fields("a\n2020-01-05\n" + Row({kBoth})), "a:text");
}

TEST_F(CoordinateColumnsTest, OneRefusedTextEndsItForGood) {
  EXPECT_EQ(Fields("a\tn\n" + Row({kBoth, "1"}) + Row({"nowhere", "1"}) + Row({kBoth, "1"})),
            "a:text n:int");
  EXPECT_EQ(Fields("a\tn\n" + Row({"nowhere", "1"}) + Row({kBoth, "1"})), "a:text n:int");
  EXPECT_EQ(Fields("a\tn\n" + Row({"  ", "1"}) + Row({kBoth, "1"})), "a:text n:int")
      << "blanks are a text too";
  EXPECT_EQ(Fields("a\tn\n" + Row({kBoth, "1"}) + "\t1\n" + Row({kBoth, "1"})),
            "a:text a_X:double[x] a_Y:double[x] n:int")
      << "an empty text is not tested";
}

TEST_F(CoordinateColumnsTest, ARefusedPairEndsItForBothColumns) {
  EXPECT_EQ(
      Fields("a\tb\tn\n" + Row({kLatitude, kLongitude, "1"}) + Row({"nowhere", kLongitude, "1"})),
      "a:text b:text n:int");
  EXPECT_EQ(
      Fields("a\tb\tn\n" + Row({kLatitude, kLongitude, "1"}) + Row({kLatitude, "nowhere", "1"})),
      "a:text b:text n:int");
  EXPECT_EQ(Fields("a\tb\tn\n" + Row({kLatitude, kLatitude, "1"})), "a:text b:text n:int")
      << "two latitudes are no pair";
  EXPECT_EQ(Fields("a\tn\tb\n" + Row({kLatitude, "1", kLongitude})), "a:text n:int b:text")
      << "they are not neighbours";
}

TEST_F(CoordinateColumnsTest, ARefusedFirstTextTakesTheSecondColumnWithIt) {
  // The second column forms a pair with the third as well, until the first column is refused.
  const std::string pairs =
      "a\tb\tc\n" + Row({kLatitude, kLongitude, kLatitude}) + "\t" + Row({kLongitude, kLatitude});
  EXPECT_EQ(Fields(pairs), "a:text b:text a_D:double[d] b_D:double[d] c:text");
  EXPECT_EQ(Fields(pairs + "nowhere\t\t\n"), "a:text b:text c:text");
}

TEST_F(CoordinateColumnsTest, PairsAreFormedFromLeftToRight) {
  EXPECT_EQ(Fields("a\tb\tc\td\n" + Row({kLatitude, kLongitude, kLatitude, kLongitude})),
            "a:text b:text a_D:double[d] b_D:double[d] c:text d:text c_D:double[d] d_D:double[d]");
  EXPECT_EQ(Fields("a\tb\tc\n" + Row({"x", kLatitude, kLongitude})),
            "a:text b:text c:text b_D:double[d] c_D:double[d]");
  EXPECT_EQ(Fields("a\tb\tc\n" + Row({kBoth, kLatitude, kLongitude})),
            "a:text a_X:double[x] a_Y:double[x] b:text c:text b_D:double[d] c_D:double[d]");
}

TEST_F(CoordinateColumnsTest, ATakenNameGetsOneUnderscore) {
  EXPECT_EQ(Fields("Location\tLocation_X\n" + Row({kBoth, "1"})),
            "Location:text Location_X_:double[x] Location_Y:double[x] Location_X:int");
  EXPECT_EQ(Fields("Location\tLOCATION_x\n" + Row({kBoth, "1"})),
            "Location:text Location_X_:double[x] Location_Y:double[x] LOCATION_x:int")
      << "without regard to case";
  EXPECT_EQ(Fields("a\ta_X\ta_X_\n" + Row({kBoth, "1", "1"})),
            "a:text a_X_:double[x] a_Y:double[x] a_X:int a_X_:int")
      << "once, without a further check";
  EXPECT_EQ(Fields("lat\tlon\tlat_d\n" + Row({kLatitude, kLongitude, "1"})),
            "lat:text lon:text lat_D_:double[d] lon_D:double[d] lat_d:int");
}

TEST_F(CoordinateColumnsTest, ColumnsWithoutANameCountBeforeVirtualFields) {
  EXPECT_EQ(Fields(Row({kBoth, "1"})),
            "Field1:text Field1_X:double[x] Field1_Y:double[x] Field2:int");
}

TEST_F(CoordinateColumnsTest, DeclaredColumnsAreNoCandidates) {
  EXPECT_EQ(Fields("a\tn\n" + Row({kBoth, "1"}), {}, "ColNameHeader=True\nCol1=a Text\n"),
            "a:text n:int");
}

TEST_F(CoordinateColumnsTest, ADeclaredTextColumnMayBeTheSecondOfAPair) {
  EXPECT_EQ(
      Fields("a\tb\n" + Row({kLatitude, kLongitude}), {}, "ColNameHeader=True\nCol2=b Text\n"),
      "a:text b:text a_D:double[d] b_D:double[d]");
}

TEST_F(CoordinateColumnsTest, SwitchedOffWithAHeaderThereAreNone) {
  EXPECT_EQ(Fields("a\tn\n" + Row({kBoth, "1"}), Without()), "a:text n:int");
  EXPECT_EQ(Fields("a\tb\n" + Row({kLatitude, kLongitude}), Without()), "a:text b:text");
}

TEST_F(CoordinateColumnsTest, SwitchedOffWithoutAHeaderTextColumnsStayCandidates) {
  // Their flags are cleared before the scan, when these columns are not known yet, and no text is
  // tested.
  EXPECT_EQ(Fields("nowhere\t1\n", Without()),
            "Field1:text Field1_X:double[x] Field1_Y:double[x] Field2:int");
  EXPECT_EQ(Fields("1\tnowhere\t\n", Without()),
            "Field1:int Field2:text Field2_X:double[x] Field2_Y:double[x] Field3:text")
      << "a column without a value gets none";
  EXPECT_EQ(Fields("nowhere\t1\n"), "Field1:text Field2:int") << "switched on, they are tested";
  EXPECT_EQ(Fields("12\t1\nnowhere\t1\n", Without()), "Field1:text Field2:int")
      << "a first value that is not text speaks against it here as well";
}

TEST_F(CoordinateColumnsTest, AColumnThatBecomesDoubleGetsNone) {
  // Switched off and without a header, the text column would be a candidate.
  OpenedTable table = Open("1,5\t1\n2,5\t2\n", Without());
  EXPECT_EQ(table.Fields(), "Field1:double Field2:int");
  EXPECT_EQ(table.decimalSymbol(), u',');
}

}  // namespace
}  // namespace TextFile
