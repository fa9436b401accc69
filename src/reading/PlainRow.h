// A row whose fields are told by its bytes alone, without decoding it.
//
//   PlainRow row;
//   while (reader->ReadPlainRow(row)) ...
//   row[0];                // "12.5", or "\"Z\xC3\xBCrich\"" with its quotes
//   row.Text(0, buffer);   // u"12.5", u"Zürich"
//   row.GoOn();            // the same for the row behind it, if that has been found as well
//
// Such a row stands in one line of well-formed UTF-8, and where it has text delimiters they stand
// around its fields, doubled inside them. A value that is asked for is decoded where it stands; the
// others cost no more than finding them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "reading/TextDecoding.h"
#include "reading/UnitBuffer.h"

namespace TextFile {

// How many bytes can be read behind those that rows are taken from.
inline constexpr std::size_t kPlainRowPadding = 64;

class PlainRow {
 public:
  bool empty() const noexcept { return size_ == 0; }
  std::size_t size() const noexcept { return size_; }

  // The bytes of a field, its text delimiters among them, valid until the reader goes on.
  // kPlainRowPadding more can be read behind them.
  std::string_view operator[](std::size_t index) const noexcept {
    const Bound* const bounds = bounds_ + (index << boundsPerField_);
    const char* const begin = bounds[0] + 1;
    return {begin, static_cast<std::size_t>(bounds[1] - begin)};
  }

  // What the field says, in `buffer`, whose contents are replaced.
  std::u16string_view Text(std::size_t index, UnitBuffer& buffer) const {
    WidenField((*this)[index], textDelimiter_, buffer);
    return buffer.View();
  }
  char textDelimiter() const noexcept { return textDelimiter_; }  // 0: none

  // Goes on to the row behind this one. False, and this stays, when that has not been found with
  // it or might be a blank line: the reader is then to be asked. The rows gone on to are taken from
  // the reader when it is asked for the next one, with this row in its hand.
  bool GoOn() noexcept;

  // For the readers. A field stands between two bounds, which are the byte in front of it and the
  // one behind it.
  using Bound = const char*;

  // What has been found in the bytes of a file, as far as a row needs it to go on.
  struct Found {
    Bound* bounds;             // of all rows, one byte between two fields
    const std::uint32_t* row;  // the end of the next row: its last bound is this one
    const std::uint32_t* rowsEnd;
    const char* next;  // where the next row begins
  };
  // Refers to the bounds of `fields` fields with one byte between two of them: the byte in front of
  // the first one, and those behind each. They are followed by those of what `behind` tells.
  void ReferTo(Bound* bounds, std::size_t fields, char textDelimiter,
               const Found& behind) noexcept {
    bounds_ = bounds;
    size_ = fields;
    boundsPerField_ = 0;
    textDelimiter_ = textDelimiter;
    behind_ = behind;
  }
  // What is left behind this row, once rows have been gone on to; null otherwise.
  const Found* TakeWalk() noexcept { return std::exchange(hasGoneOn_, false) ? &behind_ : nullptr; }

  // Rows of fields that stand anywhere, without text delimiters: their bounds are written into
  // places made for `fields` of them, for each field the byte in front of it and the one behind it.
  Bound* MakePlaces(std::size_t fields) {
    if (own_.size() < 2 * fields) own_.resize(2 * fields);
    return own_.data();
  }
  // The row has the fields whose bounds are in front of the place `end`.
  void EndAt(const Bound* end) noexcept {
    bounds_ = own_.data();
    size_ = static_cast<std::size_t>(end - own_.data()) / 2;
    boundsPerField_ = 1;
    textDelimiter_ = '\0';
    behind_ = {};
  }

 private:
  Bound* bounds_ = nullptr;
  std::size_t size_ = 0;
  unsigned boundsPerField_ = 0;  // as a power of two
  char textDelimiter_ = '\0';
  bool hasGoneOn_ = false;  // since the reader has filled it
  Found behind_{};
  std::vector<Bound> own_;
};

inline bool PlainRow::GoOn() noexcept {
  if (behind_.row == behind_.rowsEnd) return false;
  Bound* const first = bounds_ + size_;
  Bound* const last = behind_.bounds + *behind_.row;
  // One field may be none.
  if (last - first < 2) return false;
  const char* const lineFeed = *last;
  // The line feed is a bound of the row before, which may end in front of a carriage return.
  *first = behind_.next - 1;
  *last = lineFeed - (lineFeed[-1] == '\r');
  bounds_ = first;
  size_ = static_cast<std::size_t>(last - first);
  behind_.next = lineFeed + 1;
  ++behind_.row;
  hasGoneOn_ = true;
  return true;
}

}  // namespace TextFile
