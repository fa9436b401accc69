#ifdef _WIN32

// windows.h comes before what needs it.
// clang-format off
#include "platform/ComTypes.h"
// clang-format on

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

#include "support/ProcessRunner.h"
#include "support/TestText.h"

namespace {

using quenra::test::ToUtf16;

constexpr DWORD kLongestRun = 600 * 1000;  // milliseconds
constexpr DWORD kEndedByTheTest = 0xFFFF;

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), what);
}

std::wstring Wide(const std::string& text) {
  const std::u16string units = ToUtf16(text);
  return std::wstring(units.begin(), units.end());
}

class Handle {
 public:
  explicit Handle(HANDLE handle = nullptr) : handle_(handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() { Close(); }
  HANDLE Get() const { return handle_; }
  void Close() {
    if (handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE)
      ::CloseHandle(std::exchange(handle_, nullptr));
  }

 private:
  HANDLE handle_;
};

// The program inherits what is open for it, and nothing else.
SECURITY_ATTRIBUTES Inherited() { return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE}; }

Handle OpenForProgram(const std::string& name, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inherited = Inherited();
  Handle file(::CreateFileW(Wide(name).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            &inherited, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (file.Get() == INVALID_HANDLE_VALUE) Fail(name.c_str());
  return file;
}

// What the program writes to, and where the test reads it.
struct Channel {
  Handle program;
  Handle test;
};

Channel OpenPipe() {
  SECURITY_ATTRIBUTES inherited = Inherited();
  HANDLE test = nullptr;
  HANDLE program = nullptr;
  if (!::CreatePipe(&test, &program, &inherited, 0)) Fail("pipe");
  ::SetHandleInformation(test, HANDLE_FLAG_INHERIT, 0);
  return {Handle(program), Handle(test)};
}

// One argument as CommandLineToArgvW takes it apart: backslashes count only before quotes.
void AppendQuoted(std::wstring& line, const std::wstring& argument) {
  line += L'"';
  std::size_t backslashes = 0;
  for (const wchar_t unit : argument) {
    if (unit == L'"') line.append(backslashes + 1, L'\\');
    backslashes = unit == L'\\' ? backslashes + 1 : 0;
    line += unit;
  }
  line.append(backslashes, L'\\');
  line += L'"';
}

std::wstring CommandLineOf(const ProcessRequest& request) {
  std::wstring line;
  AppendQuoted(line, Wide(request.program));
  for (const std::string& argument : request.arguments) {
    line += L' ';
    AppendQuoted(line, Wide(argument));
  }
  return line;
}

bool IsLocaleOrOurs(const std::wstring& variable) {
  for (const wchar_t* start : {L"LC_", L"LANG=", L"LANGUAGE=", L"QUENRA_"})
    if (variable.rfind(start, 0) == 0) return true;
  return false;
}

// Each variable ends with a zero, and one more ends them all.
std::wstring EnvironmentFor(const ProcessRequest& request) {
  std::wstring block;
  wchar_t* const all = ::GetEnvironmentStringsW();
  for (const wchar_t* next = all; *next != 0;) {
    const std::wstring variable(next);
    next += variable.size() + 1;
    if (!IsLocaleOrOurs(variable)) block += variable + L'\0';
  }
  ::FreeEnvironmentStringsW(all);
  // Not C: there Wine has no names outside ASCII for files.
  if (request.environment.count("LC_ALL") == 0) block += std::wstring(L"LC_ALL=C.UTF-8") + L'\0';
  for (const auto& [name, value] : request.environment) block += Wide(name + "=" + value) + L'\0';
  block += L'\0';
  return block;
}

Handle Start(const ProcessRequest& request, HANDLE input, HANDLE output, HANDLE errors) {
  std::wstring line = CommandLineOf(request);
  std::wstring environment = EnvironmentFor(request);
  const std::wstring folder = Wide(request.folder);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input;
  startup.hStdOutput = output;
  startup.hStdError = errors;
  PROCESS_INFORMATION process = {};
  const auto create = [&, commandLine = line] {
    line = commandLine;  // the system may write into it
    return ::CreateProcessW(Wide(request.program).c_str(), line.data(), nullptr, nullptr, TRUE,
                            CREATE_UNICODE_ENVIRONMENT | DETACHED_PROCESS, environment.data(),
                            folder.empty() ? nullptr : folder.c_str(), &startup, &process) != 0;
  };
  // On a busy machine Wine gives up a start now and then that nothing is wrong with.
  const bool started = create() || (::GetLastError() == ERROR_INTERNAL_ERROR && create());
  if (!started) Fail(request.program.c_str());
  ::CloseHandle(process.hThread);
  return Handle(process.hProcess);
}

bool HasEnded(HANDLE process) { return ::WaitForSingleObject(process, 0) == WAIT_OBJECT_0; }

// Reads what the program writes until it has ended, or until the reader has had enough; then the
// pipe is closed. The pipe's own end is not waited for: what the system starts beside the program,
// such as Wine's desktop, keeps it open.
void ReadAll(Handle pipe, HANDLE process, std::optional<std::size_t> enough, std::string& text) {
  char buffer[65536];
  while (!(enough && text.size() >= *enough)) {
    const bool ended = HasEnded(process);
    DWORD count = 0;
    if (!::PeekNamedPipe(pipe.Get(), nullptr, 0, nullptr, &count, nullptr)) return;
    if (count == 0 && ended) return;
    if (count == 0) {
      ::Sleep(1);
    } else if (::ReadFile(pipe.Get(), buffer, sizeof buffer, &count, nullptr)) {
      text.append(buffer, count);
    }
  }
}

}  // namespace

ProcessResult RunProcess(const ProcessRequest& request) {
  Handle input = OpenForProgram(request.inputFile.empty() ? "NUL" : request.inputFile, GENERIC_READ,
                                OPEN_EXISTING);
  Channel output =
      request.outputFile.empty()
          ? OpenPipe()
          : Channel{OpenForProgram(request.outputFile, GENERIC_WRITE, CREATE_ALWAYS), Handle()};
  Channel errors = OpenPipe();
  const Handle process = Start(request, input.Get(), output.program.Get(), errors.program.Get());
  output.program.Close();
  errors.program.Close();

  ProcessResult result;
  std::thread errorReader(
      [&] { ReadAll(std::move(errors.test), process.Get(), std::nullopt, result.errors); });
  std::thread outputReader([&] {
    if (output.test.Get() != nullptr)
      ReadAll(std::move(output.test), process.Get(), request.closeOutputAfter, result.output);
  });
  if (::WaitForSingleObject(process.Get(), kLongestRun) != WAIT_OBJECT_0)
    ::TerminateProcess(process.Get(), kEndedByTheTest);
  outputReader.join();
  errorReader.join();
  DWORD code = 0;
  ::GetExitCodeProcess(process.Get(), &code);
  result.exitCode = static_cast<int>(code);
  return result;
}

#endif
