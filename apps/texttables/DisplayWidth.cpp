#include "DisplayWidth.h"

#include "TextEncoding.h"

namespace TextTables {

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// The blocks that terminals show two columns wide, after Unicode's East Asian Width W and F.
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},   {0x3400, 0x4DBF},
    {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xA960, 0xA97F},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

// Marks that stand on the character before them, and characters without a shape.
constexpr Range kNone[] = {{0x0300, 0x036F}, {0x0483, 0x0489},  {0x0591, 0x05BD}, {0x0610, 0x061A},
                           {0x064B, 0x065F}, {0x0E31, 0x0E31},  {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E},
                           {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},  {0x200B, 0x200F}, {0x202A, 0x202E},
                           {0x2060, 0x2064}, {0x20D0, 0x20FF},  {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F},
                           {0xFEFF, 0xFEFF}, {0xE0100, 0xE01EF}};

template <std::size_t count>
bool Holds(const Range (&ranges)[count], char32_t value) noexcept {
  for (const Range& range : ranges)
    if (value >= range.first && value <= range.last) return true;
  return false;
}

}  // namespace

std::size_t DisplayWidth(std::u16string_view text) noexcept {
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint point = CodePointAt(text, i);
    i += point.units;
    if (point.value < 0x300) {
      ++width;
    } else if (!Holds(kNone, point.value)) {
      width += Holds(kWide, point.value) ? 2 : 1;
    }
  }
  return width;
}

}  // namespace TextTables
