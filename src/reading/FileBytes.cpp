#include "reading/FileBytes.h"

#include <algorithm>
#include <cstddef>

namespace TextFile {

bool FileBytes::Open(const std::u16string& path) {
  std::uint64_t size = 0;
  if (!file_.Open(NativeFromFileName(path), RegularFile::Access::kRead) || !file_.Size(size))
    return false;
  position_ = 0;
  end_ = size == 0 ? kUnknown : size;
  endIsFound_ = size == 0;
  return true;
}

std::streamsize FileBytes::xsgetn(char* bytes, std::streamsize count) {
  if (position_ >= end_ && !endIsFound_) FindEnd();
  if (position_ >= end_ || count <= 0) return 0;
  const std::uint64_t wanted = std::min(static_cast<std::uint64_t>(count), end_ - position_);
  const std::ptrdiff_t got = file_.ReadAt(position_, bytes, static_cast<std::size_t>(wanted));
  if (got <= 0) return 0;
  position_ += static_cast<std::uint64_t>(got);
  return static_cast<std::streamsize>(got);
}

FileBytes::pos_type FileBytes::seekpos(pos_type position, std::ios_base::openmode) {
  position_ = static_cast<std::uint64_t>(static_cast<std::streamoff>(position));
  return position;
}

// Moves the end behind the line that it lies in, if the file has grown meanwhile.
void FileBytes::FindEnd() {
  constexpr std::size_t kPiece = 4096;
  char bytes[kPiece];
  endIsFound_ = true;
  const std::uint64_t known = std::min<std::uint64_t>(end_, 2);
  if (file_.ReadAt(end_ - known, bytes, known) != static_cast<std::ptrdiff_t>(known)) return;
  char last = bytes[known - 1];
  char lastButOne = known == 2 ? bytes[0] : '\0';
  // A line feed of UTF-16 has a zero behind it.
  if (last == '\n' || (last == '\0' && lastButOne == '\n')) return;
  for (;;) {
    const std::ptrdiff_t got = file_.ReadAt(end_, bytes, kPiece);
    if (got <= 0) return;
    for (std::ptrdiff_t i = 0; i < got; ++i, ++end_) {
      const bool ended = last == '\n' ? bytes[i] != '\0' : last == '\r' && bytes[i] != '\n';
      if (ended || (last == '\0' && lastButOne == '\n')) return;
      lastButOne = last;
      last = bytes[i];
    }
  }
}

}  // namespace TextFile
