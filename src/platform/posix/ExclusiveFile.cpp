#include "platform/ExclusiveFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <thread>

#include "platform/posix/FileRights.h"

namespace {

using std::chrono::milliseconds;

// Says of a temporary file that it is finished, and that its text is being written into another
// one. On a file that is no folder the system gives the bit no meaning, and a writer that fills a
// file does not set it.
constexpr mode_t kFinished = S_ISVTX;
constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

// A file beyond this is not brought back when writing into it fails; the finished text stays.
constexpr off_t kLargestKept = 16 * 1024 * 1024;

// Whether `path` still names the file that is open: the writer before may have renamed it.
bool IsSameFile(int descriptor, const std::string& path) {
  struct stat open {};
  struct stat named {};
  return ::fstat(descriptor, &open) == 0 && ::lstat(path.c_str(), &named) == 0 &&
         open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

bool TryToLock(int descriptor) {
  int result = 0;
  do {
    result = ::flock(descriptor, LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

// Puts the bytes on the disk, so that a rename never comes before them when the machine stops.
bool Settle(int descriptor) {
  // Some file systems have nothing to settle and say so.
  return ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
}

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

// At most `limit` bytes from the start of the file.
bool ReadUpTo(int descriptor, std::size_t limit, std::string& bytes) {
  bytes.resize(limit);
  std::size_t size = 0;
  while (size < limit) {
    const ssize_t count =
        ::pread(descriptor, bytes.data() + size, limit - size, static_cast<off_t>(size));
    if (count < 0 && errno != EINTR) return false;
    if (count == 0) break;
    if (count > 0) size += static_cast<std::size_t>(count);
  }
  bytes.resize(size);
  return true;
}

bool ReadAll(int descriptor, std::string& bytes) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 &&
         ReadUpTo(descriptor, static_cast<std::size_t>(status.st_size), bytes);
}

// Lets the file end at `start` and goes on with `bytes` there.
bool WriteFrom(int descriptor, std::size_t start, std::string_view bytes) {
  struct stat status {};
  const auto offset = static_cast<off_t>(start);
  return ::fstat(descriptor, &status) == 0 &&
         (status.st_size == offset || ::ftruncate(descriptor, offset) == 0) &&
         ::lseek(descriptor, offset, SEEK_SET) == offset && WriteAll(descriptor, bytes) &&
         Settle(descriptor);
}

bool RenameToFree(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  // A file system without that flag: a link fails when the name is taken.
  if (::link(from.c_str(), to.c_str()) == 0) return ::unlink(from.c_str()) == 0;
  if (errno != EPERM && errno != ENOTSUP) return false;
  struct stat taken {};
  if (::lstat(to.c_str(), &taken) == 0) {
    errno = EEXIST;
    return false;
  }
  return std::rename(from.c_str(), to.c_str()) == 0;
}

// What the path leads to, when it is a link that leads to something.
std::string Resolved(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
  char* const real = ::realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  std::string resolved = real;
  std::free(real);
  return resolved;
}

// A descriptor that is closed at the end of a scope.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const noexcept { return number_; }

 private:
  int number_;
};

// A file that has a name already, to be written into.
int OpenOld(const std::string& path) {
  return ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
}

// Whether a rename over a file failed in a way in which writing into it may not.
bool MayStillBeWritten(int renameError) {
  return renameError == EBUSY || renameError == EXDEV || renameError == EPERM ||
         renameError == EACCES;
}

// The number of the process that has the file locked, as the system lists it; empty when it cannot
// be told.
std::string HolderOf(int descriptor) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) return {};
  char file[64];
  std::snprintf(file, sizeof file, "%02x:%02x:%llu", major(status.st_dev), minor(status.st_dev),
                static_cast<unsigned long long>(status.st_ino));
  const std::string inode = std::string(file).substr(std::string_view(file).rfind(':'));
  std::ifstream locks("/proc/locks");
  std::string alike;
  for (std::string line; std::getline(locks, line);) {
    // 1: FLOCK  ADVISORY  WRITE 4711 08:01:1234 0 EOF
    std::istringstream words(line);
    std::string number;
    std::string kind;
    std::string mode;
    std::string access;
    std::string process;
    std::string place;
    words >> number >> kind >> mode >> access >> process >> place;
    if (kind != "FLOCK" || process.find_first_not_of("0123456789") != std::string::npos ||
        process == "0")
      continue;
    if (place == file) return process;
    // Some file systems have another device number here than in a file's status.
    if (place.ends_with(inode)) alike = process;
  }
  return alike;
}

std::u16string Words(std::string_view text) { return FileNameFromNative(NativeFileName(text)); }

}  // namespace

