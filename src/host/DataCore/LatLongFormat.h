// Recognises geographic coordinates written as text, and reads them.
//
// One object serves any number of texts and threads: it holds no state, neither allocates nor
// throws, and ignores the process locale. docs/coordinates.md lists the notations.
//
//   const LatLongFormat latLong;
//   const std::u16string_view text = u"40\u00B026'46\"N 79\u00B058'56\"W";
//   std::int32_t format = 0;
//   double x = 0;
//   double y = 0;
//   if (latLong.IsLatLong(text, format)) latLong.ParseLatLong(text, format, x, y);
//   // x is -79.98..., y is 40.44...
#pragma once

#include <cstdint>
#include <string_view>

#include "host/HostApi.h"

namespace quenra {

class QUENRA_HOST_API LatLongFormat {
 public:
  // True when `text` is one latitude/longitude pair and nothing else; blanks around it do not
  // count. `format` then receives a positive code that names notation and order, for ParseLatLong
  // of further texts of the same column. It is 0 after a refusal. Texts of more than 128 UTF-16
  // code units are refused.
  bool IsLatLong(std::u16string_view text, std::int32_t& format) const noexcept;

  // True when the two texts are one coordinate each, one of them a latitude, the other a longitude.
  // `format` as above.
  bool IsLatLong(std::u16string_view first, std::u16string_view second,
                 std::int32_t& format) const noexcept;

  // Reads a pair into degrees, north and east positive: `first` receives the longitude (x),
  // `second` the latitude (y), in whatever order the text has them. `format` is a code from
  // IsLatLong, or 0. It widens what is accepted: `12.5, 45` says too little alone, but is read in a
  // column of decimal degrees. A text that IsLatLong accepts is read with the same values whatever
  // the code. False, and both values 0, when the text cannot be read.
  bool ParseLatLong(std::u16string_view text, std::int32_t format, double& first,
                    double& second) const noexcept;

  // Reads two texts into degrees: `first` is the value of `firstText`, `second` that of
  // `secondText`, whichever of them is the latitude. Otherwise as above.
  bool ParseLatLong(std::u16string_view firstText, std::u16string_view secondText,
                    std::int32_t format, double& first, double& second) const noexcept;
};

}  // namespace quenra
