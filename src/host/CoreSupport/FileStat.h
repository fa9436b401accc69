// Size, times and access mode of one file.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/HostApi.h"

namespace quenra {

// Asks the system once, when it is made. A file that cannot be asked about has zeros everywhere.
class FileStat {
 public:
  QUENRA_HOST_API explicit FileStat(std::u16string_view path) noexcept;

  // Seconds since 1970-01-01 UTC. kind 0: creation (where the system keeps it, else the last
  // change of status), 1: last access, 2: last modification; any other kind gives 0.
  QUENRA_HOST_API std::int32_t GetFileTime(int kind) const noexcept;

  // The low 32 bits of the size in bytes.
  QUENRA_HOST_API std::int32_t GetFileSize() const noexcept;
  QUENRA_HOST_API std::int64_t GetFileSize64() const noexcept;

  // 4 when the calling process may read the file, plus 2 when it may write it.
  QUENRA_HOST_API int GetFileMode() const noexcept;

 private:
  std::int64_t size_ = 0;
  std::int64_t times_[3] = {0, 0, 0};
  int mode_ = 0;
};

}  // namespace quenra
