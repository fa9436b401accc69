#include "host/DataCore/LatLongScanner.h"

#include <charconv>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenra::latlong {
namespace {

constexpr char kRefused = '\0';

// The folded form of a character that only steers the direction of writing.
constexpr char kInvisible = '\x01';

// The folded forms of what hemispheres are written with in other scripts: four characters for
// north, south, east and west, then one for latitude and one for longitude.
constexpr char kRussian = '\x04';
constexpr char kHan = '\x0A';
constexpr char kHemispheres = 4;
constexpr char kCharactersOfScript = 6;

inline bool IsOfScript(char c, char script) noexcept {
  return c >= script && c < script + kCharactersOfScript;
}
inline bool NamesHemisphere(char c, char script) noexcept {
  return c >= script && c < script + kHemispheres;
}
inline bool IsWordStart(char c) noexcept {
  return IsLetter(c) || IsOfScript(c, kRussian) || IsOfScript(c, kHan);
}

// The folded form of each ASCII character. Control characters and punctuation that no notation has
// are refused.
constexpr std::array<char, 128> MakeAsciiFolding() {
  std::array<char, 128> table{};
  constexpr std::string_view kKept =
      " +-.,:;/=?_()[]'\"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  for (const char c : kKept) table[static_cast<unsigned char>(c)] = c;
  table['\t'] = ' ';
  table['`'] = '\'';  // a minute mark of keyboards that have no other
  return table;
}
constexpr std::array<char, 128> kAsciiFolding = MakeAsciiFolding();

char FoldForeignLetter(char16_t c) noexcept {
  switch (c) {
    case 0x0421:  // Es, of north
    case 0x0441:
      return kRussian;
    case 0x042E:  // Yu, of south
    case 0x044E:
      return kRussian + 1;
    case 0x0412:  // Ve, of east
    case 0x0432:
      return kRussian + 2;
    case 0x0417:  // Ze, of west
    case 0x0437:
      return kRussian + 3;
    case 0x0428:  // Sha, of latitude
    case 0x0448:
      return kRussian + 4;
    case 0x0414:  // De, of longitude
    case 0x0434:
      return kRussian + 5;
    case 0x5317:  // north
      return kHan;
    case 0x5357:  // south
      return kHan + 1;
    case 0x6771:  // east
    case 0x4E1C:  // simplified
      return kHan + 2;
    case 0x897F:  // west
      return kHan + 3;
    case 0x7DEF:  // latitude
    case 0x7EAC:  // simplified
      return kHan + 4;
    case 0x7D4C:  // longitude
    case 0x7D93:  // traditional
    case 0x7ECF:  // simplified
      return kHan + 5;
    default:
      return kRefused;
  }
}

char FoldBeyondAscii(char16_t c) noexcept {
  switch (c) {
    case 0x00B0:  // degree sign
    case 0x00BA:  // masculine ordinal indicator
    case 0x02DA:  // ring above
    case 0x2070:  // superscript zero
    case 0x2218:  // ring operator
    case 0x5EA6:  // Han, of degrees
      return kDegreeMark;
    case 0x00B4:  // acute accent
    case 0x02B9:  // modifier letter prime
    case 0x2018:  // left single quotation mark
    case 0x2019:  // right single quotation mark
    case 0x2032:  // prime
    case 0x5206:  // Han, of minutes
      return '\'';
    case 0x02BA:  // modifier letter double prime
    case 0x02DD:  // double acute accent
    case 0x201C:  // left double quotation mark
    case 0x201D:  // right double quotation mark
    case 0x2033:  // double prime
    case 0x79D2:  // Han, of seconds
      return '"';
    case 0x2010:  // hyphen
    case 0x2013:  // en dash
    case 0x2212:  // minus sign
      return '-';
    case 0x00A0:  // no-break space
    case 0x202F:  // narrow no-break space
    case 0x205F:  // medium mathematical space
    case 0x3000:  // ideographic space
      return ' ';
    case 0x3001:  // ideographic comma
    case 0xFF0C:  // full-width comma
      return kWideComma;
    case 0x200E:  // left-to-right mark
    case 0x200F:  // right-to-left mark
    case 0xFEFF:  // byte-order mark
      return kInvisible;
    default:
      if (c >= 0x2000 && c <= 0x200A) return ' ';  // spaces of other widths
      // Embeddings, overrides and isolates.
      if ((c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069)) return kInvisible;
      return FoldForeignLetter(c);
  }
}

inline char FoldCharacter(char16_t c) noexcept {
  return c < kAsciiFolding.size() ? kAsciiFolding[c] : FoldBeyondAscii(c);
}

// Folds the next character behind those that stand in front of `out`. False for one that no
// notation has, and for an invisible one.
inline bool FoldOne(char16_t c, char*& out) noexcept {
  const char folded = FoldCharacter(c);
  // Most characters are neither refused nor a blank nor a minute mark, all of which are small.
  if (folded <= '\'') {
    if (folded <= kInvisible) return false;  // or refused
    if (folded == ' ' && out[-1] == ' ') return true;
    if (folded == '\'' && out[-1] == '\'') {
      out[-1] = '"';
      return true;
    }
  }
  *out++ = folded;
  return true;
}

// What invisible characters between two others amount to.
enum class Gap { kNone, kBlank, kWrong };

// They fall away, but part what would become one number or word. `before` are the two folded
// characters in front of them. Nothing is read of a number that they cut.
Gap FindGap(const char* before, char next) noexcept {
  const char last = before[1];
  if (IsDigit(last) && (IsDigit(next) || next == '.')) return Gap::kWrong;
  if (last == '.' && IsDigit(next)) return IsWordStart(before[0]) ? Gap::kBlank : Gap::kWrong;
  const bool comma = (IsDigit(last) && next == ',') || (last == ',' && IsDigit(next));
  return comma || (IsLetter(last) && IsLetter(next)) ? Gap::kBlank : Gap::kNone;
}

// Folds the invisible characters at `text[i]`, of which `i` moves to the last. False when there are
// none, or when they cut a number.
bool FoldInvisible(std::u16string_view text, std::size_t& i, char*& out) noexcept {
  if (FoldCharacter(text[i]) != kInvisible) return false;
  char next = kInvisible;
  while (i + 1 < text.size() && (next = FoldCharacter(text[i + 1])) == kInvisible) ++i;
  if (out[-1] == ' ') return true;  // also at the start, where no character is before it
  const Gap gap = FindGap(out - 2, next);
  if (gap == Gap::kBlank) *out++ = ' ';
  return gap != Gap::kWrong;
}

// Folds the next kFoldStep characters, if all of them simply stand for themselves. There is room
// for as many at `out`, which false leaves with anything.
constexpr std::size_t kFoldStep = 16;
#if defined(__SSE2__)
inline bool FoldPlainCharacters(const char16_t* text, char* out) noexcept {
  const auto load = [text](std::size_t unit) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + unit));
  };
  // Saturates: units above 255 become 255, those above 32767 become 0.
  const __m128i bytes = _mm_packus_epi16(load(0), load(kFoldStep / 2));
  const auto isFrom = [](__m128i characters, char first, char last) {
    const __m128i offsets = _mm_sub_epi8(characters, _mm_set1_epi8(first));
    const __m128i most = _mm_set1_epi8(static_cast<char>(last - first));
    return _mm_cmpeq_epi8(_mm_min_epu8(offsets, most), offsets);
  };
  const __m128i letters = isFrom(_mm_or_si128(bytes, _mm_set1_epi8(0x20)), 'a', 'z');
  const __m128i digits = isFrom(bytes, '+', ';');  // and "+,-./:;"
  const __m128i blanks = _mm_cmpeq_epi8(bytes, _mm_set1_epi8(' '));
  const __m128i plain = _mm_or_si128(_mm_or_si128(letters, digits), blanks);
  const auto blank = static_cast<unsigned>(_mm_movemask_epi8(blanks));
  const unsigned behindBlank = blank << 1 | (out[-1] == ' ' ? 1U : 0U);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
  return _mm_movemask_epi8(plain) == 0xFFFF && (blank & behindBlank) == 0;
}
#else
inline bool FoldPlainCharacters(const char16_t*, char*) noexcept { return false; }
#endif

