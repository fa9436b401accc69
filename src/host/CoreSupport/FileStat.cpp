#include "host/CoreSupport/FileStat.h"

namespace quenra {

std::int32_t FileStat::GetFileTime(int kind) const noexcept {
  if (kind < 0 || kind > 2) return 0;
  return static_cast<std::int32_t>(times_[kind]);
}

std::int32_t FileStat::GetFileSize() const noexcept { return static_cast<std::int32_t>(size_); }

std::int64_t FileStat::GetFileSize64() const noexcept { return size_; }

int FileStat::GetFileMode() const noexcept { return mode_; }

}  // namespace quenra
