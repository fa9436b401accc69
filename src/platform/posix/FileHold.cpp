#include "platform/FileHold.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace {

constexpr std::chrono::milliseconds kRetry{10};
constexpr std::chrono::seconds kLongest{10};

// With whatever right there is: some file systems lock only what is open for writing.
int OpenAnyWay(const char* path) {
  int descriptor = -1;
  for (const int access : {O_RDWR, O_RDONLY, O_WRONLY}) {
    descriptor = ::open(path, access | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor >= 0 || errno == ENOENT) break;
  }
  return descriptor;
}

bool IsRegularFile(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool LeadsTo(const char* path, int descriptor) {
  struct stat open {};
  struct stat named {};
  return ::fstat(descriptor, &open) == 0 && ::stat(path, &named) == 0 &&
         open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

// True as well on a file system without locks.
bool Lock(int descriptor, std::chrono::steady_clock::time_point end) {
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return true;
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(kRetry);
  }
  return true;
}

}  // namespace

FileHold::~FileHold() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

FileHold::Result FileHold::Take(const NativeFileName& path) {
  const auto end = std::chrono::steady_clock::now() + kLongest;
  for (;;) {
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = OpenAnyWay(path.c_str());
    if (descriptor_ < 0) return errno == ENOENT ? Result::kMissing : Result::kUnable;
    if (!IsRegularFile(descriptor_)) return Result::kUnable;
    if (!Lock(descriptor_, end)) return Result::kBusy;
    // Another file may have taken its place while this one was waited for.
    if (LeadsTo(path.c_str(), descriptor_)) return Result::kTaken;
  }
}

bool FileHold::IsAt(const NativeFileName& path) const {
  return descriptor_ >= 0 && LeadsTo(path.c_str(), descriptor_);
}

void FileHold::LetGrow() {
  if (descriptor_ >= 0) ::flock(descriptor_, LOCK_UN);
}
