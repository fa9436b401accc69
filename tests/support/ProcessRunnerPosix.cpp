#ifndef _WIN32

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>
#include <utility>

#include "support/ProcessRunner.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): not everywhere

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestRun{600};

[[noreturn]] void Fail(const char* what, int error = errno) {
  throw std::system_error(error, std::generic_category(), what);
}

// A file descriptor with an owner.
class File {
 public:
  File() = default;
  explicit File(int descriptor) : descriptor_(descriptor) {}
  File(File&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  File& operator=(File&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~File() { Close(); }

  int Get() const { return descriptor_; }
  void Close() {
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
  }

 private:
  int descriptor_ = -1;
};

// What the program writes to, and where the test reads it.
struct Channel {
  File program;
  File test;
};

Channel OpenPipe() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) Fail("pipe");
  return {File(ends[1]), File(ends[0])};
}

Channel OpenTerminal(unsigned short columns) {
  File master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (master.Get() < 0 || ::grantpt(master.Get()) != 0 || ::unlockpt(master.Get()) != 0)
    Fail("posix_openpt");
  File slave(::open(::ptsname(master.Get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios settings = {};
  if (slave.Get() < 0 || ::tcgetattr(slave.Get(), &settings) != 0) Fail("terminal");
  ::cfmakeraw(&settings);
  ::tcsetattr(slave.Get(), TCSANOW, &settings);
  winsize size = {};
  size.ws_col = columns;
  if (::ioctl(slave.Get(), TIOCSWINSZ, &size) != 0) Fail("terminal");
  return {std::move(slave), std::move(master)};
}

Channel OpenFile(const std::string& name) {
  File file(::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (file.Get() < 0) Fail(name.c_str());
  return {std::move(file), File()};
}

bool IsLocaleOrOurs(const char* variable) {
  for (const char* start : {"LC_", "LANG=", "LANGUAGE=", "QUENRA_"})
    if (std::strncmp(variable, start, std::strlen(start)) == 0) return true;
  return false;
}

std::vector<std::string> EnvironmentFor(const ProcessRequest& request) {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable)
    if (!IsLocaleOrOurs(*variable)) variables.emplace_back(*variable);
  if (!request.environment.contains("LC_ALL")) variables.emplace_back("LC_ALL=C");
  for (const auto& [name, value] : request.environment) variables.push_back(name + "=" + value);
  return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

pid_t Start(const ProcessRequest& request, int output, int errors) {
  std::vector<std::string> arguments = request.arguments;
  arguments.insert(arguments.begin(), request.program);
  std::vector<std::string> environment = EnvironmentFor(request);

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  const char* const input = request.inputFile.empty() ? "/dev/null" : request.inputFile.c_str();
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, input, O_RDONLY, 0);
  ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
  if (!request.folder.empty())
    ::posix_spawn_file_actions_addchdir_np(&actions, request.folder.c_str());

  // The program starts as a shell would start it, whatever signals the test runner ignores.
  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) sigaddset(&signals, number);
  ::posix_spawnattr_setsigdefault(&attributes, &signals);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

  pid_t process = 0;
  const int error = ::posix_spawn(&process, request.program.c_str(), &actions, &attributes,
                                  Pointers(arguments).data(), Pointers(environment).data());
  ::posix_spawnattr_destroy(&attributes);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) Fail(request.program.c_str(), error);
  return process;
}

// Reads what there is. False at the end; a terminal whose other side has gone gives an error.
bool ReadSome(File& file, std::string& text) {
  char buffer[65536];
  const ssize_t count = ::read(file.Get(), buffer, sizeof buffer);
  if (count < 0 && errno == EINTR) return true;
  if (count <= 0) return false;
  text.append(buffer, static_cast<std::size_t>(count));
  return true;
}

void Collect(const ProcessRequest& request, pid_t process, File output, File errors,
             ProcessResult& result) {
  const Clock::time_point end = Clock::now() + kLongestRun;
  const auto closeWhenRead = [&] {
    if (request.closeOutputAfter && result.output.size() >= *request.closeOutputAfter)
      output.Close();
  };
  closeWhenRead();
  while (output.Get() >= 0 || errors.Get() >= 0) {
    pollfd files[] = {{output.Get(), POLLIN, 0}, {errors.Get(), POLLIN, 0}};
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    if (left.count() <= 0 || ::poll(files, 2, static_cast<int>(left.count())) == 0) {
      ::kill(process, SIGKILL);
      return;
    }
    if (files[0].revents != 0 && !ReadSome(output, result.output)) output.Close();
    if (files[1].revents != 0 && !ReadSome(errors, result.errors)) errors.Close();
    closeWhenRead();
  }
}

// Returns at the program's end, too.
void WaitForOutput(const File& output) {
  pollfd file = {output.Get(), POLLIN, 0};
  const auto limit = std::chrono::duration_cast<std::chrono::milliseconds>(kLongestRun);
  while (::poll(&file, 1, static_cast<int>(limit.count())) < 0 && errno == EINTR) {
  }
}

bool Sleeps(pid_t process) {
  std::ifstream stream("/proc/" + std::to_string(process) + "/stat");
  const std::string text(std::istreambuf_iterator<char>(stream), {});
  // Behind the program's name, which may hold anything, in parentheses.
  const std::size_t state = text.rfind(") ");
  return state != std::string::npos && text.compare(state + 2, 1, "S") == 0;
}

// The program has emptied the pipe, and then sleeps: in the call that reads more.
void WaitUntilInputIsUsedUp(const std::string& pipe, pid_t process) {
  const File input(::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (input.Get() < 0) Fail(pipe.c_str());
  const Clock::time_point end = Clock::now() + kLongestRun;
  int left = 1;
  while (Clock::now() < end &&
         (::ioctl(input.Get(), FIONREAD, &left) != 0 || left > 0 || !Sleeps(process)))
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

// What the request asks for before the output is read.
void Accompany(const ProcessRequest& request, pid_t process, const File& output) {
  using Interrupt = ProcessRequest::Interrupt;
  if (request.interrupt == Interrupt::kWhenInputIsUsedUp)
    WaitUntilInputIsUsedUp(request.inputFile, process);
  if (request.interrupt == Interrupt::kAtFirstOutput || request.pauseAtFirstOutput.count() > 0)
    WaitForOutput(output);
  std::this_thread::sleep_for(request.pauseAtFirstOutput);
  if (request.interrupt != Interrupt::kNever) ::kill(process, SIGINT);
}

}  // namespace

ProcessResult RunProcess(const ProcessRequest& request) {
  Channel output = !request.outputFile.empty() ? OpenFile(request.outputFile)
                   : request.outputIsTerminal  ? OpenTerminal(request.terminalColumns)
                                               : OpenPipe();
  Channel errors = request.errorsAreTerminal ? OpenTerminal(request.terminalColumns) : OpenPipe();
  const pid_t process = Start(request, output.program.Get(), errors.program.Get());
  output.program.Close();
  errors.program.Close();

  Accompany(request, process, output.test);
  ProcessResult result;
  Collect(request, process, std::move(output.test), std::move(errors.test), result);

  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  return result;
}

#endif
