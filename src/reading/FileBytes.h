// The bytes of a regular file, as a source for TextLineStream.
//
//   auto bytes = std::make_unique<FileBytes>();
//   if (bytes->Open(path)) stream.Open(std::move(bytes), ...);
#pragma once

#include <cstdint>
#include <ios>
#include <limits>
#include <streambuf>
#include <string>

#include "platform/RegularFile.h"

namespace TextFile {

// Ends where the file ended when it was opened, so that nobody who adds what he reads to the same
// file reads for ever. A line that was not whole then, as when a row was just being written, is
// read to its end.
class FileBytes final : public std::streambuf {
 public:
  // Anything but a regular file is refused.
  bool Open(const std::u16string& path);

 protected:
  // A read that fails counts as the end.
  std::streamsize xsgetn(char* bytes, std::streamsize count) override;
  pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

 private:
  void FindEnd();

  // Files that the system makes up while they are read say that they have no bytes.
  static constexpr std::uint64_t kUnknown = std::numeric_limits<std::uint64_t>::max();

  RegularFile file_;
  std::uint64_t position_ = 0;
  std::uint64_t end_ = kUnknown;
  bool endIsFound_ = true;  // else it may lie in a line
};

}  // namespace TextFile
