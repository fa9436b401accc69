// The formats in which rows are written.
//
//   const auto writer = MakeRowWriter(RowFormat::kCsv, output);
//   writer->Begin(columns, fields);
//   while (...) writer->Write(slots);
//   writer->End();
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "Fields.h"
#include "Output.h"
#include "host/interfaces/PlugInCursor.h"

namespace TextTables {

enum class RowFormat { kTable, kCsv, kJsonLines, kTyped, kGeoJson, kNone };

// One column of the output. Small, since there may be a million.
struct OutputColumn {
  std::uint32_t field = 0;  // of the table; it has the name
  LONG type = 0;            // the field type code
  std::uint32_t slot = 0;   // where its value stands among the host's slots
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

  // To be called once, before the first row. `columns` and `fields` are used until the end.
  virtual void Begin(std::span<const OutputColumn> columns, const TableFields& fields) {
    columns_ = columns;
    fields_ = &fields;
  }

  // `slots` is read during the call; it holds every slot that the columns name.
  virtual void Write(const quenra::HostFieldValue* slots) = 0;

  // After the last row. What is left in the output is not flushed.
  virtual void End() {}

 protected:
  std::u16string NameOf(const OutputColumn& column) const { return fields_->NameOf(column.field); }

  Output& output_;
  std::span<const OutputColumn> columns_;

 private:
  const TableFields* fields_ = nullptr;
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
