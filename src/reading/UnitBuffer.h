// The UTF-16 code units of a line, in memory that is kept from line to line.
//
//   UnitBuffer line;
//   char16_t* const units = line.Overwrite(bytes.size());
//   line.Shorten(Widen(bytes, units));
//   Use(line.View());
//
// Unlike a string it does not fill what is about to be overwritten.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace TextFile {

class UnitBuffer {
 public:
  // Replaces the contents by `size` units of no particular value, to be filled by the caller.
  // Throws std::bad_alloc; the contents are then unspecified.
  char16_t* Overwrite(std::size_t size) {
    if (size > capacity_) Grow(size, 0);
    size_ = size;
    return units_.get();
  }

  // Drops the units behind the first `size`, which are there.
  void Shorten(std::size_t size) noexcept { size_ = size; }

  void Append(char16_t unit) {
    if (size_ == capacity_) Grow(size_ + 1, size_);
    units_[size_++] = unit;
  }
  void DropLast() noexcept { --size_; }

  // Appends `count` units, in steps of kStep: that many can be read behind them.
  static constexpr std::size_t kStep = 16;
  void AppendInSteps(const char16_t* units, std::size_t count) {
    if (capacity_ - size_ < count + kStep) Grow(size_ + count + kStep, size_);
    char16_t* const target = units_.get() + size_;
    for (std::size_t i = 0; i < count; i += kStep)
      std::memcpy(target + i, units + i, kStep * sizeof(char16_t));
    size_ += count;
  }

  // Puts `count` zeros behind the contents, without making them part of it.
  void Pad(std::size_t count) {
    if (capacity_ - size_ < count) Grow(size_ + count, size_);
    std::fill_n(units_.get() + size_, count, u'\0');
  }

  std::size_t size() const noexcept { return size_; }
  // What Overwrite has without allocating.
  std::size_t capacity() const noexcept { return capacity_; }
  // Valid until the next change.
  std::u16string_view View() const noexcept { return {units_.get(), size_}; }
  const char16_t* data() const noexcept { return units_.get(); }

 private:
  static constexpr std::size_t kLeastCapacity = 512;
  // Doubling keeps the cost of lines that grow linear.
  void Grow(std::size_t least, std::size_t kept) {
    const std::size_t capacity = std::max({least, 2 * capacity_, kLeastCapacity});
    auto larger = std::make_unique_for_overwrite<char16_t[]>(capacity);
    std::copy_n(units_.get(), kept, larger.get());
    units_ = std::move(larger);
    capacity_ = capacity;
  }

  std::unique_ptr<char16_t[]> units_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace TextFile
