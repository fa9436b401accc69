#include "reading/FixedWidthReader.h"

#include "inference/TypeInference.h"
#include "platform/ProcessorClones.h"
#include "reading/UnitSearch.h"

namespace TextFile {

FixedWidthReader::FixedWidthReader(const TextDatasetDescription& description)
    : Reader(description) {
  SetWidths(description.fields);
}

void FixedWidthReader::SetWidths(const FieldList& fields) {
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

// Beyond ASCII the widths would count other things than bytes.
bool FixedWidthReader::ReadPlainRow(PlainRow& row) {
  if (exact_ || widths_.empty() || !TakePlainRow(plainLines_, true, plainLine_)) return false;
  CutPlainLine(row);
  return true;
}

CLONED_FOR_PROCESSORS
void FixedWidthReader::CutPlainLine(PlainRow& row) const {
  std::string_view line = plainLine_[0];
  PlainRow::Bound* bound = row.MakePlaces(widths_.size());
  for (const std::int64_t width : widths_) {
    if (line.empty()) break;
    const bool whole = width > 0 && static_cast<std::uint64_t>(width) <= line.size();
    const std::size_t length = whole ? static_cast<std::size_t>(width) : line.size();
    const std::string_view kept = TrimBlanksInSteps(line.data(), length);
    *bound++ = kept.data() - 1;
    *bound++ = kept.data() + kept.size();
    line.remove_prefix(length);
  }
  row.EndAt(bound);
}

void FixedWidthReader::TakeFields() {
  if (exact_ || LinesMayHoldTerminator())
    TakeFieldsExactly();
  else if (EnsureLine())
    TakeFieldsOfLine();
}

// Cuts the line at the widths. Gives the same fields as taking one character after the other.
CLONED_FOR_PROCESSORS
void FixedWidthReader::TakeFieldsOfLine() {
  const char16_t* const text = line();
  std::size_t begin = cursor();
  const auto end = static_cast<std::size_t>(FindEither(text + begin, 0, 0) - text);
  UseUpLine();
  for (const std::int64_t width : widths_) {
    if (begin == end) return;
    const bool whole = width > 0 && static_cast<std::uint64_t>(width) <= end - begin;
    const std::size_t length = whole ? static_cast<std::size_t>(width) : end - begin;
    const std::u16string_view kept = TrimBlanksInSteps(text + begin, length);
    record_.AddFromLine(text, static_cast<std::size_t>(kept.data() - text), kept.size());
    begin += length;
  }
}

void FixedWidthReader::TakeFieldsExactly() {
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

bool FixedWidthReader::Scan(SchemaOptions& options, FieldList& fields,
                            const OpenOptions& openOptions) {
  if (!IsOpen()) return false;
  TypeInference inference(*this, options, openOptions);
  FieldList declared;
  inference.WriteFields(declared);
  SetWidths(declared);
  ReadHeader(inference, options);
  // Without columns nothing has been read, so a file that is not empty cannot be a table.
  if (widths_.empty() && !StreamAtEnd()) {
    NoteMisfit({.kind = LayoutMisfit::Kind::kNoColumns});
    return false;
  }
  const bool scanned = inference.Scan();
  if (scanned) inference.WriteFields(fields);
  if (scanned && fields.size() == inference.lastRecordSize()) return true;
  LayoutMisfit misfit = inference.Misfit();
  if (scanned) misfit.columns = fields.size();
  NoteMisfit(misfit);
  return false;
}

}  // namespace TextFile
