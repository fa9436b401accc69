// A file of bytes that is open: read at any place, or added to by one writer at a time.
//
//   RegularFile file;
//   if (!file.Open(path, RegularFile::Access::kAppend) || !file.Lock()) ...  // file.error()
//   if (file.Append(rows) != RegularFile::Appended::kWhole) ...
//   file.Unlock();
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "platform/FileNames.h"

class PLATFORM_API RegularFile {
 public:
  enum class Access : std::uint8_t { kRead, kAppend };  // both can read

  // What has become of bytes that were handed to the system. Those that it took a part of are taken
  // back, unless somebody else has written behind them meanwhile, or the system refuses.
  enum class Appended : std::uint8_t { kWhole, kTakenBack, kPartly };

  RegularFile() = default;
  ~RegularFile();
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;

  // Opens a file that is there, or what a link leads to. Anything but a regular file is refused,
  // whatever has the name by then: to open a pipe may take for ever, and a device may have no end.
  bool Open(const NativeFileName& path, Access access);
  bool IsOpen() const noexcept;
  void Close() noexcept;

  // Whether `path` leads to this file, by links or not.
  bool IsAt(const NativeFileName& path) const noexcept;

  // In bytes; nothing is known after a failure.
  bool Size(std::uint64_t& size) noexcept;

  // Reads `count` bytes, fewer at the end of the file; -1 after a failure.
  std::ptrdiff_t ReadAt(std::uint64_t offset, char* bytes, std::size_t count) noexcept;

  // Keeps every other writer that asks for the lock away, in this process or another. Waits at most
  // ten seconds; MeansBusy(error()) when another has it all the while. A file system without locks
  // gives none and is no failure. Held until Unlock or Close.
  bool Lock() noexcept;
  void Unlock() noexcept;

  // Writes behind the end of the file.
  Appended Append(std::string_view bytes) noexcept;
  // Cuts the file.
  bool CutTo(std::uint64_t size) noexcept;

  // Why the last call has failed, Append among them.
  const std::error_code& error() const noexcept { return error_; }
  static bool MeansBusy(const std::error_code& error) noexcept;

 private:
  bool Fail(int systemError) noexcept;

  std::error_code error_;
#ifdef _WIN32
  void* handle_ = nullptr;
#else
  int descriptor_ = -1;
#endif
};