// ---------------------------------------------------------------------------------------------
// Failures
// ---------------------------------------------------------------------------------------------

bool ExclusiveFile::Fail(int systemError) noexcept {
  error_ = std::error_code(systemError, std::system_category());
  obstacle_.clear();
  return false;
}

bool ExclusiveFile::Succeed() noexcept {
  error_.clear();
  obstacle_.clear();
  return true;
}

bool ExclusiveFile::Refuse(int systemError, std::u16string_view why) {
  Fail(systemError);
  obstacle_ = FileNameFromNative(path_) + std::u16string(why);
  return false;
}

// ---------------------------------------------------------------------------------------------
// Opening
// ---------------------------------------------------------------------------------------------

ExclusiveFile::~ExclusiveFile() {
  if (descriptor_ < 0) return;
  // Removed while the lock is held, so a writer that waits finds another file under the name.
  ::unlink(path_.c_str());
  ::close(descriptor_);
}

// Closes the file and leaves it where it is.
void ExclusiveFile::LetGo() noexcept {
  ::close(descriptor_);
  descriptor_ = -1;
}

ExclusiveFile::Attempt ExclusiveFile::TryToTake(const NativeFileName& path) {
  struct stat named {};
  const bool exists = ::lstat(path.c_str(), &named) == 0;
  // Looked at before it is opened: opening a pipe or a device may do something.
  if (exists && S_ISLNK(named.st_mode)) {
    Refuse(ELOOP, u" is a link");
    return Attempt::kFailed;
  }
  if (exists && S_ISDIR(named.st_mode)) {
    Fail(EISDIR);
    return Attempt::kFailed;
  }
  if (exists && !S_ISREG(named.st_mode)) {
    Refuse(EINVAL, u" is no regular file");
    return Attempt::kFailed;
  }
  constexpr int kFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const int descriptor =
      exists ? ::open(path.c_str(), kFlags) : ::open(path.c_str(), kFlags | O_CREAT | O_EXCL, 0666);
  if (descriptor < 0) {
    const int failure = errno;
    Fail(failure);
    if (exists ? failure == ENOENT : failure == EEXIST) return Attempt::kAgain;
    // That of another user who is writing may be closed to this one.
    return exists && failure == EACCES ? Attempt::kBusy : Attempt::kFailed;
  }
  if (!TryToLock(descriptor)) {
    const int failure = errno;
    if (failure == EWOULDBLOCK) holder_ = HolderOf(descriptor);
    ::close(descriptor);
    Fail(failure == EWOULDBLOCK ? EBUSY : failure);
    return failure == EWOULDBLOCK ? Attempt::kBusy : Attempt::kFailed;
  }
  if (!IsSameFile(descriptor, path)) {
    ::close(descriptor);
    return Attempt::kAgain;
  }
  descriptor_ = descriptor;
  return exists ? LookAtLeftOver() : Attempt::kDone;
}

// What stands under the name and is nobody's now: left behind by a writer, or somebody's own.
ExclusiveFile::Attempt ExclusiveFile::LookAtLeftOver() {
  struct stat status {};
  ::fstat(descriptor_, &status);
  const bool isOwn = status.st_uid == ::geteuid();
  if (status.st_nlink > 1) {
    Refuse(EMLINK, u" is one of several names of a file");
  } else if (!isOwn && status.st_size != 0) {
    Refuse(EACCES, u" belongs to another user, who has left it behind");
  } else if ((status.st_mode & kFinished) == 0) {
    // A new one has the rights that new files have in the folder.
    if (::unlink(path_.c_str()) != 0) return Attempt::kDone;
    LetGo();
    return Attempt::kAgain;
  } else {
    return Attempt::kDone;
  }
  LetGo();
  return Attempt::kFailed;
}

