// How work ends before its end: each kind of failure is an exception that main() turns into a
// message and an exit code.
//
//   Check(workspace->OpenDatasetByName(name.Get(), dataset.Receive()), tableName);
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "platform/ComTypes.h"

namespace TextTables {

inline constexpr int kExitDone = 0;
inline constexpr int kExitRefused = 1;
inline constexpr int kExitUsage = 2;

// The page of --help that tells of the options of every command.
inline constexpr const char* kGeneralHelp = "";

// The command line is wrong. The text is UTF-8 and says what would be right.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  // `helpPage` is the command whose help tells of what is wrong, or kGeneralHelp.
  UsageError(const std::string& text, std::string helpPage)
      : std::runtime_error(text), helpPage_(std::move(helpPage)) {}

  // Nothing: that of the command which threw it.
  const std::optional<std::string>& HelpPage() const noexcept { return helpPage_; }

 private:
  std::optional<std::string> helpPage_;
};

// The data source, or the system, refused. what() is the text for people, in UTF-8.
class Refusal : public std::runtime_error {
 public:
  Refusal(HRESULT code, const std::string& text) : std::runtime_error(text), code_(code) {}
  HRESULT Code() const noexcept { return code_; }

 private:
  HRESULT code_;
};

// Nobody reads the output any more. No message: the reader has seen what it wanted.
class OutputClosed : public std::exception {};

// The user pressed the interrupt key, or the system asked the program to end.
class Interrupted : public std::exception {};

// What `code` means, in words.
std::string MeaningOf(HRESULT code);

// Throws a Refusal when `code` is a failure: with the text that the data source chained for it,
// else with the code's meaning and `subject`, the file or folder in question.
void Check(HRESULT code, std::u16string_view subject);

// The same of a file or folder that was to be opened: the message has the system's reason as well,
// which is asked for at `path`.
void CheckOpened(HRESULT code, std::u16string_view subject, std::u16string_view path);

// A Refusal for an error of the system; `error` is errno, or a Win32 error code on Windows.
Refusal SystemRefusal(int error, std::u16string_view subject);

// "0x80040955".
std::string HexCode(HRESULT code);

}  // namespace TextTables
