// What the fuzz targets share: checks, texts and switches out of the fuzzer's bytes, and those
// bytes as a file in memory.
//
//   FuzzInput input(data, size);
//   const unsigned switches = input.TakeSwitches();
//   stream.Open(std::make_unique<MemoryFile>(input.Rest()), TextLineStream::kPlainLines);
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <streambuf>
#include <string>
#include <string_view>

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

// Bytes that are read as a file's are; they must outlive it.
class MemoryFile final : public std::streambuf {
 public:
  explicit MemoryFile(std::string_view bytes) {
    char* const begin = const_cast<char*>(bytes.data());  // only ever read
    setg(begin, begin, begin + bytes.size());
  }

 protected:
  pos_type seekpos(pos_type position, std::ios_base::openmode) override {
    setg(eback(), eback() + std::min<off_type>(position, egptr() - eback()), egptr());
    return gptr() - eback();
  }
};

}  // namespace Fuzz
