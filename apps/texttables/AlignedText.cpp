#include "AlignedText.h"

#include <algorithm>
#include <utility>

#include "DisplayWidth.h"
#include "ShownText.h"
#include "Terminal.h"
#include "TextEncoding.h"

namespace TextTables {

namespace {

constexpr std::size_t kLinesForWidths = 200;
// No column is made wider than this for the sake of one long value.
constexpr std::size_t kGreatestWidth = 60;
constexpr std::size_t kGap = 2;
// A column is not shown narrower than this, unless that is all it needs.
constexpr std::size_t kLeastWidth = 8;

// The cell in no more than so many columns of the screen.
Cell CutCell(const Cell& cell, std::size_t columns) {
  return TextCell(CutToWidth(Terminal::TextOfArgument(cell.text), columns));
}

}  // namespace

Cell TextCell(std::u16string_view text) {
  const std::u16string shown = WithoutControls(text);
  return {Utf8(shown), DisplayWidth(shown)};
}

Cell PlainCell(std::string text) {
  const std::size_t width = text.size();
  return {std::move(text), width};
}

AlignedText::AlignedText(Output& output, std::vector<bool> toTheRight, std::size_t screen)
    : output_(output),
      toTheRight_(std::move(toTheRight)),
      screen_(screen),
      shown_(toTheRight_.size()),
      widths_(toTheRight_.size(), 1) {}

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
    widths_[i] =
        std::max(widths_[i], std::min(cells[i].width, screen_ > 0 ? screen_ : kGreatestWidth));
  waiting_.push_back(std::move(cells));
}

void AlignedText::AppendWaiting() {
  widthsAreKnown_ = true;
  if (screen_ > 0) FitToScreen();
  for (std::size_t line = 0; line < waiting_.size(); ++line) {
    AppendLine(waiting_[line]);
    if (line == 0 && hasHeader_) AppendRule();
  }
  waiting_.clear();
}

// Leaves out the columns at the right end that do not fit even when all are as narrow as can be.
void AlignedText::FitToScreen() {
  std::size_t needed = 0;
  for (std::size_t i = 0; i < widths_.size(); ++i) {
    needed += (i > 0 ? kGap : 0) + std::min(widths_[i], kLeastWidth);
    if (i > 0 && needed > screen_) {
      shown_ = i;
      break;
    }
  }
  if (shown_ > 0) ShareRoom(screen_ - std::min(screen_ - 1, kGap * (shown_ - 1)));
}

// The widest columns shrink to one width, so that all take no more than `room` together; what the
// division leaves goes to the first of them.
void AlignedText::ShareRoom(std::size_t room) {
  const auto total = [this](std::size_t greatest) {
    std::size_t sum = 0;
    for (std::size_t i = 0; i < shown_; ++i) sum += std::min(widths_[i], greatest);
    return sum;
  };
  std::size_t greatest = screen_;
  while (greatest > 1 && total(greatest) > room) --greatest;
  std::size_t left = room - std::min(room, total(greatest));
  for (std::size_t i = 0; i < shown_; ++i) {
    if (widths_[i] <= greatest) continue;
    widths_[i] = greatest + (left > 0 ? 1 : 0);
    left -= std::min<std::size_t>(left, 1);
  }
}

void AlignedText::AppendRule() {
  for (std::size_t i = 0; i < shown_; ++i) {
    if (i > 0) output_.Append(std::string(kGap, ' '));
    output_.Append(std::string(widths_[i], '-'));
  }
  output_.Append('\n');
}

// Blanks are written when something follows them, so that no line ends in blanks.
void AlignedText::AppendLine(const std::vector<Cell>& cells) {
  std::size_t blanks = 0;
  for (std::size_t i = 0; i < shown_; ++i) {
    const bool cut = screen_ > 0 && cells[i].width > widths_[i];
    const Cell shorter = cut ? CutCell(cells[i], widths_[i]) : Cell();
    const Cell& cell = cut ? shorter : cells[i];
    const std::size_t fill = widths_[i] - std::min(widths_[i], cell.width);
    if (toTheRight_[i]) blanks += fill;
    if (!cell.text.empty()) {
      output_.Append(std::string(std::exchange(blanks, 0), ' '));
      output_.Append(cell.text);
    }
    if (!toTheRight_[i]) blanks += fill;
    blanks += kGap;
  }
  output_.Append('\n');
}

}  // namespace TextTables
