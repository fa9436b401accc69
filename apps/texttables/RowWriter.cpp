#include "RowWriter.h"

namespace TextTables {

namespace {

// Writes nothing: what remains is the cost of fetching.
class NoRowWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;
  void Write(const quenra::HostFieldValue*) override {}
};

}  // namespace

std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, Output& output,
                                         const std::vector<PointColumns>& points) {
  switch (format) {
    case RowFormat::kTable:
      return MakeTableRowWriter(output);
    case RowFormat::kCsv:
      return MakeCsvRowWriter(output);
    case RowFormat::kJsonLines:
      return MakeJsonLinesRowWriter(output);
    case RowFormat::kTyped:
      return MakeTypedRowWriter(output);
    case RowFormat::kGeoJson:
      return MakeGeoJsonRowWriter(output, points);
    case RowFormat::kNone:
      break;
  }
  return std::make_unique<NoRowWriter>(output);
}

}  // namespace TextTables
