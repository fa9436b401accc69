// A row whose fields are told by its bytes alone, without decoding it.
//
//   PlainRow row;
//   while (reader->ReadPlainRow(row)) ...
//   row[0];                // "12.5", or "\"Z\xC3\xBCrich\"" with its quotes
//   row.Text(0, buffer);   // u"12.5", u"Zürich"
//
// Such a row stands in one line of well-formed UTF-8, and where it has text delimiters they stand
// around its fields, doubled inside them. A value that is asked for is decoded where it stands; the
// others cost no more than finding them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

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
    const char* const* const bounds = bounds_.get() + (index << boundsPerField_);
    const char* const begin = bounds[0] + 1;
    return {begin, static_cast<std::size_t>(bounds[1] - begin)};
  }

  // What the field says, in `buffer`, whose contents are replaced.
  std::u16string_view Text(std::size_t index, UnitBuffer& buffer) const {
    WidenField((*this)[index], textDelimiter_, buffer);
    return buffer.View();
  }
  char textDelimiter() const noexcept { return textDelimiter_; }  // 0: none

  // For the readers, which write the bounds of the fields into places made for them: where one byte
  // stands between two fields (kShared), the byte in front of the first field and those behind
  // each; otherwise (kOwn) the byte in front of each field and the one behind it.
  using Bound = const char*;
  enum class Bounds { kShared, kOwn };
  void Begin(Bounds bounds, char textDelimiter) noexcept {
    boundsPerField_ = bounds == Bounds::kOwn ? 1 : 0;
    textDelimiter_ = textDelimiter;
    size_ = 0;
  }
  // Answers the first place, with room for `count`.
  Bound* Places(std::size_t count) {
    if (capacity_ < count) Grow(0, count);
    return bounds_.get();
  }
  // The same for the place `next`, which may move.
  Bound* Places(const Bound* next, std::size_t count) {
    const auto used = static_cast<std::size_t>(next - bounds_.get());
    if (capacity_ - used < count) Grow(used, count);
    return bounds_.get() + used;
  }
  // The bounds in front of the place `end` are the row's.
  void End(const Bound* end) noexcept {
    const auto count = static_cast<std::size_t>(end - bounds_.get());
    size_ = boundsPerField_ == 0 ? count - 1 : count / 2;
  }

 private:
  void Grow(std::size_t used, std::size_t more) {
    const std::size_t capacity = 2 * capacity_ + more;
    auto larger = std::make_unique_for_overwrite<Bound[]>(capacity);
    std::copy_n(bounds_.get(), used, larger.get());
    bounds_ = std::move(larger);
    capacity_ = capacity;
  }

  std::unique_ptr<Bound[]> bounds_;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
  unsigned boundsPerField_ = 0;  // as a power of two
  char textDelimiter_ = '\0';
};

}  // namespace TextFile
