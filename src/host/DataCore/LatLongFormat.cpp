#include "host/DataCore/LatLongFormat.h"

#include "host/DataCore/LatLongScanner.h"
#include "host/DataCore/LatLongStandards.h"

namespace quenra {
namespace {

using latlong::Axis;
using latlong::CommaUse;
using latlong::Coordinate;
using latlong::FoldedText;
using latlong::Joint;
using latlong::LetterSide;
using latlong::Mark;
using latlong::Notation;
using latlong::Pair;
using latlong::StandardPair;

// A pair of numbers without letters is a position when one of them has this many decimals: prices,
// shares and measures seldom have as many. A degree mark or a sign speaks for a position as well.
constexpr int kBareDecimals = 4;
constexpr int kMarkedDecimals = 3;

// By what a pair says that it is one, and which half is the latitude.
enum class Evidence : std::uint8_t { kNumbers, kMarks, kLetters, kLabels };

// What a format code says. Bits 0-3 notation, 4 compact digits, 5-6 evidence, 7 numbers with a
// comma in square brackets, 8 longitude first, 9 decimal comma, 10 two texts, 11 numbers with a
// solidus.
struct Format {
  Notation notation = Notation::kNone;
  Evidence evidence = Evidence::kNumbers;
  bool compact = false;
  bool commaInBrackets = false;
  bool longitudeFirst = false;
  bool decimalComma = false;
  bool twoTexts = false;
  bool solidus = false;

  std::int32_t Encode() const noexcept {
    return static_cast<std::int32_t>(notation) | (compact ? 1 << 4 : 0) |
           static_cast<std::int32_t>(evidence) << 5 | (commaInBrackets ? 1 << 7 : 0) |
           (longitudeFirst ? 1 << 8 : 0) | (decimalComma ? 1 << 9 : 0) | (twoTexts ? 1 << 10 : 0) |
           (solidus ? 1 << 11 : 0);
  }

