// Turns the field texts of a record into the typed values that the host receives.
//
//   RowConverter converter(table, &LoadMessage);
//   converter.SetSlot(0, &slot);
//   const std::size_t count = converter.Convert(reader.record());
//
// One converter serves one cursor: it remembers which columns have been reported. What has to be
// done for each field is worked out once, and every value is converted straight into the slot where
// it is wanted: a row allocates one BSTR for each text asked for, and nothing else.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/DataCore/LatLongFormat.h"
#include "inference/CellStep.h"
#include "inference/DateParsing.h"
#include "inference/MismatchReport.h"
#include "inference/PlainCells.h"
#include "platform/OleAutomation.h"
#include "reading/PlainRow.h"
#include "reading/Record.h"
#include "reading/TextDatasetDescription.h"

namespace TextFile {

class RowConverter {
 public:
  // What becomes of a value that is reported as not fitting: it stays what could be made of it, or
  // arrives as VT_NULL.
  enum class Reported : std::uint8_t { kAsConverted, kNull };

  // `table` must be loaded; it is shared, since a cursor may outlive the object it came from.
  // No field is wanted at first.
  RowConverter(std::shared_ptr<const TextDatasetDescription> table, MessageLoader loadMessage,
               Reported reported = Reported::kAsConverted,
               const PlainCells& plainCells = QuickestPlainCells());
  RowConverter(const RowConverter&) = delete;
  RowConverter& operator=(const RowConverter&) = delete;

  // Where the values of a field go: a variant of the caller's, valid during every Convert, which
  // clears what it holds. Null for a field that nobody asks for: its texts are not made into BSTRs
  // and its coordinates not parsed, but its values are still checked, and mismatches reported.
  void SetSlot(std::size_t field, VARIANT* slot) noexcept {
    fields_[field].slot = slot != nullptr ? slot : &unwanted_;
    if (!fieldsOfColumns_.empty()) ForgetSteps();
  }
  std::size_t fieldCount() const noexcept { return fields_.size(); }

  // Converts a record and answers how many fields, from the first on, it had texts for; the slots
  // of the others are left alone. A value that does not fit becomes VT_NULL (or, in columns of
  // whole or single numbers, the Double that it is) and is reported once a column.
  std::size_t Convert(const Record& record);
  std::size_t Convert(const PlainRow& row) {
    BeginRow(row.size());
    const CellStep* const end = steps_.data() + steps_.size();
    const CellStep* const step = plainCells_.convert(row, steps_.data(), end, formats_, text_);
    if (step != end) ConvertRest(row, step);
    return FieldsOf(row.size());
  }

  // The messages of the mismatches that the last Convert has reported, by field.
  const std::map<std::size_t, quenra::MessageText>& messages() const noexcept { return messages_; }

 private:
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  struct Field {
    VARIANT* slot;  // or unwanted_
    FieldType type;
    bool reported = false;
  };
  struct FieldMismatch {
    std::size_t field;
    std::u16string text;
    std::u16string fieldName;
    Mismatch mismatch;  // without these two
  };
  // A text of a record, and where it stands.
  struct Cell {
    std::size_t field;
    std::size_t column;
    std::u16string_view text;
  };

  CellWay WayOf(std::size_t field) const noexcept;
  bool NeedsStep(std::size_t field, std::size_t fields) const noexcept;
  void MakeSteps(std::size_t columnsOfRecord);
  void ForgetSteps() noexcept;
  // How many fields have texts in a record of so many columns, whose steps are made.
  std::size_t FieldsOf(std::size_t columns) const noexcept {
    if (columns > fieldsOfColumns_.size()) return fields_.size();
    return columns == 0 ? 0 : fieldsOfColumns_[columns - 1];
  }
  bool IsWanted(std::size_t field) const noexcept { return fields_[field].slot != &unwanted_; }
  bool FitsPlainly(const CellStep& step, std::u16string_view text) const noexcept;
  bool ConvertPlainly(const CellStep& step, std::u16string_view text,
                      VARIANT& value) const noexcept;
  template <class Row>
  void ConvertStep(const CellStep& step, const Row& row);
  void ConvertCell(const Cell& cell, VARIANT& value);
  void ConvertNumber(const Cell& cell, VARIANT& value);
  void ConvertDouble(const Cell& cell, VARIANT& value);
  void ConvertDate(const Cell& cell, VARIANT& value);
  bool SetDate(std::size_t field, const ParsedDateTime& parsed, VARIANT& value);
  template <class Row>
  void ConvertCoordinates(const CellStep& step, const Row& row);
  void Report(const Cell& cell, FieldType found, VARIANT& value);
  void ReportAll();
  void BeginRow(std::size_t columns) {
    if (!messages_.empty()) messages_.clear();
    if (!mismatches_.empty()) mismatches_.clear();
    if (columns > columnsWithSteps_) MakeSteps(columns);
  }
  void ConvertRest(const PlainRow& row, const CellStep* step);

  const std::shared_ptr<const TextDatasetDescription> table_;
  const MessageLoader loadMessage_;
  const Reported reported_;
  const CellFormats formats_;
  const PlainCells& plainCells_;
  quenra::LatLongFormat latLong_;
  std::vector<Field> fields_;
  std::vector<CellStep> steps_;  // in the order of columns; of those alone that a record has had
  // How many columns a record may have until steps for others must be made: any number once all are
  // there.
  std::size_t columnsWithSteps_ = 0;
  std::vector<std::size_t> fieldsOfColumns_;  // how many fields the first so many columns have
  UnitBuffer text_;                           // of a field of a plain row
  UnitBuffer neighbour_;                      // and of the one behind it
  VARIANT unwanted_;  // takes the values of fields without a slot; owns nothing
  std::vector<FieldMismatch> mismatches_;  // of the row being converted, not reported before
  std::map<std::size_t, quenra::MessageText> messages_;  // of the row converted last, by field
};

}  // namespace TextFile
