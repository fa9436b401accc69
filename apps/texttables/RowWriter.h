// The formats in which rows are written.
//
//   const auto writer = MakeRowWriter(RowFormat::kCsv, output);
//   writer->Begin(columns);
//   while (...) writer->Write(slots);
//   writer->End();
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Output.h"
#include "host/interfaces/PlugInCursor.h"

namespace TextTables {

enum class RowFormat { kTable, kCsv, kJsonLines, kTyped, kGeoJson, kNone };

// One column of the output.
struct OutputColumn {
  std::u16string name;
  LONG type = 0;         // the field type code
  std::size_t slot = 0;  // where its value stands among the host's slots
};

// A point of each row: where its two numbers stand among the host's slots.
struct PointColumns {
  std::size_t first = 0;
  std::size_t second = 0;
  // Of two texts that are a coordinate each, which do not say by their place which one is the
  // longitude: their slots. Of one text the first number is the longitude.
  struct Texts {
    std::size_t first = 0;
    std::size_t second = 0;
  };
  std::optional<Texts> texts;
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

// `points` are for GeoJSON; the other formats have no use for them.
std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, Output& output,
                                         const std::vector<PointColumns>& points);

// Each format's own maker.
std::unique_ptr<RowWriter> MakeTableRowWriter(Output& output);
std::unique_ptr<RowWriter> MakeCsvRowWriter(Output& output);
std::unique_ptr<RowWriter> MakeJsonLinesRowWriter(Output& output);
std::unique_ptr<RowWriter> MakeTypedRowWriter(Output& output);
std::unique_ptr<RowWriter> MakeGeoJsonRowWriter(Output& output,
                                                const std::vector<PointColumns>& points);

}  // namespace TextTables
