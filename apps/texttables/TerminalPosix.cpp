#ifndef _WIN32

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "Failures.h"
#include "Terminal.h"
#include "platform/FileNames.h"

namespace TextTables::Terminal {

namespace {

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};

// Back to the first column, and what is right of it erased.
constexpr std::string_view kClearLine = "\r\x1b[K";

volatile std::sig_atomic_t progressShown = 0;
volatile std::sig_atomic_t deferred = 0;
volatile std::sig_atomic_t receivedSignal = 0;

void WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t done = ::write(file, bytes.data(), bytes.size());
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(done));
  }
}

bool IsSameFile(int descriptor, std::u16string_view fileName) {
  struct stat open = {};
  struct stat named = {};
  return ::fstat(descriptor, &open) == 0 && S_ISREG(open.st_mode) &&
         ::stat(NativeFromFileName(fileName).c_str(), &named) == 0 && open.st_dev == named.st_dev &&
         open.st_ino == named.st_ino;
}

void EndBySignal(int number) {
  if (progressShown) WriteAll(STDERR_FILENO, kClearLine);
  ::signal(number, SIG_DFL);
  ::raise(number);
}

// Calls nothing but what a signal handler may call.
void OnEndingSignal(int number) {
  const int error = errno;
  if (deferred && receivedSignal == 0) {
    receivedSignal = number;
  } else {
    EndBySignal(number);
  }
  errno = error;
}

}  // namespace

void Prepare() {
  ::signal(SIGPIPE, SIG_IGN);
  for (const int number : kEndingSignals) {
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = OnEndingSignal;
    sigemptyset(&action.sa_mask);
    // No SA_RESTART: a write that waits for a slow reader comes back and sees the interrupt.
    ::sigaction(number, nullptr, &before);
    // What the parent had ignored (nohup) stays ignored.
    if (before.sa_handler != SIG_IGN) ::sigaction(number, &action, nullptr);
  }
}

std::vector<std::string> Arguments(int count, ArgumentUnit** values) {
  return {values + (count > 0 ? 1 : 0), values + count};
}

std::u16string TextOfArgument(std::string_view argument) { return FileNameFromNative(argument); }

bool StandardOutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }
bool StandardErrorIsTerminal() { return ::isatty(STDERR_FILENO) == 1; }

int Columns() {
  winsize size = {};
  if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
}

bool IsStandardStream(std::u16string_view fileName) {
  return IsSameFile(STDIN_FILENO, fileName) || IsSameFile(STDOUT_FILENO, fileName) ||
         IsSameFile(STDERR_FILENO, fileName);
}

std::size_t WriteStandardOutput(const char* bytes, std::size_t count) {
  for (;;) {
    // A write that an interrupt has ended half-way has succeeded as well.
    DeferInterrupts::Poll();
    const ssize_t done = ::write(STDOUT_FILENO, bytes, count);
    if (done >= 0) return static_cast<std::size_t>(done);
    if (errno == EINTR) continue;
    if (errno == EPIPE) throw OutputClosed();
    throw SystemRefusal(errno, u"standard output");
  }
}

Input::Input() : name_(u"standard input"), descriptor_(STDIN_FILENO), owned_(false) {}

Input::Input(std::u16string_view fileName)
    : name_(fileName),
      descriptor_(::open(NativeFromFileName(fileName).c_str(), O_RDONLY | O_CLOEXEC)),
      owned_(true) {
  if (descriptor_ < 0) throw SystemRefusal(errno, name_);
}

Input::~Input() {
  if (owned_) ::close(descriptor_);
}

bool Input::IsFile(std::u16string_view fileName) const { return IsSameFile(descriptor_, fileName); }

std::size_t Input::Read(char* bytes, std::size_t count) {
  for (;;) {
    DeferInterrupts::Poll();
    const ssize_t done = ::read(descriptor_, bytes, count);
    if (done >= 0) return static_cast<std::size_t>(done);
    if (errno != EINTR) throw SystemRefusal(errno, name_);
  }
}

void WriteStandardError(std::string_view bytes) {
  ShowProgressLine({});
  WriteAll(STDERR_FILENO, bytes);
}

void ShowProgressLine(std::string_view line) {
  if (!progressShown && line.empty()) return;
  std::string text(kClearLine);
  text += line;
  progressShown = !line.empty();
  WriteAll(STDERR_FILENO, text);
}

DeferInterrupts::DeferInterrupts() { deferred = 1; }

DeferInterrupts::~DeferInterrupts() { deferred = 0; }

void DeferInterrupts::Poll() {
  if (receivedSignal != 0) throw Interrupted();
}

void EndAsInterrupted() {
  EndBySignal(receivedSignal != 0 ? receivedSignal : SIGINT);
  std::_Exit(kExitRefused);
}

}  // namespace TextTables::Terminal

#endif
