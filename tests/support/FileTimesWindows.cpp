#ifdef _WIN32

#include <windows.h>

#include <system_error>

#include "support/FileTimes.h"

namespace {

// Ticks of 100 ns since 1601.
FILETIME TicksOf(long seconds) {
  constexpr unsigned long long kSecondsTo1970 = 11644473600ull;
  const unsigned long long ticks =
      (static_cast<unsigned long long>(seconds) + kSecondsTo1970) * 10000000ull;
  return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

}  // namespace

void SetFileTimes(const std::filesystem::path& file, long access, long modification) {
  const HANDLE handle =
      ::CreateFileW(file.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  const FILETIME accessed = TicksOf(access);
  const FILETIME modified = TicksOf(modification);
  const bool done =
      handle != INVALID_HANDLE_VALUE && ::SetFileTime(handle, nullptr, &accessed, &modified);
  const DWORD error = ::GetLastError();
  if (handle != INVALID_HANDLE_VALUE) ::CloseHandle(handle);
  if (!done)
    throw std::system_error(static_cast<int>(error), std::system_category(), file.string());
}

#endif
