#include "platform/RegularFile.h"

#include <windows.h>

#include <algorithm>

namespace {

constexpr DWORD kPauseMilliseconds = 2;
constexpr ULONGLONG kLongestWaitMilliseconds = 10000;  // a writer has the lock for one write

constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;

// Locks of this system keep readers away from the bytes that they cover. This one covers a byte
// that no file has.
OVERLAPPED LockedByte() noexcept {
  OVERLAPPED place = {};
  place.Offset = 0xFFFFFFFEu;
  place.OffsetHigh = 0x7FFFFFFFu;
  return place;
}

OVERLAPPED PlaceAt(std::uint64_t offset) noexcept {
  OVERLAPPED place = {};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

bool Identify(HANDLE file, BY_HANDLE_FILE_INFORMATION& identity) noexcept {
  return ::GetFileInformationByHandle(file, &identity) != FALSE;
}

}  // namespace

bool RegularFile::Fail(int systemError) noexcept {
  error_ = std::error_code(systemError, std::system_category());
  return false;
}

RegularFile::~RegularFile() { Close(); }

bool RegularFile::IsOpen() const noexcept { return handle_ != nullptr; }

void RegularFile::Close() noexcept {
  if (handle_ != nullptr) ::CloseHandle(handle_);
  handle_ = nullptr;
}

bool RegularFile::Open(const NativeFileName& path, Access access) {
  Close();
  const DWORD rights = access == Access::kRead ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
  // Who has the file open keeps its name: it is neither renamed nor removed meanwhile.
  const HANDLE handle = ::CreateFileW(path.c_str(), rights, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return Fail(static_cast<int>(::GetLastError()));
  if (::GetFileType(handle) != FILE_TYPE_DISK) {
    ::CloseHandle(handle);
    return Fail(ERROR_INVALID_NAME);
  }
  handle_ = handle;
  return true;
}

bool RegularFile::IsAt(const NativeFileName& path) const noexcept {
  if (handle_ == nullptr) return false;
  const HANDLE other =
      ::CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (other == INVALID_HANDLE_VALUE) return false;
  BY_HANDLE_FILE_INFORMATION open = {};
  BY_HANDLE_FILE_INFORMATION named = {};
  const bool same = Identify(handle_, open) && Identify(other, named) &&
                    open.dwVolumeSerialNumber == named.dwVolumeSerialNumber &&
                    open.nFileIndexHigh == named.nFileIndexHigh &&
                    open.nFileIndexLow == named.nFileIndexLow;
  ::CloseHandle(other);
  return same;
}

bool RegularFile::Size(std::uint64_t& size) noexcept {
  LARGE_INTEGER found = {};
  if (!::GetFileSizeEx(handle_, &found)) return Fail(static_cast<int>(::GetLastError()));
  size = static_cast<std::uint64_t>(found.QuadPart);
  return true;
}

std::ptrdiff_t RegularFile::ReadAt(std::uint64_t offset, char* bytes, std::size_t count) noexcept {
  std::size_t done = 0;
  while (done < count) {
    OVERLAPPED place = PlaceAt(offset + done);
    DWORD got = 0;
    const auto wanted = static_cast<DWORD>(std::min(count - done, kMostAtOnce));
    if (!::ReadFile(handle_, bytes + done, wanted, &got, &place)) {
      const DWORD failure = ::GetLastError();
      if (failure == ERROR_HANDLE_EOF) break;
      Fail(static_cast<int>(failure));
      return -1;
    }
    if (got == 0) break;
    done += got;
  }
  return static_cast<std::ptrdiff_t>(done);
}

bool RegularFile::Lock() noexcept {
  const ULONGLONG begin = ::GetTickCount64();
  for (;;) {
    OVERLAPPED place = LockedByte();
    if (::LockFileEx(handle_, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place))
      return true;
    const DWORD failure = ::GetLastError();
    // Not a word of other writers: the file system has no locks.
    if (failure != ERROR_LOCK_VIOLATION && failure != ERROR_IO_PENDING) return true;
    if (::GetTickCount64() - begin >= kLongestWaitMilliseconds) return Fail(ERROR_LOCK_VIOLATION);
    ::Sleep(kPauseMilliseconds);
  }
}

void RegularFile::Unlock() noexcept {
  OVERLAPPED place = LockedByte();
  ::UnlockFileEx(handle_, 0, 1, 0, &place);
}

RegularFile::Appended RegularFile::Append(std::string_view bytes) noexcept {
  std::uint64_t before = 0;
  if (!Size(before)) return Appended::kTakenBack;
  std::size_t done = 0;
  while (done < bytes.size()) {
    // The end of the file, wherever that is by then.
    OVERLAPPED place = {};
    place.Offset = place.OffsetHigh = 0xFFFFFFFFu;
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, kMostAtOnce));
    if (!::WriteFile(handle_, bytes.data() + done, wanted, &count, &place) || count == 0) break;
    done += count;
  }
  if (done == bytes.size()) return Appended::kWhole;
  Fail(static_cast<int>(::GetLastError()));
  const std::error_code reason = error_;
  // Not every program asks for the lock: behind the bytes of another one nothing is cut.
  std::uint64_t after = 0;
  const bool isBack = done == 0 || (Size(after) && after == before + done && CutTo(before));
  error_ = reason;
  return isBack ? Appended::kTakenBack : Appended::kPartly;
}

bool RegularFile::CutTo(std::uint64_t size) noexcept {
  FILE_END_OF_FILE_INFO end = {};
  end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
  return ::SetFileInformationByHandle(handle_, FileEndOfFileInfo, &end, sizeof end) != FALSE ||
         Fail(static_cast<int>(::GetLastError()));
}

bool RegularFile::MeansBusy(const std::error_code& error) noexcept {
  return error.value() == ERROR_LOCK_VIOLATION;
}