  // A code that Encode never gives decodes to a format that widens nothing or as little as its bits
  // say.
  static Format Decode(std::int32_t code) noexcept {
    Format format;
    const std::int32_t notation = code & 15;
    if (code < 0 || notation > static_cast<std::int32_t>(Notation::kNmea)) return format;
    format.notation = static_cast<Notation>(notation);
    format.compact = (code & 1 << 4) != 0;
    format.evidence = static_cast<Evidence>(code >> 5 & 3);
    format.commaInBrackets = (code & 1 << 7) != 0;
    format.longitudeFirst = (code & 1 << 8) != 0;
    format.decimalComma = (code & 1 << 9) != 0;
    format.twoTexts = (code & 1 << 10) != 0;
    format.solidus = (code & 1 << 11) != 0;
    return format;
  }
};

struct Result {
  double first = 0;  // in the order of the halves
  double second = 0;
  Format format;
};

bool HasLetter(const Coordinate& half) noexcept { return half.letterSide != LetterSide::kNone; }

bool IsWhole(const Coordinate& half) noexcept { return half.decimals == 0; }

bool HasSign(const Pair& pair) noexcept { return pair.first.hasSign || pair.second.hasSign; }

bool HasDecimalComma(const Pair& pair) noexcept {
  return pair.first.decimalComma || pair.second.decimalComma;
}

// One notation in both halves, down to the symbols between the parts.
bool IsOneNotation(const Coordinate& a, const Coordinate& b) noexcept {
  if (a.groups != b.groups || a.joint != b.joint || a.commaBefore != b.commaBefore) return false;
  if ((a.secondMark == Mark::kLetter) != (b.secondMark == Mark::kLetter)) return false;
  return IsWhole(a) || IsWhole(b) || a.decimalComma == b.decimalComma;
}

// Whether the half's degree mark says that these are degrees. The letter d may also be days, or
// stand in a part number: it says so only beside another mark or a hemisphere. With m, min or s
// alone it is a duration; "deg" is no duration, but alone it says no more than the number.
bool TellsDegrees(const Coordinate& half) noexcept {
  switch (half.degreeMark) {
    case Mark::kSign:
      return true;
    case Mark::kWord:
    case Mark::kLetter:
      break;
    default:
      return false;
  }
  if (HasLetter(half) || half.minuteMark == Mark::kSign || half.secondMark == Mark::kSign)
    return true;
  return half.degreeMark == Mark::kWord &&
         (half.minuteMark == Mark::kWord || half.secondMark == Mark::kWord);
}

Evidence EvidenceOf(const Coordinate& a, const Coordinate& b) noexcept {
  if (a.hasLabel || b.hasLabel) return Evidence::kLabels;
  if (HasLetter(a) || HasLetter(b)) return Evidence::kLetters;
  return TellsDegrees(a) || TellsDegrees(b) ? Evidence::kMarks : Evidence::kNumbers;
}

// Whether the halves' order is open: nothing tells latitude and longitude, and of numbers with a
// comma in square brackets data formats write the longitude first and map libraries the latitude.
bool IsOrderOpen(const Pair& pair, Evidence evidence) noexcept {
  return evidence == Evidence::kNumbers && pair.squareBrackets && pair.separator == ',';
}

// Whether the first half is the longitude, although no letter or label says so. Fails when that is
// open: then only a number that no latitude reaches tells it, or the column's order.
bool FindOrder(const Pair& pair, Evidence evidence, const Format& hint,
               bool& longitudeFirst) noexcept {
  const bool firstOver = pair.first.degrees > 90;
  longitudeFirst = hint.longitudeFirst && hint.twoTexts && firstOver;
  if (!IsOrderOpen(pair, evidence)) return true;
  const bool secondOver = pair.second.degrees > 90;
  longitudeFirst = firstOver == secondOver ? hint.longitudeFirst : firstOver;
  return firstOver != secondOver || hint.commaInBrackets;
}

// Gives each half its axis: by letter or label, else by the other half's, else latitude first.
// Fails when both are the same, a latitude exceeds 90 degrees or the order is open.
bool SettleAxes(Coordinate& a, Coordinate& b, bool longitudeFirst) noexcept {
  const auto other = [](Axis axis) {
    return axis == Axis::kLatitude ? Axis::kLongitude : Axis::kLatitude;
  };
  if (a.axis == Axis::kUnknown && b.axis == Axis::kUnknown)
    a.axis = longitudeFirst ? Axis::kLongitude : Axis::kLatitude;
  if (a.axis == Axis::kUnknown) a.axis = other(b.axis);
  if (b.axis == Axis::kUnknown) b.axis = other(a.axis);
  if (a.axis == b.axis) return false;
  return (a.axis == Axis::kLatitude ? a : b).degrees <= 90;
}

// "46N078W": whole degrees are plain without a mark only as two and three digits in one word, with
// the letters behind them. "S01E001" is an episode of a series.
bool IsFlightPlan(const Pair& pair) noexcept {
  const auto fits = [](const Coordinate& half) {
    return IsWhole(half) && half.letterSide == LetterSide::kAfter && half.letterTouches &&
           !half.fullStop && half.degreeMark == Mark::kNone &&
           half.degreeDigits == (half.axis == Axis::kLatitude ? 2 : 3);
  };
  return !pair.twoTexts && pair.separator == '\0' && !pair.blank && fits(pair.first) &&
         fits(pair.second);
}

// Whether whole compact digits are plain. Those of degrees and minutes are house numbers as well:
// they touch their letters and the longitude has a digit more ("0045N 01010E"). Those with seconds
// touch them or have a digit more.
bool IsWholeCompactPlain(const Pair& pair, int latitudeDigits, int longitudeDigits) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  const bool touch = a.letterTouches && b.letterTouches;
  if (a.groups == 2) return touch && !a.fullStop && !b.fullStop && longitudeDigits == 3;
  return touch || longitudeDigits == latitudeDigits + 1;
}

// Whether compact digits are plain: each half has its letter, and a latitude is not written wider
// than the longitude, as in grids.
bool IsCompactPlain(const Pair& pair) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  const bool latitudeFirst = a.axis == Axis::kLatitude;
  const int latitudeDigits = (latitudeFirst ? a : b).degreeDigits;
  const int longitudeDigits = (latitudeFirst ? b : a).degreeDigits;
  if (!HasLetter(a) || !HasLetter(b) || latitudeDigits > longitudeDigits) return false;
  return !(IsWhole(a) || IsWhole(b)) || IsWholeCompactPlain(pair, latitudeDigits, longitudeDigits);
}

