// FileStat on Windows.
#include "host/CoreSupport/FileStat.h"

#ifdef _WIN32

#include <io.h>

#include "platform/FileNames.h"

namespace quenra {
namespace {

// File times count 100 ns from 1601-01-01 UTC.
std::int64_t UnixSeconds(const FILETIME& time) noexcept {
  const std::int64_t ticks = static_cast<std::int64_t>(
      (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime);
  return ticks / 10'000'000 - 11'644'473'600;
}

}  // namespace

FileStat::FileStat(std::u16string_view path) noexcept try {
  // A zero would cut the name short, and another file would be asked about.
  if (path.empty() || path.find(u'\0') != std::u16string_view::npos) return;
  const NativeFileName name = NativeFromFileName(path);
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!::GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &data)) return;
  size_ = static_cast<std::int64_t>((static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) |
                                    data.nFileSizeLow);
  times_[0] = UnixSeconds(data.ftCreationTime);
  times_[1] = UnixSeconds(data.ftLastAccessTime);
  times_[2] = UnixSeconds(data.ftLastWriteTime);
  if (::_waccess(name.c_str(), 4) == 0) mode_ |= 4;
  if (::_waccess(name.c_str(), 2) == 0) mode_ |= 2;
} catch (...) {
  // Out of memory: as a file that cannot be asked about.
}

}  // namespace quenra

#endif