bool ExclusiveFile::Take(const NativeFileName& path, milliseconds patience) {
  using Clock = std::chrono::steady_clock;
  constexpr milliseconds kLongestPause{10};
  path_ = path;
  holder_.clear();
  firstMode_ = 0;
  // Without a pause, since the name has just become free; but not for ever: where each look takes
  // long, others may be quicker every time.
  constexpr int kLeastRounds = 10;
  constexpr int kMostRounds = 1000;
  const Clock::time_point end = Clock::now() + patience;
  std::chrono::microseconds pause{100};
  for (int rounds = 0;;) {
    const Attempt attempt = TryToTake(path);
    if (attempt == Attempt::kDone) return Succeed();
    if (attempt == Attempt::kFailed) return false;
    if (attempt == Attempt::kAgain && ++rounds < kMostRounds &&
        (rounds < kLeastRounds || Clock::now() < end))
      continue;
    if (Clock::now() >= end) break;
    // The system wakes nobody who waits for a limited time.
    std::this_thread::sleep_for(pause);
    pause = std::min<std::chrono::microseconds>(2 * pause, kLongestPause);
  }
  if (error_.value() == EACCES) return Refuse(EACCES, u" cannot be opened, and stays where it is");
  return Refuse(EBUSY, holder_.empty() ? u" is in use by another process"
                                       : u" is in use by process " + Words(holder_));
}

bool ExclusiveFile::Open(const NativeFileName& path, milliseconds patience) {
  return OpenToReplace(path, {}, patience, InPlace::kRefused);
}

bool ExclusiveFile::OpenToReplace(const NativeFileName& path, const NativeFileName& target,
                                  milliseconds patience, InPlace inPlace) {
  if (!Take(path, patience)) return false;
  struct stat status {};
  if (::fstat(descriptor_, &status) == 0 && (status.st_mode & kFinished) != 0) {
    if (target.empty() || inPlace == InPlace::kRefused) {
      Refuse(EBUSY,
             u" holds the finished text of a file that was being written when its writer "
             u"ended");
      LetGo();
      return false;
    }
    if (!CompleteLeftOver(target)) {
      LetGo();
      return false;
    }
  }
  // The destructor removes the file if this fails.
  if (::ftruncate(descriptor_, 0) != 0) return Fail(errno);
  struct stat old {};
  if (target.empty() || ::stat(target.c_str(), &old) != 0) return true;
  firstMode_ = status.st_mode & 07777;
  return ::fchmod(descriptor_, kOwnerOnly) == 0 || Fail(errno);
}

bool ExclusiveFile::Write(std::string_view bytes) {
  return WriteAll(descriptor_, bytes) || Fail(errno);
}

// ---------------------------------------------------------------------------------------------
// Replacing
// ---------------------------------------------------------------------------------------------

