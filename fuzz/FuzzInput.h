// What the fuzz targets share: checks, texts and switches out of the fuzzer's bytes, and a folder
// for the files that a target reads.
//
//   FuzzInput input(data, size);
//   const unsigned switches = input.TakeSwitches();
//   folder.Write("t.csv", input.Rest());
#pragma once

#include <algorithm>
#include <boost/filesystem.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "platform/FileNames.h"

namespace Fuzz {

// A property that does not hold ends the program, and the fuzzer keeps the input.
inline void Check(bool holds) {
  if (!holds) std::abort();
}

// The bytes of one run, taken from the front.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size)
      : bytes_(reinterpret_cast<const char*>(data), size) {}

  bool empty() const noexcept { return bytes_.empty(); }

  // Eight switches, all off for the character "0" so that known inputs stay readable.
  unsigned TakeSwitches() {
    if (bytes_.empty()) return 0;
    const auto byte = static_cast<unsigned char>(bytes_.front());
    bytes_.remove_prefix(1);
    return static_cast<unsigned>(byte) ^ static_cast<unsigned>('0');
  }

  // The bytes up to the next line feed, which is taken too.
  std::string_view TakeLine() {
    const std::size_t end = std::min(bytes_.find('\n'), bytes_.size());
    const std::string_view line = bytes_.substr(0, end);
    bytes_.remove_prefix(std::min(end + 1, bytes_.size()));
    return line;
  }

  std::string_view Rest() const noexcept { return bytes_; }

  // UTF-8-like: ASCII stands for itself, two and three byte forms for other UTF-16 code units, lone
  // surrogates among them, so that every unit is found by mutation.
  std::u16string RestAsText() const {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes_[i]); };
    std::u16string text;
    for (std::size_t i = 0; i < bytes_.size();) {
      if (at(i) >= 0xE0 && i + 2 < bytes_.size()) {
        text += static_cast<char16_t>((at(i) & 0x0F) << 12 | (at(i + 1) & 0x3F) << 6 |
                                      (at(i + 2) & 0x3F));
        i += 3;
      } else if (at(i) >= 0xC0 && i + 1 < bytes_.size()) {
        text += static_cast<char16_t>((at(i) & 0x1F) << 6 | (at(i + 1) & 0x3F));
        i += 2;
      } else {
        text += static_cast<char16_t>(at(i++));
      }
    }
    return text;
  }

 private:
  std::string_view bytes_;
};

// A folder of this process's own, removed with its files at the end. TMPDIR on a memory file
// system makes the targets several times faster.
class TemporaryFolder {
 public:
  TemporaryFolder()
      : path_(boost::filesystem::temp_directory_path() /
              boost::filesystem::unique_path("fuzz-%%%%-%%%%-%%%%")) {
    boost::filesystem::create_directories(path_);
  }
  ~TemporaryFolder() {
    boost::system::error_code ignored;
    boost::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::u16string Path() const { return FileNameFromNative(path_.native()); }

  void Write(const char* name, std::string_view bytes) const {
    std::ofstream file((path_ / name).c_str(), std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    Check(!file.fail());
  }

  void Remove(const char* name) const { boost::filesystem::remove(path_ / name); }

 private:
  boost::filesystem::path path_;
};

}  // namespace Fuzz
