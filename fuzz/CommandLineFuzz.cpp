// Takes each line of the input for an argument of the program.
//
// Holds: the command line is taken or refused with a message for people; nothing of one call stays
// for the next.

#include <string>
#include <vector>

#include "FuzzInput.h"
#include "texttables/CommandLine.h"
#include "texttables/Failures.h"

namespace {

using Fuzz::Check;
using TextTables::CommandLine;

// What the arguments mean, as far as one text tells, or why they mean nothing.
std::string Outcome(const std::vector<std::string>& arguments) {
  try {
    const CommandLine line = TextTables::ParseCommandLine(arguments);
    for (const TextTables::NewField& field : line.fields) {
      Check(!field.length || *field.length >= 0);
      Check(!field.precision || *field.precision >= 0);
    }
    for (const auto& [name, value] : line.global.hostOptions) Check(!name.empty());
    return std::to_string(static_cast<int>(line.command)) + line.reply +
           std::to_string(line.fields.size()) + std::to_string(line.names.size()) +
           std::to_string(line.path.size()) + std::to_string(line.target.size());
  } catch (const TextTables::UsageError& error) {
    Check(*error.what() != '\0');
    return error.what();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::FuzzInput input(data, size);
  std::vector<std::string> arguments;
  while (!input.empty()) {
    std::string argument(input.TakeLine());
    // The system ends arguments there.
    argument.resize(std::min(argument.find('\0'), argument.size()));
    arguments.push_back(std::move(argument));
  }
  Check(Outcome(arguments) == Outcome(arguments));
  return 0;
}