// Folds the characters of the text's start that simply stand for themselves, a step at a time, and
// answers how many: notations in words have no others, while those with marks have many of them.
std::size_t FoldPlainStart(std::u16string_view text, char* out) noexcept {
  std::size_t i = 0;
  while (text.size() - i >= kFoldStep && FoldPlainCharacters(text.data() + i, out + i))
    i += kFoldStep;
  // The last step begins among those that have been folded, which it leaves as they are.
  if (i == 0 || i == text.size() || text.size() - i >= kFoldStep) return i;
  const std::size_t last = text.size() - kFoldStep;
  return FoldPlainCharacters(text.data() + last, out + last) ? text.size() : i;
}

inline char ToUpper(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Whether a pair can start with this folded character: a number, a bracket, a hemisphere of any
// script or one of "lat", "lon", "geo:", "POINT", "SRID".
bool StartsCoordinate(char c) noexcept {
  switch (ToUpper(c)) {
    case '+':
    case '-':
    case '.':
    case '(':
    case '[':
    case 'N':
    case 'S':
    case 'E':
    case 'W':
    case 'L':
    case 'G':
    case 'P':
      return true;
    default:
      return IsDigit(c) || NamesHemisphere(c, kRussian) || NamesHemisphere(c, kHan);
  }
}

constexpr std::array<std::uint64_t, 16> kPowersOfTen = {
    1,
    10,
    100,
    1000,
    10000,
    100000,
    1000000,
    10000000,
    100000000,
    1000000000,
    10000000000,
    100000000000,
    1000000000000,
    10000000000000,
    100000000000000,
    1000000000000000,
};
constexpr int kMaxKeptDecimals = 15;      // with three digits of degrees they fit 64 bits
constexpr int kMaxIntegerDigits = 9;      // DDDMMSSss
constexpr int kSexagesimalDecimals = 10;  // 180 degrees in 10^-10 seconds stay below 2^53
constexpr std::uint64_t kExactLimit = std::uint64_t{1} << 53;

std::uint64_t PowerOfTen(int exponent) noexcept {
  return kPowersOfTen[static_cast<std::size_t>(exponent)];
}

enum class Hemisphere : std::uint8_t { kNorth, kSouth, kEast, kWest, kNone };

// There is no 'O': it is east in some languages and west in others.
Hemisphere HemisphereOfLetter(char letter) noexcept {
  switch (ToUpper(letter)) {
    case 'N':
      return Hemisphere::kNorth;
    case 'S':
      return Hemisphere::kSouth;
    case 'E':
      return Hemisphere::kEast;
    case 'W':
      return Hemisphere::kWest;
    default:
      return Hemisphere::kNone;
  }
}

// Reads a letter or an English word that names a hemisphere; a longer word is none.
Hemisphere ReadEnglishHemisphere(const char*& position) noexcept {
  constexpr std::string_view kWords[] = {"north", "south", "east", "west"};
  const Hemisphere hemisphere = HemisphereOfLetter(*position);
  if (hemisphere == Hemisphere::kNone) return hemisphere;
  const char* end = position + 1;
  if (IsLetter(*end)) {
    end = position;
    if (!ReadWord(end, kWords[static_cast<std::size_t>(hemisphere)]) || IsLetter(*end))
      return Hemisphere::kNone;
  }
  position = end;
  return hemisphere;
}

// Reads the two characters of a hemisphere in another script. Those of the Russian abbreviations
// may have a full stop and a blank between them.
Hemisphere ReadForeignHemisphere(const char*& position, char script) noexcept {
  const char* p = position;
  const char index = static_cast<char>(*p++ - script);
  if (index >= kHemispheres) return Hemisphere::kNone;
  if (script == kRussian) {
    if (*p == '.') ++p;
    SkipBlank(p);
  }
  const char axis = static_cast<char>(script + kHemispheres + index / 2);
  if (*p++ != axis || IsLetter(*p) || IsOfScript(*p, script)) return Hemisphere::kNone;
  position = p;
  return static_cast<Hemisphere>(index);
}

// Reads the name of a hemisphere, without the full stop behind it. `position` stays when there is
// none.
Hemisphere ReadHemisphere(const char*& position) noexcept {
  if (IsLetter(*position)) return ReadEnglishHemisphere(position);
  if (!IsWordStart(*position)) return Hemisphere::kNone;
  return ReadForeignHemisphere(position, IsOfScript(*position, kRussian) ? kRussian : kHan);
}

// Whether a mark in letters may end here: in front of anything but a letter, or of a hemisphere:
// "deg N", "degN", but not "degree".
inline bool EndsWordMark(const char* position) noexcept {
  return !IsLetter(*position) || ReadEnglishHemisphere(position) != Hemisphere::kNone;
}

// Reads a mark in letters: a word of three, or the first of them.
Mark ReadWordMark(const char*& position, std::string_view word) noexcept {
  const char* p = position;
  Mark mark = Mark::kWord;
  if (!ReadWord(p, word) || !EndsWordMark(p)) {
    p = position + 1;
    mark = Mark::kLetter;
    if (!EndsWordMark(p)) return Mark::kNone;
  }
  position = p;
  return mark;
}

// Reads a mark that is a sign, a word or its first letter, behind a blank or none.
inline Mark ReadMark(const char*& position, char sign, std::string_view word) noexcept {
  const char* p = position;
  SkipBlank(p);
  Mark mark = Mark::kSign;
  if (*p == sign) {
    ++p;
  } else {
    if ((*p | 0x20) != word.front()) return Mark::kNone;
    mark = ReadWordMark(p, word);
    if (mark == Mark::kNone) return mark;
  }
  position = p;
  return mark;
}

inline Mark ReadDegreeMark(const char*& position) noexcept {
  return ReadMark(position, kDegreeMark, "deg");
}

inline Mark ReadMinuteMark(const char*& position) noexcept {
  return ReadMark(position, '\'', "min");
}

bool HemisphereFollows(const char* position) noexcept {
  SkipBlank(position);
  return ReadHemisphere(position) != Hemisphere::kNone;
}

// Whether the S at `position` marks the seconds and is not the southern hemisphere.
bool IsSecondsLetter(const char* position, const Coordinate& half) noexcept {
  const char* after = position + 1;
  if (IsLetter(*after)) {
    const char* word = position;
    return ReadEnglishHemisphere(word) == Hemisphere::kNone &&
           ReadEnglishHemisphere(after) != Hemisphere::kNone;
  }
  if (half.letterSide == LetterSide::kBefore) {
    if (*after == '.') ++after;
    SkipBlank(after);
    return !IsDigit(*after);  // before digits it is the other half's hemisphere
  }
  const bool lower = *position == 's';
  const bool minutesInLetters = half.minuteMark == Mark::kWord || half.minuteMark == Mark::kLetter;
  return HemisphereFollows(after) ? lower || minutesInLetters : lower && minutesInLetters;
}

Mark ReadSecondMark(const char*& position, const Coordinate& half) noexcept {
  const char* p = position;
  SkipBlank(p);
  Mark mark = Mark::kSign;
  if (*p == '"') {
    ++p;
  } else if (ToUpper(*p) != 'S') {
    return Mark::kNone;
  } else if (ReadWord(p, "sec") && EndsWordMark(p)) {
    mark = Mark::kWord;
  } else {
    p = position;
    SkipBlank(p);
    if (!IsSecondsLetter(p, half)) return Mark::kNone;
    mark = Mark::kLetter;
    ++p;
  }
  position = p;
  return mark;
}

// Reads the digits behind the decimal symbol at `position`.
inline void ReadFraction(const char*& position, Number& number) noexcept {
  number.comma = *position == ',';
  const char* p = position + 1;
  number.fractionBegin = p;
  for (; IsDigit(*p); ++p, ++number.decimals) {
    if (number.keptDecimals == kMaxKeptDecimals) continue;
    number.fraction = number.fraction * 10 + static_cast<std::uint64_t>(*p - '0');
    ++number.keptDecimals;
  }
  position = p;
}

// Whether the digits at `position` start the other half and are no fraction: something of a half
// follows them.
bool StartsHalf(const char* position) noexcept {
  while (IsDigit(*position)) ++position;
  switch (*position) {
    case '\'':
    case '"':
    case ':':
    case '-':
    case '.':
      return true;
    default:
      return ReadDegreeMark(position) != Mark::kNone;
  }
}

inline bool MayHaveFraction(Mark mark, char behind) noexcept {
  return mark != Mark::kNone && (behind == '.' || behind == ',');
}

// "12'.34": the fraction of a group may stand behind its mark.
void ReadFractionBehindMark(const char*& position, CommaUse commaUse, Number& number) noexcept {
  if (number.decimals > 0 || !IsDigit(position[1])) return;
  if (*position == ',' && (commaUse == CommaUse::kSeparator || StartsHalf(position + 1))) return;
  ReadFraction(position, number);
}

// Puts the last group's fraction into the half and computes degrees in one correctly rounded
// division.
void FinishSexagesimal(std::uint64_t degrees, std::uint64_t minutes, std::uint64_t seconds,
                       const Number& last, Coordinate& half) noexcept {
  int kept = last.keptDecimals;
  std::uint64_t fraction = last.fraction;
  if (kept > kSexagesimalDecimals) {
    fraction /= PowerOfTen(kept - kSexagesimalDecimals);
    kept = kSexagesimalDecimals;
  }
  const bool hasSeconds = half.groups == 3;
  const std::uint64_t whole =
      hasSeconds ? (degrees * 60 + minutes) * 60 + seconds : degrees * 60 + minutes;
  const std::uint64_t scale = PowerOfTen(kept);
  half.degrees = static_cast<double>(whole * scale + fraction) /
                 static_cast<double>(scale * (hasSeconds ? 3600 : 60));
  half.decimals = last.decimals;
  half.decimalComma = last.comma;
}

bool IsMinutesOrSeconds(const Number& number) noexcept {
  return number.integerDigits >= 1 && number.integerDigits <= 2 && number.integer < 60;
}

// Reads the mark of the seconds and what stands behind it, and finishes the half.
void FinishSeconds(const char*& position, CommaUse commaUse, std::uint64_t degrees,
                   std::uint64_t minutes, Number& seconds, Coordinate& half) noexcept {
  half.groups = 3;
  half.secondMark = ReadSecondMark(position, half);
  if (MayHaveFraction(half.secondMark, *position))
    ReadFractionBehindMark(position, commaUse, seconds);
  FinishSexagesimal(degrees, minutes, seconds.integer, seconds, half);
}

// "27.15.45", "27.15.45.2", "27.15.45,2": `first` was read as 27.15, `position` is at the second
// dot.
bool ReadDotted(const char*& position, CommaUse commaUse, const Number& first,
                Coordinate& half) noexcept {
  if (first.integerDigits == 0 || first.comma || first.decimals > 2 || first.fraction >= 60) {
    return false;
  }
  ++position;
  Number last;
  if (!ReadNumber(position, commaUse, last) || !IsMinutesOrSeconds(last)) return false;
  half.joint = Joint::kDot;
  FinishSeconds(position, commaUse, first.integer, first.fraction, last, half);
  return true;
}

// Finds the next group's first digit and what stands before it.
Joint FindJoint(const char*& position, bool afterMark) noexcept {
  const char* p = position;
  Joint joint = Joint::kNone;
  if (afterMark) {
    SkipBlank(p);
    joint = Joint::kMark;
  } else {
    switch (*p++) {
      case ' ':
        joint = Joint::kBlank;
        break;
      case ':':
        joint = Joint::kColon;
        break;
      case '-':
        joint = Joint::kHyphen;
        break;
      default:
        return Joint::kNone;
    }
  }
  if (!IsDigit(*p)) return Joint::kNone;
  position = p;
  return joint;
}

enum class GroupResult { kRead, kAbsent, kWrong };

// Reads minutes or seconds at `position`. A number with a degree mark is absent: it starts the
// other half, which in "26,79°" begins behind the comma.
GroupResult ReadGroup(const char*& position, CommaUse commaUse, Number& number) noexcept {
  const char* p = position;
  if (!ReadNumber(p, commaUse, number)) return GroupResult::kAbsent;
  const char* after = p;
  if (ReadDegreeMark(after) != Mark::kNone) {
    if (!number.comma) return GroupResult::kAbsent;
    p = position;
    ReadNumber(p, CommaUse::kSeparator, number);
  }
  if (!IsMinutesOrSeconds(number)) return GroupResult::kWrong;
  position = p;
  return GroupResult::kRead;
}

// Finds the first digit of the seconds: what stands before them is what stands before the minutes.
// Behind a mark, and where signs and blanks are mixed ("59 12'7.7"), it may be a blank or nothing.
bool FindSeconds(const char*& position, const Coordinate& half) noexcept {
  const bool afterMark = half.minuteMark != Mark::kNone;
  if (afterMark && FindJoint(position, true) != Joint::kNone) return true;
  const Joint joint = FindJoint(position, false);
  return joint != Joint::kNone &&
         (joint == half.joint || (joint == Joint::kBlank && half.joint == Joint::kMark));
}

// Reads the seconds, if any, and finishes the half. `position` is behind the minutes.
bool ReadSeconds(const char*& position, CommaUse commaUse, const Number& degrees, Number& minutes,
                 Coordinate& half) noexcept {
  half.minuteMark = ReadMinuteMark(position);
  if (MayHaveFraction(half.minuteMark, *position))
    ReadFractionBehindMark(position, commaUse, minutes);
  const char* p = position;
  if (minutes.decimals == 0 && FindSeconds(p, half)) {
    Number seconds;
    const GroupResult result = ReadGroup(p, commaUse, seconds);
    if (result == GroupResult::kWrong) return false;
    if (result == GroupResult::kRead) {
      position = p;
      FinishSeconds(position, commaUse, degrees.integer, minutes.integer, seconds, half);
      return true;
    }
  }
  half.groups = 2;
  FinishSexagesimal(degrees.integer, minutes.integer, 0, minutes, half);
  return true;
}

// Finishes a half that is degrees alone.
void FinishDegrees(const Number& degrees, Coordinate& half) noexcept {
  half.groups = 1;
  half.degrees = ValueOf(degrees);
  half.decimals = degrees.decimals;
  half.decimalComma = degrees.comma;
  half.looksGrouped = degrees.comma && degrees.decimals == 3 && *degrees.begin != '0';
}

// Reads the digits of one half, without label, hemisphere and sign.
bool ReadValue(const char*& position, CommaUse commaUse, Coordinate& half) noexcept {
  Number degrees;
  if (!ReadNumber(position, commaUse, degrees)) return false;
  half.degreeDigits = degrees.integerDigits;
  if (degrees.integerDigits > 3) return SplitCompact(degrees, half);
  if (degrees.decimals > 0 && *position == '.' && IsDigit(position[1])) {
    return ReadDotted(position, commaUse, degrees, half);
  }
  half.degreeMark = ReadDegreeMark(position);
  const bool marked = half.degreeMark != Mark::kNone;
  if (MayHaveFraction(half.degreeMark, *position))
    ReadFractionBehindMark(position, commaUse, degrees);
  const char* p = position;
  half.joint = degrees.decimals == 0 ? FindJoint(p, marked) : Joint::kNone;
  if (half.joint != Joint::kNone) {
    Number minutes;
    const GroupResult result = ReadGroup(p, commaUse, minutes);
    if (result == GroupResult::kWrong) return false;
    if (result == GroupResult::kRead) {
      position = p;
      return ReadSeconds(position, commaUse, degrees, minutes, half);
    }
    half.joint = Joint::kNone;
  }
  FinishDegrees(degrees, half);
  return true;
}

// "lat", "Longitude: ", "Lng.=": the axis is kUnknown when there is none.
Axis ReadLabel(const char*& position) noexcept {
  const char* p = position;
  Axis axis = Axis::kUnknown;
  if (ToUpper(*p) != 'L') return axis;
  if (ReadWord(p, "latitude") || ReadWord(p, "lat")) {
    axis = Axis::kLatitude;
  } else if (ReadWord(p, "longitude") || ReadWord(p, "long") || ReadWord(p, "lon") ||
             ReadWord(p, "lng")) {
    axis = Axis::kLongitude;
  } else {
    return axis;
  }
  if (IsLetter(*p)) return Axis::kUnknown;  // "late", "lone"
  if (*p == '.') ++p;
  SkipBlank(p);
  if (*p == ':' || *p == '=') ++p;
  SkipBlank(p);
  position = p;
  return axis;
}

// Takes the hemisphere into the half. Fails when it is none, or contradicts the label.
bool TakeHemisphere(Hemisphere hemisphere, LetterSide side, Coordinate& half) noexcept {
  if (hemisphere == Hemisphere::kNone) return false;
  const bool latitude = hemisphere == Hemisphere::kNorth || hemisphere == Hemisphere::kSouth;
  const Axis axis = latitude ? Axis::kLatitude : Axis::kLongitude;
  if (half.axis != Axis::kUnknown && half.axis != axis) return false;
  half.axis = axis;
  half.letterSide = side;
  half.negative = hemisphere == Hemisphere::kSouth || hemisphere == Hemisphere::kWest;
  return true;
}

bool ReadLeadingHemisphere(const char*& position, Coordinate& half) noexcept {
  const bool onlyInFront = IsOfScript(*position, kHan);
  if (!TakeHemisphere(ReadHemisphere(position), LetterSide::kBefore, half)) return false;
  half.fullStop = *position == '.';
  if (half.fullStop) ++position;
  half.letterTouches = onlyInFront || *position != ' ';
  SkipBlank(position);
  return true;
}

// Finds the hemisphere behind the value, which in compact digits may be a field of its own.
const char* FindTrailingHemisphere(const char* position, Coordinate& half) noexcept {
  SkipBlank(position);
  half.commaBefore = *position == ',' && half.joint == Joint::kCompact && half.decimals > 0;
  if (half.commaBefore) {
    ++position;
    SkipBlank(position);
  }
  return position;
}

// Reads the hemisphere behind the value, if there is one; Han characters stand in front only. Fails
// on one that contradicts sign or label.
bool ReadTrailingHemisphere(const char*& position, Coordinate& half) noexcept {
  const char* begin = FindTrailingHemisphere(position, half);
  if (!IsWordStart(*begin) || IsOfScript(*begin, kHan)) return true;
  const char* end = begin;
  const Hemisphere hemisphere = ReadHemisphere(end);
  if (hemisphere == Hemisphere::kNone) return true;
  half.letterTouches = begin == position;
  // "-40° W73°": what a sign forbids here may be the other half's.
  if (half.hasSign) return !half.letterTouches;
  if (!TakeHemisphere(hemisphere, LetterSide::kAfter, half)) return false;
  half.letterIsSmallS = *begin == 's' && end - begin == 1;
  half.fullStop = *end == '.';
  if (half.fullStop) ++end;
  position = end;
  return true;
}

// The text of a pair with marks, taken from its start on.
class MarkedText {
 public:
  explicit MarkedText(std::u16string_view text) noexcept
      : position_(text.data()), end_(text.data() + text.size()) {}

  bool AtEnd() const noexcept { return position_ == end_; }
  bool AtDigit() const noexcept { return !AtEnd() && Digit() < 10; }

  // Takes the next character when it folds to this one.
  bool Take(char folded) noexcept {
    if (AtEnd() || FoldCharacter(*position_) != folded) return false;
    ++position_;
    return true;
  }
  bool TakeBlank() noexcept {
    if (AtEnd() || *position_ != u' ') return false;
    ++position_;
    return true;
  }
  // Takes the next character, which is '\0' at the end and for anything outside ASCII.
  char Next() noexcept {
    const char16_t c = AtEnd() ? u'\0' : *position_++;
    return c < kAsciiFolding.size() ? static_cast<char>(c) : '\0';
  }
  // How many digits were taken, at most `most`; `value` is continued by them.
  int TakeDigits(int most, std::uint64_t& value) noexcept {
    int digits = 0;
    for (; digits < most && AtDigit(); ++digits, ++position_) value = value * 10 + Digit();
    return digits;
  }

 private:
  std::uint32_t Digit() const noexcept { return std::uint32_t{*position_} - u'0'; }

  const char16_t* position_;
  const char16_t* end_;
};

// `26'`, with a blank before it or without; 60 and more are for others to refuse.
bool ReadMarkedMinutes(MarkedText& text, std::uint64_t& minutes) noexcept {
  text.TakeBlank();
  return text.TakeDigits(2, minutes) > 0 && minutes < 60 && text.Take('\'');
}

bool ReadMarkedSeconds(MarkedText& text, std::uint64_t& seconds, Number& last) noexcept {
  text.TakeBlank();
  if (text.TakeDigits(2, seconds) == 0 || seconds >= 60) return false;
  if (text.Take('.')) {
    last.decimals = last.keptDecimals = text.TakeDigits(kSexagesimalDecimals, last.fraction);
    if (last.decimals == 0) return false;
  }
  return text.Take('"');
}

bool ReadMarkedHalf(MarkedText& text, Coordinate& half) noexcept {
  std::uint64_t degrees = 0;
  std::uint64_t minutes = 0;
  std::uint64_t seconds = 0;
  Number last;
  half.degreeDigits = text.TakeDigits(3, degrees);
  if (half.degreeDigits == 0 || !text.Take(kDegreeMark) || !ReadMarkedMinutes(text, minutes) ||
      !ReadMarkedSeconds(text, seconds, last)) {
    return false;
  }
  half.groups = 3;
  half.joint = Joint::kMark;
  half.degreeMark = half.minuteMark = half.secondMark = Mark::kSign;
  FinishSexagesimal(degrees, minutes, seconds, last, half);
  half.letterTouches = !text.TakeBlank();
  return TakeHemisphere(HemisphereOfLetter(text.Next()), LetterSide::kAfter, half) &&
         half.degrees <= (half.axis == Axis::kLatitude ? 90.0 : 180.0);
}

}  // namespace

