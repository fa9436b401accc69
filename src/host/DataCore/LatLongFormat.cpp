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
using latlong::Notation;
using latlong::Pair;
using latlong::StandardPair;

// A bare pair of numbers is a position when one of them has this many decimals; `24.0, 26.0` is
// not.
constexpr int kPlainDecimals = 3;

// By what a pair says that it is one, and which half is the latitude.
enum class Evidence : std::uint8_t { kNumbers, kMarks, kLetters, kLabels };

// What a format code says. Bits 0-3 notation, 4 compact digits, 5-6 evidence, 8 longitude first,
// 9 decimal comma, 10 two texts.
struct Format {
  Notation notation = Notation::kNone;
  Evidence evidence = Evidence::kNumbers;
  bool compact = false;
  bool longitudeFirst = false;
  bool decimalComma = false;
  bool twoTexts = false;

  std::int32_t Encode() const noexcept {
    return static_cast<std::int32_t>(notation) | (compact ? 1 << 4 : 0) |
           static_cast<std::int32_t>(evidence) << 5 | (longitudeFirst ? 1 << 8 : 0) |
           (decimalComma ? 1 << 9 : 0) | (twoTexts ? 1 << 10 : 0);
  }

  // A code that Encode never gives decodes to a format that widens nothing or as little as its bits
  // say.
  static Format Decode(std::int32_t code) noexcept {
    Format format;
    const std::int32_t notation = code & 15;
    if (code < 0 || notation > static_cast<std::int32_t>(Notation::kWktPoint)) return format;
    format.notation = static_cast<Notation>(notation);
    format.compact = (code & 1 << 4) != 0;
    format.evidence = static_cast<Evidence>(code >> 5 & 3);
    format.longitudeFirst = (code & 1 << 8) != 0;
    format.decimalComma = (code & 1 << 9) != 0;
    format.twoTexts = (code & 1 << 10) != 0;
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

// One notation in both halves, down to the symbols between the parts.
bool IsOneNotation(const Coordinate& a, const Coordinate& b) noexcept {
  if (a.groups != b.groups || a.joint != b.joint || a.letterS != b.letterS) return false;
  return IsWhole(a) || IsWhole(b) || a.decimalComma == b.decimalComma;
}

Evidence EvidenceOf(const Coordinate& a, const Coordinate& b) noexcept {
  if (a.hasLabel || b.hasLabel) return Evidence::kLabels;
  if (HasLetter(a) || HasLetter(b)) return Evidence::kLetters;
  return a.degreeMark || b.degreeMark ? Evidence::kMarks : Evidence::kNumbers;
}

// Gives each half its axis: by letter or label, else by the other half's, else latitude first;
// longitude first only where the column's order says so and nothing else fits. Fails when both are
// the same or a latitude exceeds 90 degrees.
bool SettleAxes(Coordinate& a, Coordinate& b, const Format& hint) noexcept {
  const auto other = [](Axis axis) {
    return axis == Axis::kLatitude ? Axis::kLongitude : Axis::kLatitude;
  };
  if (a.axis == Axis::kUnknown && b.axis == Axis::kUnknown) {
    const bool longitudeFirst = hint.longitudeFirst && hint.twoTexts && a.degrees > 90;
    a.axis = longitudeFirst ? Axis::kLongitude : Axis::kLatitude;
  }
  if (a.axis == Axis::kUnknown) a.axis = other(b.axis);
  if (b.axis == Axis::kUnknown) b.axis = other(a.axis);
  if (a.axis == b.axis) return false;
  return (a.axis == Axis::kLatitude ? a : b).degrees <= 90;
}

// "46N078W": whole degrees are plain without a mark only as two and three digits in one word.
bool IsFlightPlan(const Pair& pair) noexcept {
  const auto fits = [](const Coordinate& half) {
    return IsWhole(half) && half.letterTouches && !half.degreeMark &&
           half.degreeDigits == (half.axis == Axis::kLatitude ? 2 : 3);
  };
  return !pair.twoTexts && pair.separator == '\0' && !pair.blank && fits(pair.first) &&
         fits(pair.second);
}

// Whether compact digits are plain: whole numbers beside a letter are house numbers as well, so
// they touch it ("0045N", not "1200 N"); and a latitude is not written wider than the longitude, as
// in grids.
bool IsCompactPlain(const Pair& pair) noexcept {
  const auto touches = [](const Coordinate& half) { return !IsWhole(half) || half.letterTouches; };
  const bool latitudeFirst = pair.first.axis == Axis::kLatitude;
  const int latitudeDigits = (latitudeFirst ? pair.first : pair.second).degreeDigits;
  const int longitudeDigits = (latitudeFirst ? pair.second : pair.first).degreeDigits;
  return HasLetter(pair.first) && HasLetter(pair.second) && touches(pair.first) &&
         touches(pair.second) && latitudeDigits <= longitudeDigits;
}

// Whether a hemisphere letter on one half only belongs to that half without doubt: it stands at an
// end of the text, or a separator keeps it from the other half.
bool IsLoneLetterClear(const Pair& pair) noexcept {
  if (pair.twoTexts) return true;
  if (pair.first.letterS || !pair.first.degreeMark || !pair.second.degreeMark) return false;
  if (pair.separator != '\0') return true;
  return pair.blank && (pair.first.letterSide == LetterSide::kBefore ||
                        pair.second.letterSide == LetterSide::kAfter);
}

// Whether degrees with hemisphere letters are plain; `known` when the column is known to hold such
// pairs.
bool AreLettersPlain(const Pair& pair, bool known) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  if (HasLetter(a) != HasLetter(b)) {
    if (!IsLoneLetterClear(pair)) return false;
  } else if (!pair.twoTexts && a.letterSide != b.letterSide) {
    return false;
  }
  if (a.joint == Joint::kCompact) return IsCompactPlain(pair);
  if (a.groups > 1) return true;
  const auto plain = [](const Coordinate& half) {
    return !IsWhole(half) || (half.degreeMark && HasLetter(half));
  };
  return (plain(a) && plain(b)) || IsFlightPlan(pair) || (known && HasLetter(a) && HasLetter(b));
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

// Whether the comma is a decimal symbol without doubt, in a pair without letters: it is not what
// separates the halves, and where only a blank does so, the numbers do not read as grouped
// thousands.
bool IsDecimalCommaClear(const Pair& pair) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  if (!a.decimalComma && !b.decimalComma) return true;
  if (pair.twoTexts || (a.degreeMark && b.degreeMark)) return true;
  if (pair.separator != '\0') return pair.separator != ',';
  return a.hasSign || b.hasSign || a.decimals > 3 || b.decimals > 3;
}

// Whether numbers without letters and labels are plain; `known` when the column is known to hold
// such pairs.
bool AreNumbersPlain(const Pair& pair, bool known) noexcept {
  const Coordinate& a = pair.first;
  const Coordinate& b = pair.second;
  if (a.joint == Joint::kCompact || !IsDecimalCommaClear(pair)) return false;
  if (a.groups > 1) return a.degreeMark && b.degreeMark;
  if (known) return true;
  if (pair.twoTexts ? !(a.degreeMark || b.degreeMark) : a.degreeMark != b.degreeMark) return false;
  return !IsWhole(a) && !IsWhole(b) &&
         (a.decimals >= kPlainDecimals || b.decimals >= kPlainDecimals);
}

// Whether `hint` is of a column of decimal degrees that are told to be so as this pair's are.
bool IsKnown(const Pair& pair, Evidence evidence, const Format& hint) noexcept {
  if (hint.notation != Notation::kDecimalDegrees || hint.twoTexts != pair.twoTexts) return false;
  const bool lettered = evidence == Evidence::kLetters;
  const bool hintLettered = hint.evidence == Evidence::kLetters;
  return lettered == hintLettered && hint.evidence != Evidence::kLabels;
}

bool IsPlain(const Pair& pair, Evidence evidence, const Format& hint) noexcept {
  switch (evidence) {
    case Evidence::kLabels:
      return AreLabelsPlain(pair);
    case Evidence::kLetters:
      return AreLettersPlain(pair, IsKnown(pair, evidence, hint));
    default:
      return AreNumbersPlain(pair, IsKnown(pair, evidence, hint));
  }
}

// Judges what was read, and fills `result`. `hint` is the format of the column, or empty.
bool Judge(Pair& pair, const Format& hint, Result& result) noexcept {
  Coordinate& a = pair.first;
  Coordinate& b = pair.second;
  if (!IsOneNotation(a, b) || !SettleAxes(a, b, hint)) return false;
  const Evidence evidence = EvidenceOf(a, b);
  if (!IsPlain(pair, evidence, hint)) return false;
  constexpr Notation kByGroups[] = {Notation::kDecimalDegrees, Notation::kDegreesMinutes,
                                    Notation::kDegreesMinutesSeconds};
  result.format.notation = kByGroups[a.groups - 1];
  result.format.compact = a.joint == Joint::kCompact;
  result.format.evidence = evidence;
  result.format.longitudeFirst = a.axis == Axis::kLongitude;
  result.format.decimalComma = a.decimalComma || b.decimalComma;
  result.format.twoTexts = pair.twoTexts;
  result.first = a.negative ? 0.0 - a.degrees : a.degrees;
  result.second = b.negative ? 0.0 - b.degrees : b.degrees;
  return true;
}

// Reads the separator between the halves. Only letters on both halves can do without one.
bool ReadSeparator(const char*& position, Pair& pair) noexcept {
  const char* begin = position;
  latlong::SkipBlank(position);
  if (*position == ',' || *position == ';' || *position == '/') pair.separator = *position++;
  latlong::SkipBlank(position);
  pair.blank = pair.separator == '\0' && position != begin;
  return position != begin || HasLetter(pair.first);
}

// Reads "[a b]", "(a b)" or "a b" up to the end of the text.
bool ReadPair(const char* position, CommaUse commaUse, Pair& pair) noexcept {
  const char close = *position == '[' ? ']' : *position == '(' ? ')' : '\0';
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

// Whether a comma between digits may also be read as a separator: "46,8" in a column of
// "46.123,8.456".
bool CommaCanSeparate(const Format& hint) noexcept {
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
  if (ReadPair(folded.Begin(), CommaUse::kDecimalOrSeparator, pair)) {
    return Judge(pair, hint, result);
  }
  if (!CommaCanSeparate(hint)) return false;
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
