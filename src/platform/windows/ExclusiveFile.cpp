#include "platform/ExclusiveFile.h"

#include <windows.h>
#include <winternl.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "platform/windows/FileRights.h"

// The status that the last error of this thread was made from. Exported for ever, but in no header.
extern "C" NTSTATUS NTAPI RtlGetLastNtStatus();

namespace {

using std::chrono::milliseconds;

constexpr auto kDeletePending = static_cast<NTSTATUS>(0xC0000056u);

constexpr DWORD kRetryMilliseconds = 10;

// The target of a rename may be refused because somebody reads it. A folder that cannot be written
// is refused for ever, and shall not keep a reader waiting.
constexpr milliseconds kPatienceWhenRefused{200};
constexpr milliseconds kPatienceWithReaders{2000};

// Says of a temporary file that it is finished, and that its text is being written into another
// one. No writer that fills a file sets it.
constexpr DWORD kFinished = FILE_ATTRIBUTE_SYSTEM;

// A file beyond this is not brought back when writing into it fails; the finished text stays.
constexpr std::size_t kLargestKept = 16 * 1024 * 1024;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Tells how long something has been tried.
class Watch {
 public:
  bool IsWithin(milliseconds limit) const {
    return std::chrono::steady_clock::now() - start_ < limit;
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// For the error of the call just made. A file that goes with its last handle refuses access as a
// folder without the right to write does, but another status is behind it.
bool IsWorthATry(DWORD error, const Watch& watch) {
  return error == ERROR_SHARING_VIOLATION ||
         (error == ERROR_ACCESS_DENIED &&
          (RtlGetLastNtStatus() == kDeletePending || watch.IsWithin(kPatienceWhenRefused)));
}

std::error_code ErrorOf(DWORD error) { return {static_cast<int>(error), std::system_category()}; }

// A handle that is closed at the end of a scope.
class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  ~Handle() { Close(); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  HANDLE get() const noexcept { return handle_; }
  bool IsOpen() const noexcept { return handle_ != INVALID_HANDLE_VALUE; }
  void Close() noexcept {
    if (IsOpen()) ::CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
  }

 private:
  HANDLE handle_;
};

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

// What the path leads to, when it is a link that leads to something.
std::wstring Resolved(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
    return path;
  const Handle file(::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!file.IsOpen()) return path;
  std::wstring resolved(::GetFinalPathNameByHandleW(file.get(), nullptr, 0, 0), L'\0');
  resolved.resize(::GetFinalPathNameByHandleW(file.get(), resolved.data(),
                                              static_cast<DWORD>(resolved.size()), 0));
  return resolved.empty() ? path : resolved;
}

// An existing file to be written. Waits a moment for those who read it and let nobody write.
HANDLE OpenOld(const std::wstring& path, DWORD access, DWORD share) {
  const Watch watch;
  for (;;) {
    const HANDLE file =
        ::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE || ::GetLastError() != ERROR_SHARING_VIOLATION ||
        !watch.IsWithin(kPatienceWithReaders))
      return file;
    ::Sleep(kRetryMilliseconds);
  }
}

bool GoTo(HANDLE file, std::size_t place) {
  LARGE_INTEGER offset;
  offset.QuadPart = static_cast<LONGLONG>(place);
  return ::SetFilePointerEx(file, offset, nullptr, FILE_BEGIN) != FALSE;
}

bool WriteAll(HANDLE file, std::string_view bytes) {
  constexpr std::size_t kPiece = 1u << 30;
  while (!bytes.empty()) {
    DWORD count = 0;
    if (!::WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kPiece)), &count,
                     nullptr))
      return false;
    bytes.remove_prefix(count);
  }
  return true;
}

// Puts the bytes on the disk, so that a rename never comes before them when the machine stops.
bool Settle(HANDLE file) {
  // Some file systems have nothing to settle and say so.
  return ::FlushFileBuffers(file) || ::GetLastError() == ERROR_INVALID_FUNCTION ||
         ::GetLastError() == ERROR_NOT_SUPPORTED;
}

bool SizeOf(HANDLE file, std::size_t& size) {
  LARGE_INTEGER value;
  if (!::GetFileSizeEx(file, &value)) return false;
  size = static_cast<std::size_t>(value.QuadPart);
  return true;
}

