#include "Progress.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "DisplayWidth.h"
#include "Terminal.h"
#include "TextEncoding.h"

namespace TextTables {

namespace {

constexpr std::chrono::milliseconds kSilence{1000};
constexpr std::chrono::milliseconds kInterval{200};

std::string Grouped(std::uint64_t value) {
  std::string text = std::to_string(value);
  for (std::size_t i = text.size(); i > 3;) text.insert(i -= 3, 1, ',');
  return text;
}

void ShowLine(std::string_view line) {
  // A line that wraps cannot be taken away.
  const auto columns = static_cast<std::size_t>(std::max(Terminal::Columns(), 2));
  const std::u16string text = Terminal::TextOfArgument(line);
  Terminal::ShowProgressLine(Utf8(CutToWidth(text, columns - 1)));
}

}  // namespace

Progress::Progress(bool enabled)
    : enabled_(enabled && Terminal::StandardErrorIsTerminal()), next_(start_ + kSilence) {}

Progress::~Progress() {
  if (enabled_) Terminal::ShowProgressLine({});
}

void Progress::Look(std::uint64_t bytes) {
  const Clock::time_point now = Clock::now();
  if (now < next_) return;
  next_ = now + kInterval;
  const std::chrono::duration<double> elapsed = now - start_;
  ShowLine(ProgressLine(rows_, bytes, elapsed.count()));
}

WaitingLine::WaitingLine(bool enabled, std::string subject, std::uint64_t bytes) {
  if (!enabled || !Terminal::StandardErrorIsTerminal()) return;
  std::string text = "reading " + std::move(subject);
  if (bytes > 0) text += " (" + ReadableBytes(bytes) + ")";
  thread_ = std::thread([this, text] { Show(text); });
}

WaitingLine::~WaitingLine() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
  }
  ends_.notify_one();
  thread_.join();
  Terminal::ShowProgressLine({});
}

void WaitingLine::Show(const std::string& text) {
  std::unique_lock lock(mutex_);
  auto elapsed = kSilence;
  for (auto pause = kSilence; !ends_.wait_for(lock, pause, [this] { return ended_; });
       elapsed += pause) {
    pause = std::chrono::seconds(1);
    ShowLine(text + ", " + Grouped(static_cast<std::uint64_t>(elapsed.count() / 1000)) + " s");
  }
}

std::string ProgressLine(std::uint64_t rows, std::uint64_t bytes, double seconds) {
  std::string line = Grouped(rows) + " rows";
  if (bytes > 0) line += ", " + ReadableBytes(bytes);
  if (seconds > 0)
    line +=
        ", " + Grouped(static_cast<std::uint64_t>(static_cast<double>(rows) / seconds)) + " rows/s";
  return line;
}

std::string ReadableBytes(std::uint64_t bytes) {
  constexpr std::array kUnits = {"kB", "MB", "GB", "TB", "PB"};
  if (bytes < 1000) return std::to_string(bytes) + " bytes";
  double value = static_cast<double>(bytes) / 1000;
  std::size_t unit = 0;
  while (value >= 999.95 && unit + 1 < kUnits.size()) {
    value /= 1000;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.1f %s", value, kUnits[unit]);
  return text;
}

}  // namespace TextTables
