// The lines' own decoding agrees with the system's on every sequence of bytes.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "platform/CodePages.h"
#include "platform/OleText.h"
#include "reading/TextDecoding.h"

namespace TextFile {
namespace {

// False when the system finds the bytes ill-formed.
bool DecodeBySystem(const std::string& bytes, std::u16string& text) {
  text.resize(bytes.size());
  const int units = ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                          static_cast<int>(bytes.size()), AsOle(text.data()),
                                          static_cast<int>(text.size()));
  text.resize(units > 0 ? static_cast<std::size_t>(units) : 0);
  return units > 0;
}

void ExpectSystemsResult(const std::string& bytes) {
  std::u16string expected;
  const bool wellFormed = DecodeBySystem(bytes, expected);
  UnitBuffer line;
  ASSERT_EQ(DecodeStrictUtf8(bytes, line), wellFormed) << ::testing::PrintToString(bytes);
  if (wellFormed) {
    ASSERT_EQ(line.View(), expected) << ::testing::PrintToString(bytes);
  }
}

TEST(TextDecodingTest, EverySequenceOfTwoBytesAndItsNeighboursIsJudgedAsTheSystemDoes) {
  for (int first = 0x80; first < 0x100; ++first) {
    for (int second = 0; second < 0x100; ++second) {
      const std::string two = {static_cast<char>(first), static_cast<char>(second)};
      ExpectSystemsResult(two);
      ExpectSystemsResult(two + "\x80");
      ExpectSystemsResult(two + "\xBF\xBF");
      ExpectSystemsResult("0123456789abcdef" + two + "\x80\x80z");
    }
  }
}

TEST(TextDecodingTest, RandomBytesAreJudgedAsTheSystemDoes) {
  std::mt19937 random(5);
  const std::string pieces[] = {"a",
                                "0123456789abcdefg",
                                "\xC3\xBC",
                                "\xE2\x82\xAC",
                                "\xF0\x9F\x98\x80",
                                "\xED\x9F\xBF",
                                "\xEF\xBF\xBD",
                                "\x7F"};
  for (int i = 0; i < 20000; ++i) {
    std::string bytes = "x";
    for (std::size_t count = random() % 12; count > 0; --count)
      bytes += pieces[random() % std::size(pieces)];
    if (random() % 2 == 0) bytes[random() % bytes.size()] = static_cast<char>(random() % 255 + 1);
    ExpectSystemsResult(bytes);
  }
}

TEST(TextDecodingTest, IllFormedSequencesOfAMarkedFileAreReplaced) {
  UnitBuffer line;
  DecodeUtf8("ab\xFFg\xC3\xBC", line);
  EXPECT_EQ(line.View(), u"ab\uFFFDg\u00FC");
}

}  // namespace
}  // namespace TextFile