bool ReadMarkedPair(std::u16string_view text, Pair& pair) noexcept {
  MarkedText rest(text);
  // Another start is not worth the look at the rest.
  if (!rest.AtDigit() || !ReadMarkedHalf(rest, pair.first)) return false;
  for (const char separator : {',', ';', '/'})
    if (pair.separator == '\0' && rest.Take(separator)) pair.separator = separator;
  pair.blank = rest.TakeBlank() && pair.separator == '\0';
  return ReadMarkedHalf(rest, pair.second) && rest.AtEnd();
}

bool FoldedText::Fold(std::u16string_view text) noexcept {
  if (text.size() > kMaxTextLength) return false;
  char* out = bytes_.data();
  *out++ = ' ';  // swallows leading blanks
  std::size_t i = FoldPlainStart(text, out);
  for (out += i; i < text.size(); ++i)
    if (!FoldOne(text[i], out) && !FoldInvisible(text, i, out)) return false;
  if (out[-1] == ' ') --out;  // the one in front of all, when there is nothing else
  *out = '\0';
  return out > Begin();
}

bool MayStartCoordinate(std::u16string_view text) noexcept {
  for (const char16_t c : text) {
    const char folded = FoldCharacter(c);
    if (folded != ' ' && folded != kInvisible) return StartsCoordinate(folded);
  }
  return false;
}

