// FileStat elsewhere than on Windows.
#include "host/CoreSupport/FileStat.h"

#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/FileNames.h"

namespace quenra {

FileStat::FileStat(std::u16string_view path) noexcept try {
  // A zero would cut the name short, and another file would be asked about.
  if (path.empty() || path.find(u'\0') != std::u16string_view::npos) return;
  const NativeFileName name = NativeFromFileName(path);
  struct statx status = {};
  if (::statx(AT_FDCWD, name.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) return;
  size_ = static_cast<std::int64_t>(status.stx_size);
  const bool hasCreation = (status.stx_mask & STATX_BTIME) != 0;
  times_[0] = hasCreation ? status.stx_btime.tv_sec : status.stx_ctime.tv_sec;
  times_[1] = status.stx_atime.tv_sec;
  times_[2] = status.stx_mtime.tv_sec;
  if (::access(name.c_str(), R_OK) == 0) mode_ |= 4;
  if (::access(name.c_str(), W_OK) == 0) mode_ |= 2;
} catch (...) {
  // Out of memory: as a file that cannot be asked about.
}

}  // namespace quenra

#endif
