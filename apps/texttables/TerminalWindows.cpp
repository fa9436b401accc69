#ifdef _WIN32

#include "platform/ComTypes.h"

// Behind windows.h, which they need.
// clang-format off
#include <fcntl.h>
#include <io.h>
// clang-format on

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "Failures.h"
#include "Terminal.h"
#include "TextEncoding.h"
#include "platform/CodePages.h"
#include "platform/OleText.h"

namespace TextTables::Terminal {

namespace {

// The console's exit code for a program ended by Ctrl+C.
constexpr UINT kControlCExit = 0xC000013Au;

// Consoles refuse larger single writes on older systems.
constexpr std::size_t kGreatestWrite = 32 * 1024;

std::atomic<bool> progressShown = false;
std::atomic<bool> deferred = false;
std::atomic<bool> interruptReceived = false;
UINT consoleCodePage = 0;

void WriteAll(std::string_view bytes) {
  const HANDLE file = ::GetStdHandle(STD_ERROR_HANDLE);
  while (!bytes.empty()) {
    DWORD done = 0;
    const auto count = static_cast<DWORD>(std::min(bytes.size(), kGreatestWrite));
    if (!::WriteFile(file, bytes.data(), count, &done, nullptr) || done == 0) return;
    bytes.remove_prefix(done);
  }
}

void RestoreConsole() {
  if (progressShown) WriteAll("\r\x1b[K");
  if (consoleCodePage != 0) ::SetConsoleOutputCP(consoleCodePage);
}

BOOL WINAPI OnConsoleControl(DWORD) {
  if (deferred && !interruptReceived.exchange(true)) return TRUE;
  RestoreConsole();
  return FALSE;
}

bool IsConsole(DWORD which) {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(which), &mode) != 0;
}

// The volume and the file on it.
bool Identify(HANDLE file, BY_HANDLE_FILE_INFORMATION& identity) {
  return ::GetFileType(file) == FILE_TYPE_DISK && ::GetFileInformationByHandle(file, &identity);
}

bool IsSameFile(HANDLE file, std::u16string_view fileName) {
  BY_HANDLE_FILE_INFORMATION open = {};
  if (!Identify(file, open)) return false;
  const std::u16string name(fileName);
  const HANDLE other =
      ::CreateFileW(AsOle(name.c_str()), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (other == INVALID_HANDLE_VALUE) return false;
  BY_HANDLE_FILE_INFORMATION named = {};
  const bool same =
      Identify(other, named) && open.dwVolumeSerialNumber == named.dwVolumeSerialNumber &&
      open.nFileIndexHigh == named.nFileIndexHigh && open.nFileIndexLow == named.nFileIndexLow;
  ::CloseHandle(other);
  return same;
}

}  // namespace

void Prepare() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  // The console shows what this code page says, and keeps it after the program's end.
  consoleCodePage = ::GetConsoleOutputCP();
  if (consoleCodePage != 0) ::SetConsoleOutputCP(CP_UTF8);
  std::atexit(RestoreConsole);
  DWORD mode = 0;
  const HANDLE errors = ::GetStdHandle(STD_ERROR_HANDLE);
  if (::GetConsoleMode(errors, &mode))
    ::SetConsoleMode(errors, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  ::SetConsoleCtrlHandler(OnConsoleControl, TRUE);
}

std::vector<std::string> Arguments(int count, ArgumentUnit** values) {
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8(AsText(values[i])));
  return arguments;
}

std::u16string TextOfArgument(std::string_view argument) {
  const auto bytes = static_cast<int>(argument.size());
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, argument.data(), bytes, nullptr, 0);
  std::u16string text(static_cast<std::size_t>(size), u'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, argument.data(), bytes, AsOle(text.data()), size);
  return text;
}

bool StandardOutputIsTerminal() { return IsConsole(STD_OUTPUT_HANDLE); }
bool StandardErrorIsTerminal() { return IsConsole(STD_ERROR_HANDLE); }

int Columns() {
  CONSOLE_SCREEN_BUFFER_INFO info = {};
  if (!::GetConsoleScreenBufferInfo(::GetStdHandle(STD_ERROR_HANDLE), &info)) return 80;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

bool IsStandardStream(std::u16string_view fileName) {
  return IsSameFile(::GetStdHandle(STD_INPUT_HANDLE), fileName) ||
         IsSameFile(::GetStdHandle(STD_OUTPUT_HANDLE), fileName) ||
         IsSameFile(::GetStdHandle(STD_ERROR_HANDLE), fileName);
}

std::size_t WriteStandardOutput(const char* bytes, std::size_t count) {
  DeferInterrupts::Poll();
  DWORD done = 0;
  const auto size = static_cast<DWORD>(std::min(count, kGreatestWrite));
  if (::WriteFile(::GetStdHandle(STD_OUTPUT_HANDLE), bytes, size, &done, nullptr)) return done;
  const DWORD error = ::GetLastError();
  if (error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA) throw OutputClosed();
  throw SystemRefusal(static_cast<int>(error), u"standard output");
}

Input::Input()
    : name_(u"standard input"), handle_(::GetStdHandle(STD_INPUT_HANDLE)), owned_(false) {}

Input::Input(std::u16string_view fileName)
    : name_(fileName),
      handle_(::CreateFileW(AsOle(name_.c_str()), GENERIC_READ,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)),
      owned_(true) {
  if (handle_ == INVALID_HANDLE_VALUE)
    throw SystemRefusal(static_cast<int>(::GetLastError()), name_);
}

Input::~Input() {
  if (owned_) ::CloseHandle(handle_);
}

bool Input::IsFile(std::u16string_view fileName) const { return IsSameFile(handle_, fileName); }

std::size_t Input::Read(char* bytes, std::size_t count) {
  DeferInterrupts::Poll();
  DWORD done = 0;
  const auto size = static_cast<DWORD>(std::min<std::size_t>(count, kGreatestWrite));
  if (::ReadFile(handle_, bytes, size, &done, nullptr)) return done;
  const DWORD error = ::GetLastError();
  DeferInterrupts::Poll();
  if (error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF) return 0;
  throw SystemRefusal(static_cast<int>(error), name_);
}

void WriteStandardError(std::string_view bytes) {
  ShowProgressLine({});
  WriteAll(bytes);
}

void ShowProgressLine(std::string_view line) {
  if (!progressShown && line.empty()) return;
  std::string text("\r\x1b[K");
  text += line;
  progressShown = !line.empty();
  WriteAll(text);
}

DeferInterrupts::DeferInterrupts() { deferred = true; }

DeferInterrupts::~DeferInterrupts() { deferred = false; }

void DeferInterrupts::Poll() {
  if (interruptReceived) throw Interrupted();
}

void EndAsInterrupted() {
  RestoreConsole();
  ::ExitProcess(kControlCExit);
}

}  // namespace TextTables::Terminal

#endif
