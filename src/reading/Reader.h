// Turns the lines of a text file into records, and finds out how the file is laid out.
//
//   ReaderPtr reader = MakeReader(description);  // reading/ReaderFactory.h
//   if (!reader->IsOpen()) ...
//   while (reader->ReadRecord()) Use(reader->record());
//
// A reader is made for one scan or for one walk through the file; it is not opened again.
#pragma once

#include <string>
#include <vector>

#include "inference/OpenOptions.h"
#include "reading/LayoutMisfit.h"
#include "reading/Record.h"
#include "reading/TextDatasetDescription.h"
#include "reading/TextLineStream.h"

namespace TextFile {

class TypeInference;

class Reader {
 public:
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  // Replaces the current record by the next row of the file. False when there is none: the record
  // is then empty.
  virtual bool ReadRecord() = 0;

  // Takes the next row when it is a plain one; no record is then held. False for any other row, and
  // at the end: nothing is taken, and ReadRecord goes on from there. All calls have the same `row`;
  // one that has gone on by itself is brought back by another call, before any other use.
  virtual bool ReadPlainRow(PlainRow&) { return false; }

  // Reads the beginning of the file to settle delimiter, decimal symbol, record terminator, header
  // and columns, and writes them to `options` and `fields`. False when the file cannot be read as
  // a table of this kind; `options` may then hold what was tried last.
  virtual bool Scan(SchemaOptions& options, FieldList& fields, const OpenOptions& openOptions) = 0;

  // Why Scan has answered false: of the layouts that were tried, the one that got furthest.
  const LayoutMisfit& misfit() const noexcept { return misfit_; }

  // Whether the file could be opened.
  bool IsOpen() const noexcept { return stream_.IsOpen(); }

  const Record& record() const noexcept { return record_; }

  // Whether the line of the record may be released: all fields are parts of it, and nothing of it
  // is still to be read.
  bool CanReleaseLine() const noexcept;
  // Where a part of the record stands in that line.
  std::size_t PlaceInLine(std::u16string_view part) const noexcept {
    return part.empty() ? 0 : static_cast<std::size_t>(part.data() - line_.data());
  }
  std::size_t LineSize() const noexcept { return line_.size(); }
  // Gives away the memory of the line, and that of the record. No record is held then.
  std::u16string ReleaseLine();

  // No record is held, and the file has no more.
  bool AtEnd() const noexcept { return record_.empty() && stream_.AtEnd(); }

  // Whether a read has met the end of the file, whatever record is held.
  bool StreamAtEnd() const noexcept { return stream_.AtEnd(); }

  // Goes back to the first byte of the data. Called between records only; the record stays.
  void Rewind();

  // Goes on behind the records that `scan` can take (see TextLineStream). The record stays.
  void SkipRecords(RecordScan& scan);

  TextEncoding encoding() const noexcept { return stream_.encoding(); }
  bool HasGuessedUtf8() const noexcept { return stream_.HasGuessedUtf8(); }

  // LF or CR: ends lines and records. A switch makes LF CR, and CR LF.
  char recordTerminator() const noexcept { return stream_.lineDelimiter(); }
  void SwitchRecordTerminator() noexcept { stream_.SwitchLineDelimiter(); }

 protected:
  explicit Reader(const TextDatasetDescription& description);
  // Readers are owned as what they are (see ReaderPtr), so this needs not be virtual.
  ~Reader() = default;

  // Reads the header row through the inference, and tries the other record terminator when the
  // first record spans the whole file; the one that cuts the file is kept, also in `options`.
  void ReadHeader(TypeInference& inference, SchemaOptions& options);

  // Makes sure that the current line has characters left, its end among them: reads the next line
  // when it is used up. False when no line is left. Fields that refer to the line before are kept.
  bool EnsureLine() { return !lineUsedUp_ || ReadNextLine(); }

  // The next character of the file, the end of a line as the record terminator. False when no
  // line is left.
  bool TakeCharacter(char16_t& unit) {
    if (!EnsureLine()) return false;
    unit = line_.data()[cursor_];
    if (unit != u'\0') {
      ++cursor_;
      return true;
    }
    unit = TerminatorUnit();
    lineUsedUp_ = true;
    return true;
  }

  // The character that TakeCharacter would take from the current line.
  char16_t PeekCharacter() const noexcept {
    const char16_t unit = lineUsedUp_ ? u'\0' : line_.data()[cursor_];
    return unit != u'\0' ? unit : TerminatorUnit();
  }

  // ReadPlainRow by an index; `asciiOnly` leaves rows of other characters to ReadRecord.
  bool TakePlainRow(PlainRowIndex& index, bool asciiOnly, PlainRow& row) {
    if (!lineUsedUp_ || !stream_.TakePlainRow(index, asciiOnly, row)) return false;
    record_.Clear();
    return true;
  }

  // For readers that look at the line as a whole: its characters, ended by a zero with
  // kSearchPadding more behind it, and the position in it. UseUpLine is taking its end.
  const char16_t* line() const noexcept { return line_.data(); }
  std::size_t cursor() const noexcept { return cursor_; }
  void SetCursor(std::size_t cursor) noexcept { cursor_ = cursor; }
  void UseUpLine() noexcept { lineUsedUp_ = true; }
  // Whether the current line was begun by the record that is being read.
  bool RecordIsInOneLine() const noexcept { return recordIsInOneLine_; }
  void BeginRecord() noexcept { recordIsInOneLine_ = true; }

  // Whether a record terminator may stand inside a line. In 8-bit files it always ends one.
  bool LinesMayHoldTerminator() const noexcept {
    return stream_.encoding() == TextEncoding::kUtf16LE;
  }

  char16_t TerminatorUnit() const noexcept {
    return static_cast<unsigned char>(stream_.lineDelimiter());
  }

  // Keeps what is known of an attempt that has failed, unless another got further.
  void NoteMisfit(const LayoutMisfit& misfit) noexcept {
    if (misfit_.kind == LayoutMisfit::Kind::kNone || misfit.record > misfit_.record)
      misfit_ = misfit;
  }

  Record record_;

 private:
  bool ReadNextLine();

  TextLineStream stream_;
  LayoutMisfit misfit_;
  UnitBuffer line_;                // ends in a zero unit, with kSearchPadding zeros behind it
  std::size_t cursor_ = 0;         // in line_
  bool lineUsedUp_ = true;         // the next character comes from the next line
  bool recordIsInOneLine_ = true;  // so far
};

}  // namespace TextFile
