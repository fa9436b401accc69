// Rows aligned for people: numbers to the right, everything else to the left, and on a terminal no
// wider than that.
#include <algorithm>

#include "AlignedText.h"
#include "RowWriter.h"
#include "ShownText.h"
#include "Terminal.h"
#include "ValueText.h"
#include "platform/OleText.h"

namespace TextTables {

namespace {

// More names than that would hide the table.
constexpr std::size_t kNamesTold = 50;

bool IsNumberField(LONG type) {
  constexpr LONG kDouble = 3;
  constexpr LONG kBigInteger = 13;
  return (type >= 0 && type <= kDouble) || type == kBigInteger;
}

class TableRowWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;

  void Begin(std::span<const OutputColumn> columns, const TableFields& fields) override {
    RowWriter::Begin(columns, fields);
    std::vector<bool> toTheRight;
    std::vector<Cell> names;
    for (const OutputColumn& column : columns_) {
      toTheRight.push_back(IsNumberField(column.type));
      names.push_back(TextCell(NameOf(column)));
    }
    table_ =
        std::make_unique<AlignedText>(output_, std::move(toTheRight), Terminal::OutputColumns());
    table_->AddHeader(std::move(names));
  }

  void Write(const quenra::HostFieldValue* slots) override {
    std::vector<Cell> cells;
    cells.reserve(columns_.size());
    for (const OutputColumn& column : columns_)
      cells.push_back(CellOf(slots[column.slot].value, column.type));
    table_->AddLine(std::move(cells));
  }

  void End() override {
    table_->End();
    TellLeftOut(table_->ShownColumns());
  }

 private:
  // On a screen that has no room for the columns from there on.
  void TellLeftOut(std::size_t first) {
    if (first == columns_.size()) return;
    output_.Append("\nleft out: ");
    const std::size_t end = std::min(columns_.size(), first + kNamesTold);
    for (std::size_t i = first; i < end; ++i) {
      if (i > first) output_.Append(", ");
      output_.Append(Shown(NameOf(columns_[i])));
    }
    if (end < columns_.size())
      output_.Append(" and " + std::to_string(columns_.size() - end) + " more");
    output_.Append(" (--columns chooses)\n");
  }

  Cell CellOf(const VARIANT& value, LONG fieldType) {
    if (value.vt == VT_BSTR) return TextCell(ViewOf(value.bstrVal));
    AppendPlainValue(scratch_, value, fieldType);
    return PlainCell(scratch_.Take());
  }

  std::unique_ptr<AlignedText> table_;
  StringOutput scratch_;
};

}  // namespace

std::unique_ptr<RowWriter> MakeTableRowWriter(Output& output) {
  return std::make_unique<TableRowWriter>(output);
}

}  // namespace TextTables
