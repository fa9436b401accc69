#include "platform/RegularFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace {

// Ten seconds: a writer holds the lock for the time of one write.
constexpr std::chrono::seconds kLongestWait{10};
constexpr std::chrono::milliseconds kPause{2};

}  // namespace

bool RegularFile::Fail(int systemError) noexcept {
  error_ = std::error_code(systemError, std::system_category());
  return false;
}

RegularFile::~RegularFile() { Close(); }

bool RegularFile::IsOpen() const noexcept { return descriptor_ >= 0; }

void RegularFile::Close() noexcept {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

bool RegularFile::Open(const NativeFileName& path, Access access) {
  Close();
  const int flags = access == Access::kRead ? O_RDONLY : O_RDWR | O_APPEND;
  // Without O_NONBLOCK a pipe would be waited for here, before it is known to be one.
  do {
    descriptor_ = ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  } while (descriptor_ < 0 && errno == EINTR);
  if (descriptor_ < 0) return Fail(errno);
  struct stat status {};
  const bool known = ::fstat(descriptor_, &status) == 0;
  if (known && S_ISREG(status.st_mode)) return true;
  Fail(!known ? errno : S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
  Close();
  return false;
}

bool RegularFile::IsAt(const NativeFileName& path) const noexcept {
  struct stat open {};
  struct stat named {};
  return descriptor_ >= 0 && ::fstat(descriptor_, &open) == 0 &&
         ::stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
         open.st_ino == named.st_ino;
}

bool RegularFile::Size(std::uint64_t& size) noexcept {
  struct stat status {};
  if (::fstat(descriptor_, &status) != 0) return Fail(errno);
  size = static_cast<std::uint64_t>(status.st_size);
  return true;
}

std::ptrdiff_t RegularFile::ReadAt(std::uint64_t offset, char* bytes, std::size_t count) noexcept {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got =
        ::pread(descriptor_, bytes + done, count - done, static_cast<off_t>(offset + done));
    if (got == 0) break;
    if (got > 0) {
      done += static_cast<std::size_t>(got);
    } else if (errno != EINTR) {
      Fail(errno);
      return -1;
    }
  }
  return static_cast<std::ptrdiff_t>(done);
}

bool RegularFile::Lock() noexcept {
  const auto end = std::chrono::steady_clock::now() + kLongestWait;
  while (::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    // Not a word of other writers: the file system has no locks.
    if (errno != EWOULDBLOCK) return true;
    if (std::chrono::steady_clock::now() >= end) return Fail(EWOULDBLOCK);
    std::this_thread::sleep_for(kPause);
  }
  return true;
}

void RegularFile::Unlock() noexcept { ::flock(descriptor_, LOCK_UN); }

RegularFile::Appended RegularFile::Append(std::string_view bytes) noexcept {
  std::uint64_t before = 0;
  if (!Size(before)) return Appended::kTakenBack;
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = ::write(descriptor_, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) break;
    done += static_cast<std::size_t>(count);
  }
  if (done == bytes.size()) return Appended::kWhole;
  Fail(errno);
  const std::error_code reason = error_;
  // Not every program asks for the lock: behind the bytes of another one nothing is cut.
  std::uint64_t after = 0;
  const bool isBack = done == 0 || (Size(after) && after == before + done && CutTo(before));
  error_ = reason;
  return isBack ? Appended::kTakenBack : Appended::kPartly;
}

bool RegularFile::CutTo(std::uint64_t size) noexcept {
  return ::ftruncate(descriptor_, static_cast<off_t>(size)) == 0 || Fail(errno);
}

bool RegularFile::MeansBusy(const std::error_code& error) noexcept {
  return error.value() == EWOULDBLOCK;
}