// At most `limit` bytes from the start of the file.
bool ReadUpTo(HANDLE file, std::size_t limit, std::string& bytes) {
  constexpr std::size_t kPiece = 1u << 30;
  if (!GoTo(file, 0)) return false;
  bytes.resize(limit);
  std::size_t size = 0;
  while (size < limit) {
    DWORD count = 0;
    if (!::ReadFile(file, bytes.data() + size, static_cast<DWORD>(std::min(limit - size, kPiece)),
                    &count, nullptr))
      return false;
    if (count == 0) break;
    size += count;
  }
  bytes.resize(size);
  return true;
}

bool ReadAll(HANDLE file, std::string& bytes) {
  std::size_t size = 0;
  return SizeOf(file, size) && ReadUpTo(file, size, bytes);
}

// Lets the file end at `start` and goes on with `bytes` there.
bool WriteFrom(HANDLE file, std::size_t start, std::string_view bytes) {
  std::size_t size = 0;
  return SizeOf(file, size) && GoTo(file, start) && (size == start || ::SetEndOfFile(file)) &&
         WriteAll(file, bytes) && Settle(file);
}

bool SetAttributes(HANDLE file, DWORD attributes) {
  FILE_BASIC_INFO info = {};  // zeros leave the times as they are
  info.FileAttributes = attributes;
  return ::SetFileInformationByHandle(file, FileBasicInfo, &info, sizeof info) != FALSE;
}

DWORD AttributesOf(HANDLE file) {
  FILE_BASIC_INFO info = {};
  return ::GetFileInformationByHandleEx(file, FileBasicInfo, &info, sizeof info)
             ? info.FileAttributes
             : 0;
}

// What a token says about whose the files are that this process makes: the user, or the group of
// the administrators.
bool IsInToken(HANDLE token, TOKEN_INFORMATION_CLASS part, PSID owner) {
  DWORD size = 0;
  ::GetTokenInformation(token, part, nullptr, 0, &size);
  std::vector<std::byte> memory(size);
  if (size == 0 || !::GetTokenInformation(token, part, memory.data(), size, &size)) return false;
  // TOKEN_USER and TOKEN_OWNER both begin with the identifier.
  PSID sid = nullptr;
  std::memcpy(&sid, memory.data(), sizeof sid);
  return ::EqualSid(sid, owner) != FALSE;
}

