// Reads one coordinate, or a number of one, out of folded text. Serves LatLongFormat only.
//
// Folding brings the many marks in use to one byte each, so that the grammar is written once:
//
//   latlong::FoldedText folded;
//   if (!folded.Fold(u"40º 7′ 22.8″ N")) return false;
//   const char* position = folded.Begin();
//   latlong::Coordinate half;
//   latlong::ReadCoordinate(position, {}, half);  // half.degrees == 40.123, half.axis == kLatitude
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quenra::latlong {

// Longest text looked at, in UTF-16 code units. The longest notation with blanks, words and a
// coordinate system's name stays well below it.
inline constexpr std::size_t kMaxTextLength = 128;

// The folded form of every degree sign. Minute and second marks fold to ' and ".
inline constexpr char kDegreeMark = '\x02';

// The folded form of the wide commas of Chinese and Japanese, which only separate.
inline constexpr char kWideComma = '\x03';

// A text in the narrow alphabet of the grammar, terminated by '\0': ASCII digits, letters and
// punctuation stand for themselves, every minus is '-', a run of blanks is one ' ' and falls away
// at both ends, two minute marks in a row are '"', and the characters of hemispheres in other
// scripts are control characters. Invisible characters that steer the direction of writing fall
// away; between two that would otherwise be one number or word they leave a blank.
class FoldedText {
 public:
  // False when `text` is too long, blank, bears a character that no notation has, or an invisible
  // one between two digits.
  bool Fold(std::u16string_view text) noexcept;
  const char* Begin() const noexcept { return bytes_.data() + 1; }

 private:
  // A blank stands in front of the text, so that every character has one before it.
  std::array<char, kMaxTextLength + 2> bytes_{};
};

// True when a text that starts like this can be a coordinate: a look at the first character that is
// neither blank nor invisible, which spares most words the rest.
bool MayStartCoordinate(std::u16string_view text) noexcept;

// An unsigned decimal number.
struct Number {
  const char* begin = nullptr;          // of the integer digits
  const char* fractionBegin = nullptr;  // of the decimals, when there are any
  std::uint32_t integer = 0;            // of at most 9 digits
  int integerDigits = 0;                // as written, with leading zeros
  std::uint64_t fraction = 0;           // its first `keptDecimals` digits
  int keptDecimals = 0;
  int decimals = 0;  // as written
  bool comma = false;
};

// The number's value, correctly rounded.
double ValueOf(const Number& number) noexcept;

enum class CommaUse { kDecimalOrSeparator, kSeparator };

// Reads digits with an optional fraction ("12", "12.5", "12,5", ".5"). `position` moves past the
// number, and stays when there is none.
bool ReadNumber(const char*& position, CommaUse commaUse, Number& number) noexcept;

enum class Axis : std::uint8_t { kUnknown, kLatitude, kLongitude };

// What stands between degrees and minutes.
enum class Joint : std::uint8_t { kNone, kMark, kBlank, kColon, kHyphen, kDot, kCompact };

// How degrees, minutes or seconds are marked: not, by a sign, by a word (deg, min, sec) or by its
// first letter.
enum class Mark : std::uint8_t { kNone, kSign, kWord, kLetter };

enum class LetterSide : std::uint8_t { kNone, kBefore, kAfter };

// One half of a pair.
struct Coordinate {
  double degrees = 0;  // without the sign
  int groups = 0;      // 1 degrees, 2 degrees and minutes, 3 degrees, minutes and seconds
  int degreeDigits = 0;
  int decimals = 0;  // of the last group
  Axis axis = Axis::kUnknown;
  Joint joint = Joint::kNone;
  LetterSide letterSide = LetterSide::kNone;
  Mark degreeMark = Mark::kNone;
  Mark minuteMark = Mark::kNone;
  Mark secondMark = Mark::kNone;  // the letter s also is the south
  bool decimalComma = false;
  bool looksGrouped = false;   // "1,234": a decimal comma, or thousands
  bool letterTouches = false;  // no blank between the digits and the hemisphere, or none is needed
  bool letterIsSmallS = false;
  bool fullStop = false;     // behind the hemisphere letter
  bool commaBefore = false;  // the hemisphere letter is a field of its own: "4042.767,N"
  bool hasLabel = false;
  bool hasSign = false;
  bool negative = false;  // by sign, or south or west
};

// Reads label, hemisphere and value at `position`, which moves past them, into a new `coordinate`.
// False when there is no coordinate, or one that is out of its range; `position` and `coordinate`
// are then unspecified.
bool ReadCoordinate(const char*& position, CommaUse commaUse, Coordinate& coordinate) noexcept;

// Two coordinates, and how one text joins them.
struct Pair {
  Coordinate first;
  Coordinate second;
  bool twoTexts = false;
  bool squareBrackets = false;
  char separator = '\0';  // ',' ';' '/', or '\0' when there is none but a blank
  bool blank = false;
};

// Reads the commonest notation, `40°26'46"N 79°58'56.5"W`, without folding the text: whole degrees
// and minutes, each part with its mark, a hemisphere letter behind the seconds, at most one blank
// or one separator and a blank between two parts. What it reads is what ReadCoordinate reads of the
// folded halves. False, with `pair` unspecified, for any other text, which says nothing about it.
bool ReadMarkedPair(std::u16string_view text, Pair& pair) noexcept;

// Splits the digits of DDMM, DDMMSS and the like; an odd count has three digits of degrees. Fails
// on other counts, and on minutes or seconds of 60 and more.
bool SplitCompact(const Number& number, Coordinate& coordinate) noexcept;

inline bool IsDigit(char c) noexcept { return c >= '0' && c <= '9'; }
inline bool IsLetter(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
inline void SkipBlank(const char*& position) noexcept { position += *position == ' ' ? 1 : 0; }

// Reads an ASCII word in either case, given in lower case. `position` stays when it is another one.
bool ReadWord(const char*& position, std::string_view word) noexcept;

}  // namespace quenra::latlong
