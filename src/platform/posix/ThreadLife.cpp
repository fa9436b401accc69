#include "platform/ThreadLife.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

bool HasThreadEnded(DWORD id) noexcept {
  // Signal 0 is never delivered: the call only looks whether the process has such a thread.
  const int kept = errno;
  const bool ended =
      ::syscall(SYS_tgkill, ::getpid(), static_cast<pid_t>(id), 0) != 0 && errno == ESRCH;
  errno = kept;
  return ended;
}
