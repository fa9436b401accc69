// Columns aligned for people.
//
//   AlignedText table(output, {false, true});
//   table.AddHeader({TextCell(u"Name"), TextCell(u"Length")});
//   table.AddLine({TextCell(u"Id"), PlainCell("4")});
//   table.End();
//
// The widths come from the first lines, which wait until the widths are known; a later line that
// is wider pushes itself apart. So memory does not grow with the table.
//
// On a screen no line is wider than that: wide columns give up room to the others, their values end
// in "…", and columns that have no room left at the right end are left out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Output.h"

namespace TextTables {

struct Cell {
  std::string text;       // UTF-8, without control characters
  std::size_t width = 0;  // columns of the terminal
};

Cell TextCell(std::u16string_view text);
// Printable ASCII only.
Cell PlainCell(std::string text);

class AlignedText {
 public:
  // One entry a column: whether its cells stand at the right end of it.
  // `screen` is how many columns a screen has; 0: lines may have any length.
  AlignedText(Output& output, std::vector<bool> toTheRight, std::size_t screen = 0);

  // The first line, underlined.
  void AddHeader(std::vector<Cell> cells);

  void AddLine(std::vector<Cell> cells);

  // After the last line.
  void End();

  // How many columns have been shown, from the left; known at the end.
  std::size_t ShownColumns() const noexcept { return shown_; }

 private:
  void Keep(std::vector<Cell> cells);
  void AppendWaiting();
  void FitToScreen();
  void ShareRoom(std::size_t room);
  void AppendRule();
  void AppendLine(const std::vector<Cell>& cells);

  Output& output_;
  std::vector<bool> toTheRight_;
  const std::size_t screen_;
  std::size_t shown_;
  std::vector<std::size_t> widths_;
  std::vector<std::vector<Cell>> waiting_;
  bool hasHeader_ = false;
  bool widthsAreKnown_ = false;
};

}  // namespace TextTables
