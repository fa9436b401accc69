// Runs one fuzz target over files instead of inventing input, so that a target can be built and
// its known inputs checked by any compiler.
//
//   LatLongFormatFuzz fuzz/corpus/LatLongFormatFuzz some-crash-file
//
// Each argument is a file or a folder of files.
// The target always sees the empty input first. Exits with 1 when a file cannot be read.

#include <boost/filesystem.hpp>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = boost::filesystem;

bool RunFile(const fs::path& file) {
  std::ifstream stream(file.c_str(), std::ios::binary);
  if (!stream) {
    std::cerr << "cannot read " << file.string() << '\n';
    return false;
  }
  const std::vector<char> bytes{std::istreambuf_iterator<char>(stream),
                                std::istreambuf_iterator<char>()};
  // A buffer of its own size, so that a sanitizer sees the first byte read past the end.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(input.data(), input.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint8_t nothing = 0;
  LLVMFuzzerTestOneInput(&nothing, 0);
  int files = 0;
  bool readable = true;
  for (int i = 1; i < argc; ++i) {
    const fs::path argument = argv[i];
    if (!fs::is_directory(argument)) {
      readable = RunFile(argument) && readable;
      ++files;
      continue;
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(argument)) {
      if (!fs::is_regular_file(entry.status())) continue;
      readable = RunFile(entry.path()) && readable;
      ++files;
    }
  }
  std::cout << files << " files run\n";
  return readable ? 0 : 1;
}
