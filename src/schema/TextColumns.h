// Writes neighbouring columns of texts as values of a delimited file, several in one call.
//
//   TextRun run{buffer.Room(0), buffer.Limit()};
//   const std::size_t done = ChooseTextColumns()(texts, columns, values, run);
#pragma once

#include <cstddef>
#include <span>

#include "platform/OleAutomation.h"
#include "schema/QuotedText.h"

namespace TextFile {

struct TextColumn {
  std::size_t width;          // UTF-16 code units
  std::size_t separatorSize;  // 1, or 0 in front of the first column
};

// Where values are written to.
struct TextRun {
  char* to;           // behind the last value
  const char* limit;  // behind the last byte that there is room for
  std::size_t room;   // how many bytes the next value takes, when it is wider than what there is
};

// Writes the columns' values, which begin at `values`, each behind its separator, up to the first
// that is neither text, lent text nor null, or that holds a character to be dropped
// (QuotedText::Write), or for which the room is short. Answers how many columns it has written, and
// moves `run.to` behind them; `run.room` is zero unless the room is short.
using WriteTextColumns = std::size_t (*)(const QuotedText& texts,
                                         std::span<const TextColumn> columns, const VARIANT* values,
                                         TextRun& run) noexcept;

// The code of lesser processors may be asked for, for comparison.
enum class TextColumnsCode { kBest, kBaseline };
WriteTextColumns ChooseTextColumns(TextColumnsCode code = TextColumnsCode::kBest) noexcept;

// The code for processors with AVX-512; null when this one is none.
WriteTextColumns Avx512TextColumns() noexcept;

}  // namespace TextFile
