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
               Reported reported = Reported::kAsConverted);
  RowConverter(const RowConverter&) = delete;
  RowConverter& operator=(const RowConverter&) = delete;

  // Where the values of a field go: a variant of the caller's, valid during every Convert, which
  // clears what it holds. Null for a field that nobody asks for: its texts are not made into BSTRs
  // and its coordinates not parsed, but its values are still checked, and mismatches reported.
  void SetSlot(std::size_t field, VARIANT* slot) noexcept {
    fields_[field].slot = slot != nullptr ? slot : &unwanted_;
    stepsFit_ = false;
  }
  std::size_t fieldCount() const noexcept { return fields_.size(); }

  // Converts a record and answers how many fields, from the first on, it had texts for; the slots
  // of the others are left alone. A value that does not fit becomes VT_NULL (or, in columns of
  // whole or single numbers, the Double that it is) and is reported once a column.
  std::size_t Convert(const Record& record);
  std::size_t Convert(const PlainRow& row);

  // The messages of the mismatches that the last Convert has reported, by field.
  const std::map<std::size_t, std::u16string>& messages() const noexcept { return messages_; }

 private:
  struct Field {
    VARIANT* slot;  // or unwanted_
    FieldType type;
    bool reported = false;
  };
  // What is done for a column of the file.
  enum class Way : std::uint8_t {
    kText,
    kNumber,       // of a type that has plain ones
    kDate,         // the same
    kOther,        // any type but kString
    kCoordinates,  // a text with two virtual fields
    kTwoTexts,     // two texts, of two columns and fields, with two virtual fields
  };
  struct Step {
    VARIANT* slot;                 // of `field`
    const DateFieldFormat* dates;  // of kDate
    std::size_t column;
    std::size_t field;
    FieldType type;
    Way way;
    bool wanted;  // whether anybody asks for `field`
  };
  struct FieldMismatch {
    std::size_t field;
    std::u16string text;
    Mismatch mismatch;  // without its text
  };
  // A text of a record, and where it stands.
  struct Cell {
    std::size_t field;
    std::size_t column;
    std::u16string_view text;
  };

  Way WayOf(std::size_t field) const noexcept;
  bool NeedsStep(std::size_t field, std::size_t fields) const noexcept;
  void MakeSteps();
  std::size_t FieldsOf(std::size_t columns) const noexcept;
  bool IsWanted(std::size_t field) const noexcept { return fields_[field].slot != &unwanted_; }
  template <class Row>
  std::size_t ConvertRow(const Row& row);
  bool ReadNumber(std::u16string_view text, PlainNumber& number) const noexcept {
    return ReadPlainNumber(decimalSymbol_, text, number);
  }
  bool ReadNumber(std::string_view text, PlainNumber& number) const noexcept {
    return readPlainNumber_(decimalSymbol_, text, number);
  }
  template <class Character>
  bool FitsPlainly(const Step& step, std::basic_string_view<Character> text) const noexcept;
  template <class Character>
  bool ConvertPlainly(const Step& step, std::basic_string_view<Character> text,
                      VARIANT& value) const noexcept;
  void ConvertText(const Record& record, std::size_t column, VARIANT& value);
  void ConvertText(const PlainRow& row, std::size_t column, VARIANT& value);
  void ConvertCell(const Cell& cell, VARIANT& value);
  void ConvertNumber(const Cell& cell, VARIANT& value);
  void ConvertDouble(const Cell& cell, VARIANT& value);
  void ConvertDate(const Cell& cell, VARIANT& value);
  bool SetDate(std::size_t field, const ParsedDateTime& parsed, VARIANT& value);
  template <class Row>
  void ConvertCoordinates(const Step& step, const Row& row);
  void Report(const Cell& cell, FieldType found, VARIANT& value);
  void ReportAll();

  const std::shared_ptr<const TextDatasetDescription> table_;
  const MessageLoader loadMessage_;
  const Reported reported_;
  const char16_t decimalSymbol_;
  const PlainNumberReader readPlainNumber_ = QuickestPlainNumberReader();
  quenra::LatLongFormat latLong_;
  std::vector<Field> fields_;
  std::vector<Step> steps_;                   // in the order of columns
  bool stepsFit_ = false;                     // the slots
  std::vector<std::size_t> fieldsOfColumns_;  // how many fields the first so many columns have
  UnitBuffer text_;                           // of a field of a plain row
  UnitBuffer neighbour_;                      // and of the one behind it
  VARIANT unwanted_;  // takes the values of fields without a slot; owns nothing
  std::vector<FieldMismatch> mismatches_;  // of the row being converted, not reported before
  std::map<std::size_t, std::u16string> messages_;  // of the row converted last, by field
};

}  // namespace TextFile
