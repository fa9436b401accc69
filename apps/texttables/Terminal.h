// What the program needs of the terminal, the standard streams and the interrupt key. One source
// file a system stands behind it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace TextTables::Terminal {

// To be called first: bytes leave as they are, a closed pipe is an error of the write instead of
// the program's death, and an interrupt takes the progress line away.
void Prepare();

#ifdef _WIN32
// Narrow arguments have passed through the ANSI code page; these have not.
using ArgumentUnit = wchar_t;
#else
using ArgumentUnit = char;
#endif

// The arguments behind the program's name, as bytes: on Windows UTF-8, elsewhere what the shell
// passed.
std::vector<std::string> Arguments(int count, ArgumentUnit** values);

// An argument as text, so that file names in it survive.
std::u16string TextOfArgument(std::string_view argument);

bool StandardOutputIsTerminal();
bool StandardErrorIsTerminal();

// Columns of the terminal behind standard error; 80 when it does not say.
int Columns();

// Whether standard input, output or error is this regular file, under whatever name.
bool IsStandardStream(std::u16string_view fileName);

// Writes some of the bytes and answers how many. Throws OutputClosed, Interrupted or a Refusal.
std::size_t WriteStandardOutput(const char* bytes, std::size_t count);

// Bytes on their way in: of a file, or standard input.
class Input {
 public:
  // Standard input.
  Input();
  // Throws a Refusal when the file cannot be opened.
  explicit Input(std::u16string_view fileName);
  ~Input();
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  // Whether it is this regular file, under whatever name.
  bool IsFile(std::u16string_view fileName) const;

  // Fills at most `count` bytes and answers how many; 0 at the end. Throws Interrupted or a
  // Refusal.
  std::size_t Read(char* bytes, std::size_t count);

 private:
  std::u16string name_;
#ifdef _WIN32
  void* handle_;
#else
  int descriptor_;
#endif
  bool owned_;
};

// Writes everything, or as much as can be written; messages have nowhere else to go.
void WriteStandardError(std::string_view bytes);

// Shows `line` in place of what was shown before; an empty line takes it away. The line goes away
// by itself before a message and at an interrupt.
void ShowProgressLine(std::string_view line);

// While it lives, an interrupt only raises a flag, which the loop polls: a file that the data
// source is writing is finished first. Outside of it, and at the second time, an interrupt ends
// the program at once.
class DeferInterrupts {
 public:
  DeferInterrupts();
  ~DeferInterrupts();
  DeferInterrupts(const DeferInterrupts&) = delete;
  DeferInterrupts& operator=(const DeferInterrupts&) = delete;

  // Throws Interrupted when the flag is up.
  static void Poll();
};

// Ends the process in the way its parent expects of an interrupted program. Does not come back.
[[noreturn]] void EndAsInterrupted();

}  // namespace TextTables::Terminal
