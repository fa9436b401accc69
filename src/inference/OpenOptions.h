// What the host may switch about how tables are opened. One machine word, owned by the workspace
// factory; every object below it copies the word when it is made.
#pragma once

#include <cstdint>

#include "schema/FieldDefinition.h"

namespace TextFile {

struct OpenOptions {
  bool readAsManyRowsAsNeeded = false;  // no upper limit on the rows that inference reads
  bool generateLatLongFields = true;    // coordinate texts get companion fields
  bool inferTimeOnlyFields = false;     // a column may be typed as a time alone
  std::uint8_t reserved = 0;
  std::uint32_t fieldTypeVersion = kCurrentFieldTypeVersion;
};
static_assert(sizeof(OpenOptions) == 8);

}  // namespace TextFile