// Whether the only hemisphere letter belongs to its half without doubt: a separator or another text
// keeps it from the other half, or it touches its own, or stands at an end of the text.
bool IsLoneLetterClear(const Pair& pair) noexcept {
  if (pair.twoTexts || pair.separator != '\0') return true;
  if (!pair.blank) return false;
  const bool first = HasLetter(pair.first);
  const Coordinate& half = first ? pair.first : pair.second;
  return half.letterTouches ||
         half.letterSide == (first ? LetterSide::kBefore : LetterSide::kAfter);
}

// Whether a hemisphere letter on one half alone is plain: both halves have degree marks, or three
// groups with the same separators. In two texts as well: seconds, watts or newtons stand beside
// angles and numbers in many tables.
bool IsLoneLetterPlain(const Pair& pair) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  // Behind the third group it is the south or the mark of the seconds, unless they have theirs.
  const auto mayBeSeconds = [](const Coordinate& half) {
    return half.letterIsSmallS && half.groups == 3 && half.secondMark == Mark::kNone;
  };
  if (mayBeSeconds(a) || mayBeSeconds(b)) return false;
  if (a.secondMark == Mark::kLetter || !IsLoneLetterClear(pair)) return false;
  if (TellsDegrees(a) && TellsDegrees(b)) return true;
  return a.groups == 3 && a.joint != Joint::kMark && a.joint != Joint::kCompact &&
         a.minuteMark == b.minuteMark;
}

// Whether a decimal comma may as well group thousands in both halves.
bool LooksGrouped(const Pair& pair) noexcept {
  return pair.first.looksGrouped && pair.second.looksGrouped && !HasSign(pair);
}

// Whether degrees with hemisphere letters are plain; `known` when the column is known to hold such
// pairs.
bool AreLettersPlain(const Pair& pair, bool known) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  if (HasLetter(a) != HasLetter(b)) {
    if (!IsLoneLetterPlain(pair)) return false;
  } else if (!pair.twoTexts && a.letterSide != b.letterSide) {
    return false;
  }
  // "N45.5E 120": the letters are a bearing, as the second one touches the first half only.
  const bool joined = !pair.twoTexts && pair.separator == '\0' && !pair.blank;
  if (joined && b.letterSide == LetterSide::kBefore && !b.letterTouches) return false;
  if (a.joint == Joint::kCompact) return IsCompactPlain(pair);
  if (a.groups > 1) return true;
  if (known && HasLetter(a) && HasLetter(b)) return true;
  const bool marked = TellsDegrees(a) && TellsDegrees(b);
  if (LooksGrouped(pair) && !marked) return false;
  const auto plain = [](const Coordinate& half) {
    return !IsWhole(half) || (TellsDegrees(half) && HasLetter(half));
  };
  return (plain(a) && plain(b)) || IsFlightPlan(pair);
}

// Labels stand on both halves of one text; of two texts one can do without when it is plain itself.
bool AreLabelsPlain(const Pair& pair) noexcept {
  if (pair.first.joint == Joint::kCompact) return IsCompactPlain(pair);
  if (pair.first.hasLabel && pair.second.hasLabel) return true;
  const auto plain = [](const Coordinate& half) {
    return half.hasLabel || half.groups > 1 || !IsWhole(half);
  };
  return pair.twoTexts && plain(pair.first) && plain(pair.second);
}

// Whether decimals in a pair without letters are neither grouped thousands nor cut by a comma that
// also separates the halves.
bool IsDecimalCommaClear(const Pair& pair) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  if (!HasDecimalComma(pair)) return true;
  const bool marked = a.degreeMark != Mark::kNone && b.degreeMark != Mark::kNone;
  return pair.separator != ',' || marked || pair.twoTexts;
}

// Whether both numbers are decimals, one of them with so many places or more.
bool HaveDecimals(const Pair& pair, int decimals) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  return !IsWhole(a) && !IsWhole(b) && (a.decimals >= decimals || b.decimals >= decimals);
}

// Whether degrees with degree marks and without letters are plain; `known` as above. Of two texts
// one can do without a mark, but not with one that says nothing: "12.5d" is days.
bool AreMarksPlain(const Pair& pair, bool known) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  const bool both = TellsDegrees(a) && TellsDegrees(b);
  if (a.groups > 1) return both;
  const bool oneUnmarked = a.degreeMark == Mark::kNone || b.degreeMark == Mark::kNone;
  if (!both && !(pair.twoTexts && oneUnmarked)) return false;
  if (!IsDecimalCommaClear(pair)) return false;
  return known || (!LooksGrouped(pair) && HaveDecimals(pair, kMarkedDecimals));
}

