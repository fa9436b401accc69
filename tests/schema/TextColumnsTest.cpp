// Columns of texts look like texts written one by one and character by character, whichever
// processor the code is for.
#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/Variant.h"
#include "schema/TextColumns.h"
#include "schema/Utf8.h"

namespace TextFile {
namespace {

using quenra::Variant;

constexpr char kFence = '\x7E';

bool IsDropped(std::u16string_view text) {
  return text.find(u'\0') != std::u16string_view::npos ||
         text.find(u'\x1A') != std::u16string_view::npos;
}

// As it stands in a file with commas and double quotes.
std::string Expected(std::u16string_view text) {
  bool quoted = text.find_first_of(u",\r\n") != std::u16string_view::npos;
  const std::size_t first = text.find(u'"');
  quoted = quoted || (first != std::u16string_view::npos && quenra::IsBlank(text.substr(0, first)));
  std::u16string doubled;
  for (const char16_t unit : text) doubled.append(unit == u'"' ? 2 : 1, unit);
  std::string bytes;
  AppendUtf8(quoted ? u'"' + doubled + u'"' : doubled, bytes);
  return bytes;
}

// A row of values, and what the columns before the first that stops them should look like.
class Row {
 public:
  Row(std::mt19937& random, std::size_t size) {
    kept_.reserve(size);
    bool goesOn = true;
    for (std::size_t i = 0; i < size; ++i) {
      const std::size_t width = random() % 3 == 0 ? random() % 40 : 255;
      columns_.push_back({width, i == 0 ? std::size_t{0} : std::size_t{1}});
      std::u16string text = RandomText(random);
      const VARIANT value = RandomValue(random, text);
      values_.push_back(value);
      const std::u16string_view cut = CutText(text, width);
      goesOn = goesOn && value.vt != VT_I4 && !IsDropped(cut);
      if (!goesOn) continue;
      ends_.push_back((ends_.empty() ? "" : ends_.back() + ",") + Expected(cut));
    }
  }

  std::span<const TextColumn> Columns() const { return columns_; }
  const VARIANT* Values() const { return values_.data(); }
  // What has been written after each column.
  const std::vector<std::string>& Ends() const { return ends_; }

 private:
  static std::u16string RandomText(std::mt19937& random) {
    // The last one is dropped, and comes less often.
    static constexpr char16_t kOthers[] = {
        u'"', u',',  u',',  u';',  u'\t',  u'\r',  u'\n',  u' ',   0x1F,   0x7F,   0x80,
        0xFF, 0x100, 0x12C, 0x822, 0x6708, 0x7FFF, 0x8000, 0xD83D, 0xDE00, 0xFF2C, 0x1A};
    constexpr std::size_t kCount = std::size(kOthers);
    const std::size_t length = random() % 5 == 0 ? random() % 150 : random() % 36;
    std::u16string text(length, u'\0');
    for (char16_t& unit : text) unit = static_cast<char16_t>(u' ' + random() % 95);
    for (std::size_t i = random() % 3 == 0 ? random() % 4 : 0; i > 0 && length > 0; --i)
      text[random() % length] = kOthers[random() % (random() % 9 == 0 ? kCount : kCount - 1)];
    if (random() % 3 != 0)
      for (char16_t& unit : text)
        if (unit == u',' || unit == u'"') unit = u'x';
    return text;
  }

  // The text owned or lent, or another value; `text` becomes what is to be written.
  VARIANT RandomValue(std::mt19937& random, std::u16string& text) {
    VARIANT value{};
    switch (random() % 30) {
      case 0:
        value.vt = VT_I4;
        return value;
      case 1:
      case 2:
        value.vt = random() % 2 == 0 ? VT_NULL : VT_EMPTY;
        text.clear();
        return value;
      case 3:
        value.vt = VT_BSTR;  // a null text is an empty one
        text.clear();
        return value;
      default:
        kept_.emplace_back(std::u16string_view(text));
        if (random() % 2 == 0) return kept_.back().Get();
        value.vt = VT_BSTR | VT_BYREF;
        value.pbstrVal = const_cast<BSTR*>(&kept_.back().Get().bstrVal);
        return value;
    }
  }

  std::vector<TextColumn> columns_;
  std::vector<Variant> kept_;
  std::vector<VARIANT> values_;
  std::vector<std::string> ends_;
};

class TextColumnsTest : public testing::TestWithParam<TextColumnsCode> {
 protected:
  // What the row looks like when there is room for `room` bytes, to be made as wide as it takes.
  static std::string Written(WriteTextColumns write, const Row& row, std::size_t room,
                             std::size_t& done) {
    const QuotedText texts(',', '"');
    std::string bytes(room, kFence);
    std::size_t size = 0;
    done = 0;
    for (;;) {
      const std::string before = bytes;
      bytes += kFence;
      TextRun run{bytes.data() + size, bytes.data() + room, 1};
      const std::size_t more = write(texts, row.Columns().subspan(done), row.Values() + done, run);
      EXPECT_EQ(bytes.back(), kFence) << "written behind the room";
      bytes.pop_back();
      done += more;
      size = static_cast<std::size_t>(run.to - bytes.data());
      EXPECT_LE(size, room);
      if (run.room == 0) break;
      EXPECT_GT(run.room, room - size) << "there is enough room";
      room = size + run.room;
      bytes.resize(room, kFence);
    }
    return bytes.substr(0, size);
  }
};

TEST_P(TextColumnsTest, RandomRowsLookAsTheyShould) {
  const WriteTextColumns write = ChooseTextColumns(GetParam());
  std::mt19937 random(5);
  for (int i = 0; i < 20000; ++i) {
    const Row row(random, 1 + random() % 9);
    std::size_t done = 0;
    const std::string written =
        Written(write, row, random() % 2 == 0 ? 8192 : random() % 600, done);
    ASSERT_EQ(done, row.Ends().size()) << i;
    ASSERT_EQ(written, done == 0 ? "" : row.Ends().back()) << i;
  }
}

TEST_P(TextColumnsTest, ASpecialCharacterIsFoundWhereverItStands) {
  const WriteTextColumns write = ChooseTextColumns(GetParam());
  const QuotedText texts(',', '"');
  const TextColumn column{255, 0};
  for (const char16_t unit :
       std::u16string_view(u",\"\r\n\t\x1F\x7F\u0080\u00E9\u012C\u6708\uFF2C"))
    for (std::size_t size = 1; size < 100; ++size)
      for (std::size_t at = 0; at < size; ++at) {
        std::u16string text(size, u'a');
        text[at] = unit;
        const Variant value{std::u16string_view(text)};
        char place[400];
        TextRun run{place, place + sizeof place, 0};
        ASSERT_EQ(write(texts, {&column, 1}, value.Address(), run), 1u);
        ASSERT_EQ(std::string(place, run.to), Expected(text)) << size << " " << at;
      }
}

INSTANTIATE_TEST_SUITE_P(Codes, TextColumnsTest,
                         testing::Values(TextColumnsCode::kBest, TextColumnsCode::kBaseline));

}  // namespace
}  // namespace TextFile
