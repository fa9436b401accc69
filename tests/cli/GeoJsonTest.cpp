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

// What stands in each feature's geometry, as "[x,y]" or "null".
std::vector<std::string> Points(const std::string& features) {
  std::vector<std::string> points;
  const auto collection = nlohmann::json::parse(features);
  for (const auto& feature : collection["features"]) {
    const auto& geometry = feature["geometry"];
    points.push_back(geometry.is_null() ? "null" : geometry["coordinates"].dump());
  }
  return points;
}

TEST_F(GeoJsonTest, OrdinaryColumnsAreNoPlaces) {
  for (const std::string rows :
       {"Votes\n\"1,234/5,678\"\n\"2,345/6,789\"\n", "A,B\n1d6,1d8\n2d6,2d8\n",
        "Interval\n\"(0.745, 0.934)\"\n\"(0.645, 0.834)\"\n",
        "Rate\n1.0850/1.0852\n1.0950/1.0952\n", "Episode\nS01E001\nS01E002\n",
        "Position\n\"[13.405, 52.520]\"\n\"[2.352, 48.856]\"\n",
        "Run,Rest\n1d 30m,2d 15m\n3d 10m,1d 5m\n"}) {
    Write("a.csv", rows);
    EXPECT_EQ(Points(Features("a.csv")), std::vector<std::string>(2, "null")) << rows;
  }
}

TEST_F(GeoJsonTest, PlacesInOtherScriptsAndFieldsArePoints) {
  Write("schema.ini", "[a.csv]\nFormat=TabDelimited\nTextDelimiter=NONE\n");
  Write("a.csv",
        "Place\tLon\tLat\n"
        "北緯35度30分 東経139度15分\t79°15′ з.д.\t40°30′ с.ш.\n"
        "55°45′ с.ш. 37°30′ в.д.\t07915.000,W\t4030.000,N\n"
        "4030.000,N,07915.000,W\t79°15'W\t40°30'N\n");
  EXPECT_EQ(Points(Features("a.csv")), (std::vector<std::string>{"[[139.25,35.5],[-79.25,40.5]]",
                                                                 "[[37.5,55.75],[-79.25,40.5]]",
                                                                 "[[-79.25,40.5],[-79.25,40.5]]"}));
}

TEST_F(GeoJsonTest, OneLetterTellsWhichOfTwoTextsIsTheLatitude) {
  Write("a.csv",
        "Pole,Equator\n79°15.0' W,40°30.0'\n79°15.0',40°30.0' N\n"
        "W79.25,40.5N\n\"07915.000,W\",\"4030.000,N\"\n");
  EXPECT_EQ(Points(Features("a.csv")),
            (std::vector<std::string>{"[-79.25,40.5]", "[79.25,40.5]", "[-79.25,40.5]",
                                      "[-79.25,40.5]"}));
}

TEST_F(GeoJsonTest, RowsBehindTheScannedOnesAreReadInTheColumnsOrder) {
  std::string rows = "Position\n";
  for (int i = 0; i < 100; ++i) rows += "\"[139.6917, 35.6895]\"\n";
  Write("a.csv", rows +
                     "\"[13.405, 52.520]\"\n"      // as the scanned rows
                     "\"[-33.8651, 151.2099]\"\n"  // told by the number over 90
                     "\"52.520, 13.405\"\n"        // another notation, too short by itself
                     "40.123N 74.25W\n"            // another notation, plain by itself
                     "\"(0.745, 0.934)\"\n");
  const std::vector<std::string> points = Points(Features("a.csv"));
  ASSERT_EQ(points.size(), 105u);
  EXPECT_EQ((std::vector<std::string>(points.begin() + 99, points.end())),
            (std::vector<std::string>{"[139.6917,35.6895]", "[13.405,52.52]", "[151.2099,-33.8651]",
                                      "null", "[-74.25,40.123]", "null"}));
}

TEST_F(GeoJsonTest, NoRowsAreAnEmptyCollection) {
  Write("a.csv", "Id\n1\n");
  EXPECT_EQ(Features("a.csv", {"--limit", "0"}),
            "{\"type\":\"FeatureCollection\",\"features\":[\n]}\n");
}

}  // namespace
