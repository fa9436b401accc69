// The UTF-16 code units of a line, in memory that is kept from line to line.
//
//   UnitBuffer line;
//   char16_t* const units = line.Overwrite(bytes.size());
//   line.Shorten(Widen(bytes, units));
//   Use(line.View());
//   std::u16string text = line.Release();  // of a long line, without a second copy
//
// Unlike a string it does not fill what is about to be overwritten, but for what it has never had.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace TextFile {

class UnitBuffer {
 public:
  // Replaces the contents by `size` units of no particular value, to be filled by the caller.
  // Throws std::bad_alloc; the contents are then unspecified.
  char16_t* Overwrite(std::size_t size) {
    if (size > capacity()) Grow(size, 0);
    size_ = size;
    return units_.data();
  }

  // Drops the units behind the first `size`, which are there.
  void Shorten(std::size_t size) noexcept { size_ = size; }

  void Append(char16_t unit) {
    if (size_ == capacity()) Grow(size_ + 1, size_);
    units_[size_++] = unit;
  }
  void DropLast() noexcept { --size_; }

  // Appends `count` units, in steps of kStep: that many can be read behind them.
  static constexpr std::size_t kStep = 16;
  void AppendInSteps(const char16_t* units, std::size_t count) {
    if (capacity() - size_ < count + kStep) Grow(size_ + count + kStep, size_);
    char16_t* const target = units_.data() + size_;
    for (std::size_t i = 0; i < count; i += kStep)
      std::memcpy(target + i, units + i, kStep * sizeof(char16_t));
    size_ += count;
  }

  // Puts `count` zeros behind the contents, without making them part of it.
  void Pad(std::size_t count) {
    if (capacity() - size_ < count) Grow(size_ + count, size_);
    std::fill_n(units_.data() + size_, count, u'\0');
  }

  // Gives away the contents with their memory. The buffer is empty then.
  std::u16string Release() {
    units_.resize(size_);
    size_ = 0;
    return std::exchange(units_, {});
  }

  std::size_t size() const noexcept { return size_; }
  // What Overwrite has without allocating.
  std::size_t capacity() const noexcept { return units_.size(); }
  // Valid until the next change.
  std::u16string_view View() const noexcept { return {units_.data(), size_}; }
  const char16_t* data() const noexcept { return units_.data(); }

 private:
  static constexpr std::size_t kLeastCapacity = 512;
  // For a line's end and the zeros behind it, which come when its characters are there.
  static constexpr std::size_t kMore = 64;
  // From here on memory counts for more than time.
  static constexpr std::size_t kMuch = std::size_t{1} << 20;

  // Growing by a part of the size keeps the cost of lines that grow linear.
  void Grow(std::size_t least, std::size_t kept) {
    const std::size_t old = capacity();
    const std::size_t steps = old < kMuch ? 2 * old : old + old / 4;
    const std::size_t larger = std::max({least + kMore, steps, kLeastCapacity});
    // The old memory goes first when nothing of it is kept.
    if (kept == 0) std::u16string().swap(units_);
    units_.resize(larger);
  }

  std::u16string units_;  // all of it may be used; the first size_ are the contents
  std::size_t size_ = 0;
};

}  // namespace TextFile
