// Feeds arbitrary text to the coordinate recogniser. The bytes are UTF-8-like: ASCII stands for
// itself, two and three byte forms for other UTF-16 code units, so that the marks are found by
// mutation; a byte FF divides two texts.
//
// Holds: nothing crashes; what is accepted reads under its own and under every other format code,
// with the same values, finite and within the range of latitude and longitude; what is refused
// leaves zeros; a blank in front changes nothing, nor do invisible characters around a text; and
// none of an invisible character inside it, brackets around it or two texts written as one puts a
// place elsewhere.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "host/DataCore/LatLongFormat.h"

namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

std::u16string Widen(const std::uint8_t* data, std::size_t size) {
  std::u16string text;
  for (std::size_t i = 0; i < size;) {
    if (data[i] >= 0xE0 && i + 2 < size) {
      text += static_cast<char16_t>((data[i] & 0x0F) << 12 | (data[i + 1] & 0x3F) << 6 |
                                    (data[i + 2] & 0x3F));
      i += 3;
    } else if (data[i] >= 0xC0 && i + 1 < size) {
      text += static_cast<char16_t>((data[i] & 0x1F) << 6 | (data[i + 1] & 0x3F));
      i += 2;
    } else {
      text += static_cast<char16_t>(data[i++]);
    }
  }
  return text;
}

// One latitude and one longitude; which is which is not known of two texts.
void CheckRange(double first, double second, bool twoTexts) {
  Check(std::isfinite(first) && std::isfinite(second));
  Check(std::abs(first) <= 180 && std::abs(second) <= 180);
  Check(std::abs(second) <= 90 || (twoTexts && std::abs(first) <= 90));
}

template <typename IsLatLong, typename Parse>
void CheckText(std::int32_t otherFormat, bool twoTexts, IsLatLong isLatLong, Parse parse) {
  std::int32_t format = -1;
  const bool accepted = isLatLong(format);
  Check(accepted ? format > 0 : format == 0);
  double first = 999;
  double second = 999;
  Check(parse(format, first, second) == accepted);
  CheckRange(first, second, twoTexts);
  double otherFirst = 999;
  double otherSecond = 999;
  const bool read = parse(otherFormat, otherFirst, otherSecond);
  CheckRange(otherFirst, otherSecond, twoTexts);
  if (accepted) Check(read && first == otherFirst && second == otherSecond);
  if (!read) Check(otherFirst == 0 && otherSecond == 0);
}

// A blank in front does not count, but keeps a text away from the short way of marked pairs.
void CheckBlankInFront(const quenra::LatLongFormat& latLong, const std::u16string& text) {
  constexpr std::size_t kMaxLength = 128;
  if (text.size() >= kMaxLength) return;
  std::int32_t format = 0;
  std::int32_t exactFormat = 0;
  Check(latLong.IsLatLong(text, format) == latLong.IsLatLong(u' ' + text, exactFormat));
  Check(format == exactFormat);
  double x = 0, y = 0, exactX = 0, exactY = 0;
  latLong.ParseLatLong(text, format, x, y);
  latLong.ParseLatLong(u' ' + text, format, exactX, exactY);
  Check(x == exactX && y == exactY);
}

struct Reading {
  bool accepted = false;
  double x = 0;
  double y = 0;
};

Reading Read(const std::u16string& text) {
  Reading reading;
  reading.accepted = quenra::LatLongFormat().ParseLatLong(text, 0, reading.x, reading.y);
  return reading;
}

bool IsSame(const Reading& a, const Reading& b) {
  return a.accepted == b.accepted && a.x == b.x && a.y == b.y;
}

bool IsNowhereElse(const Reading& a, const Reading& b) {
  return !a.accepted || !b.accepted || (a.x == b.x && a.y == b.y);
}

// `place` chooses where inside the text a character is put.
void CheckNeighbours(const std::u16string& text, std::size_t place) {
  constexpr std::size_t kMaxLength = 126;
  if (text.size() > kMaxLength) return;
  const Reading reading = Read(text);
  Check(IsSame(Read(u"\u2066" + text + u"\u2069"), reading));
  std::u16string parted = text;
  parted.insert(place % (text.size() + 1), 1, u'\u200E');
  Check(IsNowhereElse(Read(parted), reading));
  Check(IsNowhereElse(Read(u"[" + text + u"]"), reading));
  Check(IsNowhereElse(Read(u"(" + text + u")"), reading));
}

// Of two texts each value belongs to its text; of one the longitude comes first.
void CheckJoined(const std::u16string& first, const std::u16string& second) {
  double a = 0;
  double b = 0;
  const Reading joined = Read(first + u"; " + second);
  if (!joined.accepted || !quenra::LatLongFormat().ParseLatLong(first, second, 0, a, b)) return;
  Check((a == joined.y && b == joined.x) || (a == joined.x && b == joined.y));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const auto otherFormat = static_cast<std::int32_t>(data[0] | data[1] << 8);
  data += 2;
  size -= 2;
  std::size_t divider = 0;
  while (divider < size && data[divider] != 0xFF) ++divider;
  const std::u16string first = Widen(data, divider);
  const quenra::LatLongFormat latLong;
  CheckText(
      otherFormat, false, [&](std::int32_t& format) { return latLong.IsLatLong(first, format); },
      [&](std::int32_t format, double& x, double& y) {
        return latLong.ParseLatLong(first, format, x, y);
      });
  CheckBlankInFront(latLong, first);
  CheckNeighbours(first, static_cast<std::size_t>(otherFormat));
  if (divider == size) return 0;
  const std::u16string second = Widen(data + divider + 1, size - divider - 1);
  CheckText(
      otherFormat, true,
      [&](std::int32_t& format) { return latLong.IsLatLong(first, second, format); },
      [&](std::int32_t format, double& a, double& b) {
        return latLong.ParseLatLong(first, second, format, a, b);
      });
  CheckJoined(first, second);
  return 0;
}
