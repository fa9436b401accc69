// Bytes on their way out, collected in large blocks.
//
//   StandardOutput output;
//   output.Append("Id,Name\n");
//   output.Flush();
//
//   StringOutput text;
//   AppendJsonString(text, u"caf\u00E9");
//   text.Take();
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace TextTables {

// Every function that writes lets pass what the end of the way throws. Destruction writes nothing:
// what was not flushed is lost with the failure that prevented it.
class Output {
 public:
  explicit Output(std::size_t blockBytes);
  virtual ~Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void Append(char byte) {
    if (used_ == capacity_) MakeRoom(1);
    buffer_[used_++] = byte;
  }
  void Append(std::string_view bytes) {
    std::memcpy(Reserve(bytes.size()), bytes.data(), bytes.size());
    used_ += bytes.size();
  }

  // At least `bytes` bytes to be filled by the caller, who then tells with Commit where it ended.
  char* Reserve(std::size_t bytes) {
    if (capacity_ - used_ < bytes) MakeRoom(bytes);
    return buffer_.get() + used_;
  }
  void Commit(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }

  // Hands on what was collected.
  void Flush();

  // Bytes handed on and waiting, together.
  std::uint64_t Bytes() const noexcept { return written_ + used_; }

 private:
  virtual void WriteBlock(std::string_view bytes) = 0;

  void MakeRoom(std::size_t bytes);

  std::size_t capacity_;
  std::size_t used_ = 0;
  std::uint64_t written_ = 0;
  std::unique_ptr<char[]> buffer_;
};

// Standard output. Throws OutputClosed when the reader has gone, Interrupted when the user
// interrupts a write that waits, and a Refusal for other errors (a full disk).
class StandardOutput : public Output {
 public:
  StandardOutput();

 private:
  void WriteBlock(std::string_view bytes) override;
};

// A text in memory.
class StringOutput : public Output {
 public:
  StringOutput();

  // What was written since the last time.
  std::string Take();

 private:
  void WriteBlock(std::string_view bytes) override { text_ += bytes; }

  std::string text_;
};

}  // namespace TextTables
