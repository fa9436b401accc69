#include "reading/FixedWidthReader.h"

#include "inference/TypeInference.h"

namespace TextFile {

FixedWidthReader::FixedWidthReader(const TextDatasetDescription& description)
    : Reader(description) {
  SetWidths(description.fields);
}

void FixedWidthReader::SetWidths(const std::vector<FieldDefinition>& fields) {
  widths_.clear();
  for (const FieldDefinition& field : fields) widths_.push_back(field.width);
}

bool FixedWidthReader::ReadRecord() {
  for (;;) {
    if (record_.empty() && StreamAtEnd()) return false;
    record_.Clear();
    if (widths_.empty()) return false;
    TakeFields();
    if (!record_.empty()) return true;
    // A blank line between records is no record.
  }
}

void FixedWidthReader::TakeFields() {
  const char16_t terminator = TerminatorUnit();
  char16_t unit = 0;
  while (TakeCharacter(unit) && unit != terminator) {
    if (record_.size() == widths_.size()) continue;
    record_.Append(unit);
    // Compared for equality: a column of no width or less takes everything to the line's end.
    const auto length = static_cast<std::int64_t>(record_.OpenField().size());
    if (length == widths_[record_.size()]) record_.EndTrimmedField();
  }
  if (!record_.OpenField().empty()) record_.EndTrimmedField();
}

bool FixedWidthReader::Scan(SchemaOptions& options, std::vector<FieldDefinition>& fields,
                            const OpenOptions& openOptions) {
  if (!IsOpen()) return false;
  TypeInference inference(*this, options, openOptions);
  std::vector<FieldDefinition> declared;
  inference.WriteFields(declared);
  SetWidths(declared);
  ReadHeader(inference, options);
  // Without columns nothing has been read, so a file that is not empty cannot be a table.
  if (widths_.empty() && !StreamAtEnd()) return false;
  if (!inference.Scan()) return false;
  inference.WriteFields(fields);
  return fields.size() == inference.lastRecordSize();
}

}  // namespace TextFile
