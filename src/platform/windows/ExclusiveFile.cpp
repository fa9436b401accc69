#include "platform/ExclusiveFile.h"

#include <windows.h>
#include <winternl.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <vector>

// The status that the last error of this thread was made from. Exported for ever, but in no header.
extern "C" NTSTATUS NTAPI RtlGetLastNtStatus();

namespace {

constexpr auto kDeletePending = static_cast<NTSTATUS>(0xC0000056u);

constexpr DWORD kRetryMilliseconds = 10;
constexpr int kRetries = 1000;  // ten seconds; no writer needs a fraction of it

// The target of a rename may be refused because somebody reads it. A folder that cannot be written
// is refused for ever, and shall not keep a reader waiting.
constexpr int kRefusedRetries = 20;
constexpr int kRenameRetries = 200;  // two seconds

// For the error of the call just made. A file that goes with its last handle refuses access as a
// folder without the right to write does, but another status is behind it.
bool IsWorthATry(DWORD error, int tries) {
  return error == ERROR_SHARING_VIOLATION ||
         (error == ERROR_ACCESS_DENIED &&
          (RtlGetLastNtStatus() == kDeletePending || tries < kRefusedRetries));
}

std::error_code ErrorOf(DWORD error) { return {static_cast<int>(error), std::system_category()}; }

std::wstring FullPath(const std::wstring& path) {
  std::wstring full(::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  full.resize(
      ::GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  return full;
}

// Gives an open file another name. Nobody else can open it before it has that name.
bool RenameByHandle(HANDLE file, const std::wstring& target, bool replace) {
  const std::wstring full = FullPath(target);
  const std::size_t bytes = full.size() * sizeof(wchar_t);
  std::vector<std::byte> memory(sizeof(FILE_RENAME_INFO) + bytes);
  auto* const rename = ::new (memory.data()) FILE_RENAME_INFO{};
  rename->ReplaceIfExists = replace ? TRUE : FALSE;
  rename->FileNameLength = static_cast<DWORD>(bytes);
  std::memcpy(rename->FileName, full.data(), bytes);
  return ::SetFileInformationByHandle(file, FileRenameInfo, rename,
                                      static_cast<DWORD>(memory.size())) != FALSE;
}

}  // namespace

bool ExclusiveFile::Fail(int systemError) noexcept {
  error_ = ErrorOf(static_cast<DWORD>(systemError));
  return false;
}

ExclusiveFile::~ExclusiveFile() {
  if (handle_ == nullptr) return;
  // By its handle: once that is closed another writer may have a file of the name.
  FILE_DISPOSITION_INFO gone = {TRUE};
  ::SetFileInformationByHandle(handle_, FileDispositionInfo, &gone, sizeof gone);
  ::CloseHandle(handle_);
}

bool ExclusiveFile::Open(const NativeFileName& path) {
  HANDLE handle = INVALID_HANDLE_VALUE;
  for (int tries = 0; tries < kRetries; ++tries) {
    handle = ::CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle != INVALID_HANDLE_VALUE || !IsWorthATry(::GetLastError(), tries)) break;
    ::Sleep(kRetryMilliseconds);
  }
  if (handle == INVALID_HANDLE_VALUE) return Fail(static_cast<int>(::GetLastError()));
  path_ = path;
  handle_ = handle;
  return true;
}

bool ExclusiveFile::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    constexpr std::size_t kPiece = 1u << 30;
    DWORD count = 0;
    if (!::WriteFile(handle_, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kPiece)),
                     &count, nullptr))
      return Fail(static_cast<int>(::GetLastError()));
    bytes.remove_prefix(count);
  }
  return true;
}

bool ExclusiveFile::Rename(const NativeFileName& target, bool replace) {
  ::FlushFileBuffers(handle_);
  // A reader of the target is done with it in a moment.
  DWORD failure = 0;
  for (int tries = 0; tries < kRenameRetries; ++tries) {
    if (RenameByHandle(handle_, target, replace)) {
      ::CloseHandle(handle_);
      handle_ = nullptr;
      return true;
    }
    failure = ::GetLastError();
    if (!IsWorthATry(failure, tries)) break;
    ::Sleep(kRetryMilliseconds);
  }
  return Fail(static_cast<int>(failure));
}

bool ExclusiveFile::Replace(const NativeFileName& target) { return Rename(target, true); }

bool ExclusiveFile::TakeName(const NativeFileName& target) { return Rename(target, false); }

std::error_code ExclusiveFile::Move(const NativeFileName& from, const NativeFileName& to) {
  if (::MoveFileExW(from.c_str(), to.c_str(), 0)) return {};
  return ErrorOf(::GetLastError());
}

bool ExclusiveFile::MeansTaken(const std::error_code& error) noexcept {
  const auto value = static_cast<DWORD>(error.value());
  return value == ERROR_ALREADY_EXISTS || value == ERROR_FILE_EXISTS;
}

bool ExclusiveFile::MeansMissing(const std::error_code& error) noexcept {
  const auto value = static_cast<DWORD>(error.value());
  return value == ERROR_FILE_NOT_FOUND || value == ERROR_PATH_NOT_FOUND;
}
