#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "host/DataCore/LatLongFormat.h"

namespace quenra {
namespace {

constexpr double kTolerance = 0.00002;  // degrees, about two metres

struct Case {
  std::string line;  // as in the file, for messages
  std::u16string first;
  std::u16string second;
  bool twoTexts = false;
  bool accept = false;
  double latitude = 0;
  double longitude = 0;
};

// Decodes UTF-8 below U+10000 and the escapes \t and \uXXXX of the data files.
std::u16string Decode(const std::string& bytes) {
  std::u16string text;
  for (std::size_t i = 0; i < bytes.size();) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(bytes[i + k]); };
    if (bytes.compare(i, 2, "\\t") == 0) {
      text += u'\t';
      i += 2;
    } else if (bytes.compare(i, 2, "\\u") == 0) {
      text += static_cast<char16_t>(std::stoul(bytes.substr(i + 2, 4), nullptr, 16));
      i += 6;
    } else if (byte(0) < 0x80) {
      text += static_cast<char16_t>(byte(0));
      i += 1;
    } else if (byte(0) < 0xE0) {
      text += static_cast<char16_t>((byte(0) & 0x1F) << 6 | (byte(1) & 0x3F));
      i += 2;
    } else {
      text +=
          static_cast<char16_t>((byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
      i += 3;
    }
  }
  return text;
}

std::vector<std::string> SplitColumns(const std::string& line) {
  std::vector<std::string> columns(1);
  for (const char c : line) {
    if (c == '\t') {
      columns.emplace_back();
    } else {
      columns.back() += c;
    }
  }
  return columns;
}

std::vector<Case> ReadCases(const std::string& name) {
  std::vector<Case> cases;
  std::ifstream file(std::string(TEST_DATA_DIR) + "/" + name, std::ios::binary);
  std::string line;
  std::getline(file, line);  // the header
  while (std::getline(file, line)) {
    const std::vector<std::string> columns = SplitColumns(line);
    EXPECT_EQ(columns.size(), 6U) << name << ": " << line;
    if (columns.size() != 6) continue;
    Case c;
    c.line = line;
    c.first = Decode(columns[0]);
    c.second = Decode(columns[1]);
    c.twoTexts = !columns[1].empty();
    c.accept = columns[4] == "yes";
    EXPECT_TRUE(c.accept || columns[4] == "no") << name << ": " << line;
    if (c.accept) {
      c.latitude = std::stod(columns[2]);
      c.longitude = std::stod(columns[3]);
    }
    cases.push_back(c);
  }
  return cases;
}

std::vector<Case> AllCases() {
  std::vector<Case> cases = ReadCases("latlong-cases.tsv");
  const std::vector<Case> more = ReadCases("latlong-more-cases.tsv");
  cases.insert(cases.end(), more.begin(), more.end());
  return cases;
}

struct Reading {
  bool accepted = false;
  std::int32_t format = -1;
  bool parsed = false;
  double first = 999;
  double second = 999;
};

Reading Read(const std::u16string& text) {
  const LatLongFormat latLong;
  Reading r;
  r.accepted = latLong.IsLatLong(text, r.format);
  r.parsed = latLong.ParseLatLong(text, r.format, r.first, r.second);
  return r;
}

Reading Read(const std::u16string& first, const std::u16string& second) {
  const LatLongFormat latLong;
  Reading r;
  r.accepted = latLong.IsLatLong(first, second, r.format);
  r.parsed = latLong.ParseLatLong(first, second, r.format, r.first, r.second);
  return r;
}

Reading Read(const Case& c) { return c.twoTexts ? Read(c.first, c.second) : Read(c.first); }

bool HasAnyOf(const std::u16string& text, const std::u16string& characters) {
  return text.find_first_of(characters) != std::u16string::npos;
}

// Whether the first of two texts is the longitude: its letter or label says so, or the other's
// does.
bool FirstIsLongitude(const Case& c) {
  // Words that bear another axis' letter ("deg", "sec", "lon") are told apart by their vowel or
  // label.
  const auto axis = [](std::u16string text) {
    if (text.find(u"lat") != std::u16string::npos || text.find(u"Lat") != std::u16string::npos)
      return 1;
    if (text.find(u"lon") != std::u16string::npos || text.find(u"Lon") != std::u16string::npos ||
        text.find(u"lng") != std::u16string::npos) {
      return 2;
    }
    for (const std::u16string word : {u"deg", u"min", u"sec"}) {
      const std::size_t at = text.find(word);
      if (at != std::u16string::npos) text.erase(at, word.size());
    }
    if (HasAnyOf(text, u"EWew")) return 2;  // before S: "west" and "east" bear one
    return HasAnyOf(text, u"NSns") ? 1 : 0;
  };
  const int first = axis(c.first);
  return first == 2 || (first == 0 && axis(c.second) == 1);
}

void ExpectValues(const Case& c, const Reading& r, bool firstIsLongitude) {
  EXPECT_TRUE(r.accepted);
  EXPECT_TRUE(r.parsed);
  EXPECT_GT(r.format, 0);
  EXPECT_NEAR(firstIsLongitude ? r.first : r.second, c.longitude, kTolerance);
  EXPECT_NEAR(firstIsLongitude ? r.second : r.first, c.latitude, kTolerance);
}

void ExpectValues(const Case& c, const Reading& r) {
  ExpectValues(c, r, !c.twoTexts || FirstIsLongitude(c));
}

void CheckFile(const std::string& name, std::size_t atLeast) {
  const std::vector<Case> cases = ReadCases(name);
  EXPECT_GE(cases.size(), atLeast);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    const Reading r = Read(c);
    if (c.accept) {
      ExpectValues(c, r);
    } else {
      EXPECT_FALSE(r.accepted);
      EXPECT_EQ(r.format, 0);
      EXPECT_FALSE(r.parsed);
      EXPECT_EQ(r.first, 0);
      EXPECT_EQ(r.second, 0);
    }
  }
}

TEST(LatLongFormatTest, FollowsTheCommonCases) { CheckFile("latlong-cases.tsv", 245); }

TEST(LatLongFormatTest, FollowsFurtherCasesOfEachRule) { CheckFile("latlong-more-cases.tsv", 680); }

TEST(LatLongFormatTest, ExampleOfTheHeader) {
  const Reading r = Read(u"40°26'46\"N 79°58'56\"W");
  EXPECT_TRUE(r.accepted);
  EXPECT_NEAR(r.first, -79.98222222, kTolerance);
  EXPECT_NEAR(r.second, 40.44611111, kTolerance);
}

TEST(LatLongFormatTest, BlanksAroundATextDoNotCount) {
  const std::u16string blanks[] = {u" ", u"  \t ", u"\u00A0", u"\u2009\u202F", u"\u3000"};
  for (const Case& c : AllCases()) {
    SCOPED_TRACE(c.line);
    for (const std::u16string& blank : blanks) {
      Case wrapped = c;
      wrapped.first = blank + c.first + blank;
      if (c.twoTexts) wrapped.second = blank + c.second + blank;
      const Reading r = Read(wrapped);
      EXPECT_EQ(r.accepted, c.accept);
      if (c.accept) ExpectValues(c, r);
    }
  }
}

std::u16string Replace(std::u16string text, const std::u16string& from, const std::u16string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::u16string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

TEST(LatLongFormatTest, RunsOfBlanksCountAsOne) {
  for (const Case& c : AllCases()) {
    SCOPED_TRACE(c.line);
    for (std::size_t blanks = 2; blanks <= 9; ++blanks) {
      Case spaced = c;
      const std::u16string run(blanks, u' ');
      spaced.first = Replace(run + c.first, u" ", run);
      spaced.second = Replace(c.second, u" ", run);
      if (spaced.first.size() > 128 || spaced.second.size() > 128) continue;
      const Reading r = Read(spaced);
      EXPECT_EQ(r.accepted, c.accept);
      if (c.accept) ExpectValues(c, r);
    }
  }
}

TEST(LatLongFormatTest, CharactersOfNoNotationAreRefusedWhereverTheyStand) {
  const std::u16string kStrangers = u"!*@<|{~\u0001\u007F\u0130\u014E\u0635\u4E2D\u8030\uFFFD";
  for (const Case& c : AllCases()) {
    if (!c.accept) continue;
    for (std::size_t i = 0; i <= c.first.size(); ++i) {
      for (const char16_t stranger : kStrangers) {
        Case other = c;
        other.first.insert(i, 1, stranger);
        EXPECT_FALSE(Read(other).accepted) << c.line << " at " << i;
      }
    }
  }
}

// Each line: marks that mean the same.
const std::vector<std::vector<std::u16string>>& EqualMarks() {
  static const std::vector<std::vector<std::u16string>> marks = {
      {u"°", u"º", u"˚", u"⁰", u"∘", u"度"},
      {u"'", u"’", u"‘", u"′", u"´", u"ʹ", u"`", u"分"},
      {u"\"", u"”", u"“", u"″", u"˝", u"ʺ", u"秒", u"''", u"’’", u"‘’", u"′′", u"´´", u"``", u"ʹʹ"},
      {u"-", u"−", u"–", u"‐"},
      {u" ", u"\t", u"\u00A0", u"\u2009", u"\u202F", u"  "},
  };
  return marks;
}

void ExpectSame(const Reading& reading, const Reading& expected) {
  EXPECT_EQ(reading.accepted, expected.accepted);
  EXPECT_EQ(reading.format, expected.format);
  EXPECT_EQ(reading.first, expected.first);
  EXPECT_EQ(reading.second, expected.second);
}

TEST(LatLongFormatTest, MarksThatMeanTheSameGiveTheSameValues) {
  std::size_t swaps = 0;
  for (const Case& c : AllCases()) {
    for (const std::vector<std::u16string>& marks : EqualMarks()) {
      for (const std::u16string& mark : marks) {
        Case swapped = c;
        swapped.first = Replace(c.first, marks[0], mark);
        swapped.second = Replace(c.second, marks[0], mark);
        if (swapped.first == c.first && swapped.second == c.second) continue;
        SCOPED_TRACE(c.line);
        ExpectSame(Read(swapped), Read(c));
        ++swaps;
      }
    }
  }
  EXPECT_GT(swaps, 1000U);
}

// Ordinary characters are folded many at a time, so that the others stand at every place of a step.
TEST(LatLongFormatTest, OneBlankOfAnotherKindChangesNothing) {
  std::size_t swaps = 0;
  for (const Case& c : AllCases()) {
    const Reading plain = Read(c);
    for (std::size_t at = c.first.find(u' '); at != std::u16string::npos;
         at = c.first.find(u' ', at + 1)) {
      for (const std::u16string& blank : EqualMarks().back()) {
        Case swapped = c;
        swapped.first.replace(at, 1, blank);
        SCOPED_TRACE(c.line);
        ExpectSame(Read(swapped), plain);
        ++swaps;
      }
    }
  }
  EXPECT_GT(swaps, 1000U);
}

TEST(LatLongFormatTest, BlanksAroundChangeNothing) {
  constexpr std::u16string_view kText =
      u"Latitude: 40 deg 26 min 46 sec North, Longitude: 79 deg 58 min 56 sec West";
  const quenra::LatLongFormat latLong;
  for (std::size_t before = 0; before < 36; ++before) {
    for (std::size_t behind = 0; behind < 18; ++behind) {
      const std::u16string text =
          std::u16string(before, u' ') + std::u16string(kText) + std::u16string(behind, u' ');
      double first = 0;
      double second = 0;
      ASSERT_TRUE(latLong.ParseLatLong(text, 0, first, second)) << before << ", " << behind;
      EXPECT_DOUBLE_EQ(first, -(79 + 58 / 60.0 + 56 / 3600.0));
      EXPECT_DOUBLE_EQ(second, 40 + 26 / 60.0 + 46 / 3600.0);
    }
  }
}

TEST(LatLongFormatTest, InvisibleCharactersAroundATextDoNotCount) {
  for (const Case& c : AllCases()) {
    SCOPED_TRACE(c.line);
    const Reading plain = Read(c);
    for (const std::u16string_view invisible :
         {u"\u200E", u"\u200F", u"\u202A", u"\u202B", u"\u202C", u"\u202D", u"\u202E", u"\u2066",
          u"\u2067", u"\u2068", u"\u2069", u"\uFEFF", u" \u200E\u2069 "}) {
      Case wrapped = c;
      wrapped.first = std::u16string(invisible) + c.first + std::u16string(invisible);
      if (c.twoTexts) wrapped.second = std::u16string(invisible) + c.second;
      ExpectSame(Read(wrapped), plain);
    }
  }
}

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// One invisible character at every place: between two digits it is part of no notation; elsewhere
// it falls away or parts two words, but no place is put elsewhere by it.
TEST(LatLongFormatTest, InvisibleCharactersDoNotChangeAPlace) {
  std::size_t same = 0;
  for (const Case& c : AllCases()) {
    const Reading plain = Read(c);
    for (std::size_t i = 0; i <= c.first.size(); ++i) {
      Case marked = c;
      marked.first.insert(i, 1, u'\u200E');
      SCOPED_TRACE(c.line + " at " + std::to_string(i));
      const Reading r = Read(marked);
      const bool inDigits =
          i > 0 && i < c.first.size() && IsDigit(c.first[i - 1]) && IsDigit(c.first[i]);
      if (inDigits) {
        EXPECT_FALSE(r.accepted);
      }
      if (!r.accepted || !plain.accepted) continue;
      ++same;
      EXPECT_EQ(r.first, plain.first);
      EXPECT_EQ(r.second, plain.second);
    }
  }
  EXPECT_GT(same, 3000U);
}

TEST(LatLongFormatTest, MarksInLettersMeanTheSameAsSigns) {
  const Reading expected = Read(u"40°26'46.5\" N 79°58'56\" W");
  ASSERT_TRUE(expected.accepted);
  for (const std::u16string degree : {u"d", u"deg", u"D", u" deg ", u"Deg"}) {
    for (const std::u16string minute : {u"m", u"min", u" min ", u"M"}) {
      for (const std::u16string second : {u"s", u"sec", u" sec", u" s"}) {
        for (const std::u16string before : {u"", u" "}) {
          const std::u16string text = u"40" + degree + u"26" + minute + u"46.5" + second + before +
                                      u"N 79" + degree + u"58" + minute + u"56" + second + before +
                                      u"W";
          SCOPED_TRACE(std::string(text.begin(), text.end()));
          const Reading r = Read(text);
          EXPECT_TRUE(r.accepted);
          EXPECT_EQ(r.first, expected.first);
          EXPECT_EQ(r.second, expected.second);
        }
      }
    }
  }
}

TEST(LatLongFormatTest, EveryCaseOfLettersMeansTheSame) {
  for (const Case& c : AllCases()) {
    // In lower case their S could be the seconds mark: see SouthAndSecondsAreNotMixedUp.
    if (!c.accept || c.first == u"40d07m22.8S 74d07m22.8E" || c.first == u"27.15.45S, 18.32.53")
      continue;
    SCOPED_TRACE(c.line);
    Case lower = c;
    for (std::u16string* text : {&lower.first, &lower.second}) {
      for (char16_t& letter : *text) {
        if (letter >= u'A' && letter <= u'Z') letter = static_cast<char16_t>(letter - u'A' + u'a');
      }
    }
    ExpectValues(c, Read(lower), !c.twoTexts || FirstIsLongitude(c));
  }
}

TEST(LatLongFormatTest, SouthAndSecondsAreNotMixedUp) {
  EXPECT_NEAR(Read(u"40d07m22.8S 74d07m22.8E").second, -40.123, kTolerance);
  EXPECT_NEAR(Read(u"Lat 40d07m22.8s, Lon 74d07m22.8s").second, 40.123, kTolerance);
  EXPECT_NEAR(Read(u"40d07m22.8sS 74d07m22.8sE").second, -40.123, kTolerance);
  EXPECT_NEAR(Read(u"40d07m22.8ss 74d07m22.8se").second, -40.123, kTolerance);
  EXPECT_FALSE(Read(u"40d07m22.8s 74d07m22.8e").accepted);   // either
  EXPECT_FALSE(Read(u"41d07m22.8S E74d07m22.8S").accepted);  // either
  EXPECT_FALSE(Read(u"41°07'22.8S E74°07'22.8").accepted);   // letters on two sides
  EXPECT_NEAR(Read(u"27.15.45S, 18.32.53").second, -27.2625, kTolerance);
  EXPECT_FALSE(Read(u"27.15.45s, 18.32.53").accepted);  // either
}

TEST(LatLongFormatTest, TwoTextsWithLettersAreReadInEitherOrder) {
  for (const Case& c : AllCases()) {
    if (!c.twoTexts || !c.accept) continue;
    if (!HasAnyOf(c.first, u"NSEW") && !HasAnyOf(c.second, u"NSEW")) continue;
    SCOPED_TRACE(c.line);
    const Reading r = Read(c);
    const Reading swapped = Read(c.second, c.first);
    EXPECT_TRUE(swapped.accepted);
    EXPECT_EQ(swapped.first, r.second);
    EXPECT_EQ(swapped.second, r.first);
    EXPECT_NE(swapped.format, r.format);  // the order is part of the code
  }
}

TEST(LatLongFormatTest, WhatIsAcceptedReadsTheSameUnderEveryFormat) {
  std::vector<std::int32_t> formats = {0, -1, 1, 0x7FFFFFFF,
                                       std::numeric_limits<std::int32_t>::min()};
  const std::vector<Case> cases = AllCases();
  for (const Case& c : cases) {
    if (c.accept) formats.push_back(Read(c).format);
  }
  const LatLongFormat latLong;
  for (const Case& c : cases) {
    if (!c.accept) continue;
    SCOPED_TRACE(c.line);
    const Reading own = Read(c);
    for (const std::int32_t format : formats) {
      double first = 999;
      double second = 999;
      const bool read = c.twoTexts ? latLong.ParseLatLong(c.first, c.second, format, first, second)
                                   : latLong.ParseLatLong(c.first, format, first, second);
      EXPECT_TRUE(read) << format;
      EXPECT_EQ(first, own.first) << format;
      EXPECT_EQ(second, own.second) << format;
    }
  }
}

TEST(LatLongFormatTest, FormatNamesNotationAndOrder) {
  const auto format = [](const std::u16string& text) { return Read(text).format; };
  EXPECT_EQ(format(u"40.123N 74.123W"), format(u"12.5S, 8.25E"));
  EXPECT_NE(format(u"40.123N 74.123W"), format(u"74.123W 40.123N"));
  EXPECT_NE(format(u"40.123N 74.123W"), format(u"40.123, -74.123"));
  EXPECT_NE(format(u"40°26'46\"N 79°58'56\"W"), format(u"40°26.5'N 79°58.5'W"));
  EXPECT_NE(format(u"POINT(-122.4194 37.7749)"), format(u"geo:37.7749,-122.4194"));
  EXPECT_NE(format(u"4042.767,N,07400.358,W"), format(u"4042.767N,07400.358W"));
  EXPECT_NE(format(u"[139.6917,35.6895]"), format(u"[35.6895, 139.6917]"));
  EXPECT_NE(format(u"[35.6895, 139.6917]"), format(u"35.6895, 139.6917"));
}

struct ColumnCase {
  std::u16string scanned;  // the format comes from this text
  std::u16string text;
  bool read;
  double longitude;
  double latitude;
  const char* why;
};

TEST(LatLongFormatTest, ColumnsFormatMakesShortValuesPlain) {
  const ColumnCase cases[] = {
      {u"40.123, -74.123", u"40.5, -74.1", true, -74.1, 40.5, "few decimals"},
      {u"40.123, -74.123", u"40, -74", true, -74, 40, "trailing zeros cut"},
      {u"46.1234,8.4567", u"46,8", true, 8, 46, "the column's comma separates"},
      {u"46,1234; 8,4567", u"46,8", false, 0, 0, "the column's comma is decimal: one number"},
      {u"46,1234; 8,4567", u"46,5; 8", true, 8, 46.5, "few decimals, decimal comma"},
      {u"46,1234; 8,4567", u"1,234; 5,678", true, 5.678, 1.234, "the column's comma is decimal"},
      {u"40.123/-74.123", u"40.5/74.1", true, 74.1, 40.5, "the column's solidus separates"},
      {u"40.1234 74.1234", u"40.0 74.0", true, 74, 40, "few decimals"},
      {u"40.1234 74.1234", u"40.5 74", true, 74, 40.5, "a whole number behind the blank"},
      {u"40.1234 74.1234", u"40 34", false, 0, 0, "degrees and minutes of half a pair"},
      {u"40.1234 74.1234", u"40 74", false, 0, 0, "a whole number before the blank"},
      {u"40.1234 74.1234", u"40 74.1234", false, 0, 0, "a whole number before the blank"},
      {u"40.123, -74.123", u"1.0850/1.0852", false, 0, 0, "prices in a column of commas"},
      {u"40.123/-74.123", u"40.5, 74.1", false, 0, 0,
       "another separator than the column's solidus"},
      {u"40.123, -74.123", u"1,234; 5,678", false, 0, 0, "another decimal symbol"},
      {u"48,8566; 2,3522", u"1.234; 5.678", false, 0, 0, "another decimal symbol"},
      {u"40.123° -74.123°", u"40.5° -74.1°", true, -74.1, 40.5, "few decimals, degree signs"},
      {u"40.123° -74.123°", u"40.5 -74.1", false, 0, 0, "no degree signs in a column with them"},
      {u"40.123, -74.123", u"40.5°, 38.2°", false, 0, 0, "temperatures"},
      {u"40.123, -74.123", u"12.500d 13.500d", false, 0, 0, "durations in any column"},
      {u"40.123, -74.123", u"[13.405, 52.520]", false, 0, 0, "the order in brackets is open"},
      {u"[139.6917, 35.6895]", u"[13.405, 52.520]", true, 13.405, 52.52, "the column's order"},
      {u"[35.6895, 139.6917]", u"[52.520, 13.405]", true, 13.405, 52.52, "the column's order"},
      {u"[35.6895, 139.6917]", u"[35, 139]", true, 139, 35, "trailing zeros cut"},
      {u"[35.6895, 139.6917]", u"[-122.4194, 37.7749]", true, -122.4194, 37.7749,
       "another order, told by the number over 90"},
      {u"[139.6917, 35.6895]", u"13.405, 52.520", false, 0, 0,
       "brackets' order is not that of other pairs"},
      {u"POINT(-122.4194 37.7749)", u"[13.405, 52.520]", false, 0, 0,
       "another notation with the longitude first"},
      {u"40,12N 74,12W", u"1,234N 5,678E", true, 5.678, 1.234, "the column's comma is decimal"},
      {u"40.123N 74.123W", u"1,234N 5,678E", false, 0, 0, "another decimal symbol, letters"},
      {u"40.123° -74.123°", u"40.5° 38.2d", false, 0, 0, "the letter d in a column of signs"},
      {u"4042.767,N,07400.358,W", u"4042.767N 07400.358W", true, -74.00596667, 40.71278333,
       "another notation, plain by itself"},
      {u"4042.767,N,07400.358,W", u"4042,N,07400,W", false, 0, 0, "not plain by itself"},
      {u"40.123N 74.123W", u"40N 74W", true, -74, 40, "whole degrees in a column with letters"},
      {u"40.123N 74.123W", u"40, 74", false, 0, 0, "hemisphere unknown"},
      {u"40.123, -74.123", u"12N 34W", false, 0, 0, "another notation, not plain by itself"},
      {u"40.123, -74.123", u"40°26'46\"N 79°58'56\"W", true, -79.98222, 40.44611,
       "another notation, plain by itself"},
      {u"40.123, -74.123", u"91, 10", false, 0, 0, "latitude over 90"},
      {u"40.123, -74.123", u"12:30 13:45", false, 0, 0, "clock times"},
      {u"40°26'46\"N 79°58'56\"W", u"40 26 46, 79 58 56", false, 0, 0, "no letters, no marks"},
      {u"POINT(-122.4194 37.7749)", u"40.123 -74.123", true, -74.123, 40.123,
       "a bare pair is latitude first in any column"},
      {u"POINT(-122.4194 37.7749)", u"40.5 -74.5", false, 0, 0, "not plain by itself"},
  };
  const LatLongFormat latLong;
  for (const ColumnCase& c : cases) {
    SCOPED_TRACE(c.why);
    std::int32_t format = 0;
    ASSERT_TRUE(latLong.IsLatLong(c.scanned, format));
    double x = 999;
    double y = 999;
    EXPECT_EQ(latLong.ParseLatLong(c.text, format, x, y), c.read);
    EXPECT_NEAR(x, c.longitude, kTolerance);
    EXPECT_NEAR(y, c.latitude, kTolerance);
  }
}

TEST(LatLongFormatTest, ColumnsOrderServesTwoTextsWithoutLetters) {
  const LatLongFormat latLong;
  std::int32_t format = 0;
  ASSERT_TRUE(latLong.IsLatLong(u"104°20'57\"E", u"6°26'55\"N", format));
  double first = 0;
  double second = 0;
  EXPECT_TRUE(latLong.ParseLatLong(u"104°20'57\"", u"-6°26'55\"", format, first, second));
  EXPECT_NEAR(first, 104.34916667, kTolerance);
  EXPECT_NEAR(second, -6.44861111, kTolerance);
  EXPECT_FALSE(latLong.ParseLatLong(u"104°20'57\"", u"-6°26'55\"", 0, first, second));
}

TEST(LatLongFormatTest, LengthIsLimited) {
  const std::u16string pair = u"40.123, -74.123";
  EXPECT_TRUE(Read(pair + std::u16string(128 - pair.size(), u' ')).accepted);
  EXPECT_FALSE(Read(pair + std::u16string(129 - pair.size(), u' ')).accepted);
  const std::u16string digits(100, u'3');
  EXPECT_TRUE(Read(u"40." + digits + u", -74.5").accepted);
  EXPECT_FALSE(Read(digits + u".5N, 74.5W").accepted);
}

TEST(LatLongFormatTest, EveryPrefixOfACaseIsJudgedWithoutHarm) {
  // Cut texts end inside marks, words and numbers. What is still accepted is in range.
  for (const Case& c : AllCases()) {
    for (std::size_t length = 0; length <= c.first.size(); ++length) {
      const Reading r = Read(c.first.substr(0, length));
      EXPECT_EQ(r.accepted, r.parsed) << c.line;
      EXPECT_LE(std::abs(r.first), 180) << c.line;
      EXPECT_LE(std::abs(r.second), 90) << c.line;
    }
  }
}

TEST(LatLongFormatTest, DecimalsAreRoundedCorrectly) {
  const char* const numbers[] = {"0.1",
                                 "40.4183318",
                                 "-74.6411133",
                                 "0.30000000000000004",
                                 "12.345678901234567",
                                 "89.99999999999999999999",
                                 "1.0000000000000002",
                                 "-0.000000000000001"};
  for (const char* number : numbers) {
    SCOPED_TRACE(number);
    const std::string text(number);
    const Reading r = Read(std::u16string(text.begin(), text.end()) + u", 0.1250");
    ASSERT_TRUE(r.accepted);
    EXPECT_EQ(r.second, std::stod(text));
    EXPECT_EQ(r.first, 0.125);
  }
}

TEST(LatLongFormatTest, ZeroHasNoSign) {
  for (const std::u16string text : {u"-0.000, -0.000", u"0°S 0°W", u"0°00'00\"S 0°00'00\"W"}) {
    const Reading r = Read(text);
    ASSERT_TRUE(r.accepted);
    EXPECT_FALSE(std::signbit(r.first));
    EXPECT_FALSE(std::signbit(r.second));
  }
}

// Printing coordinates in each notation.

std::u16string Print(const char* pattern, auto... values) {
  char buffer[64];
  const int length = std::snprintf(buffer, sizeof buffer, pattern, values...);
  return std::u16string(buffer, buffer + length);
}

// One half's magnitude in units of the notation's last digit.
struct Half {
  bool isLatitude;
  bool negative;
  std::uint32_t thousandths;  // of a second
  std::u16string Letter() const {
    return isLatitude ? (negative ? u"S" : u"N") : (negative ? u"W" : u"E");
  }
  std::u16string Sign() const { return negative ? u"-" : u""; }
  double Degrees() const { return (negative ? -1 : 1) * (thousandths / 3600000.0); }
  unsigned D() const { return thousandths / 3600000; }
  unsigned M() const { return thousandths / 60000 % 60; }
  double MinutesInDegree() const { return thousandths % 3600000 / 60000.0; }
  unsigned S() const { return thousandths / 1000 % 60; }
  unsigned Ms() const { return thousandths % 1000; }
};

std::u16string DecimalMinutes(const Half& h) {
  // Cut, not rounded: 59.9999999 must not print as 60.
  return Print(
      "%02u.%06u", h.M(),
      h.thousandths % 60000 * 100 / 6 > 999999 ? 999999U : h.thousandths % 60000 * 100 / 6);
}

std::u16string Seconds(const Half& h) { return Print("%02u.%03u", h.S(), h.Ms()); }

// Each notation of one half, made so that two halves of the same notation are a pair.
std::vector<std::u16string> PrintEach(const Half& h) {
  const std::u16string d = Print("%u", h.D());
  const std::u16string m = Print("%02u", h.M());
  const std::u16string decimal = Print("%.9f", std::abs(h.Degrees()));
  const std::u16string wide = Print(h.isLatitude ? "%02u" : "%03u", h.D());
  const std::u16string sign = h.negative ? u"-" : u"+";
  const std::u16string sexagesimal = d + u"°" + m + u"'" + Seconds(h) + u"\"";
  return {
      decimal + h.Letter(),
      h.Letter() + u" " + decimal + u"°",
      h.Sign() + decimal,
      (h.isLatitude ? u"lat=" : u"lon=") + h.Sign() + decimal,
      d + u"°" + DecimalMinutes(h) + u"' " + h.Letter(),
      h.Sign() + d + u"° " + DecimalMinutes(h) + u"'",
      d + u" " + DecimalMinutes(h) + u" " + h.Letter(),
      d + u"-" + DecimalMinutes(h) + h.Letter(),
      sexagesimal + h.Letter(),
      h.Letter() + sexagesimal,
      h.Sign() + sexagesimal,
      d + u" " + m + u" " + Seconds(h) + u" " + h.Letter(),
      h.Letter() + d + u":" + m + u":" + Seconds(h),
      d + u"." + m + u"." + Seconds(h) + h.Letter(),
      d + u"d " + m + u"m " + Seconds(h) + u"s " + h.Letter(),
      wide + DecimalMinutes(h) + h.Letter(),
      h.Letter() + wide + m + Seconds(h),
  };
}

Half RandomHalf(std::mt19937& random, bool isLatitude) {
  const std::uint32_t limit = (isLatitude ? 90U : 180U) * 3600000U;
  return {isLatitude, (random() & 1) != 0,
          std::uniform_int_distribution<std::uint32_t>(0, limit)(random)};
}

bool HasLetters(const std::u16string& half) { return HasAnyOf(half, u"NSEW"); }

TEST(LatLongFormatTest, PrintedCoordinatesAreReadBack) {
  std::mt19937 random(20240229);
  constexpr double kPrinted = 1e-7;  // what the notations' digits cut off stays below
  for (int round = 0; round < 2000; ++round) {
    const Half latitude = RandomHalf(random, true);
    const Half longitude = RandomHalf(random, false);
    const std::vector<std::u16string> first = PrintEach(latitude);
    const std::vector<std::u16string> second = PrintEach(longitude);
    for (std::size_t i = 0; i < first.size(); ++i) {
      for (const std::u16string separator : {u" ", u", ", u"; ", u" / ", u","}) {
        const std::u16string text = first[i] + separator + second[i];
        // Unsigned numbers on both sides of a solidus may be prices.
        if (!HasAnyOf(text, u"NSEW-=°") && separator == u" / ") {
          EXPECT_FALSE(Read(text).accepted) << testing::PrintToString(text);
          continue;
        }
        const Reading r = Read(text);
        ASSERT_TRUE(r.accepted) << i << " " << testing::PrintToString(text);
        EXPECT_NEAR(r.second, latitude.Degrees(), kPrinted) << testing::PrintToString(text);
        EXPECT_NEAR(r.first, longitude.Degrees(), kPrinted) << testing::PrintToString(text);
      }
      if (!HasLetters(first[i])) continue;
      const Reading turned = Read(second[i] + u", " + first[i]);
      ASSERT_TRUE(turned.accepted) << i << testing::PrintToString(first[i]);
      EXPECT_NEAR(turned.second, latitude.Degrees(), kPrinted);
      const Reading two = Read(second[i], first[i]);
      ASSERT_TRUE(two.accepted) << i << testing::PrintToString(first[i]);
      EXPECT_NEAR(two.second, latitude.Degrees(), kPrinted);
      EXPECT_NEAR(two.first, longitude.Degrees(), kPrinted);
    }
  }
}

TEST(LatLongFormatTest, HalvesOfTwoNotationsAreNoPair) {
  const Half latitude = {true, true, 12 * 3600000 + 34 * 60000 + 56789};
  const Half longitude = {false, false, 98 * 3600000 + 7 * 60000 + 6543};
  const std::vector<std::u16string> first = PrintEach(latitude);
  const std::vector<std::u16string> second = PrintEach(longitude);
  // Decimal degrees, degrees and minutes, degrees with seconds, compact: see PrintEach.
  const int kind[] = {0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 3, 4};
  ASSERT_EQ(std::size(kind), first.size());
  for (std::size_t i = 0; i < first.size(); ++i) {
    for (std::size_t k = 0; k < second.size(); ++k) {
      if (kind[i] == kind[k]) continue;
      EXPECT_FALSE(Read(first[i] + u", " + second[k]).accepted) << i << " " << k;
      EXPECT_FALSE(Read(first[i], second[k]).accepted) << i << " " << k;
    }
  }
}

// One of a few, the usual one most often.
std::u16string_view PickPart(std::mt19937& random, std::u16string_view usual,
                             std::initializer_list<std::u16string_view> others) {
  const std::size_t pick = random() % (others.size() + 4);
  return pick < others.size() ? *(others.begin() + pick) : usual;
}

void AppendMarkedHalf(std::mt19937& random, std::u16string& text) {
  text += PickPart(random, u"40", {u"0", u"007", u"90", u"91", u"180", u"181", u"1234", u""});
  text += PickPart(random, u"\u00B0", {u"\u00BA", u" \u00B0", u"d"});
  text += PickPart(random, u"", {u" ", u"  "});
  text += PickPart(random, u"26", {u"0", u"59", u"60", u"026"});
  text += PickPart(random, u"'", {u"\u2032", u"''", u" '"});
  text += PickPart(random, u"", {u" ", u"\t"});
  text += PickPart(random, u"46",
                   {u"0", u"5.5", u"59.1234567890", u"1.12345678901", u"60", u"5,5", u"5.", u".5"});
  text += PickPart(random, u"\"", {u"\u2033", u"''", u""});
  text += PickPart(random, u"", {u" ", u"\u00A0"});
  text += PickPart(random, u"N", {u"S", u"E", u"W", u"e", u"w", u"O", u"north", u""});
}

// The commonest notation is read by a short way of its own. A blank in front, which does not count,
// keeps a text away from it.
TEST(LatLongFormatTest, ShortWayOfMarkedPairsGivesTheSame) {
  std::mt19937 random(20240229);
  int accepted = 0;
  for (int i = 0; i < 200000; ++i) {
    std::u16string text;
    AppendMarkedHalf(random, text);
    text += PickPart(random, u" ", {u", ", u",", u";", u" / ", u"/", u"", u"  ", u",;"});
    AppendMarkedHalf(random, text);
    text += PickPart(random, u"", {u" ", u".", u"N"});
    const Reading whole = Read(text);
    const Reading exact = Read(u" " + text);
    ASSERT_EQ(whole.accepted, exact.accepted) << testing::PrintToString(text);
    EXPECT_EQ(whole.format, exact.format) << testing::PrintToString(text);
    EXPECT_EQ(whole.first, exact.first) << testing::PrintToString(text);
    EXPECT_EQ(whole.second, exact.second) << testing::PrintToString(text);
    accepted += whole.accepted ? 1 : 0;
  }
  EXPECT_GT(accepted, 1000);
}

}  // namespace
}  // namespace quenra