bool ReadWord(const char*& position, std::string_view word) noexcept {
  const char* p = position;
  // Lower case is one bit away, and the other characters of the words have it set. What would take
  // a character without it for one of these are control characters, which no folded text has.
  for (const char expected : word)
    if ((*p++ | 0x20) != expected) return false;
  position = p;
  return true;
}

bool ReadNumber(const char*& position, CommaUse commaUse, Number& number) noexcept {
  const char* p = position;
  number = Number{};
  number.begin = p;
  for (; IsDigit(*p); ++p) {
    if (++number.integerDigits > kMaxIntegerDigits) return false;
    number.integer = number.integer * 10 + static_cast<std::uint32_t>(*p - '0');
  }
  const bool comma = *p == ',' && commaUse == CommaUse::kDecimalOrSeparator;
  const bool fraction = *p == '.' || (comma && number.integerDigits > 0);
  if (fraction && IsDigit(p[1])) ReadFraction(p, number);
  if (number.integerDigits == 0 && number.decimals == 0) return false;
  position = p;
  return true;
}

double ValueOf(const Number& number) noexcept {
  if (number.decimals == 0) return number.integer;
  const std::uint64_t scale = PowerOfTen(number.keptDecimals);
  if (number.integerDigits <= 3 && number.decimals == number.keptDecimals) {
    const std::uint64_t scaled = number.integer * scale + number.fraction;
    // Both operands are exact, so the quotient is rounded once.
    if (scaled <= kExactLimit) return static_cast<double>(scaled) / static_cast<double>(scale);
  }
  std::array<char, kMaxTextLength> digits{};
  std::size_t length = 0;
  for (int i = 0; i < number.integerDigits; ++i) digits[length++] = number.begin[i];
  digits[length++] = '.';
  for (int i = 0; i < number.decimals; ++i) digits[length++] = number.fractionBegin[i];
  double value = 0;
  std::from_chars(digits.data(), digits.data() + length, value);
  return value;
}

