#include "Output.h"

#include <utility>

#include "Terminal.h"

namespace TextTables {

namespace {

// Large enough that the system calls do not count; a pipe takes 64 KiB at once.
constexpr std::size_t kStandardBlock = 256 * 1024;
constexpr std::size_t kStringBlock = 256;

}  // namespace

Output::Output(std::size_t blockBytes)
    : capacity_(blockBytes), buffer_(std::make_unique_for_overwrite<char[]>(blockBytes)) {}

void Output::Flush() {
  const std::string_view bytes(buffer_.get(), std::exchange(used_, 0));
  written_ += bytes.size();
  if (!bytes.empty()) WriteBlock(bytes);
}

void Output::MakeRoom(std::size_t bytes) {
  Flush();
  if (bytes <= capacity_) return;
  buffer_ = std::make_unique_for_overwrite<char[]>(bytes);
  capacity_ = bytes;
}

StandardOutput::StandardOutput() : Output(kStandardBlock) {}

void StandardOutput::WriteBlock(std::string_view bytes) {
  while (!bytes.empty())
    bytes.remove_prefix(Terminal::WriteStandardOutput(bytes.data(), bytes.size()));
}

StringOutput::StringOutput() : Output(kStringBlock) {}

std::string StringOutput::Take() {
  Flush();
  return std::exchange(text_, {});
}

}  // namespace TextTables
