// Runs a program and collects what it says.
//
//   ProcessRequest request;
//   request.program = PROGRAM_FILE;
//   request.arguments = {"count", "a.csv"};
//   const ProcessResult result = RunProcess(request);
//   EXPECT_EQ(result.output, "2\n");
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

struct ProcessRequest {
  std::string program;                 // a path
  std::vector<std::string> arguments;  // behind the program's name, as bytes
  std::string folder;                  // the current folder; empty: the test's own
  // Set in the program's environment, which is otherwise the test's without its locale variables
  // and without ours (LC_*, LANG, LANGUAGE, QUENRA_*); LC_ALL is C unless given here.
  std::map<std::string, std::string> environment;
  // Standard input is this file; empty: nothing can be read.
  std::string inputFile;
  // Standard output or error is a terminal that passes bytes on unchanged.
  bool outputIsTerminal = false;
  bool errorsAreTerminal = false;
  // Columns of such a terminal; 0: it does not say.
  unsigned short terminalColumns = 0;
  // Standard output is this file instead; ProcessResult::output stays empty.
  std::string outputFile;
  // The reader of standard output goes away after so many bytes.
  std::optional<std::size_t> closeOutputAfter;
#ifndef _WIN32
  // Nothing is read from standard output for so long after the program has begun to write there; it
  // waits once the pipe is full.
  std::chrono::milliseconds pauseAtFirstOutput{0};
  // The program gets the interrupt that Ctrl+C sends when it has come so far.
  enum class Interrupt { kNever, kAtFirstOutput, kWhenInputIsUsedUp };
  // kWhenInputIsUsedUp is for an input file that is a named pipe and that the test keeps open: the
  // program has read all that was in it and waits for more.
  Interrupt interrupt = Interrupt::kNever;
#endif
};

struct ProcessResult {
  int exitCode = -1;  // -1 when a signal ended the program
  int signal = 0;     // that signal
  std::string output;
  std::string errors;
};

// Waits for the program's end. Throws std::system_error when it cannot be started. A program that
// hangs, which means that it runs longer than ten minutes, is ended by a signal.
ProcessResult RunProcess(const ProcessRequest& request);
