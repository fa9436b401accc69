// Counts the records of 8-bit text from its bytes, without decoding or splitting them.
//
//   RecordScan scan(dialect);
//   scan.Begin();                                 // the first byte begins a record
//   std::size_t whole = scan.Take(bytes, false);  // `whole` bytes were records
//   ... take them from the front, read more behind the rest, and go on ...
//   whole = scan.Take(bytes, true);               // nothing comes behind these
//   if (scan.undecided()) ...                     // the next record is for the exact reader
//
// It counts what the readers give. Wherever the bytes alone do not tell, the scan stops in front
// of the record: at a zero byte, at a quote behind white space that may open a field or not, at a
// record that may be blank in spite of its quotes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace TextFile {

// What separates the records and fields of a table. ASCII characters other than zero and 1A, all
// different; the text delimiter is no white space.
struct RecordDialect {
  char terminator = '\n';  // LF or CR
  char delimiter = ',';
  char textDelimiter = '"';  // 0: no quoting; the delimiter is of no meaning then
};

// Where a scan is, for the kernels. Masks have a bit for each byte of the block before, the last
// one on top.
struct RecordScanState {
  std::int64_t records = 0;
  bool undecided = false;
  bool sawNonAscii = false;
  // Offsets in the bytes at hand: of the record that is not whole yet, and of what comes next.
  std::size_t recordStart = 0;
  std::size_t scanned = 0;
  std::uint64_t ends = 0;         // of records
  std::uint64_t quotes = 0;       // but for literal ones
  std::uint64_t quoteStarts = 0;  // bytes behind which a quote is more than a character
  std::uint64_t quoting = 0;      // all ones inside quotes
};

class RecordScan {
 public:
  // The code of lesser processors may be asked for, for comparison; what this one lacks is
  // kBaseline.
  enum class Code { kBest, kAvx2, kBaseline, kPlain };
  explicit RecordScan(const RecordDialect& dialect, Code code = Code::kBest) noexcept;

  // The next byte to be taken begins a record.
  void Begin() noexcept;

  // Goes on with `bytes`, which begin with the record that was not whole after the last call.
  // Answers how many bytes were records; blank lines are taken as parts of them. With `last` an
  // unterminated record at the end is whole as well.
  std::size_t Take(std::string_view bytes, bool last) noexcept;

  // Whether the scan has stopped in front of a record that it cannot take.
  bool undecided() const noexcept { return state_.undecided; }

  // Counted by all calls together.
  std::int64_t records() const noexcept { return state_.records; }

  // Whether bytes above 127 have been seen.
  bool sawNonAscii() const noexcept { return state_.sawNonAscii; }

 private:
  using Kernel = void (*)(const RecordDialect&, RecordScanState&, std::string_view, bool);

  static Kernel Choose(Code code) noexcept;
  void TakeUnterminated(std::string_view record) noexcept;

  RecordDialect dialect_;
  Kernel kernel_;
  RecordScanState state_;
};

}  // namespace TextFile
