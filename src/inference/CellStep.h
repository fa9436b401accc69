// What is done for one column of a table in every row: where its value goes, and how it is read.
#pragma once

#include <cstdint>

#include "platform/OleAutomation.h"

namespace TextFile {

enum class CellWay : std::uint8_t {
  kText,
  kDouble,  // this and the next three have plain values
  kInteger,
  kBigInteger,
  kDate,         // with a day; without offsets
  kOther,        // any type but kString
  kCoordinates,  // a text with two virtual fields
  kTwoTexts,     // two texts, of two columns and fields, with two virtual fields
};

// Small, since wide tables have many.
struct CellStep {
  VARIANT* slot;         // of `field`
  std::uint32_t column;  // of the file
  std::uint32_t field;
  CellWay way;
  bool wanted;  // whether anybody asks for `field`; its values are checked anyway
};

}  // namespace TextFile
