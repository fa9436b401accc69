// Converts the cells of plain rows from the bytes of the file, straight into the host's slots.
//
//   const PlainCells& cells = QuickestPlainCells();
//   const CellStep* step = cells.convert(row, first, end, formats, buffer);
//   if (step != end) ...  // the row has no more cells, or this one has to be converted otherwise
#pragma once

#include <cstddef>
#include <string_view>

#include "inference/CellStep.h"
#include "inference/PlainDate.h"
#include "inference/PlainNumber.h"
#include "reading/PlainRow.h"
#include "schema/FieldDefinition.h"

namespace TextFile {

// How many bytes can be read from the start of a number or a date on, however short it is: a minus
// and 16 characters; a date and a time.
inline constexpr std::size_t kPlainNumberBytes = 17;
inline constexpr std::size_t kPlainDateBytes = 19;

// What is known of a table's values besides their texts.
struct CellFormats {
  const FieldDefinition* fields;  // those at the start; of dates, their formats
  char16_t decimalSymbol;         // one that has plain numbers, where there are steps for numbers
};

// Code for some processors. All codes do the same.
struct PlainCells {
  // Does the steps from `step` on, and answers the first that has not been done: it is for a column
  // that `row` does not have, or its cell is not plain; its slot may then hold what needs no
  // clearing. `end` when all have been done. `text` is overwritten. Throws std::bad_alloc.
  const CellStep* (*convert)(const PlainRow& row, const CellStep* step, const CellStep* end,
                             const CellFormats& formats, UnitBuffer& text);
  // What it reads numbers and dates by: ReadPlainNumber and ReadPlainDate for bytes.
  bool (*readNumber)(char16_t decimalSymbol, std::string_view text, PlainNumber& number) noexcept;
  bool (*readDate)(const DateFieldFormat& format, std::string_view text, PlainDate& date) noexcept;
};

// The quickest code of this processor.
const PlainCells& QuickestPlainCells() noexcept;

// The code that runs everywhere, and the one for processors with SSE4.1, which nearly every one
// has; null for others.
const PlainCells& CommonPlainCells() noexcept;
const PlainCells* VectorPlainCells() noexcept;

}  // namespace TextFile
