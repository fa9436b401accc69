#include "platform/ExclusiveFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace {

// Whether `path` still names the file that is open: the writer before may have renamed it.
bool IsSameFile(int descriptor, const std::string& path) {
  struct stat open {};
  struct stat named {};
  return ::fstat(descriptor, &open) == 0 && ::lstat(path.c_str(), &named) == 0 &&
         open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

bool Lock(int descriptor) {
  int result = 0;
  do {
    result = ::flock(descriptor, LOCK_EX);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

// Puts the bytes on the disk, so that a rename never comes before them when the machine stops.
bool Settle(int descriptor) {
  // Some file systems have nothing to settle and say so.
  return ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
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

}  // namespace

bool ExclusiveFile::Fail(int systemError) noexcept {
  error_ = std::error_code(systemError, std::system_category());
  return false;
}

ExclusiveFile::~ExclusiveFile() {
  if (descriptor_ < 0) return;
  // Removed while the lock is held, so a writer that waits finds another file under the name.
  ::unlink(path_.c_str());
  ::close(descriptor_);
}

bool ExclusiveFile::Open(const NativeFileName& path) {
  for (;;) {
    const int descriptor =
        ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
    if (descriptor < 0) return Fail(errno);
    if (!Lock(descriptor)) {
      const int failure = errno;
      ::close(descriptor);
      return Fail(failure);
    }
    if (!IsSameFile(descriptor, path)) {
      ::close(descriptor);
      continue;
    }
    path_ = path;
    descriptor_ = descriptor;
    if (::ftruncate(descriptor_, 0) == 0) return true;
    // The destructor removes the file.
    return Fail(errno);
  }
}

bool ExclusiveFile::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return Fail(errno);
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool ExclusiveFile::Replace(const NativeFileName& target) {
  struct stat old {};
  if (::stat(target.c_str(), &old) == 0) {
    // A rename asks for the folder's rights alone, and would go past the file's own.
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return Fail(errno);
    if (::fchmod(descriptor_, old.st_mode & 07777) != 0) return Fail(errno);
  }
  if (!Settle(descriptor_) || std::rename(path_.c_str(), target.c_str()) != 0) return Fail(errno);
  ::close(descriptor_);
  descriptor_ = -1;
  return true;
}

bool ExclusiveFile::TakeName(const NativeFileName& target) {
  if (!Settle(descriptor_) || !RenameToFree(path_, target)) return Fail(errno);
  ::close(descriptor_);
  descriptor_ = -1;
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