// Whether numbers that nothing marks are plain; `known` as above. Prices and shares stand on both
// sides of a solidus as well.
bool AreNumbersPlain(const Pair& pair, bool known) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  const bool mayBeDays = a.degreeMark == Mark::kLetter || b.degreeMark == Mark::kLetter;
  if (a.groups > 1 || mayBeDays || !IsDecimalCommaClear(pair)) return false;
  if (known) return true;
  if (pair.twoTexts || a.degreeMark != b.degreeMark || LooksGrouped(pair)) return false;
  if (pair.separator == '/' && !HasSign(pair)) return false;
  return HaveDecimals(pair, HasSign(pair) ? kMarkedDecimals : kBareDecimals);
}

// Whether a solidus stands between numbers that nothing marks.
bool HasSolidus(const Pair& pair, Evidence evidence) noexcept {
  return evidence == Evidence::kNumbers && pair.separator == '/';
}

// Whether `hint` is of a column of decimal degrees that are told to be so as this pair's are.
bool IsKnown(const Pair& pair, Evidence evidence, const Format& hint) noexcept {
  if (hint.notation != Notation::kDecimalDegrees || hint.evidence != evidence) return false;
  if (hint.twoTexts != pair.twoTexts || hint.solidus != HasSolidus(pair, evidence) ||
      hint.commaInBrackets != IsOrderOpen(pair, evidence)) {
    return false;
  }
  const bool whole = IsWhole(pair.first) && IsWhole(pair.second);
  return whole || hint.decimalComma == HasDecimalComma(pair);
}

bool IsPlain(const Pair& pair, Evidence evidence, const Format& hint) noexcept {
  const bool known = IsKnown(pair, evidence, hint);
  switch (evidence) {
    case Evidence::kLabels:
      return AreLabelsPlain(pair);
    case Evidence::kLetters:
      return AreLettersPlain(pair, known);
    case Evidence::kMarks:
      return AreMarksPlain(pair, known);
    default:
      return AreNumbersPlain(pair, known);
  }
}

// Judges what was read, and fills `result`. `hint` is the format of the column, or empty.
bool Judge(Pair& pair, const Format& hint, Result& result) noexcept {
  Coordinate& a = pair.first;
  Coordinate& b = pair.second;
  if (!IsOneNotation(a, b)) return false;
  const Evidence evidence = EvidenceOf(a, b);
  bool longitudeFirst = false;
  if (!FindOrder(pair, evidence, hint, longitudeFirst) || !SettleAxes(a, b, longitudeFirst) ||
      !IsPlain(pair, evidence, hint)) {
    return false;
  }
  constexpr Notation kByGroups[] = {Notation::kDecimalDegrees, Notation::kDegreesMinutes,
                                    Notation::kDegreesMinutesSeconds};
  result.format.notation = a.commaBefore ? Notation::kNmea : kByGroups[a.groups - 1];
  result.format.compact = a.joint == Joint::kCompact;
  result.format.evidence = evidence;
  result.format.commaInBrackets = IsOrderOpen(pair, evidence);
  result.format.longitudeFirst = a.axis == Axis::kLongitude;
  result.format.decimalComma = HasDecimalComma(pair);
  result.format.twoTexts = pair.twoTexts;
  result.format.solidus = HasSolidus(pair, evidence);
  result.first = a.negative ? 0.0 - a.degrees : a.degrees;
  result.second = b.negative ? 0.0 - b.degrees : b.degrees;
  return true;
}

// Reads the separator between the halves. Only letters on both halves can do without one.
bool ReadSeparator(const char*& position, Pair& pair) noexcept {
  const char* begin = position;
  latlong::SkipBlank(position);
  if (*position == ',' || *position == ';' || *position == '/') {
    pair.separator = *position++;
  } else if (*position == latlong::kWideComma) {
    pair.separator = ',';
    ++position;
  }
  latlong::SkipBlank(position);
  pair.blank = pair.separator == '\0' && position != begin;
  return position != begin || HasLetter(pair.first);
}

