// Appends rows to the file of a table.
//
//   RowWriter writer(table);
//   if (!writer.Open() || !writer.Write(values) || !writer.Close()) ... // writer.failure()
//
// Each row is put together in a buffer that goes to the file in whole rows, so that the file always
// ends with one, also when the disk is full or the process is ended.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "inference/DateFormatting.h"
#include "platform/OleAutomation.h"
#include "reading/TextDatasetDescription.h"

namespace TextFile {

class RowWriter {
 public:
  // Copies what it needs of `table`, which must be loaded. Virtual coordinate fields are no
  // columns of the file: their values are passed over.
  explicit RowWriter(const TextDatasetDescription& table);
  // Writes what is still in the buffer; use Close to learn whether that went well.
  ~RowWriter();
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  // Opens the file for appending and ends its last line when it is not ended. False when the file
  // does not exist or cannot be written.
  bool Open();

  // Appends one row: a value for each field, in their order; values that are missing are null. A
  // value that cannot become its field's type is written as null and told to the event log. False
  // when rows could not be written; the file then ends with the last row that could.
  bool Write(std::span<const VARIANT> values);

  // Writes the buffered rows. False as for Write.
  bool Close();

  // Which file could not be written, and why.
  const std::u16string& failure() const noexcept { return failure_; }

 private:
  struct Column {
    std::u16string name;
    FieldType type;
    std::size_t width;  // UTF-16 code units
    bool isVirtual;
    bool hasOwnPattern;
    DatePattern pattern;  // dates and times
  };

  enum class Encoding : std::uint8_t { kUtf8, kUtf16LE };

  bool Fail(std::u16string_view reason);
  bool Flush();
  bool FindEncoding();
  bool Append();  // opens the file for writing behind its end
  void EndLastLine();
  void AppendValue(const Column& column, const VARIANT& value);
  bool FormatValue(const Column& column, const VARIANT& value);
  bool FormatNumber(const Column& column, const VARIANT& value);
  bool FormatText(const Column& column, const VARIANT& value);
  bool FormatDate(const Column& column, const VARIANT& value);
  bool FormatTimestamp(IUnknown* object);
  void AppendDelimited();
  char16_t Writable(char16_t unit) const noexcept;
  void AppendPadded(const Column& column);
  bool CanStand() const noexcept;
  bool NeedsQuotes() const noexcept;

  const std::u16string path_;
  const std::u16string tableName_;
  const SchemaOptions options_;
  std::vector<Column> columns_;
  bool singleColumn_ = false;  // of the file, not counting virtual fields
  std::string delimiter_;      // UTF-8
  std::string textDelimiter_;  // UTF-8; empty: no quoting
  std::string lineEnd_;

  std::filebuf file_;
  Encoding encoding_ = Encoding::kUtf8;
  std::string buffer_;         // whole rows that are not in the file yet, as UTF-8
  std::string value_;          // the value that is being formatted
  bool leadingQuote_ = false;  // its first character that is not white space is a text delimiter
  std::u16string failure_;
};

}  // namespace TextFile
