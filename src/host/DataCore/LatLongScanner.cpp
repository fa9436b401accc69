#include "host/DataCore/LatLongScanner.h"

#include <charconv>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenra::latlong {
namespace {

constexpr char kRefused = '\0';

// The folded form of each ASCII character. Control characters and punctuation that no notation has
// are refused.
constexpr std::array<char, 128> MakeAsciiFolding() {
  std::array<char, 128> table{};
  constexpr std::string_view kKept =
      " +-.,:;/=?_()[]'\"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  for (const char c : kKept) table[static_cast<unsigned char>(c)] = c;
  table['\t'] = ' ';
  return table;
}
constexpr std::array<char, 128> kAsciiFolding = MakeAsciiFolding();

char FoldBeyondAscii(char16_t c) noexcept {
  switch (c) {
    case 0x00B0:  // degree sign
    case 0x00BA:  // masculine ordinal indicator
    case 0x02DA:  // ring above
    case 0x2070:  // superscript zero
    case 0x2218:  // ring operator
      return kDegreeMark;
    case 0x00B4:  // acute accent
    case 0x2018:  // left single quotation mark
    case 0x2019:  // right single quotation mark
    case 0x2032:  // prime
      return '\'';
    case 0x02DD:  // double acute accent
    case 0x201C:  // left double quotation mark
    case 0x201D:  // right double quotation mark
    case 0x2033:  // double prime
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
    default:
      return c >= 0x2000 && c <= 0x200A ? ' ' : kRefused;  // spaces of other widths
  }
}

inline char FoldCharacter(char16_t c) noexcept {
  return c < kAsciiFolding.size() ? kAsciiFolding[c] : FoldBeyondAscii(c);
}

// Folds the next character behind those that stand in front of `out`. False for one that no
// notation has.
inline bool FoldOne(char16_t c, char*& out) noexcept {
  const char folded = FoldCharacter(c);
  // Most characters are neither refused nor a blank nor a minute mark, all of which are small.
  if (folded <= '\'') {
    if (folded == kRefused) return false;
    if (folded == ' ' && out[-1] == ' ') return true;
    if (folded == '\'' && out[-1] == '\'') {
      out[-1] = '"';
      return true;
    }
  }
  *out++ = folded;
  return true;
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

// Whether a pair can start with this folded character: a number, a bracket, a hemisphere or one of
// "lat", "lon", "geo:", "POINT", "SRID".
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
      return IsDigit(c);
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

const char* EndOfLetters(const char* position) noexcept {
  while (IsLetter(*position)) ++position;
  return position;
}

// 'N', 'S', 'E' or 'W' for a letter or word that names a hemisphere, else '\0'. There is no 'O': it
// is east in some languages and west in others.
char HemisphereOf(const char* begin, const char* end) noexcept {
  const char first = ToUpper(*begin);
  std::string_view word;
  switch (first) {
    case 'N':
      word = "north";
      break;
    case 'S':
      word = "south";
      break;
    case 'E':
      word = "east";
      break;
    case 'W':
      word = "west";
      break;
    default:
      return '\0';
  }
  if (end - begin == 1) return first;
  const char* position = begin;
  return ReadWord(position, word) && position == end ? first : '\0';
}

// Reads a mark written in letters, which may be followed by blanks, digits or a hemisphere: "deg
// N", "degN", but not "degree".
bool ReadWordMark(const char*& position, std::string_view word) noexcept {
  const char* after = position;
  if (!ReadWord(after, word)) return false;
  const char* end = EndOfLetters(after);
  if (after != end && HemisphereOf(after, end) == '\0') return false;
  position = after;
  return true;
}

bool ReadDegreeMark(const char*& position) noexcept {
  const char* p = position;
  SkipBlank(p);
  if (*p == kDegreeMark) {
    position = p + 1;
    return true;
  }
  if (!IsLetter(*p) || !(ReadWordMark(p, "deg") || ReadWordMark(p, "d"))) return false;
  position = p;
  return true;
}

// `inLetters` tells whether it was "m" or "min".
bool ReadMinuteMark(const char*& position, bool& inLetters) noexcept {
  const char* p = position;
  SkipBlank(p);
  if (*p == '\'') {
    position = p + 1;
    return true;
  }
  if (!IsLetter(*p) || !(ReadWordMark(p, "min") || ReadWordMark(p, "m"))) return false;
  inLetters = true;
  position = p;
  return true;
}

bool HemisphereFollows(const char* position) noexcept {
  SkipBlank(position);
  return IsLetter(*position) && HemisphereOf(position, EndOfLetters(position)) != '\0';
}

// Whether the S at `position` marks the seconds and is not the southern hemisphere.
bool IsSecondsLetter(const char* position, const Coordinate& half, bool minutesInLetters) noexcept {
  const char* after = position + 1;
  const char* end = EndOfLetters(after);
  if (after != end) return HemisphereOf(position, end) == '\0' && HemisphereOf(after, end) != '\0';
  if (half.letterSide == LetterSide::kBefore) {
    SkipBlank(after);
    return !IsDigit(*after);  // before digits it is the other half's hemisphere
  }
  const bool lower = *position == 's';
  return HemisphereFollows(after) ? lower || minutesInLetters : lower && minutesInLetters;
}

void ReadSecondMark(const char*& position, bool minutesInLetters, Coordinate& half) noexcept {
  const char* p = position;
  SkipBlank(p);
  if (*p == '"') {
    position = p + 1;
  } else if (ToUpper(*p) == 'S') {
    if (ReadWordMark(p, "sec")) {
      position = p;
    } else if (IsSecondsLetter(p, half, minutesInLetters)) {
      half.letterS = true;
      position = p + 1;
    }
  }
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

// "27.15.45", "27.15.45.2", "27.15.45,2": `first` was read as 27.15, `position` is at the second
// dot.
bool ReadDotted(const char*& position, const Number& first, Coordinate& half) noexcept {
  if (first.integerDigits == 0 || first.comma || first.decimals > 2 || first.fraction >= 60) {
    return false;
  }
  ++position;
  Number last;
  if (!ReadNumber(position, CommaUse::kDecimalOrSeparator, last) || !IsMinutesOrSeconds(last)) {
    return false;
  }
  half.joint = Joint::kDot;
  half.groups = 3;
  FinishSexagesimal(first.integer, first.fraction, last.integer, last, half);
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
// other half.
GroupResult ReadGroup(const char*& position, CommaUse commaUse, Number& number) noexcept {
  const char* p = position;
  if (!ReadNumber(p, commaUse, number)) return GroupResult::kAbsent;
  const char* after = p;
  if (ReadDegreeMark(after)) return GroupResult::kAbsent;
  if (!IsMinutesOrSeconds(number)) return GroupResult::kWrong;
  position = p;
  return GroupResult::kRead;
}

// Reads the seconds, if any, and finishes the half. `position` is behind the minutes.
bool ReadSeconds(const char*& position, CommaUse commaUse, const Number& degrees,
                 const Number& minutes, Coordinate& half) noexcept {
  const bool marks = half.joint == Joint::kMark || half.joint == Joint::kBlank;
  bool minutesInLetters = false;
  const bool minuteMark = marks && ReadMinuteMark(position, minutesInLetters);
  Number seconds;
  bool hasSeconds = false;
  if (minutes.decimals == 0) {
    const char* p = position;
    const Joint joint = FindJoint(p, minuteMark);
    const bool fits = marks ? joint == Joint::kMark || joint == Joint::kBlank : joint == half.joint;
    if (fits) {
      const GroupResult result = ReadGroup(p, commaUse, seconds);
      if (result == GroupResult::kWrong) return false;
      hasSeconds = result == GroupResult::kRead;
      if (hasSeconds) position = p;
    }
  }
  half.groups = hasSeconds ? 3 : 2;
  FinishSexagesimal(degrees.integer, minutes.integer, hasSeconds ? seconds.integer : 0,
                    hasSeconds ? seconds : minutes, half);
  if (hasSeconds && marks) ReadSecondMark(position, minutesInLetters, half);
  return true;
}

// Reads the digits of one half, without label, hemisphere and sign.
bool ReadValue(const char*& position, CommaUse commaUse, Coordinate& half) noexcept {
  Number degrees;
  if (!ReadNumber(position, commaUse, degrees)) return false;
  half.degreeDigits = degrees.integerDigits;
  if (degrees.integerDigits > 3) return SplitCompact(degrees, half);
  if (degrees.decimals > 0 && *position == '.' && IsDigit(position[1])) {
    return ReadDotted(position, degrees, half);
  }
  half.degreeMark = ReadDegreeMark(position);
  if (degrees.decimals == 0) {
    const char* p = position;
    const Joint joint = FindJoint(p, half.degreeMark);
    if (joint != Joint::kNone) {
      Number minutes;
      const GroupResult result = ReadGroup(p, commaUse, minutes);
      if (result == GroupResult::kWrong) return false;
      if (result == GroupResult::kRead) {
        position = p;
        half.joint = joint;
        return ReadSeconds(position, commaUse, degrees, minutes, half);
      }
    }
  }
  half.groups = 1;
  half.degrees = ValueOf(degrees);
  half.decimals = degrees.decimals;
  half.decimalComma = degrees.comma;
  return true;
}

// "lat", "Longitude: ", "lng=": the axis is kUnknown when there is none.
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
  SkipBlank(p);
  if (*p == ':' || *p == '=') ++p;
  SkipBlank(p);
  position = p;
  return axis;
}

// Takes the hemisphere [begin, end) into the half. Fails when it is none, or contradicts the label.
bool TakeHemisphere(const char* begin, const char* end, LetterSide side,
                    Coordinate& half) noexcept {
  const char hemisphere = HemisphereOf(begin, end);
  if (hemisphere == '\0') return false;
  const Axis axis = hemisphere == 'N' || hemisphere == 'S' ? Axis::kLatitude : Axis::kLongitude;
  if (half.axis != Axis::kUnknown && half.axis != axis) return false;
  half.axis = axis;
  half.letterSide = side;
  half.negative = hemisphere == 'S' || hemisphere == 'W';
  return true;
}

bool ReadLeadingHemisphere(const char*& position, Coordinate& half) noexcept {
  const char* end = EndOfLetters(position);
  if (!TakeHemisphere(position, end, LetterSide::kBefore, half)) return false;
  half.letterTouches = *end != ' ';
  position = end;
  SkipBlank(position);
  return true;
}

// Reads the hemisphere behind the value, if there is one. Fails on one that contradicts sign or
// label.
bool ReadTrailingHemisphere(const char*& position, Coordinate& half) noexcept {
  const char* begin = position;
  SkipBlank(begin);
  if (!IsLetter(*begin)) return true;
  const char* end = EndOfLetters(begin);
  if (HemisphereOf(begin, end) == '\0') return true;
  if (half.hasSign || !TakeHemisphere(begin, end, LetterSide::kAfter, half)) return false;
  half.letterTouches = begin == position;
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
  half.degreeMark = true;
  FinishSexagesimal(degrees, minutes, seconds, last, half);
  half.letterTouches = !text.TakeBlank();
  const char letter = text.Next();
  return IsLetter(letter) && TakeHemisphere(&letter, &letter + 1, LetterSide::kAfter, half) &&
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
    if (!FoldOne(text[i], out)) return false;
  if (out[-1] == ' ') --out;  // the one in front of all, when there is nothing else
  *out = '\0';
  return out > Begin();
}

bool MayStartCoordinate(std::u16string_view text) noexcept {
  for (const char16_t c : text) {
    const char folded = FoldCharacter(c);
    if (folded != ' ') return StartsCoordinate(folded);
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
  if (fraction && IsDigit(p[1])) {
    number.comma = comma;
    for (++p; IsDigit(*p); ++p, ++number.decimals) {
      if (number.keptDecimals == kMaxKeptDecimals) continue;
      number.fraction = number.fraction * 10 + static_cast<std::uint64_t>(*p - '0');
      ++number.keptDecimals;
    }
  }
  if (number.integerDigits == 0 && number.decimals == 0) return false;
  number.end = position = p;
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
  for (const char* p = number.begin; p != number.end; ++p) digits[length++] = *p == ',' ? '.' : *p;
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
  coordinate = Coordinate{};
  if (IsLetter(*position)) {
    coordinate.axis = ReadLabel(position);
    coordinate.hasLabel = coordinate.axis != Axis::kUnknown;
    if (IsLetter(*position) && !ReadLeadingHemisphere(position, coordinate)) return false;
  }
  if (*position == '-' || *position == '+') {
    if (coordinate.letterSide != LetterSide::kNone) return false;
    coordinate.hasSign = true;
    coordinate.negative = *position == '-';
    ++position;
  }
  if (!ReadValue(position, commaUse, coordinate)) return false;
  if (coordinate.letterSide == LetterSide::kNone && !ReadTrailingHemisphere(position, coordinate)) {
    return false;
  }
  return coordinate.degrees <= (coordinate.axis == Axis::kLatitude ? 90.0 : 180.0);
}

}  // namespace quenra::latlong
