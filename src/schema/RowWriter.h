// Appends rows to the file of a table.
//
//   RowWriter writer(table);
//   if (!writer.Open() || !writer.Write(values) || !writer.Close()) ... // writer.failure()
//
// Each row is put together in a buffer that goes to the file in whole rows, so that the file always
// ends with one, also when the disk is full or the process is ended. While it is written to, the
// file is locked: writers of one table mix their rows in whole blocks, and what one takes back when
// the disk is full are its own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/MessageText.h"
#include "inference/DateFormatting.h"
#include "platform/OleAutomation.h"
#include "platform/RegularFile.h"
#include "reading/TextDatasetDescription.h"
#include "reading/TextEnd.h"
#include "schema/ByteBuffer.h"
#include "schema/QuotedText.h"
#include "schema/TextColumns.h"

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

  // Opens the file for appending. False when the file does not exist or cannot be written, and when
  // rows at its end would not be read as such: behind an open quote or a byte 1A, or as the names
  // of the fields. Nothing is changed.
  bool Open();

  // Appends one row: a value for each field, in their order; values that are missing are null. A
  // value that cannot become its field's type is written as null and told to the event log. False
  // when rows could not be written; the file then ends with the last row that could.
  bool Write(std::span<const VARIANT> values);

  // Writes the buffered rows. False as for Write.
  bool Close();

  // Which file could not be written, and why.
  const quenra::MessageText& failure() const noexcept { return failure_; }

 private:
  // How the values of a column become bytes: straight into the buffer, or the general way.
  enum class Way : std::uint8_t { kGeneral, kInteger, kReal, kText, kDate };

  // A column of the file.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  struct Column {
    std::size_t field;  // its place in a row of values
    std::u16string name;
    FieldType type;
    std::size_t width;  // UTF-16 code units
    bool hasOwnPattern;
    DatePattern pattern;     // dates and times
    DatePattern dayPattern;  // the part of it that days have
    Way way;
    VARTYPE wanted;             // the variant type that the values have when they take that way
    int digits;                 // kReal
    std::size_t room;           // bytes of a value and what stands around it; not of a text
    std::size_t separatorSize;  // of what stands before the value
    std::size_t place;          // among the columns
    std::size_t texts;          // how many of kText begin here, with neighbouring places in a row
  };

  // Has the file for itself.
  class LockedFile;

  // Rows are handed to the system when there are about this many bytes of them, in one piece. When
  // it does not take all of them, smaller pieces of whole rows are tried.
  static constexpr std::size_t kBufferBytes = std::size_t{256} * 1024;
  static constexpr std::size_t kPieceBytes = std::size_t{64} * 1024;

  bool Fail(std::u16string_view reason);
  bool Flush();
  bool WriteInPieces(std::string_view rows);
  RegularFile::Appended WriteRows(std::string_view rows);
  bool FindEncoding();
  bool RequireTable();
  bool RequireItsName();
  bool RequireItsRows(std::uint64_t size);
  bool LookAtEnd(std::uint64_t from);
  bool PrepareEnd();
  Way WayOf(const Column& column) const;
  bool WriteStraight(const Column& column, const VARIANT& value, char*& to);
  std::size_t WriteTexts(const Column& first, const VARIANT* row, char*& to);
  char* WriteSeparator(const Column& column, char* to) const;
  char* WriteSized(const Column& column, const VARIANT& value, char* to) const;
  void AppendGenerally(const Column& column, const VARIANT& value);
  bool FormatValue(const Column& column, const VARIANT& value);
  bool FormatNumber(const Column& column, const VARIANT& value);
  bool FormatText(const Column& column, const VARIANT& value);
  bool FormatDate(const Column& column, const VARIANT& value);
  void AppendDate(const Column& column, const SYSTEMTIME& time);
  bool FormatTimestamp(IUnknown* object);
  void AppendDelimited();
  char16_t Writable(char16_t unit) const noexcept;
  bool EndsLinesWithCr() const noexcept { return options_.recordTerminator == '\r'; }
  void AppendPadded(const Column& column);
  bool CanStand(const Column& column) const noexcept;
  bool NeedsQuotes() const noexcept;

  TextDatasetDescription table_;  // fields only where reading needs them
  const SchemaOptions options_;
  std::vector<Column> columns_;
  std::size_t fieldCount_ = 0;  // up to the last one that is a column
  bool singleColumn_ = false;
  std::string delimiter_;      // UTF-8
  std::string textDelimiter_;  // UTF-8; empty: no quoting
  QuotedText texts_;           // kText
  WriteTextColumns writeTexts_ = ChooseTextColumns();
  std::vector<TextColumn> textColumns_;  // as many as columns_, those of kText set
  std::array<char, 4> separator_{};  // the delimiter once more, of a size that is copied at once
  std::string lineEnd_;

  RegularFile file_;
  TextEncoding encoding_ = TextEncoding::kUndetermined;
  std::uint64_t end_ = 0;  // of the file: up to there it is as it has been looked at or written
  bool hasWritten_ = false;
  TextEnd textEnd_;
  ByteBuffer buffer_;  // whole rows that are not in the file yet, as UTF-8
  std::array<std::size_t, kBufferBytes / kPieceBytes> marks_;  // ends of rows in it, for pieces
  std::size_t markCount_ = 0;
  std::string value_;          // the value that is being formatted
  bool leadingQuote_ = false;  // its first character that is not white space is a text delimiter
  quenra::MessageText failure_;
};

}  // namespace TextFile
