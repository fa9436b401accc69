// A file that one writer at a time fills, in this process or another, and that takes another
// file's place when it is finished.
//
//   ExclusiveFile file;
//   if (!file.OpenToReplace(temporary, target) || !file.Write(bytes) || !file.Replace(target))
//     ...  // file.error(), file.Obstacle()
//
// What replaces a file belongs to whom the old one belonged to: owner, group, mode, access lists,
// other extended attributes and file flags stay (on Windows the security descriptor and the
// attributes). Where they cannot be kept, where the old file has further names (hard links), or
// cannot be renamed over (it is a mount point, or in a folder where only owners rename), the
// finished text is written into the old file instead. What a link leads to is replaced, not the
// link.
//
// Writing into the old file can be ended half-way. The finished file then stays under its temporary
// name, marked as finished, and whoever opens it next to replace the same target first completes
// that; it is never emptied before.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/FileNames.h"

// How long a writer waits for another one, unless it says otherwise. Not a member: on Windows that
// would have to come from the library.
inline constexpr std::chrono::milliseconds kWriterPatience{10000};

class PLATFORM_API ExclusiveFile {
 public:
  // Whether the text may be written into the old file where the old file cannot be replaced.
  enum class InPlace { kRefused, kAllowed };

  ExclusiveFile() = default;
  // A file that has not replaced another is removed.
  ~ExclusiveFile();
  ExclusiveFile(const ExclusiveFile&) = delete;
  ExclusiveFile& operator=(const ExclusiveFile&) = delete;

  // Creates the file, or takes over one that a writer of this user has left behind, and waits for
  // `patience` at most while another writer has it. It is empty then. Refused, and left as it is,
  // is what no writer has made: a link, a file with further names, something that is no regular
  // file. So are what another user has left behind and the finished text of a file that was being
  // written when its writer ended.
  bool Open(const NativeFileName& path, std::chrono::milliseconds patience = kWriterPatience);

  // The same for a file that is going to replace `target`, whose contents nobody else can read
  // meanwhile if `target` exists. Writing into `target` that was ended half-way is completed first,
  // or refused like the rest.
  bool OpenToReplace(const NativeFileName& path, const NativeFileName& target,
                     std::chrono::milliseconds patience = kWriterPatience,
                     InPlace inPlace = InPlace::kAllowed);

  bool Write(std::string_view bytes);

  // Gives the file the name `target`, in one step that also removes a file of that name, or writes
  // its text into that file (see above). A file that may not be written is not replaced. After a
  // failure `target` is as it was; where even that was not to be had, Obstacle() says so and the
  // finished file stays.
  bool Replace(const NativeFileName& target, InPlace inPlace = InPlace::kAllowed);

  // Gives the file the name `target` unless something has that name: MeansTaken(error()).
  bool TakeName(const NativeFileName& target);

  // Why the last call has failed.
  const std::error_code& error() const noexcept { return error_; }

  // A sentence about what was in the way of the last call that has failed, with the file's path
  // and, where the system tells, the process that has it. Empty when error() says it all.
  const std::u16string& Obstacle() const noexcept { return obstacle_; }

  // Renames a finished file unless something has the new name, in one step.
  static std::error_code Move(const NativeFileName& from, const NativeFileName& to);

  // What an error of these calls means. To be asked instead of std::errc: a module with a C++
  // library of its own has categories of its own, and an error from here equals none of them.
  static bool MeansTaken(const std::error_code& error) noexcept;
  static bool MeansMissing(const std::error_code& error) noexcept;
  // Another writer has had the file all the time.
  static bool MeansBusy(const std::error_code& error) noexcept;

 private:
  enum class Attempt { kDone, kAgain, kBusy, kFailed };

  bool Fail(int systemError) noexcept;
  bool Succeed() noexcept;
  bool Refuse(int systemError, std::u16string_view why);
  bool Take(const NativeFileName& path, std::chrono::milliseconds patience);
  Attempt TryToTake(const NativeFileName& path);
  Attempt LookAtLeftOver();
  bool CompleteLeftOver(const NativeFileName& target);
  bool WriteInto(const NativeFileName& target);
  void LetGo() noexcept;

  NativeFileName path_;
  std::error_code error_;
  std::u16string obstacle_;
#ifdef _WIN32
  bool Rename(const NativeFileName& target, bool replace);
  void* handle_ = nullptr;
#else
  int descriptor_ = -1;
  std::string holder_;      // of a file that was busy
  unsigned firstMode_ = 0;  // of the file before it was closed to others; 0 when it was not
#endif
};
