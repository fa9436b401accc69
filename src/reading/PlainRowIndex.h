// Finds the plain rows (see PlainRow.h) among the bytes of a file, some of them ahead.
//
//   PlainRowIndex index({.delimiter = ';', .textDelimiter = '"'});
//   const char* const next = index.Take({bytes, readCount}, bytes.data(), row);
//   if (next != nullptr) ...  // the row has been found; the next one begins there
//
// A row is found as the readers find it, or not at all: whatever the bytes alone do not tell is
// left to the readers. That is a row that no line feed ends, or that goes on behind one; that has a
// zero byte or an ill-formed sequence; or that has a text delimiter which stands neither at the
// start of a field nor where one that is open may end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "reading/PlainRow.h"

namespace TextFile {

// What separates the fields. ASCII characters, different from each other, and neither line feed nor
// carriage return.
struct PlainRowDialect {
  char delimiter = ',';      // 0: the line is one field
  char textDelimiter = '"';  // 0: no quoting
};

// Where an index is, for the kernels. Masks have a bit for each byte of a block, the first one
// lowest.
struct PlainRowState {
  const char* next = nullptr;       // the block that comes next
  const char* end = nullptr;        // of the bytes; kPlainRowPadding more can be read behind it
  bool asciiOnly = false;           // a row of other characters is not plain
  bool stopped = false;             // in front of something that is not plain
  const char* nonAscii = nullptr;   // the first byte above 127, if one has been seen
  std::uint64_t quoting = 0;        // all ones inside quotes
  std::uint64_t behindStart = 1;    // bit 0: the next byte may be a quote that opens or is doubled
  std::uint64_t continuations = 0;  // which of the next bytes have to go on with a sequence
  // What a kernel finds is written behind what has been found: the ends of fields, and the places
  // among them of those that end rows.
  PlainRow::Bound* bounds = nullptr;
  std::size_t boundCount = 0;
  std::uint32_t* rows = nullptr;
  std::size_t rowCount = 0;
};

class PlainRowIndex {
 public:
  // A kernel takes so many blocks of 64 bytes, few enough for what it reads to be near when the
  // rows are used, and needs so many places for what it finds.
#ifdef SMALL_ROW_INDEX
  static constexpr std::size_t kBlocks = 8;  // for searching what stands where they end
#else
  static constexpr std::size_t kBlocks = 256;
#endif
  static constexpr std::size_t kPlaces = 64 * kBlocks + 8;

  // The code of lesser processors may be asked for, for comparison; what this one lacks is
  // kBaseline.
  enum class Code { kBest, kAvx2, kBaseline, kPlain };
  explicit PlainRowIndex(const PlainRowDialect& dialect, Code code = Code::kBest) noexcept;

  // What rows are taken from: all bytes at hand, and a number that tells them from others, which
  // may have stood in the same place.
  struct Source {
    std::string_view bytes;
    std::uint64_t version = 0;
    bool asciiOnly = false;
  };

  // Takes the row that begins at `begin`; blank lines in front of it are no rows. Answers where the
  // row behind it begins; null when there is no plain row, and `row` is then unspecified. The row
  // refers to the source and to the index, until the next call.
  const char* Take(const Source& source, const char* begin, PlainRow& row);

  // Takes the rows that `row`, taken from here last, has gone on to. Answers where the one behind
  // them begins; null when it has not gone on.
  const char* TakeWalk(PlainRow& row) noexcept;

  // Whether the row that was taken last, or one before it in the same source, has bytes above 127.
  bool TookNonAscii() const noexcept {
    return state_.nonAscii != nullptr && begin_ > state_.nonAscii;
  }

 private:
  using Kernel = void (*)(const PlainRowDialect&, PlainRowState&);

  static Kernel Choose(Code code) noexcept;
  bool GoTo(const Source& source, const char* begin) noexcept;
  void Restart(const Source& source, const char* begin);
  bool FindRow();
  void MakePlaces();

  PlainRowDialect dialect_;
  Kernel kernel_;
  std::uint64_t version_ = 0;
  PlainRowState state_;
  const char* begin_ = nullptr;  // of the next row
  std::size_t row_ = 0;          // its end is this one among the state's rows
  std::size_t firstBound_ = 0;   // its first bound is this one among the state's
  // What the state refers to. Places that are never written cost no memory.
  std::unique_ptr<PlainRow::Bound[]> bounds_;
  std::size_t boundCapacity_ = 0;
  std::unique_ptr<std::uint32_t[]> rows_;
};

inline const char* PlainRowIndex::Take(const Source& source, const char* begin, PlainRow& row) {
  const bool goesOn =
      begin == begin_ && source.version == version_ && source.asciiOnly == state_.asciiOnly;
  if (!goesOn && !GoTo(source, begin)) Restart(source, begin);
  for (;;) {
    if (row_ == state_.rowCount && !FindRow()) return nullptr;
    PlainRow::Bound* const first = state_.bounds + firstBound_;
    PlainRow::Bound* const last = state_.bounds + state_.rows[row_];
    const auto fields = static_cast<std::size_t>(last - first);
    const char* const line = begin_;
    const char* const lineFeed = *last;
    const char* const end = lineFeed - (lineFeed != line && lineFeed[-1] == '\r');
    // Quotes alone may make a blank line as well.
    if (fields == 1 && end != line && *line == dialect_.textDelimiter) return nullptr;
    begin_ = lineFeed + 1;
    firstBound_ = state_.rows[row_++];
    if (fields == 1 && end == line) continue;
    // The line feed is a bound of the row before, which may end in front of a carriage return.
    *first = line - 1;
    *last = end;
    row.ReferTo(first, fields, dialect_.textDelimiter,
                {state_.bounds, state_.rows + row_, state_.rows + state_.rowCount, begin_});
    return begin_;
  }
}

inline const char* PlainRowIndex::TakeWalk(PlainRow& row) noexcept {
  const PlainRow::Found* const behind = row.TakeWalk();
  if (behind == nullptr) return nullptr;
  row_ = static_cast<std::size_t>(behind->row - state_.rows);
  firstBound_ = state_.rows[row_ - 1];
  return begin_ = behind->next;
}

}  // namespace TextFile