// Reads "[a b]", "(a b)" or "a b" up to the end of the text.
bool ReadPair(const char* position, CommaUse commaUse, Pair& pair) noexcept {
  pair.squareBrackets = *position == '[';
  const char close = pair.squareBrackets ? ']' : *position == '(' ? ')' : '\0';
  if (close != '\0') {
    ++position;
    latlong::SkipBlank(position);
  }
  if (!ReadCoordinate(position, commaUse, pair.first) || !ReadSeparator(position, pair) ||
      !ReadCoordinate(position, commaUse, pair.second)) {
    return false;
  }
  const bool joined = pair.separator == '\0' && !pair.blank;
  if (joined && !HasLetter(pair.second)) return false;
  if (close != '\0') {
    latlong::SkipBlank(position);
    if (*position++ != close) return false;
  }
  return *position == '\0';
}

// Whether a comma between digits, which was read as a decimal symbol, may separate the halves: in a
// column of "46.123,8.456" that has "46,8", and behind the seconds in "40-26-46,79-58-56W".
bool CommaCanSeparate(const Coordinate& first, const Format& hint) noexcept {
  if (first.groups == 3) return first.decimalComma;
  return hint.notation == Notation::kDecimalDegrees && hint.evidence == Evidence::kNumbers &&
         !hint.decimalComma && !hint.twoTexts;
}

bool ReadSingle(std::u16string_view text, const Format& hint, Result& result) noexcept {
  if (!latlong::MayStartCoordinate(text)) return false;
  Pair pair;
  if (latlong::ReadMarkedPair(text, pair)) return Judge(pair, hint, result);
  FoldedText folded;
  if (!folded.Fold(text)) return false;
  StandardPair standard;
  if (ReadStandard(folded, standard)) {
    result.format.notation = standard.notation;
    result.format.longitudeFirst = standard.notation == Notation::kWktPoint;
    const bool swap = result.format.longitudeFirst;
    result.first = swap ? standard.longitude : standard.latitude;
    result.second = swap ? standard.latitude : standard.longitude;
    return true;
  }
  pair = Pair{};
  if (ReadPair(folded.Begin(), CommaUse::kDecimalOrSeparator, pair) && Judge(pair, hint, result))
    return true;
  if (!CommaCanSeparate(pair.first, hint)) return false;
  pair = Pair{};
  return ReadPair(folded.Begin(), CommaUse::kSeparator, pair) && Judge(pair, hint, result);
}

bool ReadHalf(std::u16string_view text, Coordinate& half) noexcept {
  FoldedText folded;
  if (!folded.Fold(text)) return false;
  const char* position = folded.Begin();
  return ReadCoordinate(position, CommaUse::kDecimalOrSeparator, half) && *position == '\0';
}

bool ReadTwo(std::u16string_view first, std::u16string_view second, const Format& hint,
             Result& result) noexcept {
  if (!latlong::MayStartCoordinate(first) || !latlong::MayStartCoordinate(second)) return false;
  Pair pair;
  pair.twoTexts = true;
  return ReadHalf(first, pair.first) && ReadHalf(second, pair.second) && Judge(pair, hint, result);
}

bool AnswerFormat(bool read, const Result& result, std::int32_t& format) noexcept {
  format = read ? result.format.Encode() : 0;
  return read;
}

}  // namespace

// Members, although they need no state: callers hold one object per reader, as of the host's class.
// NOLINTBEGIN(readability-convert-member-functions-to-static)

bool LatLongFormat::IsLatLong(std::u16string_view text, std::int32_t& format) const noexcept {
  Result result;
  return AnswerFormat(ReadSingle(text, Format{}, result), result, format);
}

bool LatLongFormat::IsLatLong(std::u16string_view first, std::u16string_view second,
                              std::int32_t& format) const noexcept {
  Result result;
  return AnswerFormat(ReadTwo(first, second, Format{}, result), result, format);
}

bool LatLongFormat::ParseLatLong(std::u16string_view text, std::int32_t format, double& first,
                                 double& second) const noexcept {
  Result result;
  const bool read = ReadSingle(text, Format::Decode(format), result);
  const bool swap = !result.format.longitudeFirst;
  first = read ? (swap ? result.second : result.first) : 0;
  second = read ? (swap ? result.first : result.second) : 0;
  return read;
}

bool LatLongFormat::ParseLatLong(std::u16string_view firstText, std::u16string_view secondText,
                                 std::int32_t format, double& first,
                                 double& second) const noexcept {
  Result result;
  const bool read = ReadTwo(firstText, secondText, Format::Decode(format), result);
  first = read ? result.first : 0;
  second = read ? result.second : 0;
  return read;
}

// NOLINTEND(readability-convert-member-functions-to-static)

}  // namespace quenra
