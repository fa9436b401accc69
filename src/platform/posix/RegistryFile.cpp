#include "platform/posix/RegistryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <string>

#include "platform/ExclusiveFile.h"
#include "platform/FileNames.h"

namespace {

constexpr LSTATUS kDone = static_cast<LSTATUS>(ERROR_SUCCESS);

// A thousand times of what one data source writes. Each change reads and writes the whole file.
constexpr std::size_t kGreatestFile = 1024 * 1024;

const char* Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != 0 ? value : nullptr;
}

// Empty when the environment names no folder of the user's.
std::string RegistryPath() {
  if (const char* const file = Environment("QUENRA_REGISTRY")) return file;
  // The standard ignores a relative one.
  const char* const folder = Environment("XDG_CONFIG_HOME");
  if (folder != nullptr && folder[0] == '/') return std::string(folder) + "/quenra/registry";
  const char* const home = Environment("HOME");
  return home != nullptr ? std::string(home) + "/.config/quenra/registry" : std::string();
}

LSTATUS ErrorOf(int systemError) {
  switch (systemError) {
    case EACCES:
    case EPERM:
    case EROFS:
      return static_cast<LSTATUS>(ERROR_ACCESS_DENIED);
    case ENOENT:
    case ENOTDIR:
      return static_cast<LSTATUS>(ERROR_PATH_NOT_FOUND);
    case EBUSY:
      return static_cast<LSTATUS>(ERROR_SHARING_VIOLATION);
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return static_cast<LSTATUS>(ERROR_DISK_FULL);
    default:
      return static_cast<LSTATUS>(ERROR_REGISTRY_IO_FAILED);
  }
}

// The folders of the file, for the user alone as the standard wants it.
void MakeFolders(const std::string& file) {
  for (std::size_t slash = file.find('/', 1); slash != std::string::npos;
       slash = file.find('/', slash + 1))
    ::mkdir(file.substr(0, slash).c_str(), 0700);
}

// Closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) noexcept : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Get() const noexcept { return number_; }

 private:
  const int number_;
};

// Up to kGreatestFile bytes and one more.
LSTATUS ReadBytes(int descriptor, std::string& bytes) {
  bytes.resize(kGreatestFile + 1);
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno != EINTR) return ErrorOf(errno);
    if (count == 0) break;
    if (count > 0) size += static_cast<std::size_t>(count);
  }
  bytes.resize(size);
  return size <= kGreatestFile ? kDone : static_cast<LSTATUS>(ERROR_FILE_TOO_LARGE);
}

LSTATUS ReadFile(const std::string& path, RegistryKey& root) {
  // Asked before the file is opened, since opening a device may set it going, and again then: a
  // pipe that has taken the file's place meanwhile must not make the caller wait.
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return errno == ENOENT ? kDone : ErrorOf(errno);
  if (!S_ISREG(status.st_mode)) return static_cast<LSTATUS>(ERROR_BAD_FILE_TYPE);
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (file.Get() < 0) return errno == ENOENT ? kDone : ErrorOf(errno);
  if (::fstat(file.Get(), &status) != 0) return ErrorOf(errno);
  if (!S_ISREG(status.st_mode)) return static_cast<LSTATUS>(ERROR_BAD_FILE_TYPE);
  std::string bytes;
  const LSTATUS result = ReadBytes(file.Get(), bytes);
  if (result != kDone) return result;
  const bool understood = ParseRegistry(FileNameFromNative(bytes), root);
  return understood ? kDone : static_cast<LSTATUS>(ERROR_REGISTRY_CORRUPT);
}

// Waits for others. Whoever makes many changes, one after another, waits once only: a change that
// follows one that waited in vain does not wait again.
bool TakeHold(ExclusiveFile& file, const std::string& path) {
  using Clock = std::chrono::steady_clock;
  static std::atomic<Clock::rep> lastBusy = Clock::time_point::min().time_since_epoch().count();
  const Clock::time_point last{Clock::duration(lastBusy.load())};
  const bool hasWaited = last != Clock::time_point::min() && Clock::now() - last < kWriterPatience;
  const auto patience = hasWaited ? std::chrono::milliseconds(0) : kWriterPatience;
  if (file.OpenToReplace(path + ".new", path, patience)) return true;
  if (ExclusiveFile::MeansBusy(file.error())) lastBusy = Clock::now().time_since_epoch().count();
  return false;
}

}  // namespace

LSTATUS ReadRegistry(RegistryKey& root) {
  const std::string path = RegistryPath();
  return path.empty() ? static_cast<LSTATUS>(ERROR_PATH_NOT_FOUND) : ReadFile(path, root);
}

LSTATUS UpdateRegistry(const std::function<LSTATUS(RegistryKey& root)>& change) {
  const std::string path = RegistryPath();
  if (path.empty()) return static_cast<LSTATUS>(ERROR_PATH_NOT_FOUND);
  MakeFolders(path);
  ExclusiveFile file;
  if (!TakeHold(file, path)) return ErrorOf(file.error().value());
  RegistryKey root;
  LSTATUS result = ReadFile(path, root);
  if (result == kDone) result = change(root);
  if (result != kDone) return result;
  const std::string bytes = RegistryText(root);
  if (bytes.size() > kGreatestFile) return static_cast<LSTATUS>(ERROR_FILE_TOO_LARGE);
  if (!file.Write(bytes) || !file.Replace(path)) return ErrorOf(file.error().value());
  return result;
}
