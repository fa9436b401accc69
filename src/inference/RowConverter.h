// Turns the field texts of a record into the typed values that the host receives.
//
//   RowConverter converter(table, &LoadMessage);
//   const std::size_t count = converter.Convert(reader.record());
//   converter.MoveValue(0, slot);
//
// One converter serves one cursor: it remembers which columns have been reported. What has to be
// done for each field is worked out once; after the first rows a row allocates one BSTR for each
// text value, and nothing else.
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
#include "platform/OleAutomation.h"
#include "reading/Record.h"
#include "reading/TextDatasetDescription.h"

namespace TextFile {

class RowConverter {
 public:
  // `table` must be loaded; it is shared, since a cursor may outlive the object it came from.
  RowConverter(std::shared_ptr<const TextDatasetDescription> table, MessageLoader loadMessage);
  ~RowConverter();
  RowConverter(const RowConverter&) = delete;
  RowConverter& operator=(const RowConverter&) = delete;

  // Fields that the host will not ask for: their texts are not made into BSTRs and their
  // coordinates not parsed. Their values are still checked, and mismatches reported.
  void SetWanted(std::size_t field, bool wanted) { plan_[field].wanted = wanted; }
  std::size_t fieldCount() const noexcept { return plan_.size(); }

  // Converts a record and answers how many fields, from the first on, it had texts for; the values
  // of the others are VT_EMPTY. A value that does not fit becomes VT_NULL (or, in columns of whole
  // or single numbers, the Double that it is) and is reported once a column.
  std::size_t Convert(const Record& record);

  // Moves a value of the row converted last into `slot`, whose old value must have been cleared.
  void MoveValue(std::size_t field, VARIANT& slot) noexcept;

  // The message of a mismatch that the row converted last has reported for the field, else null.
  const std::u16string* MessageOf(std::size_t field) const noexcept;

 private:
  // The virtual fields that follow a text field.
  enum class Companions : std::uint8_t { kNone, kOneText, kTwoTexts };
  struct FieldPlan {
    FieldType type;
    Companions companions = Companions::kNone;
    bool wanted = true;
    bool reported = false;
  };

  void MakePlan();
  void ConvertField(std::size_t field, std::size_t column, std::u16string_view text);
  void ConvertNumber(std::size_t field, std::size_t column, std::u16string_view text);
  void ConvertDouble(std::size_t field, std::size_t column, std::u16string_view text);
  void ConvertDate(std::size_t field, std::size_t column, std::u16string_view text);
  bool SetDate(VARIANT& value, FieldType type, const ParsedDateTime& parsed);
  void SetText(std::size_t field, std::u16string_view text);
  void ConvertCoordinateText(std::size_t field, const Record& record, std::size_t column);
  bool WantsCoordinates(std::size_t virtualField) const noexcept;
  void Report(std::size_t field, std::size_t column, std::u16string_view text, FieldType found);

  const std::shared_ptr<const TextDatasetDescription> table_;
  const MessageLoader loadMessage_;
  quenra::LatLongFormat latLong_;
  std::vector<FieldPlan> plan_;  // one entry a field
  std::vector<VARIANT> row_;     // one value a field; texts not moved away are owned here
  std::map<std::size_t, std::u16string> messages_;  // of the row converted last, by field
};

}  // namespace TextFile