bool ExclusiveFile::Replace(const NativeFileName& target, InPlace inPlace) {
  const std::string path = Resolved(target);
  struct stat old {};
  const bool exists = ::stat(path.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) return Fail(errno);
  if (exists && !S_ISREG(old.st_mode)) return Fail(S_ISDIR(old.st_mode) ? EISDIR : EINVAL);
  // A rename asks for the folder's rights alone, and would go past the file's own.
  if (exists && ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return Fail(errno);
  if (!exists && firstMode_ != 0 && ::fchmod(descriptor_, firstMode_) != 0) return Fail(errno);
  const bool isKept = !exists || (old.st_nlink == 1 && TakeOverRights(path, old, descriptor_));
  if (!Settle(descriptor_)) return Fail(errno);
  if (isKept) {
    if (std::rename(path_.c_str(), path.c_str()) == 0) {
      LetGo();
      return true;
    }
    const int failure = errno;
    Fail(failure);
    if (!exists || !MayStillBeWritten(failure)) return false;
  } else {
    Fail(EPERM);
  }
  if (inPlace == InPlace::kRefused)
    return Refuse(error_.value(), u" cannot replace the file without changing whose it is");
  return WriteInto(path);
}

// The file is cut where old and new text part, and goes on from there: whatever ends the writing
// half-way, it then begins as the finished text does, and CompleteLeftOver can tell.
bool ExclusiveFile::WriteInto(const NativeFileName& target) {
  const Descriptor old(OpenOld(target));
  struct stat status {};
  std::string text;
  std::string before;
  if (old.get() < 0 || ::fstat(old.get(), &status) != 0 || !ReadAll(descriptor_, text))
    return Fail(errno);
  const bool canBeBroughtBack = status.st_size <= kLargestKept;
  const auto oldSize = static_cast<std::size_t>(status.st_size);
  if (!ReadUpTo(old.get(), canBeBroughtBack ? oldSize : text.size(), before)) return Fail(errno);
  const auto part = std::mismatch(text.begin(), text.end(), before.begin(), before.end());
  const auto same = static_cast<std::size_t>(part.first - text.begin());
  // A full disk is found out before anything is cut.
  if (text.size() > oldSize &&
      ::fallocate(old.get(), FALLOC_FL_KEEP_SIZE, status.st_size,
                  static_cast<off_t>(text.size() - oldSize)) != 0 &&
      (errno == ENOSPC || errno == EDQUOT || errno == EFBIG))
    return Fail(errno);
  struct stat marked {};
  if (::fchmod(descriptor_, kOwnerOnly | kFinished) != 0 || !Settle(descriptor_))
    return Fail(errno);
  if (::fstat(descriptor_, &marked) != 0 || (marked.st_mode & kFinished) == 0) return Fail(ENOTSUP);

  if (!WriteFrom(old.get(), same, std::string_view(text).substr(same))) {
    const int failure = errno;
    if (!canBeBroughtBack || !WriteFrom(old.get(), same, std::string_view(before).substr(same))) {
      Refuse(failure, u" holds the finished text of a file that could not be written to its end");
      LetGo();
      return false;
    }
    return Fail(failure);
  }
  // One that cannot be removed is no longer looked at when it is found.
  ::fchmod(descriptor_, kOwnerOnly);
  ::unlink(path_.c_str());
  LetGo();
  return Succeed();
}

// A file that writing into it has left half-way begins as the finished text does; zeros may stand
// behind that after a machine has stopped. Any other has not been touched yet, or was changed
// since.
bool ExclusiveFile::CompleteLeftOver(const NativeFileName& target) {
  const Descriptor old(OpenOld(Resolved(target)));
  std::string text;
  std::string found;
  struct stat status {};
  if (old.get() < 0 || ::fstat(old.get(), &status) != 0 || !ReadAll(descriptor_, text))
    return Refuse(errno, u" holds the finished text of a file that cannot be opened");
  if (!ReadUpTo(old.get(), static_cast<std::size_t>(std::min(status.st_size, kLargestKept)), found))
    return Fail(errno);
  const std::string_view written =
      std::string_view(found).substr(0, found.find_last_not_of('\0') + 1);
  const bool isHalfWay = status.st_size <= kLargestKept && text.starts_with(written);
  if (isHalfWay &&
      !WriteFrom(old.get(), written.size(), std::string_view(text).substr(written.size())))
    return Refuse(errno, u" holds the finished text of a file that cannot be written");
  return ::fchmod(descriptor_, kOwnerOnly) == 0 || Fail(errno);
}

bool ExclusiveFile::TakeName(const NativeFileName& target) {
  if (firstMode_ != 0 && ::fchmod(descriptor_, firstMode_) != 0) return Fail(errno);
  if (!Settle(descriptor_) || !RenameToFree(path_, target)) return Fail(errno);
  LetGo();
  return true;
}

std::error_code ExclusiveFile::Move(const NativeFileName& from, const NativeFileName& to) {
  return RenameToFree(from, to) ? std::error_code()
                                : std::error_code(errno, std::system_category());
}

bool ExclusiveFile::MeansTaken(const std::error_code& error) noexcept {
  return error.value() == EEXIST;
}

bool ExclusiveFile::MeansMissing(const std::error_code& error) noexcept {
  return error.value() == ENOENT;
}

bool ExclusiveFile::MeansBusy(const std::error_code& error) noexcept {
  return error.value() == EBUSY;
}
