// Records cut into fields by the declared widths of the columns.
#pragma once

#include "reading/PlainRowIndex.h"
#include "reading/Reader.h"

namespace TextFile {

// Widths count UTF-16 code units of the decoded line. Every field loses its blanks at both ends.
// A short line has fewer fields than there are columns; what lies behind the last column is
// dropped. Without columns there are no records.
class FixedWidthReader final : public Reader {
 public:
  explicit FixedWidthReader(const TextDatasetDescription& description);

  // Cuts character by character only, for comparison with the way that cuts whole lines.
  void CutExactly() noexcept { exact_ = true; }

  bool ReadRecord() override;
  bool ReadPlainRow(PlainRow& row) override;
  bool Scan(SchemaOptions& options, FieldList& fields, const OpenOptions& openOptions) override;

 private:
  void SetWidths(const FieldList& fields);
  void TakeFields();
  void TakeFieldsOfLine();
  void TakeFieldsExactly();
  void CutPlainLine(PlainRow& row) const;

  bool exact_ = false;
  PlainRowIndex plainLines_{{.delimiter = '\0', .textDelimiter = '\0'}};
  PlainRow plainLine_;                // as one field
  std::vector<std::int64_t> widths_;  // of the file's columns, left to right
};

}  // namespace TextFile
