#include "ShownText.h"

#include <algorithm>

#include "Terminal.h"
#include "TextEncoding.h"

namespace TextTables {

namespace {

constexpr std::size_t kLongestValue = 200;  // characters

// A message quotes a few values of that length. One that is longer was made of something that did
// not tell its values from its own words.
constexpr std::size_t kLongestLine = 2000;  // characters
constexpr std::size_t kKeptAtEnd = 400;
constexpr std::size_t kMostLines = 20;

constexpr std::u16string_view kEllipsis = u"\u2026";

struct Range {
  char32_t first;
  char32_t last;
};

// What a terminal takes for a command or for the end of a line, and what turns the direction of the
// text around it.
constexpr Range kSpelled[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C},
                              {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

bool IsSpelled(char32_t value) noexcept {
  return std::any_of(std::begin(kSpelled), std::end(kSpelled), [value](const Range& range) {
    return value >= range.first && value <= range.last;
  });
}

// U+DC80 to U+DCFF are bytes of a name that is not UTF-8.
bool IsOddByte(char32_t value) noexcept { return value >= 0xDC80 && value <= 0xDCFF; }

void AppendDigits(std::u16string& shown, char32_t value, int count) {
  constexpr char16_t kDigits[] = u"0123456789abcdef";
  for (int shift = (count - 1) * 4; shift >= 0; shift -= 4)
    shown += kDigits[(value >> shift) & 0xF];
}

void AppendSpelled(std::u16string& shown, char32_t value) {
  if (value == U'\t') {
    shown += u"\\t";
  } else if (value == U'\n') {
    shown += u"\\n";
  } else if (value == U'\r') {
    shown += u"\\r";
  } else {
    shown += u"\\u";
    AppendDigits(shown, value, 4);
  }
}

// The place behind `count` characters, or the end.
std::size_t PlaceBehind(std::u16string_view text, std::size_t count) noexcept {
  std::size_t place = 0;
  while (count-- > 0 && place < text.size()) place += CodePointAt(text, place).units;
  return std::min(place, text.size());
}

// The text without its middle, when it is longer than a line may be.
std::u16string WithoutMiddle(std::u16string_view line) {
  const std::size_t begin = PlaceBehind(line, kLongestLine - kKeptAtEnd);
  if (line.size() - begin <= kKeptAtEnd) return std::u16string(line);
  std::size_t end = line.size() - kKeptAtEnd;
  if ((line[end] & 0xFC00) == 0xDC00) ++end;  // not in the middle of a pair
  return std::u16string(line.substr(0, begin)) + std::u16string(kEllipsis) +
         std::u16string(line.substr(end));
}

std::u16string Spelled(std::u16string_view text, bool keepTabs) {
  std::u16string shown;
  shown.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint point = CodePointAt(text, i);
    if (IsOddByte(point.value)) {
      shown += u"\\x";
      AppendDigits(shown, point.value & 0xFF, 2);
    } else if (IsSpelled(point.value) && !(keepTabs && point.value == U'\t')) {
      AppendSpelled(shown, point.value);
    } else {
      shown += text.substr(i, point.units);
    }
    i += point.units;
  }
  return shown;
}

}  // namespace

std::u16string WithoutControls(std::u16string_view text) {
  std::u16string shown;
  shown.reserve(text.size());
  for (const char16_t unit : text) {
    if (IsSpelled(unit)) {
      AppendSpelled(shown, unit);
    } else {
      shown += unit;
    }
  }
  return shown;
}

std::string Shown(std::u16string_view text) {
  const std::size_t end = PlaceBehind(text, kLongestValue);
  std::u16string shown = Spelled(text.substr(0, end), false);
  if (end < text.size()) shown += kEllipsis;
  return Utf8(shown);
}

std::string Shown(std::string_view bytes) { return Shown(Terminal::TextOfArgument(bytes)); }

std::string ShownWhole(std::u16string_view text) { return Utf8(Spelled(text, false)); }

std::string ShownMessage(std::string_view bytes) {
  const std::u16string text = Terminal::TextOfArgument(bytes);
  std::u16string shown;
  std::u16string_view rest = text;
  for (std::size_t lines = 0;; ++lines) {
    const std::size_t length = std::min(rest.find(u'\n'), rest.size());
    shown += Spelled(WithoutMiddle(rest.substr(0, length)), true);
    if (length == rest.size()) break;
    rest.remove_prefix(length + 1);
    shown += u'\n';
    if (rest.empty() || rest.front() != u'\t') shown += u'\t';
    if (lines + 1 == kMostLines) {
      shown += kEllipsis;
      break;
    }
  }
  return Utf8(shown);
}

}  // namespace TextTables
