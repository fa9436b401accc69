#include <nlohmann/json.hpp>

#include "cli/TexttablesTest.h"

namespace {

constexpr const char* kStart = "{\"type\":\"FeatureCollection\",\"features\":[\n";
constexpr const char* kEnd = "\n]}\n";

class GeoJsonTest : public TexttablesTest {
 protected:
  std::string Features(const std::string& table, std::vector<std::string> more = {}) const {
    std::vector<std::string> arguments = {"rows", table, "--format", "geojson"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    std::string output = Output(arguments);
    EXPECT_TRUE(nlohmann::json::accept(output)) << output;
    return output;
  }
};

TEST_F(GeoJsonTest, TextOfBothCoordinatesIsAPointWithTheLongitudeFirst) {
  Write("p.csv",
        "Name,Place,N\nA,\"40\xC2\xB0 30' N 79\xC2\xB0 15' W\",1\n"
        "B,\"10\xC2\xB0 0' S 20\xC2\xB0 45' E\",\n");
  EXPECT_EQ(Features("p.csv"),
            std::string(kStart) +
                "{\"type\":\"Feature\",\"geometry\":{\"type\":\"Point\",\"coordinates\":"
                "[-79.25,40.5]},\"properties\":{\"Name\":\"A\",\"Place\":\"40\xC2\xB0 30' N "
                "79\xC2\xB0 15' W\",\"N\":1}},\n"
                "{\"type\":\"Feature\",\"geometry\":{\"type\":\"Point\",\"coordinates\":"
                "[20.75,-10]},\"properties\":{\"Name\":\"B\",\"Place\":\"10\xC2\xB0 0' S "
                "20\xC2\xB0 45' E\",\"N\":null}}" +
                kEnd);
}

TEST_F(GeoJsonTest, TwoTextsAreAPointWhicheverIsTheLatitude) {
  const std::string point =
      "{\"type\":\"Feature\",\"geometry\":{\"type\":\"Point\",\"coordinates\":[-79.25,40.5]},"
      "\"properties\":{";
  Write("p.csv", "Lat,Lon\n40\xC2\xB0 30' N,79\xC2\xB0 15' W\n");
  EXPECT_EQ(Features("p.csv"),
            kStart + point + "\"Lat\":\"40\xC2\xB0 30' N\",\"Lon\":\"79\xC2\xB0 15' W\"}}" + kEnd);
  Write("q.csv", "A,B\n79\xC2\xB0 15' W,40\xC2\xB0 30' N\n");
  EXPECT_EQ(Features("q.csv"),
            kStart + point + "\"A\":\"79\xC2\xB0 15' W\",\"B\":\"40\xC2\xB0 30' N\"}}" + kEnd);
}

TEST_F(GeoJsonTest, BlankAndUnreadableCoordinatesAreNullGeometries) {
  std::string rows = "Place,N\n";
  for (int i = 0; i < 100; ++i) rows += "\"40\xC2\xB0 30' N 79\xC2\xB0 15' W\",1\n";
  Write("p.csv", rows + ",2\nsomewhere,3\n");
  const std::string output = Features("p.csv");
  EXPECT_NE(output.find("\n{\"type\":\"Feature\",\"geometry\":null,\"properties\":{\"Place\":null,"
                        "\"N\":2}},\n"
                        "{\"type\":\"Feature\",\"geometry\":null,\"properties\":{\"Place\":"
                        "\"somewhere\",\"N\":3}}\n]}\n"),
            std::string::npos)
      << output;
}

TEST_F(GeoJsonTest, SeveralPairsAreOneMultiPoint) {
  Write("p.csv",
        "From,To\n\"40\xC2\xB0 30' N 79\xC2\xB0 15' W\",\"10\xC2\xB0 0' S 20\xC2\xB0 45' E\"\n"
        ",\"10\xC2\xB0 0' S 20\xC2\xB0 45' E\"\n,\n");
  const auto features = nlohmann::json::parse(Features("p.csv"))["features"];
  ASSERT_EQ(features.size(), 3u);
  EXPECT_EQ(features[0]["geometry"].dump(),
            "{\"coordinates\":[[-79.25,40.5],[20.75,-10]],\"type\":\"MultiPoint\"}");
  EXPECT_EQ(features[1]["geometry"].dump(),
            "{\"coordinates\":[[20.75,-10]],\"type\":\"MultiPoint\"}");
  EXPECT_TRUE(features[2]["geometry"].is_null());
}

TEST_F(GeoJsonTest, ColumnsChooseThePropertiesAndNotThePoint) {
  Write("p.csv", "Name,Place\nA,\"40\xC2\xB0 30' N 79\xC2\xB0 15' W\"\n");
  const std::string point =
      "{\"type\":\"Feature\",\"geometry\":{\"type\":\"Point\",\"coordinates\":[-79.25,40.5]},"
      "\"properties\":{";
  EXPECT_EQ(Features("p.csv", {"--columns", "Name"}), kStart + point + "\"Name\":\"A\"}}" + kEnd);
  EXPECT_EQ(Features("p.csv", {"--columns", "Place_Y"}),
            kStart + point + "\"Place_Y\":40.5}}" + kEnd);
}

TEST_F(GeoJsonTest, TableWithoutCoordinatesHasNullGeometries) {
  Write("a.csv", "Id,When\n1,2020-01-05\n");
  EXPECT_EQ(Features("a.csv"), std::string(kStart) +
                                   "{\"type\":\"Feature\",\"geometry\":null,\"properties\":{\"Id\":"
                                   "1,\"When\":\"2020-01-05\"}}" +
                                   kEnd);
}

TEST_F(GeoJsonTest, NoRowsAreAnEmptyCollection) {
  Write("a.csv", "Id\n1\n");
  EXPECT_EQ(Features("a.csv", {"--limit", "0"}),
            "{\"type\":\"FeatureCollection\",\"features\":[\n]}\n");
}

}  // namespace
