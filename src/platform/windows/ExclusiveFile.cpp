#include "platform/ExclusiveFile.h"

#include <windows.h>

#include <algorithm>

namespace {

constexpr DWORD kRetryMilliseconds = 10;
constexpr int kRetries = 1000;  // ten seconds; no writer needs a fraction of it

// A file that is being deleted refuses access for a moment. A folder that cannot be written does so
// for ever, and shall not keep a reader waiting.
constexpr int kRefusedRetries = 20;

bool IsWorthATry(DWORD error, int tries) {
  return error == ERROR_SHARING_VIOLATION ||
         (error == ERROR_ACCESS_DENIED && tries < kRefusedRetries);
}

}  // namespace

bool ExclusiveFile::Fail(int systemError) noexcept {
  error_ = std::error_code(systemError, std::system_category());
  return false;
}

ExclusiveFile::~ExclusiveFile() {
  if (handle_ == nullptr) return;
  ::CloseHandle(handle_);
  ::DeleteFileW(path_.c_str());
}

bool ExclusiveFile::Open(const NativeFileName& path) {
  HANDLE handle = INVALID_HANDLE_VALUE;
  for (int tries = 0; tries < kRetries; ++tries) {
    handle = ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
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

bool ExclusiveFile::CloseAndMove(const NativeFileName& target, unsigned long flags) {
  ::FlushFileBuffers(handle_);
  ::CloseHandle(handle_);
  handle_ = nullptr;
  if (::MoveFileExW(path_.c_str(), target.c_str(), flags)) return true;
  const DWORD failure = ::GetLastError();
  ::DeleteFileW(path_.c_str());
  return Fail(static_cast<int>(failure));
}

bool ExclusiveFile::Replace(const NativeFileName& target) {
  return CloseAndMove(target, MOVEFILE_REPLACE_EXISTING);
}

bool ExclusiveFile::TakeName(const NativeFileName& target) { return CloseAndMove(target, 0); }

std::error_code ExclusiveFile::Move(const NativeFileName& from, const NativeFileName& to) {
  if (::MoveFileExW(from.c_str(), to.c_str(), 0)) return {};
  return std::error_code(static_cast<int>(::GetLastError()), std::system_category());
}
