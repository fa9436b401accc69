// Reads the coordinate notations that have a syntax of their own: ISO 6709, geo URI and WKT point.
// Serves LatLongFormat only.
//
//   latlong::FoldedText folded;
//   folded.Fold(u"geo:37.786971,-122.399677");
//   latlong::StandardPair pair;
//   latlong::ReadStandard(folded, pair);  // pair.latitude == 37.786971, pair.notation == kGeoUri
#pragma once

#include <cstdint>

#include "host/DataCore/LatLongScanner.h"

namespace quenra::latlong {

enum class Notation : std::uint8_t {
  kNone,
  kDecimalDegrees,
  kDegreesMinutes,
  kDegreesMinutesSeconds,
  kIso6709,
  kGeoUri,
  kWktPoint,
  kNmea,
};

struct StandardPair {
  double latitude = 0;
  double longitude = 0;
  Notation notation = Notation::kNone;
};

// True when the whole text is one of the three notations and within the range of latitude and
// longitude. `pair` is unspecified otherwise.
bool ReadStandard(const FoldedText& text, StandardPair& pair) noexcept;

}  // namespace quenra::latlong