bool SplitCompact(const Number& number, Coordinate& coordinate) noexcept {
  Number last = number;
  std::uint32_t rest = number.integer;
  int digits = number.integerDigits;
  if (digits >= 8) {  // hundredths of seconds without a decimal symbol
    if (number.decimals > 0) return false;
    last.fraction = rest % 100;
    last.keptDecimals = last.decimals = 2;
    rest /= 100;
    digits -= 2;
  }
  if (digits < 4) return false;
  const bool hasSeconds = digits >= 6;
  const std::uint32_t seconds = hasSeconds ? rest % 100 : 0;
  if (hasSeconds) rest /= 100;
  const std::uint32_t minutes = rest % 100;
  if (minutes >= 60 || seconds >= 60) return false;
  coordinate.joint = Joint::kCompact;
  coordinate.groups = hasSeconds ? 3 : 2;
  coordinate.degreeDigits = digits - 2 * (coordinate.groups - 1);
  FinishSexagesimal(rest / 100, minutes, seconds, last, coordinate);
  return true;
}

bool ReadCoordinate(const char*& position, CommaUse commaUse, Coordinate& coordinate) noexcept {
  if (IsWordStart(*position)) {
    coordinate.axis = ReadLabel(position);
    coordinate.hasLabel = coordinate.axis != Axis::kUnknown;
    if (IsWordStart(*position) && !ReadLeadingHemisphere(position, coordinate)) return false;
  }
  const bool behindStop = position[-1] == '.' && IsDigit(*position);
  if (*position == '-' || *position == '+') {
    if (coordinate.letterSide != LetterSide::kNone) return false;
    coordinate.hasSign = true;
    coordinate.negative = *position == '-';
    ++position;
  }
  if (!ReadValue(position, commaUse, coordinate)) return false;
  // "N.5", "40.5N.74W": a full stop, or a decimal symbol.
  const bool wholeNumber = coordinate.groups == 1 && coordinate.decimals == 0;
  if (behindStop && (wholeNumber || coordinate.joint == Joint::kCompact)) return false;
  if (coordinate.letterSide == LetterSide::kNone && !ReadTrailingHemisphere(position, coordinate)) {
    return false;
  }
  return coordinate.degrees <= (coordinate.axis == Axis::kLatitude ? 90.0 : 180.0);
}

}  // namespace quenra::latlong
