#include "AlignedText.h"

#include <algorithm>
#include <utility>

#include "DisplayWidth.h"
#include "ShownText.h"
#include "TextEncoding.h"

namespace TextTables {

namespace {

constexpr std::size_t kLinesForWidths = 200;
// No column is made wider than this for the sake of one long value.
constexpr std::size_t kGreatestWidth = 60;
constexpr std::size_t kGap = 2;

}  // namespace

Cell TextCell(std::u16string_view text) {
  const std::u16string shown = WithoutControls(text);
  return {Utf8(shown), DisplayWidth(shown)};
}

Cell PlainCell(std::string text) {
  const std::size_t width = text.size();
  return {std::move(text), width};
}

AlignedText::AlignedText(Output& output, std::vector<bool> toTheRight)
    : output_(output), toTheRight_(std::move(toTheRight)), widths_(toTheRight_.size(), 1) {}

void AlignedText::AddHeader(std::vector<Cell> cells) {
  hasHeader_ = true;
  Keep(std::move(cells));
}

void AlignedText::AddLine(std::vector<Cell> cells) {
  if (widthsAreKnown_) return AppendLine(cells);
  Keep(std::move(cells));
  if (waiting_.size() > kLinesForWidths) AppendWaiting();
}

void AlignedText::End() {
  if (!widthsAreKnown_) AppendWaiting();
}

void AlignedText::Keep(std::vector<Cell> cells) {
  for (std::size_t i = 0; i < cells.size(); ++i)
    widths_[i] = std::max(widths_[i], std::min(cells[i].width, kGreatestWidth));
  waiting_.push_back(std::move(cells));
}

void AlignedText::AppendWaiting() {
  widthsAreKnown_ = true;
  for (std::size_t line = 0; line < waiting_.size(); ++line) {
    AppendLine(waiting_[line]);
    if (line == 0 && hasHeader_) AppendRule();
  }
  waiting_.clear();
}

void AlignedText::AppendRule() {
  for (std::size_t i = 0; i < widths_.size(); ++i) {
    if (i > 0) output_.Append(std::string(kGap, ' '));
    output_.Append(std::string(widths_[i], '-'));
  }
  output_.Append('\n');
}

// Blanks are written when something follows them, so that no line ends in blanks.
void AlignedText::AppendLine(const std::vector<Cell>& cells) {
  std::size_t blanks = 0;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::size_t fill = widths_[i] - std::min(widths_[i], cells[i].width);
    if (toTheRight_[i]) blanks += fill;
    if (!cells[i].text.empty()) {
      output_.Append(std::string(std::exchange(blanks, 0), ' '));
      output_.Append(cells[i].text);
    }
    if (!toTheRight_[i]) blanks += fill;
    blanks += kGap;
  }
  output_.Append('\n');
}

}  // namespace TextTables
