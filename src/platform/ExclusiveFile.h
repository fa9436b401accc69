// A file that one writer at a time fills, in this process or another, and that takes another
// file's place when it is finished.
//
//   ExclusiveFile file;
//   if (!file.Open(temporary) || !file.Write(bytes) || !file.Replace(target)) ...  // file.error()
#pragma once

#include <string_view>
#include <system_error>

#include "platform/FileNames.h"

class PLATFORM_API ExclusiveFile {
 public:
  ExclusiveFile() = default;
  // A file that has not replaced another is removed.
  ~ExclusiveFile();
  ExclusiveFile(const ExclusiveFile&) = delete;
  ExclusiveFile& operator=(const ExclusiveFile&) = delete;

  // Creates the file, or takes over one that a writer has left behind, and waits while another
  // writer has it. It is empty then.
  bool Open(const NativeFileName& path);

  bool Write(std::string_view bytes);

  // Gives the file the name `target`, in one step that also removes a file of that name, whose
  // access rights it takes over. A file that may not be written is not replaced.
  bool Replace(const NativeFileName& target);

  // Gives the file the name `target` unless something has that name: MeansTaken(error()).
  bool TakeName(const NativeFileName& target);

  // Why the last call has failed.
  const std::error_code& error() const noexcept { return error_; }

  // Renames a finished file unless something has the new name, in one step.
  static std::error_code Move(const NativeFileName& from, const NativeFileName& to);

  // What an error of these calls means. To be asked instead of std::errc: a module with a C++
  // library of its own has categories of its own, and an error from here equals none of them.
  static bool MeansTaken(const std::error_code& error) noexcept;
  static bool MeansMissing(const std::error_code& error) noexcept;

 private:
  bool Fail(int systemError) noexcept;

  NativeFileName path_;
  std::error_code error_;
#ifdef _WIN32
  bool Rename(const NativeFileName& target, bool replace);
  void* handle_ = nullptr;
#else
  int descriptor_ = -1;
#endif
};
