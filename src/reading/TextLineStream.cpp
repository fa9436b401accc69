#include "reading/TextLineStream.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <utility>

#include "reading/ByteSearch.h"
#include "reading/FileBytes.h"
#include "reading/RecordScan.h"
#include "reading/TextDecoding.h"

namespace TextFile {

namespace {

// Ends the input of a text file, as in the days when files had no exact length.
constexpr char kTextEnd = 0x1A;

// Opening a table looks at a hundred rows, which often are no more than this. The reads behind it
// double.
constexpr std::size_t kFirstReadSize = 32 * 1024;

// The mark's probe looks at no more than this, though a UTF-32 mark has four bytes.
constexpr std::size_t kProbeBytes = 3;

std::string_view DropCarriageReturn(std::string_view bytes) noexcept {
  if (!bytes.empty() && bytes.back() == '\r') bytes.remove_suffix(1);
  return bytes;
}

// Blocks of streams. The one of a stream that has ended is kept for the next one: what its pages
// cost, the system hands them out once instead of for each of many small tables.
class Blocks {
 public:
  ~Blocks() { delete[] spare_.exchange(nullptr); }

  // A block of `capacity` bytes, and those that can be read behind it.
  std::unique_ptr<char[]> Take(std::size_t capacity) {
    char* const spare = capacity == kSpareCapacity ? spare_.exchange(nullptr) : nullptr;
    if (spare != nullptr) return std::unique_ptr<char[]>(spare);
    return std::make_unique_for_overwrite<char[]>(capacity + kPlainRowPadding);
  }

  void GiveBack(std::unique_ptr<char[]> block, std::size_t capacity) noexcept {
    if (capacity == kSpareCapacity) delete[] spare_.exchange(block.release());
  }

 private:
  // What a stream needs that reads in blocks of the usual size.
#ifdef KEEP_SPARE_BLOCK
  static constexpr std::size_t kSpareCapacity =
      TextLineStream::kDefaultBlockSize + TextLineStream::kDefaultBlockSize / 8;
#else
  static constexpr std::size_t kSpareCapacity = 0;
#endif

