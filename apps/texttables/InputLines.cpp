#include "InputLines.h"

namespace TextTables {

namespace {

constexpr std::size_t kBlock = 256 * 1024;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

bool InputLines::Next() {
  std::size_t searched = start_;
  std::size_t end = buffer_.find('\n', searched);
  while (end == std::string::npos && !ended_) {
    const std::size_t known = buffer_.size() - start_;
    Fill();  // moves the line to the front
    searched = known;
    end = buffer_.find('\n', searched);
  }
  if (end == std::string::npos && start_ == buffer_.size()) return false;

  const std::size_t next = end == std::string::npos ? buffer_.size() : end + 1;
  line_ =
      std::string_view(buffer_).substr(start_, (end == std::string::npos ? next : end) - start_);
  bytes_ += next - start_;
  start_ = next;
  if (end != std::string::npos && !line_.empty() && line_.back() == '\r') line_.remove_suffix(1);
  if (number_++ == 0 && line_.starts_with(kByteOrderMark))
    line_.remove_prefix(kByteOrderMark.size());
  return true;
}

void InputLines::Fill() {
  buffer_.erase(0, start_);
  start_ = 0;
  const std::size_t before = buffer_.size();
  // A long line doubles the block, so that it is not copied once for every block.
  buffer_.resize(before + (before > kBlock ? before : kBlock));
  const std::size_t count = source_(buffer_.data() + before, buffer_.size() - before);
  buffer_.resize(before + count);
  ended_ = count == 0;
}

}  // namespace TextTables
