// Bytes on their way to a file, put there through a pointer.
//
//   char* const place = buffer.Room(kWholeRoom);
//   buffer.EndAt(WriteWhole(7, place));
//
// Several things in a row keep the place in a variable of their own:
//
//   char* to = buffer.Room(0);
//   for (...) to = WriteWhole(number, buffer.RoomAt(to, kWholeRoom));
//   buffer.EndAt(to);
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace TextFile {

class ByteBuffer {
 public:
  // A place for `bytes` more bytes behind those that are there; what is written to it counts once
  // EndAt has been called. Valid until the next call that adds something. Throws std::bad_alloc,
  // and nothing changes.
  char* Room(std::size_t bytes) {
    if (static_cast<std::size_t>(limit_ - bytes_.get()) - size_ < bytes) Grow(bytes);
    return bytes_.get() + size_;
  }

  // Everything up to `end`, which lies in the room, belongs to the buffer, and a place for `bytes`
  // more is behind it: `end` itself unless the buffer has had to grow. Throws std::bad_alloc, and
  // the place is still valid.
  char* RoomAt(char* end, std::size_t bytes) {
    if (static_cast<std::size_t>(limit_ - end) >= bytes) return end;
    EndAt(end);
    return Room(bytes);
  }

  // Everything up to `end`, which lies in the room, belongs to the buffer.
  void EndAt(const char* end) noexcept { size_ = static_cast<std::size_t>(end - bytes_.get()); }

  // Throws std::bad_alloc, and nothing changes. `bytes` is no part of this buffer.
  void Append(std::string_view bytes) {
    char* const place = Room(bytes.size());
    EndAt(std::copy(bytes.begin(), bytes.end(), place));
  }

  // Keeps the first `size` bytes, which are there.
  void CutTo(std::size_t size) noexcept { size_ = size; }

  // Where the room ends.
  const char* Limit() const noexcept { return limit_; }
  std::size_t size() const noexcept { return size_; }
  std::string_view View() const noexcept { return {bytes_.get(), size_}; }

 private:
  static constexpr std::size_t kFirstCapacity = 512 * 1024;

  void Grow(std::size_t bytes) {
    const auto old = static_cast<std::size_t>(limit_ - bytes_.get());
    const std::size_t capacity = std::max({kFirstCapacity, size_ + bytes, old * 2});
    // Not set to zeros: memory that no row needs stays untouched.
    std::unique_ptr<char[]> grown(new char[capacity]);
    if (size_ != 0) std::memcpy(grown.get(), bytes_.get(), size_);
    bytes_ = std::move(grown);
    limit_ = bytes_.get() + capacity;
  }

  std::unique_ptr<char[]> bytes_;
  char* limit_ = nullptr;  // behind the last byte that there is
  std::size_t size_ = 0;
};

}  // namespace TextFile
