// The formats in which rows are written.
//
//   const auto writer = MakeRowWriter(RowFormat::kCsv, output);
//   writer->Begin(columns);
//   while (...) writer->Write(slots);
//   writer->End();
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Output.h"
#include "host/interfaces/PlugInCursor.h"

namespace TextTables {

enum class RowFormat { kTable, kCsv, kJsonLines, kTyped, kNone };

// One column of the output.
struct OutputColumn {
  std::u16string name;
  LONG type = 0;         // the field type code
  std::size_t slot = 0;  // where its value stands among the host's slots
};

class RowWriter {
 public:
  explicit RowWriter(Output& output) : output_(output) {}
  virtual ~RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  // To be called once, before the first row.
  virtual void Begin(const std::vector<OutputColumn>& columns) { columns_ = columns; }

  // `slots` is read during the call; it holds every slot that the columns name.
  virtual void Write(const quenra::HostFieldValue* slots) = 0;

  // After the last row. What is left in the output is not flushed.
  virtual void End() {}

 protected:
  Output& output_;
  std::vector<OutputColumn> columns_;
};

std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, Output& output);

// Each format's own maker.
std::unique_ptr<RowWriter> MakeTableRowWriter(Output& output);
std::unique_ptr<RowWriter> MakeCsvRowWriter(Output& output);
std::unique_ptr<RowWriter> MakeJsonLinesRowWriter(Output& output);
std::unique_ptr<RowWriter> MakeTypedRowWriter(Output& output);

}  // namespace TextTables
