#include "host/DataCore/LatLongStandards.h"

namespace quenra::latlong {
namespace {

constexpr int kPlainDecimals = 3;  // what makes a bare pair of numbers a position

struct Signed {
  Number number;
  bool hasSign = false;
  bool negative = false;

  double Apply(double magnitude) const noexcept { return negative ? 0.0 - magnitude : magnitude; }
  double Value() const noexcept { return Apply(ValueOf(number)); }
};

bool ReadSigned(const char*& position, CommaUse commaUse, Signed& value) noexcept {
  const char* p = position;
  value.hasSign = *p == '+' || *p == '-';
  value.negative = *p == '-';
  if (value.hasSign) ++p;
  if (!ReadNumber(p, commaUse, value.number)) return false;
  position = p;
  return true;
}

bool Read(const char*& position, char c) noexcept {
  if (*position != c) return false;
  ++position;
  return true;
}

bool IsNameCharacter(char c) noexcept {
  return IsLetter(c) || IsDigit(c) || c == '_' || c == '-' || c == '.' || c == ':';
}

// At least one character of a parameter's or coordinate system's name or value.
bool ReadName(const char*& position) noexcept {
  const char* begin = position;
  while (IsNameCharacter(*position)) ++position;
  return position != begin;
}

// Degrees of an ISO 6709 number whose degrees have `degreeDigits` digits.
bool ReadIsoValue(const char*& position, int degreeDigits, Signed& value,
                  Coordinate& half) noexcept {
  if (!ReadSigned(position, CommaUse::kDecimalOrSeparator, value) || !value.hasSign) return false;
  const int more = value.number.integerDigits - degreeDigits;
  if (more == 0) {
    half.groups = 1;
    half.degrees = ValueOf(value.number);
    half.decimals = value.number.decimals;
    return true;
  }
  return (more == 2 || more == 4) && SplitCompact(value.number, half);
}

// What may stand between the longitude and the end: height, coordinate system, solidus.
bool ReadIsoEnd(const char* position, bool solidusNeeded) noexcept {
  if (*position == '\0') return !solidusNeeded;
  if (*position == '+' || *position == '-') {
    Signed height;
    if (!ReadSigned(position, CommaUse::kDecimalOrSeparator, height)) return false;
  }
  if (ReadWord(position, "crs") && !ReadName(position)) return false;
  return Read(position, '/') && *position == '\0';
}

// "+401213.1-0750015.1+2.79CRSWGS_84/"
bool ReadIso6709(const char* position, StandardPair& pair) noexcept {
  Signed first;
  Signed second;
  Coordinate latitude;
  Coordinate longitude;
  if (!ReadIsoValue(position, 2, first, latitude) ||
      !ReadIsoValue(position, 3, second, longitude) || latitude.groups != longitude.groups) {
    return false;
  }
  // The closing solidus is often left out, as in the time zone database. Without it, whole degrees
  // could be a sum; minutes below 60 with leading zeros, or decimals, tell a position.
  const bool plain =
      latitude.groups >= 2 ||
      (latitude.decimals > 0 && longitude.decimals > 0 &&
       (latitude.decimals >= kPlainDecimals || longitude.decimals >= kPlainDecimals));
  if (!ReadIsoEnd(position, !plain)) return false;
  pair.latitude = first.Apply(latitude.degrees);
  pair.longitude = second.Apply(longitude.degrees);
  pair.notation = Notation::kIso6709;
  return true;
}

// ";crs=wgs84;u=35", "?z=12". Another coordinate system than WGS 84 is another kind of coordinates.
bool ReadGeoEnd(const char* position) noexcept {
  while (Read(position, ';')) {
    const bool isSystem = ReadWord(position, "crs=");
    if (isSystem) {
      if (!ReadWord(position, "wgs84") || IsNameCharacter(*position)) return false;
      continue;
    }
    if (!ReadName(position) || (Read(position, '=') && !ReadName(position))) return false;
  }
  if (ReadWord(position, "?z=")) {
    if (!IsDigit(*position)) return false;
    while (IsDigit(*position) || *position == '.') ++position;
  }
  return *position == '\0';
}

// "geo:37.786971,-122.399677"
bool ReadGeoUri(const char* position, StandardPair& pair) noexcept {
  Signed latitude;
  Signed longitude;
  if (!ReadWord(position, "geo:") || !ReadSigned(position, CommaUse::kSeparator, latitude) ||
      !Read(position, ',') || !ReadSigned(position, CommaUse::kSeparator, longitude)) {
    return false;
  }
  Signed altitude;
  if (Read(position, ',') && !ReadSigned(position, CommaUse::kSeparator, altitude)) return false;
  if (!ReadGeoEnd(position)) return false;
  pair.latitude = latitude.Value();
  pair.longitude = longitude.Value();
  pair.notation = Notation::kGeoUri;
  return true;
}

// How many numbers may follow longitude and latitude: heights and measures.
bool ReadWktDimensions(const char*& position, int& least, int& most) noexcept {
  least = 0;
  most = 2;
  SkipBlank(position);
  if (ReadWord(position, "zm")) {
    least = 2;
  } else if (ReadWord(position, "z") || ReadWord(position, "m")) {
    least = most = 1;
  }
  SkipBlank(position);
  return Read(position, '(');
}

// "POINT(-122.4194 37.7749)", with "SRID=4326;" before it where a database wrote it.
bool ReadWktPoint(const char* position, StandardPair& pair) noexcept {
  if (ReadWord(position, "srid=")) {
    if (!ReadWord(position, "4326;")) return false;
    SkipBlank(position);
  }
  int least = 0;
  int most = 0;
  if (!ReadWord(position, "point") || !ReadWktDimensions(position, least, most)) return false;
  Signed longitude;
  Signed latitude;
  SkipBlank(position);
  if (!ReadSigned(position, CommaUse::kSeparator, longitude) || !Read(position, ' ') ||
      !ReadSigned(position, CommaUse::kSeparator, latitude)) {
    return false;
  }
  int further = 0;
  Signed value;
  for (; *position == ' ' && position[1] != ')'; ++further) {
    ++position;
    if (!ReadSigned(position, CommaUse::kSeparator, value)) return false;
  }
  SkipBlank(position);
  if (further < least || further > most || !Read(position, ')') || *position != '\0') return false;
  pair.latitude = latitude.Value();
  pair.longitude = longitude.Value();
  pair.notation = Notation::kWktPoint;
  return true;
}

bool ReadAny(const char* text, StandardPair& pair) noexcept {
  switch (*text) {
    case '+':
    case '-':
      return ReadIso6709(text, pair);
    case 'g':
    case 'G':
      return ReadGeoUri(text, pair);
    case 'p':
    case 'P':
    case 's':
    case 'S':
      return ReadWktPoint(text, pair);
    default:
      return false;
  }
}

}  // namespace

bool ReadStandard(const FoldedText& text, StandardPair& pair) noexcept {
  return ReadAny(text.Begin(), pair) && pair.latitude >= -90 && pair.latitude <= 90 &&
         pair.longitude >= -180 && pair.longitude <= 180;
}

}  // namespace quenra::latlong
