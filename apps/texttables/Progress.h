// The progress of long work, on one line of the terminal. Nothing is shown during the first second,
// and the line goes away when the object does.
//
//   Progress progress(!quiet);
//   while (...) progress.Advance(output.Bytes());
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace TextTables {

// Of work that goes row by row.
class Progress {
 public:
  explicit Progress(bool enabled);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // One row more; `bytes` is what was written so far, 0 when nothing is written.
  void Advance(std::uint64_t bytes) {
    ++rows_;
    if (enabled_ && (rows_ & kRowsBetweenLooks) == 0) Look(bytes);
  }

 private:
  using Clock = std::chrono::steady_clock;

  // A mask: the clock is asked every 256 rows.
  static constexpr std::uint64_t kRowsBetweenLooks = 0xFF;

  void Look(std::uint64_t bytes);

  bool enabled_;
  std::uint64_t rows_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_;
};

// Of one call that takes its time: what it works on, and for how long it has. A thread of its own
// keeps the line; nobody else may write to the terminal meanwhile.
class WaitingLine {
 public:
  // `subject` is a file's name; `bytes` its size, 0 when unknown.
  WaitingLine(bool enabled, std::string subject, std::uint64_t bytes);
  ~WaitingLine();
  WaitingLine(const WaitingLine&) = delete;
  WaitingLine& operator=(const WaitingLine&) = delete;

 private:
  void Show(const std::string& text);

  std::mutex mutex_;
  std::condition_variable ends_;
  bool ended_ = false;
  std::thread thread_;
};

// "1,234,567 rows, 83.1 MB, 512,000 rows/s".
std::string ProgressLine(std::uint64_t rows, std::uint64_t bytes, double seconds);

// "83.1 MB"; decimal units.
std::string ReadableBytes(std::uint64_t bytes);

}  // namespace TextTables
