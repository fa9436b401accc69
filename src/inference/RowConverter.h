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
#include "inference/DateParsing.h"
#include "inference/MismatchReport.h"
#include "inference/PlainNumberVector.h"
#include "platform/OleAutomation.h"
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
               Reported reported = Reported::kAsConverted);
  RowConverter(const RowConverter&) = delete;
  RowConverter& operator=(const RowConverter&) = delete;

  // Where the values of a field go: a variant of the caller's, valid during every Convert, which
  // clears what it holds. Null for a field that nobody asks for: its texts are not made into BSTRs
  // and its coordinates not parsed, but its values are still checked, and mismatches reported.
  void SetSlot(std::size_t field, VARIANT* slot) noexcept {
    plan_[field].slot = slot != nullptr ? slot : &unwanted_;
  }
  std::size_t fieldCount() const noexcept { return plan_.size(); }

  // Converts a record and answers how many fields, from the first on, it had texts for; the slots
  // of the others are left alone. A value that does not fit becomes VT_NULL (or, in columns of
  // whole or single numbers, the Double that it is) and is reported once a column.
  std::size_t Convert(const Record& record);

  // The messages of the mismatches that the last Convert has reported, by field.
  const std::map<std::size_t, std::u16string>& messages() const noexcept { return messages_; }

 private:
  // The virtual fields that follow a text field.
  enum class Companions : std::uint8_t { kNone, kOneText, kTwoTexts };
  struct FieldPlan {
    VARIANT* slot;  // or unwanted_
    FieldType type;
    Companions companions = Companions::kNone;
    bool mayBePlainNumber = false;
    const DateFieldFormat* plainDate = nullptr;  // of fields whose dates may be plain
    bool reported = false;
  };
  struct FieldMismatch {
    std::size_t field;
    Mismatch mismatch;
  };
  // A text of a record, and where it stands.
  struct Cell {
    std::size_t field;
    std::size_t column;
    std::u16string_view text;
  };

  void MakePlan();
  bool IsWanted(std::size_t field) const noexcept { return plan_[field].slot != &unwanted_; }
  bool ConvertPlainly(const FieldPlan& plan, std::u16string_view text,
                      VARIANT& value) const noexcept;
  void ConvertCell(const Cell& cell, VARIANT& value);
  void ConvertNumber(const Cell& cell, VARIANT& value);
  void ConvertDouble(const Cell& cell, VARIANT& value);
  void ConvertDate(const Cell& cell, VARIANT& value);
  bool SetDate(std::size_t field, const ParsedDateTime& parsed, VARIANT& value);
  std::size_t ConvertCoordinateText(std::size_t field, const Record& record, std::size_t& column);
  void Report(const Cell& cell, FieldType found, VARIANT& value);
  void ReportAll();

  const std::shared_ptr<const TextDatasetDescription> table_;
  const MessageLoader loadMessage_;
  const Reported reported_;
  const char16_t decimalSymbol_;
  const PlainNumberReader readPlainNumber_ = QuickestPlainNumberReader();
  quenra::LatLongFormat latLong_;
  std::vector<FieldPlan> plan_;  // one entry a field
  VARIANT unwanted_;             // takes the values of fields without a slot; owns nothing
  std::vector<FieldMismatch> mismatches_;  // of the row being converted, not reported before
  std::map<std::size_t, std::u16string> messages_;  // of the row converted last, by field
};

}  // namespace TextFile
