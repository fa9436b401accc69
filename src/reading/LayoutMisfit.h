// Why a file is no table of the layout that was tried: what the user is told when none fits.
#pragma once

#include <cstddef>
#include <cstdint>

namespace TextFile {

struct LayoutMisfit {
  enum class Kind {
    kNone,
    kValues,     // a record does not have as many values as there are columns
    kNoColumns,  // a fixed-length table without declared columns
    kNoRecord,   // declared columns, and nothing to fill them
  };

  Kind kind = Kind::kNone;
  std::uint64_t record = 0;  // from 1, a header line included
  bool header = false;       // the first record is a header line
  std::size_t values = 0;    // of that record
  std::size_t columns = 0;   // coordinate fields included
  char16_t delimiter = 0;    // what was tried; 0 for fixed-length records
  bool delimiterGiven = false;
};

}  // namespace TextFile
