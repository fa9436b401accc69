// Hands out the lines of a text file as UTF-16.
//
//   TextLineStream stream;
//   stream.Open(u"/data/cities.csv", TextLineStream::kTerminateLines);
//   UnitBuffer line;
//   while (stream.ReadLine(line)) ...  // "id;name\0", "1;Zürich\0", ...
//
// The stream recognises a byte-order mark, decides the encoding of a file without one line by
// line, and does the translation of text mode itself, on every system: in 8-bit files CR LF is one
// line feed and a byte 1A ends the input. The file is read in blocks; memory grows only with the
// longest line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <streambuf>
#include <string>
#include <string_view>

#include "reading/PlainRowIndex.h"
#include "reading/UnitBuffer.h"

namespace TextFile {

class RecordScan;

enum class TextEncoding : std::int32_t {
  kUndetermined = 0,  // no mark; every line is tested for UTF-8 until one fails
  kAnsi = 1,          // no mark, and a line was not UTF-8: the ANSI code page
  kUtf8 = 2,          // EF BB BF
  kUtf16LE = 3,       // FF FE and a third byte that is not zero
  kUtf16BE = 4,       // FE FF; reads as empty
  kUtf32LE = 5,       // FF FE and a third byte of zero, or none; reads as empty
  kUtf32BE = 6,       // never recognised: its mark has four bytes, and three are looked at
};

class TextLineStream {
 public:
  enum LineEnding { kPlainLines, kTerminateLines };

  // One read from the system. Large enough that the calls cost nothing, small enough for caches.
  static constexpr std::size_t kDefaultBlockSize = 256 * 1024;

  TextLineStream() = default;
  ~TextLineStream();
  TextLineStream(const TextLineStream&) = delete;
  TextLineStream& operator=(const TextLineStream&) = delete;

  // Opens a file for reading, shared with everybody, and looks at its byte-order mark. Only
  // regular files can be opened, and only what they hold now is read (see FileBytes). With
  // kTerminateLines every line ends in exactly one zero unit. False, and IsOpen() is false, when
  // the file cannot be opened.
  bool Open(const std::u16string& path, LineEnding ending);

  // The same over any bytes, for tests. `blockSize` is at least 1.
  void Open(std::unique_ptr<std::streambuf> bytes, LineEnding ending,
            std::size_t blockSize = kDefaultBlockSize);

  bool IsOpen() const noexcept { return bytes_ != nullptr; }

  // Replaces `line` by the next line, without its line delimiter. False at the end, and for
  // encodings that read as empty; `line` is then unspecified.
  // A file without a mark that was UTF-8 to its end becomes kUtf8 there.
  bool ReadLine(UnitBuffer& line);
  bool ReadLine(std::u16string& line);

  // Takes the next row, if it is plain, by an index that is used with this stream alone;
  // `asciiOnly` asks for rows of ASCII characters. Blank lines in front of the row are taken with
  // it. It is valid until the next call. False for other rows, and nothing is then taken. `row` is
  // the one of the call before: what it has gone on to since is taken first.
  bool TakePlainRow(PlainRowIndex& index, bool asciiOnly, PlainRow& row);

  // Goes on before the next `byte` of the data (in UTF-16 files: before the next such unit). False
  // when there is none: the stream is then at its end. Skipped text does not decide the encoding.
  bool SkipTo(char byte);

  // Goes on behind the records that `scan` can take, from the start of a record; it counts them.
  // Skipped text does not decide the encoding. Takes none of files that are not of 8-bit text.
  void SkipRecords(RecordScan& scan);

  // Whether a line that is not all ASCII has been taken for UTF-8 because it could be.
  bool HasGuessedUtf8() const noexcept { return tookNonAscii_ && dataStart_ == 0; }

  // Back to the first byte behind the mark; the encoding decided so far stays.
  void Rewind();

  // True once a read has met the end of the data: an unterminated last line, or a read tried
  // behind the last line. Empty files and encodings that read as empty are at their end from the
  // start. A read that fails counts as the end.
  bool AtEnd() const noexcept { return atEnd_; }

  TextEncoding encoding() const noexcept { return encoding_; }

  // LF after opening. The byte ends lines, and records in the readers.
  char lineDelimiter() const noexcept { return lineDelimiter_; }
  void SetLineDelimiter(char delimiter) noexcept { lineDelimiter_ = delimiter; }
  // LF becomes CR; anything else becomes LF.
  void SwitchLineDelimiter() noexcept { lineDelimiter_ = lineDelimiter_ == '\n' ? '\r' : '\n'; }

 private:
  bool Is8Bit() const noexcept {
    return encoding_ == TextEncoding::kUndetermined || encoding_ == TextEncoding::kAnsi ||
           encoding_ == TextEncoding::kUtf8;
  }
  bool IsReadable() const noexcept { return Is8Bit() || encoding_ == TextEncoding::kUtf16LE; }

  void ProbeByteOrderMark();
  bool ReadMore();
  void CutAtTextEnd(std::size_t from) noexcept;
  bool Available();
  bool TakePlainLine(UnitBuffer& line);
  void GoTo(const char* place, const PlainRowIndex& index) noexcept;
  std::string_view TakeRaw(bool& delimiterFound);
  std::string_view TakeLineBytes();
  std::string_view TakeCarriageReturnLine();
  std::string_view TakeUtf16Line();
  void Decode(std::string_view bytes, UnitBuffer& line);
  void Decode8Bit(std::string_view bytes, UnitBuffer& line);

  std::unique_ptr<std::streambuf> bytes_;  // null while not open
  TextEncoding encoding_ = TextEncoding::kUndetermined;
  std::uint64_t dataStart_ = 0;  // offset in the source of the first byte behind the mark
  bool tookNonAscii_ = false;    // a line of UTF-8, or of what may be, that is not all ASCII
  bool terminateLines_ = false;
  char lineDelimiter_ = '\n';
  bool atEnd_ = true;

  // What has been read and not yet handed out is block_[next_, end_).
  std::unique_ptr<char[]> block_;
  std::size_t capacity_ = 0;
  std::size_t blockSize_ = kDefaultBlockSize;
  std::size_t readSize_ = kDefaultBlockSize;  // of the next read
  std::size_t next_ = 0;
  std::size_t end_ = 0;
  std::uint64_t blockStart_ = 0;  // offset in the source of block_[0]
  std::uint64_t moves_ = 0;       // of what is in the block
  bool exhausted_ = false;        // the source has no more bytes, or the text ended in a byte 1A
  std::string lineBytes_;         // a line that had to be put together from pieces
};

inline bool TextLineStream::TakePlainRow(PlainRowIndex& index, bool asciiOnly, PlainRow& row) {
  if (const char* const end = index.TakeWalk(row)) GoTo(end, index);
  if (!Is8Bit() || lineDelimiter_ != '\n') return false;
  asciiOnly |= encoding_ == TextEncoding::kAnsi;
  const char* const begin = block_.get();
  const char* const end = index.Take({{begin, end_}, moves_, asciiOnly}, begin + next_, row);
  if (end == nullptr) return false;
  GoTo(end, index);
  return true;
}

// Behind the rows that the index has taken.
inline void TextLineStream::GoTo(const char* place, const PlainRowIndex& index) noexcept {
  next_ = static_cast<std::size_t>(place - block_.get());
  tookNonAscii_ |= index.TookNonAscii();
}

}  // namespace TextFile
