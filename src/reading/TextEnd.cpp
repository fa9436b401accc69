#include "reading/TextEnd.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "reading/ByteSearch.h"
#include "reading/DelimitedReader.h"
#include "reading/QuoteStates.h"
#include "reading/ReaderFactory.h"
#include "reading/TableDialect.h"

namespace TextFile {

namespace {

constexpr char kTextEnd = 0x1A;
constexpr std::uint64_t kMarkBytes = 3;  // of UTF-8

// Pieces of a file, the last one first.
class BackwardPieces {
 public:
  BackwardPieces(RegularFile& file, std::uint64_t begin, std::uint64_t end)
      : file_(file), begin_(begin), at_(end) {}

  // False at the front of the file, and after a failure.
  bool Next() {
    if (at_ == begin_) return false;
    // Quotes mostly are settled by the last lines, and large reads are quicker.
    const std::uint64_t size = std::min(at_ - begin_, std::uint64_t{size_});
    size_ = std::min(2 * size_, kMostBytes);
    if (!block_) block_ = std::make_unique_for_overwrite<char[]>(kMostBytes);
    const auto wanted = static_cast<std::size_t>(size);
    failed_ = file_.ReadAt(at_ - size, block_.get(), wanted) != static_cast<std::ptrdiff_t>(size);
    if (failed_) return false;
    at_ -= size;
    piece_ = {block_.get(), wanted};
    return true;
  }

  std::string_view Piece() const noexcept { return piece_; }
  std::uint64_t Offset() const noexcept { return at_; }  // of the piece
  bool Failed() const noexcept { return failed_; }

  // Leaves the first bytes of the piece to the next one.
  void GiveBack(std::size_t bytes) noexcept { at_ += bytes; }

 private:
  static constexpr std::size_t kFirstBytes = std::size_t{4} * 1024;
  static constexpr std::size_t kMostBytes = std::size_t{1024} * 1024;

  RegularFile& file_;
  const std::uint64_t begin_;
  std::uint64_t at_;
  std::size_t size_ = kFirstBytes;
  std::unique_ptr<char[]> block_;
  std::string_view piece_;
  bool failed_ = false;
};

// How many bytes at the front of a piece may belong to a character that begins in front of it.
std::size_t TailOfCharacter(std::string_view piece) noexcept {
  constexpr std::size_t kLongest = 3;
  std::size_t bytes = 0;
  while (bytes < std::min(kLongest, piece.size() - 1) &&
         (static_cast<unsigned char>(piece[bytes]) & 0xC0) == 0x80)
    ++bytes;
  return bytes;
}

// The end of the text in front of the bytes 1A that it ends in.
bool PassTextEnds(RegularFile& file, std::uint64_t from, std::uint64_t& size) {
  BackwardPieces pieces(file, from, size);
  while (pieces.Next()) {
    const std::size_t last = pieces.Piece().find_last_not_of(kTextEnd);
    size = pieces.Offset() + (last == std::string_view::npos ? 0 : last + 1);
    if (last != std::string_view::npos) break;
  }
  return !pieces.Failed();
}

// By reading it: right for every table.
bool EndsInQuotes(const TextDatasetDescription& table) {
  DelimitedReader reader(table);
  while (reader.ReadRecord()) {
  }
  return reader.EndedInQuotes();
}

void LookAtLastLine(const TextDatasetDescription& table, RegularFile& file, TextEnd& end) {
  char last = 0;
  if (file.ReadAt(end.size - 1, &last, 1) != 1) end.state = TextEnd::State::kNotRead;
  end.endsLine = last == table.options.recordTerminator;
}

TextEnd FindUtf16End(const TextDatasetDescription& table, RegularFile& file, std::uint64_t size) {
  constexpr std::uint64_t kMark = 2;
  TextEnd end;
  end.size = size;
  if (size % 2 != 0) {
    end.state = TextEnd::State::kHalfCharacter;
  } else if (size > kMark) {
    char last[2];
    if (file.ReadAt(size - 2, last, 2) != 2) end.state = TextEnd::State::kNotRead;
    end.endsLine = last[0] == table.options.recordTerminator && last[1] == 0;
  }
  return end;
}

// In the 8-bit text from `from`, where a record begins. Quotes, if they are given, are told on the
// way.
TextEnd FindInBytes(RegularFile& file, std::optional<QuoteStates>& quotes, std::uint64_t from,
                    std::uint64_t size) {
  TextEnd end;
  end.size = size;
  if (!PassTextEnds(file, from, end.size)) end.state = TextEnd::State::kNotRead;
  BackwardPieces pieces(file, from, end.size);
  bool settled = !quotes.has_value();
  while (end.state == TextEnd::State::kTakesRows && pieces.Next()) {
    std::string_view piece = pieces.Piece();
    const char* const pieceEnd = piece.data() + piece.size();
    if (FindByte(piece.data(), pieceEnd, kTextEnd) != pieceEnd)
      end.state = TextEnd::State::kBehindTextEnd;
    if (settled) continue;
    if (pieces.Offset() > from) {
      const std::size_t tail = TailOfCharacter(piece);
      pieces.GiveBack(tail);
      piece.remove_prefix(tail);
    }
    quotes->Prepend(piece);
    settled = quotes->IsSettled();
  }
  if (pieces.Failed()) end.state = TextEnd::State::kNotRead;
  if (!settled) quotes->BeginHere();
  const bool open = quotes.has_value() && quotes->AtEnd() == QuoteStates::End::kInQuotes;
  if (open && end.state == TextEnd::State::kTakesRows) end.state = TextEnd::State::kInQuotes;
  return end;
}

}  // namespace

TextEnd FindTextEnd(const TextDatasetDescription& table, TextEncoding encoding, RegularFile& file,
                    std::uint64_t from) {
  TextEnd end;
  const bool quoting = !table.options.fixedLength && table.options.textDelimiter != 0;
  std::optional<QuoteStates> quotes;
  if (!file.Size(end.size)) {
    end.state = TextEnd::State::kNotRead;
  } else if (encoding == TextEncoding::kUtf16LE) {
    end = FindUtf16End(table, file, end.size);
  } else {
    // The mark is no text.
    const std::uint64_t front = encoding == TextEncoding::kUtf8 ? kMarkBytes : 0;
    const std::uint64_t begin = std::max(from, front);
    const auto dialect = DialectOf(table, table.options.recordTerminator, encoding);
    if (quoting && dialect.has_value() && dialect->terminator == '\n') quotes.emplace(*dialect);
    end = FindInBytes(file, quotes, begin, end.size);
    if (end.state == TextEnd::State::kTakesRows && end.size > front)
      LookAtLastLine(table, file, end);
  }
  const bool told = quotes.has_value() && quotes->AtEnd() != QuoteStates::End::kUnclear;
  if (end.state == TextEnd::State::kTakesRows && quoting && !told && EndsInQuotes(table))
    end.state = TextEnd::State::kInQuotes;
  return end;
}

bool HasNoRecord(const TextDatasetDescription& table) { return !MakeReader(table)->ReadRecord(); }

}  // namespace TextFile