// True as well where the file system knows no owners.
bool IsOwn(HANDLE file) {
  DWORD size = 0;
  ::GetKernelObjectSecurity(file, OWNER_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<std::byte> memory(size);
  PSID owner = nullptr;
  BOOL isDefault = FALSE;
  HANDLE token = nullptr;
  if (size == 0 ||
      !::GetKernelObjectSecurity(file, OWNER_SECURITY_INFORMATION, memory.data(), size, &size) ||
      !::GetSecurityDescriptorOwner(memory.data(), &owner, &isDefault) || owner == nullptr ||
      !::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token))
    return true;
  const bool own = IsInToken(token, TokenUser, owner) || IsInToken(token, TokenOwner, owner);
  ::CloseHandle(token);
  return own;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Failures
// ---------------------------------------------------------------------------------------------

bool ExclusiveFile::Fail(int systemError) noexcept {
  error_ = ErrorOf(static_cast<DWORD>(systemError));
  obstacle_.clear();
  return false;
}

bool ExclusiveFile::Succeed() noexcept {
  error_.clear();
  obstacle_.clear();
  return true;
}

bool ExclusiveFile::Refuse(int systemError, std::u16string_view why) {
  Fail(systemError);
  obstacle_ = FileNameFromNative(path_) + std::u16string(why);
  return false;
}

// ---------------------------------------------------------------------------------------------
// Opening
// ---------------------------------------------------------------------------------------------

ExclusiveFile::~ExclusiveFile() {
  if (handle_ == nullptr) return;
  // By its handle: once that is closed another writer may have a file of the name.
  FILE_DISPOSITION_INFO gone = {TRUE};
  ::SetFileInformationByHandle(handle_, FileDispositionInfo, &gone, sizeof gone);
  LetGo();
}

// Closes the file and leaves it where it is.
void ExclusiveFile::LetGo() noexcept {
  ::CloseHandle(handle_);
  handle_ = nullptr;
}

ExclusiveFile::Attempt ExclusiveFile::TryToTake(const NativeFileName& path) {
  constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE | DELETE;
  const auto open = [&](DWORD access) {
    return ::CreateFileW(path.c_str(), access, 0, nullptr, OPEN_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  };
  // With the rights to say whose the file is, where they are to be had.
  HANDLE file = open(kAccess | WRITE_DAC | WRITE_OWNER);
  if (file == INVALID_HANDLE_VALUE && ::GetLastError() == ERROR_ACCESS_DENIED) file = open(kAccess);
  const DWORD error = ::GetLastError();
  if (file == INVALID_HANDLE_VALUE) {
    const bool isGoing = error == ERROR_ACCESS_DENIED && RtlGetLastNtStatus() == kDeletePending;
    Fail(static_cast<int>(isGoing ? ERROR_SHARING_VIOLATION : error));
    if (isGoing || error == ERROR_SHARING_VIOLATION) return Attempt::kBusy;
    return error == ERROR_ACCESS_DENIED ? Attempt::kAgain : Attempt::kFailed;
  }
  handle_ = file;
  return error == ERROR_ALREADY_EXISTS ? LookAtLeftOver() : Attempt::kDone;
}

// What stands under the name and is nobody's now: left behind by a writer, or somebody's own.
ExclusiveFile::Attempt ExclusiveFile::LookAtLeftOver() {
  BY_HANDLE_FILE_INFORMATION status = {};
  if (!::GetFileInformationByHandle(handle_, &status))
    Fail(static_cast<int>(::GetLastError()));
  else if ((status.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
    Refuse(ERROR_CANT_RESOLVE_FILENAME, u" is a link");
  else if (status.nNumberOfLinks > 1)
    Refuse(ERROR_TOO_MANY_LINKS, u" is one of several names of a file");
  else if ((status.nFileSizeHigh != 0 || status.nFileSizeLow != 0) && !IsOwn(handle_))
    Refuse(ERROR_ACCESS_DENIED, u" belongs to another user, who has left it behind");
  else
    return Attempt::kDone;
  LetGo();
  return Attempt::kFailed;
}

bool ExclusiveFile::Take(const NativeFileName& path, milliseconds patience) {
  path_ = path;
  const Watch watch;
  for (;;) {
    const Attempt attempt = TryToTake(path);
    if (attempt == Attempt::kDone) return Succeed();
    if (attempt == Attempt::kFailed) return false;
    // Access may be denied for a moment only, as long as a file of the name goes.
    if (attempt == Attempt::kAgain && !watch.IsWithin(std::min(patience, kPatienceWhenRefused)))
      return false;
    if (!watch.IsWithin(patience))
      return Refuse(ERROR_SHARING_VIOLATION, u" is in use by another process");
    ::Sleep(kRetryMilliseconds);
  }
}

bool ExclusiveFile::Open(const NativeFileName& path, milliseconds patience) {
  return OpenToReplace(path, {}, patience, InPlace::kRefused);
}

// Nobody can open the file before it has its name, whatever its rights are.
bool ExclusiveFile::OpenToReplace(const NativeFileName& path, const NativeFileName& target,
                                  milliseconds patience, InPlace inPlace) {
  if (!Take(path, patience)) return false;
  if ((AttributesOf(handle_) & kFinished) != 0) {
    if (target.empty() || inPlace == InPlace::kRefused) {
      Refuse(ERROR_SHARING_VIOLATION,
             u" holds the finished text of a file that was being written when its writer ended");
      LetGo();
      return false;
    }
    if (!CompleteLeftOver(target)) {
      LetGo();
      return false;
    }
  }
  // The destructor removes the file if this fails.
  return (GoTo(handle_, 0) && ::SetEndOfFile(handle_)) || Fail(static_cast<int>(::GetLastError()));
}

bool ExclusiveFile::Write(std::string_view bytes) {
  return WriteAll(handle_, bytes) || Fail(static_cast<int>(::GetLastError()));
}

// ---------------------------------------------------------------------------------------------
// Replacing
// ---------------------------------------------------------------------------------------------

bool ExclusiveFile::Rename(const NativeFileName& target, bool replace) {
  if (!Settle(handle_)) return Fail(static_cast<int>(::GetLastError()));
  // A reader of the target is done with it in a moment.
  const Watch watch;
  DWORD failure = 0;
  do {
    if (RenameByHandle(handle_, target, replace)) {
      LetGo();
      return true;
    }
    failure = ::GetLastError();
    if (!IsWorthATry(failure, watch)) break;
    ::Sleep(kRetryMilliseconds);
  } while (watch.IsWithin(kPatienceWithReaders));
  return Fail(static_cast<int>(failure));
}

bool ExclusiveFile::Replace(const NativeFileName& target, InPlace inPlace) {
  const std::wstring path = Resolved(target);
  bool isKept = true;
  {
    // A rename would go past the file's own access list: it must be one that may be written.
    const Handle old(OpenOld(path, GENERIC_WRITE | READ_CONTROL, kShareAll));
    const DWORD error = ::GetLastError();
    if (old.IsOpen()) {
      BY_HANDLE_FILE_INFORMATION status = {};
      isKept = ::GetFileInformationByHandle(old.get(), &status) && status.nNumberOfLinks == 1 &&
               TakeOverRights(path, old.get(), handle_);
    } else if (error != ERROR_FILE_NOT_FOUND) {
      return Fail(static_cast<int>(error));
    }
  }
  if (isKept && Rename(path, true)) return true;
  if (!isKept) Fail(ERROR_ACCESS_DENIED);
  // A file that is open with a reader is left alone.
  if (isKept && error_.value() != ERROR_NOT_SAME_DEVICE) return false;
  if (inPlace == InPlace::kRefused)
    return Refuse(error_.value(), u" cannot replace the file without changing whose it is");
  return WriteInto(path);
}

// The file is cut where old and new text part, and goes on from there: whatever ends the writing
// half-way, it then begins as the finished text does, and CompleteLeftOver can tell.
bool ExclusiveFile::WriteInto(const NativeFileName& target) {
  const auto fail = [this] { return Fail(static_cast<int>(::GetLastError())); };
  const Handle old(OpenOld(target, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ));
  std::size_t oldSize = 0;
  std::string text;
  std::string before;
  if (!old.IsOpen() || !SizeOf(old.get(), oldSize) || !ReadAll(handle_, text)) return fail();
  const bool canBeBroughtBack = oldSize <= kLargestKept;
  if (!ReadUpTo(old.get(), canBeBroughtBack ? oldSize : text.size(), before)) return fail();
  const auto part = std::mismatch(text.begin(), text.end(), before.begin(), before.end());
  const auto same = static_cast<std::size_t>(part.first - text.begin());
  if (!SetAttributes(handle_, kFinished) || !Settle(handle_)) return fail();
  if ((AttributesOf(handle_) & kFinished) == 0) return Fail(ERROR_NOT_SUPPORTED);

  if (!WriteFrom(old.get(), same, std::string_view(text).substr(same))) {
    const auto failure = static_cast<int>(::GetLastError());
    if (!canBeBroughtBack || !WriteFrom(old.get(), same, std::string_view(before).substr(same))) {
      Refuse(failure, u" holds the finished text of a file that could not be written to its end");
      LetGo();
      return false;
    }
    return Fail(failure);
  }
  // One that cannot be removed is no longer looked at when it is found.
  SetAttributes(handle_, FILE_ATTRIBUTE_NORMAL);
  FILE_DISPOSITION_INFO gone = {TRUE};
  ::SetFileInformationByHandle(handle_, FileDispositionInfo, &gone, sizeof gone);
  LetGo();
  return Succeed();
}

// A file that writing into it has left half-way begins as the finished text does; zeros may stand
// behind that after a machine has stopped. Any other has not been touched yet, or was changed
// since.
bool ExclusiveFile::CompleteLeftOver(const NativeFileName& target) {
  const auto refuse = [this](std::u16string_view why) {
    return Refuse(static_cast<int>(::GetLastError()), why);
  };
  const Handle old(OpenOld(Resolved(target), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ));
  std::string text;
  std::string found;
  std::size_t size = 0;
  if (!old.IsOpen() || !SizeOf(old.get(), size) || !ReadAll(handle_, text) ||
      !ReadUpTo(old.get(), std::min(size, kLargestKept), found))
    return refuse(u" holds the finished text of a file that cannot be opened");
  const std::string_view written =
      std::string_view(found).substr(0, found.find_last_not_of('\0') + 1);
  const bool isHalfWay = size <= kLargestKept && text.starts_with(written);
  if (isHalfWay &&
      !WriteFrom(old.get(), written.size(), std::string_view(text).substr(written.size())))
    return refuse(u" holds the finished text of a file that cannot be written");
  return SetAttributes(handle_, FILE_ATTRIBUTE_NORMAL) || Fail(static_cast<int>(::GetLastError()));
}

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

bool ExclusiveFile::MeansBusy(const std::error_code& error) noexcept {
  return error.value() == ERROR_SHARING_VIOLATION;
}
