// Cuts arbitrary bytes into the lines that load reads. The first byte says in how large pieces the
// bytes arrive.
//
// Holds: the lines are those between the line feeds, whatever the pieces are, and their bytes are
// all that there are.

#include <algorithm>
#include <vector>

#include "FuzzInput.h"
#include "texttables/InputLines.h"

namespace {

using Fuzz::Check;

constexpr std::string_view kMark = "\xEF\xBB\xBF";

std::vector<std::string> Expected(std::string_view bytes) {
  std::vector<std::string> lines;
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    std::string line(bytes.substr(0, end));
    if (end != std::string_view::npos && line.ends_with('\r')) line.pop_back();
    if (lines.empty() && line.starts_with(kMark)) line.erase(0, kMark.size());
    lines.push_back(std::move(line));
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
  }
  return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::FuzzInput input(data, size);
  const unsigned switches = input.TakeSwitches();
  const std::string_view bytes = input.Rest();
  // Not many: each is read into a block of a quarter of a megabyte.
  const std::size_t piece = 1 + bytes.size() / (1 + switches % 16);
  std::string_view rest = bytes;
  TextTables::InputLines lines([&](char* to, std::size_t count) {
    const std::size_t taken = rest.copy(to, std::min(piece, count));
    rest.remove_prefix(taken);
    return taken;
  });
  std::uint64_t number = 0;
  for (const std::string& expected : Expected(bytes)) {
    Check(lines.Next() && lines.Line() == expected && lines.Number() == ++number);
    Check(lines.Bytes() <= bytes.size() - rest.size());
  }
  Check(!lines.Next() && !lines.Next() && rest.empty() && lines.Bytes() == bytes.size());
  return 0;
}
