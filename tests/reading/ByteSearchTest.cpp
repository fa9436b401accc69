// A byte is found where a plain loop finds it, wherever the block begins and ends.
#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "reading/ByteSearch.h"

namespace TextFile {
namespace {

constexpr std::size_t kAlignments = 64;

const char* FindPlainly(const char* begin, const char* end, char byte) {
  while (begin != end && *begin != byte) ++begin;
  return begin;
}

// Both searches, the library's and the one in steps, whichever of them this system uses.
void ExpectFound(const char* begin, const char* end, char byte) {
  const char* const expected = FindPlainly(begin, end, byte);
  ASSERT_EQ(FindByte(begin, end, byte) - begin, expected - begin) << "of " << end - begin;
  ASSERT_EQ(FindByteInSteps(begin, end, byte) - begin, expected - begin) << "of " << end - begin;
}

TEST(ByteSearchTest, AnEmptyBlockHasNoByte) {
  const char block[] = "aa";
  EXPECT_EQ(FindByte(block, block, 'a'), block);
  EXPECT_EQ(FindByteInSteps(block, block, 'a'), block);
  EXPECT_EQ(FindByte(nullptr, nullptr, 'a'), nullptr);
  EXPECT_EQ(FindByteInSteps(nullptr, nullptr, 'a'), nullptr);
}

// The wanted byte stands right in front of the block and right behind it as well.
TEST(ByteSearchTest, ASingleByteIsFoundAtEveryPlaceOfBlocksOfEveryAlignment) {
  for (std::size_t offset = 1; offset <= kAlignments; ++offset) {
    for (const std::size_t size : {1u, 15u, 16u, 17u, 63u, 64u, 65u, 100u, 150u}) {
      std::string text(offset + size + kAlignments, '\x1A');
      text.replace(offset, size, size, '.');
      char* const begin = text.data() + offset;
      ExpectFound(begin, begin + size, '\x1A');
      for (std::size_t at = 0; at < size; ++at) {
        begin[at] = '\x1A';
        ExpectFound(begin, begin + size, '\x1A');
        begin[at] = '.';
      }
    }
  }
}

TEST(ByteSearchTest, TheFirstOfSeveralIsFoundInRandomBlocks) {
  std::mt19937 random(20240607);
  for (int round = 0; round < 20000; ++round) {
    // From blocks full of the byte to blocks that hardly have it.
    const unsigned values = 1u << random() % 9;
    std::vector<char> block(random() % 400);
    for (char& byte : block) byte = static_cast<char>(random() % values);
    const std::size_t from = block.empty() ? 0 : random() % block.size();
    ExpectFound(block.data() + from, block.data() + block.size(), static_cast<char>(values - 1));
  }
}

}  // namespace
}  // namespace TextFile
