// Stands between the program and the system's calls that change files, and lets one of them be the
// last one or fail.
//
// The environment says which: FAULT_AT=3 is the third such call of the process; with
// FAULT_MODE=kill the process ends before it is made (exit code 99), with FAULT_MODE=fail it is
// answered with "no space left on device", and with FAULT_MODE=fail-on so are all later ones. A
// process that ends by itself before its fault has come exits with 42, so that a test knows when it
// has been through all of them. FAULT_DELAY=800 has each call wait for up to 800 microseconds
// instead, now and then 16 times as long, differently in each process, so that processes come in
// between each other's steps. FAULT_STATUS=schema.ini has the system refuse to tell the status of
// files of that name, with "input/output error". Definitions in a program take the place of the
// libraries' own, also for the other libraries.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string_view>

#define SEEN_BY_LIBRARIES extern "C" __attribute__((visibility("default")))

namespace {

long calls = 0;
bool reached = false;

long FaultAt() {
  static const char* const value = std::getenv("FAULT_AT");
  return value == nullptr ? 0 : std::strtol(value, nullptr, 10);
}

unsigned long LongestDelay() {
  static const char* const value = std::getenv("FAULT_DELAY");
  return value == nullptr ? 0 : std::strtoul(value, nullptr, 10);
}

bool Kills() {
  static const char* const value = std::getenv("FAULT_MODE");
  return value == nullptr || std::strcmp(value, "kill") == 0;
}

// Mostly short, now and then long enough for all that another process does.
void Delay() {
  if (LongestDelay() == 0) return;
  static std::minstd_rand random(static_cast<unsigned>(::getpid()));
  const unsigned long delay = random() % LongestDelay();
  ::usleep(static_cast<useconds_t>(random() % 8 == 0 ? 16 * delay : delay));
}

bool FailsOn() {
  static const char* const value = std::getenv("FAULT_MODE");
  return value != nullptr && std::strcmp(value, "fail-on") == 0;
}

// True when nothing is to be told of that file.
bool HidesStatusOf(const char* path) {
  static const char* const name = std::getenv("FAULT_STATUS");
  if (name == nullptr || path == nullptr) return false;
  const std::string_view whole(path);
  if (!whole.ends_with(name)) return false;
  errno = EIO;
  return true;
}

// True when this call is to fail.
bool Fault() {
  Delay();
  if (++calls != FaultAt() && !(reached && FailsOn())) return false;
  reached = true;
  if (Kills()) ::_exit(99);
  errno = ENOSPC;
  return true;
}

struct EndOfProcess {
  ~EndOfProcess() {
    if (FaultAt() != 0 && !reached) ::_exit(42);
  }
} endOfProcess;

bool Writes(int flags) { return (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0; }

template <class... Arguments>
int Call(long number, Arguments... arguments) {
  if (Fault()) return -1;
  return static_cast<int>(::syscall(number, arguments...));
}

int OpenAt(int folder, const char* path, int flags, unsigned mode) {
  if (Writes(flags) && Fault()) return -1;
  return static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}

FILE* OpenStream(const char* function, const char* path, const char* mode) {
  using Function = FILE* (*)(const char*, const char*);
  if (std::strpbrk(mode, "wa+") != nullptr && Fault()) return nullptr;
  return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, function))(path, mode);
}

}  // namespace

// The parameters of the system have names that are not for programs.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
#define OPEN_MODE(last)                         \
  va_list more;                                 \
  va_start(more, last);                         \
  const unsigned mode = va_arg(more, unsigned); \
  va_end(more)

SEEN_BY_LIBRARIES int open(const char* path, int flags, ...) {
  OPEN_MODE(flags);
  return OpenAt(AT_FDCWD, path, flags, mode);
}
SEEN_BY_LIBRARIES int open64(const char* path, int flags, ...) {
  OPEN_MODE(flags);
  return OpenAt(AT_FDCWD, path, flags, mode);
}
SEEN_BY_LIBRARIES int openat(int folder, const char* path, int flags, ...) {
  OPEN_MODE(flags);
  return OpenAt(folder, path, flags, mode);
}
SEEN_BY_LIBRARIES int stat(const char* path, struct stat* status) noexcept {
  if (HidesStatusOf(path)) return -1;
  return static_cast<int>(::syscall(SYS_newfstatat, AT_FDCWD, path, status, 0));
}
SEEN_BY_LIBRARIES int lstat(const char* path, struct stat* status) noexcept {
  if (HidesStatusOf(path)) return -1;
  return static_cast<int>(::syscall(SYS_newfstatat, AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW));
}
SEEN_BY_LIBRARIES int statx(int folder, const char* path, int flags, unsigned mask,
                            struct statx* status) noexcept {
  if (HidesStatusOf(path)) return -1;
  return static_cast<int>(::syscall(SYS_statx, folder, path, flags, mask, status));
}
SEEN_BY_LIBRARIES FILE* fopen(const char* path, const char* mode) {
  return OpenStream("fopen", path, mode);
}
SEEN_BY_LIBRARIES FILE* fopen64(const char* path, const char* mode) {
  return OpenStream("fopen64", path, mode);
}
SEEN_BY_LIBRARIES ssize_t write(int descriptor, const void* bytes, size_t size) {
  if (descriptor > 2 && Fault()) return -1;
  return ::syscall(SYS_write, descriptor, bytes, size);
}
SEEN_BY_LIBRARIES ssize_t writev(int descriptor, const iovec* parts, int count) {
  if (descriptor > 2 && Fault()) return -1;
  return ::syscall(SYS_writev, descriptor, parts, count);
}
SEEN_BY_LIBRARIES int rename(const char* from, const char* to) noexcept {
  return Call(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}
SEEN_BY_LIBRARIES int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                                unsigned flags) noexcept {
  return Call(SYS_renameat2, fromFolder, from, toFolder, to, flags);
}
SEEN_BY_LIBRARIES int link(const char* from, const char* to) noexcept {
  return Call(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0);
}
SEEN_BY_LIBRARIES int unlink(const char* path) noexcept {
  return Call(SYS_unlinkat, AT_FDCWD, path, 0);
}
SEEN_BY_LIBRARIES int unlinkat(int folder, const char* path, int flags) noexcept {
  return Call(SYS_unlinkat, folder, path, flags);
}
SEEN_BY_LIBRARIES int ftruncate(int descriptor, off_t size) noexcept {
  return Call(SYS_ftruncate, descriptor, size);
}
SEEN_BY_LIBRARIES int ftruncate64(int descriptor, off64_t size) noexcept {
  return Call(SYS_ftruncate, descriptor, size);
}
SEEN_BY_LIBRARIES int truncate(const char* path, off_t size) noexcept {
  return Call(SYS_truncate, path, size);
}
SEEN_BY_LIBRARIES int truncate64(const char* path, off64_t size) noexcept {
  return Call(SYS_truncate, path, size);
}
// A disk takes longer than the delays, and nobody looks at it then.
SEEN_BY_LIBRARIES int fsync(int descriptor) {
  if (LongestDelay() == 0) return Call(SYS_fsync, descriptor);
  return Fault() ? -1 : 0;
}
SEEN_BY_LIBRARIES int fallocate(int descriptor, int mode, off_t start, off_t size) {
  return Call(SYS_fallocate, descriptor, mode, start, size);
}
SEEN_BY_LIBRARIES int fchown(int descriptor, uid_t user, gid_t group) noexcept {
  return Call(SYS_fchown, descriptor, user, group);
}
SEEN_BY_LIBRARIES int fchmod(int descriptor, mode_t mode) noexcept {
  return Call(SYS_fchmod, descriptor, mode);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