  std::atomic<char*> spare_ = nullptr;
};

Blocks blocks;

bool EndsIn(const UnitBuffer& line, char16_t unit) noexcept {
  return line.size() > 0 && line.View().back() == unit;
}

}  // namespace

TextLineStream::~TextLineStream() { blocks.GiveBack(std::move(block_), capacity_); }

bool TextLineStream::Open(const std::u16string& path, LineEnding ending) {
  bytes_.reset();
  auto file = std::make_unique<FileBytes>();
  if (!file->Open(path)) return false;
  Open(std::move(file), ending);
  return true;
}

void TextLineStream::Open(std::unique_ptr<std::streambuf> bytes, LineEnding ending,
                          std::size_t blockSize) {
  bytes_ = std::move(bytes);
  tookNonAscii_ = false;
  terminateLines_ = ending == kTerminateLines;
  lineDelimiter_ = '\n';
  blockSize_ = blockSize;
  readSize_ = std::min(blockSize, kFirstReadSize);
  next_ = end_ = 0;
  blockStart_ = 0;
  exhausted_ = false;
  ProbeByteOrderMark();
  atEnd_ = !IsReadable() || !Available();
}

void TextLineStream::ProbeByteOrderMark() {
  while (end_ < kProbeBytes && ReadMore()) {
  }
  unsigned char probe[kProbeBytes + 1] = {};
  for (std::size_t i = 0; i < std::min(end_, kProbeBytes) && block_[i] != '\n'; ++i)
    probe[i] = static_cast<unsigned char>(block_[i]);

  encoding_ = TextEncoding::kUndetermined;
  dataStart_ = 0;
  if (probe[0] == 0xEF && probe[1] == 0xBB && probe[2] == 0xBF) {
    encoding_ = TextEncoding::kUtf8;
    dataStart_ = 3;
  } else if (probe[0] == 0xFE && probe[1] == 0xFF) {
    encoding_ = TextEncoding::kUtf16BE;
    dataStart_ = 2;
  } else if (probe[0] == 0x00 && probe[1] == 0x00 && probe[2] == 0xFE && probe[3] == 0xFF) {
    encoding_ = TextEncoding::kUtf32BE;
    dataStart_ = 4;
  } else if (probe[0] == 0xFF && probe[1] == 0xFE) {
    const bool wide = probe[2] == 0 && probe[3] == 0;
    encoding_ = wide ? TextEncoding::kUtf32LE : TextEncoding::kUtf16LE;
    dataStart_ = wide ? 4 : 2;
  }
  next_ = std::min<std::size_t>(end_, dataStart_);
  if (Is8Bit()) CutAtTextEnd(next_);
}

// Reads one block behind what has not been handed out yet. False when nothing came.
bool TextLineStream::ReadMore() {
  if (exhausted_) return false;
  ++moves_;
  if (next_ != 0) {
    std::memmove(block_.get(), block_.get() + next_, end_ - next_);
    blockStart_ += next_;
    end_ -= next_;
    next_ = 0;
  }
  if (capacity_ - end_ < readSize_) {
    // Room for whole reads behind what is left of a line, from the first one on: memory costs
    // nothing before it is written to, and moving into more of it costs more than reading does.
    // Doubling keeps the cost of a record of any length linear in its length.
    const std::size_t capacity = std::max(end_ + blockSize_ + blockSize_ / 8, 2 * capacity_);
    std::unique_ptr<char[]> larger = blocks.Take(capacity);
    if (end_ != 0) std::memcpy(larger.get(), block_.get(), end_);
    block_ = std::move(larger);
    capacity_ = capacity;
  }
  std::streamsize count = 0;
  try {
    count = bytes_->sgetn(block_.get() + end_, static_cast<std::streamsize>(readSize_));
  } catch (const std::ios_base::failure&) {
    // The device failed in the middle of the file: what came before it is still delivered.
    count = 0;
  }
  if (count <= 0) {
    exhausted_ = true;
    return false;
  }
  end_ += static_cast<std::size_t>(count);
  std::memset(block_.get() + end_, 0, kPlainRowPadding);
  // Whoever reads on this far reads on further.
  readSize_ = std::min(2 * readSize_, blockSize_);
  return true;
}

// Lets the text end before the first byte 1A in block_[from, end_).
void TextLineStream::CutAtTextEnd(std::size_t from) noexcept {
  const char* const end = block_.get() + end_;
  const char* const hit = FindByte(block_.get() + from, end, kTextEnd);
  if (hit == end) return;
  end_ = static_cast<std::size_t>(hit - block_.get());
  exhausted_ = true;
}

// Whether a byte can be taken; reads on when all have been.
bool TextLineStream::Available() {
  if (next_ < end_) return true;
  if (!ReadMore()) return false;
  if (Is8Bit()) CutAtTextEnd(0);
  return next_ < end_;
}

bool TextLineStream::ReadLine(std::u16string& line) {
  UnitBuffer units;
  if (!ReadLine(units)) return false;
  line = units.View();
  return true;
}

bool TextLineStream::ReadLine(UnitBuffer& line) {
  if (!IsOpen() || !IsReadable() || atEnd_ || !Available()) {
    atEnd_ = true;
    if (encoding_ == TextEncoding::kUndetermined) encoding_ = TextEncoding::kUtf8;
    return false;
  }
  if (!TakePlainLine(line)) Decode(TakeLineBytes(), line);
  if (terminateLines_) line.Append(u'\0');
  return true;
}

// Most lines: their end is found, their encoding judged and their text decoded in one pass. False
// for a line that needs the general way; nothing is then taken.
bool TextLineStream::TakePlainLine(UnitBuffer& line) {
  if (!Is8Bit() || lineDelimiter_ != '\n') return false;
  const bool asUtf8 = encoding_ != TextEncoding::kAnsi;
  const std::size_t length = WidenLine({block_.get() + next_, end_ - next_}, asUtf8, line);
  if (length == kNoPlainLine) return false;
  next_ += length + 1;
  tookNonAscii_ |= line.size() != length;
  if (EndsIn(line, u'\r')) line.DropLast();
  return true;
}

std::string_view TextLineStream::TakeLineBytes() {
  if (encoding_ == TextEncoding::kUtf16LE) return TakeUtf16Line();
  if (lineDelimiter_ != '\n') return TakeCarriageReturnLine();
  bool found = false;
  const std::string_view bytes = TakeRaw(found);
  return found ? DropCarriageReturn(bytes) : bytes;
}

// The bytes up to the line delimiter, which is consumed, or to the end of the data. The view lives
// until the next read.
std::string_view TextLineStream::TakeRaw(bool& delimiterFound) {
  std::size_t scanned = 0;
  for (;;) {
    const std::size_t count = end_ - next_;
    if (scanned < count) {
      const char* const begin = block_.get() + next_;
      const char* const end = block_.get() + end_;
      const char* const hit = FindByte(begin + scanned, end, lineDelimiter_);
      if (hit != end) {
        const auto length = static_cast<std::size_t>(hit - begin);
        next_ += length + 1;
        delimiterFound = true;
        return {begin, length};
      }
      scanned = count;
    }
    if (!ReadMore()) {
      atEnd_ = true;
      delimiterFound = false;
      next_ = end_;
      return {block_.get() + end_ - count, count};
    }
    if (Is8Bit()) CutAtTextEnd(scanned);
  }
}

// Carriage returns end lines, but those of CR LF have already become line feeds in text mode.
std::string_view TextLineStream::TakeCarriageReturnLine() {
  lineBytes_.clear();
  for (;;) {
    bool found = false;
    lineBytes_ += TakeRaw(found);
    if (!found || !Available() || block_[next_] != '\n') return lineBytes_;
    ++next_;
    lineBytes_ += '\n';
    if (!Available()) {
      atEnd_ = true;
      return lineBytes_;
    }
  }
}

// The delimiter byte may be the low byte of another character: then it belongs to the line. The
// byte put back is a line feed even when carriage returns end the lines, which only happens to
// files whose first record spans the whole file.
std::string_view TextLineStream::TakeUtf16Line() {
  bool found = false;
  const std::string_view piece = TakeRaw(found);
  if (!found) return piece;
  if (next_ < end_ && block_[next_] == 0) {
    ++next_;
    return piece;
  }
  lineBytes_ = piece;
  while (found && Available() && block_[next_] != 0) {
    lineBytes_ += '\n';
    lineBytes_ += TakeRaw(found);
  }
  if (!found) return lineBytes_;
  if (Available())
    ++next_;
  else
    atEnd_ = true;
  return lineBytes_;
}

void TextLineStream::Decode(std::string_view bytes, UnitBuffer& line) {
  if (encoding_ == TextEncoding::kUtf16LE) {
    DecodeUtf16LE(bytes, line);
    if (EndsIn(line, u'\r')) line.DropLast();
    if (EndsIn(line, u'\0')) line.DropLast();
  } else {
    Decode8Bit(bytes, line);
  }
}

void TextLineStream::Decode8Bit(std::string_view bytes, UnitBuffer& line) {
  // Text ends at a zero byte; what follows up to the line's end is dropped.
  bytes = bytes.substr(0, bytes.find('\0'));
  if (encoding_ == TextEncoding::kUtf8) return DecodeUtf8(bytes, line);
  if (encoding_ == TextEncoding::kUndetermined && DecodeStrictUtf8(bytes, line)) {
    tookNonAscii_ |= line.size() != bytes.size();
    return;
  }
  encoding_ = TextEncoding::kAnsi;
  DecodeAnsi(bytes, line);
}

bool TextLineStream::SkipTo(char byte) {
  const bool wide = encoding_ == TextEncoding::kUtf16LE;
  while (IsOpen() && IsReadable() && !atEnd_ && Available()) {
    const char* const end = block_.get() + end_;
    const char* const hit = FindByte(block_.get() + next_, end, byte);
    next_ = static_cast<std::size_t>(hit - block_.get());
    if (hit == end) continue;
    if (!wide) return true;
    if (end_ - next_ < 2) ReadMore();
    const bool aligned = (blockStart_ + next_ - dataStart_) % 2 == 0;
    if (aligned && end_ - next_ >= 2 && block_[next_ + 1] == 0) return true;
    ++next_;
  }
  atEnd_ = true;
  return false;
}

void TextLineStream::SkipRecords(RecordScan& scan) {
  if (!IsOpen() || !Is8Bit() || atEnd_) return;
  scan.Begin();
  for (bool more = true;;) {
    next_ += scan.Take({block_.get() + next_, end_ - next_}, !more);
    if (!more || scan.undecided()) return;
    const std::size_t kept = end_ - next_;
    more = ReadMore();
    if (more) CutAtTextEnd(kept);
  }
}

void TextLineStream::Rewind() {
  if (!IsOpen()) return;
  if (blockStart_ <= dataStart_) {
    // The block still begins with the file: nothing has to be read again.
    next_ = std::min(end_, static_cast<std::size_t>(dataStart_ - blockStart_));
  } else {
    bytes_->pubseekpos(static_cast<std::streamoff>(dataStart_), std::ios::in);
    blockStart_ = dataStart_;
    next_ = end_ = 0;
    exhausted_ = false;
  }
  atEnd_ = !IsReadable() || !Available();
}

}  // namespace TextFile
