// The lines of a file or of standard input, as bytes.
//
//   Terminal::Input input;
//   InputLines lines(input);
//   while (lines.Next()) Use(lines.Line(), lines.Number());
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "Terminal.h"

namespace TextTables {

// A line ends with a line feed, or with the input; a carriage return in front of the line feed
// belongs to the end. A UTF-8 byte-order mark at the start of the input is passed over. Lines may
// have any length.
class InputLines {
 public:
  // Fills at most `count` bytes and answers how many; 0 at the end.
  using Source = std::function<std::size_t(char* bytes, std::size_t count)>;

  explicit InputLines(Source source) : source_(std::move(source)) {}
  // `input` must outlive this.
  explicit InputLines(Terminal::Input& input)
      : InputLines([&input](char* bytes, std::size_t count) { return input.Read(bytes, count); }) {}

  // False at the end. Lets pass what the source throws.
  bool Next();

  // Without its end; valid until the next call of Next.
  std::string_view Line() const noexcept { return line_; }
  // Of the line, from 1.
  std::uint64_t Number() const noexcept { return number_; }
  // Bytes of the lines so far.
  std::uint64_t Bytes() const noexcept { return bytes_; }

 private:
  void Fill();

  Source source_;
  std::string buffer_;     // read and not yet passed
  std::size_t start_ = 0;  // of the next line
  bool ended_ = false;
  std::string_view line_;
  std::uint64_t number_ = 0;
  std::uint64_t bytes_ = 0;
};

}  // namespace TextTables
