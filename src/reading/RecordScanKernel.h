// The steps of RecordScan over blocks of 64 bytes, for any way of comparing bytes. Included by the
// files that bring such a way, each compiled for its processors.
//
// A block is looked at as a whole: each bit of a mask stands for a byte. Text delimiters ("quotes")
// turn quoting on and off one after the other, as long as each one that turns it on stands at the
// start of its field, or right behind one that has just turned it off: that is a doubled quote.
// The others are judged one by one.
//
// ByteBlock.h tells what a Block is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "reading/RecordScan.h"

namespace TextFile {

// What a quote outside quotes means when it does not stand at the start of its field.
enum class QuoteMeaning { kOpens, kLiteral, kUndecided };

// `before` is the record up to the quote, and the quotes right in front of it are literal.
QuoteMeaning MeaningOfQuote(const RecordDialect& dialect, std::string_view before) noexcept;

template <class Block>
class RecordScanKernel {
 public:
  RecordScanKernel(const RecordDialect& dialect, const RecordScanState& state,
                   const char* bytes) noexcept
      : dialect_(dialect), state_(state), bytes_(bytes) {}

  // Takes all whole blocks, and with `last` what is left behind them. Answers where the scan is.
  RecordScanState Take(std::size_t size, bool last) noexcept {
    // Whether a carriage return ends a record is told by the byte behind it.
    TakeGroups(size);
    while (!state_.undecided && size - state_.scanned > kBlockBytes)
      TakeSingleBlock(Block(Next()), Next()[kBlockBytes]);
    if (!state_.undecided && last && size > state_.scanned) TakeRest(size - state_.scanned);
    return state_;
  }

 private:
  using Mask = std::uint64_t;

  static constexpr char kTextEnd = 0x1A;
  static constexpr std::size_t kBlockBytes = 64;
  static constexpr std::size_t kGroupBlocks = 4;
  static constexpr std::size_t kGroupBytes = kGroupBlocks * kBlockBytes;

  // What there is in a group of blocks.
  struct Summary {
    Summary(const Block (&blocks)[kGroupBlocks], char quote) noexcept {
      quotes = Block::AnyEqual(blocks, quote);
      zeros = Block::AnyEqual(blocks, '\0');
      nonAscii = Block::AnyAboveAscii(blocks);
    }
    bool quotes;
    bool zeros;
    bool nonAscii;
  };

  // Bits moved to bytes behind theirs, and the last ones of the block before.
  template <unsigned kCount>
  static Mask Behind(Mask bits, Mask before) noexcept {
    return bits << kCount | before >> (64 - kCount);
  }
  static Mask Lowest(Mask bits) noexcept { return bits & (0 - bits); }
  // The position of the highest bit. One must be set.
  static unsigned PositionOf(Mask bits) noexcept {
    return 63 - static_cast<unsigned>(__builtin_clzll(bits));
  }

  const char* Next() const noexcept { return bytes_ + state_.scanned; }

  // Works on a copy that nobody else knows of, so that it can stay in registers.
  void TakeGroups(std::size_t size) noexcept {
    RecordScanKernel copy = *this;
    while (size - copy.state_.scanned > kGroupBytes && copy.TakeGroup()) {
    }
    state_ = copy.state_;
  }

  // Most files either have hardly any quotes or some in every line, so asking for several blocks
  // together gives the same answer time after time.
  [[gnu::always_inline]] inline bool TakeGroup() noexcept {
    const char* const bytes = Next();
    const Block blocks[] = {Block(bytes), Block(bytes + kBlockBytes),
                            Block(bytes + 2 * kBlockBytes), Block(bytes + 3 * kBlockBytes)};
    const Summary group(blocks, dialect_.textDelimiter);
    state_.sawNonAscii |= group.nonAscii;
    // A record of quotes alone may end behind them.
    const bool quotes = group.quotes || state_.quoting != 0 || state_.quotes >> 62 != 0;
    if (!group.zeros && (quotes ? TakeOrdinaryGroup(blocks) : TakeGroupWithoutQuotes(blocks)))
      return true;
    for (std::size_t i = 0; i < kGroupBlocks; ++i)
      if (!TakeBlock(Block(Next()), Next()[kBlockBytes], group.zeros)) return false;
    return true;
  }

  // TakeBlock for all of a group without zeros, when each quote that turns quoting on stands where
  // it may, and no record is so short that it might be blank. False when that is not so; nothing is
  // taken then.
  [[gnu::always_inline]] inline bool TakeOrdinaryGroup(
      const Block (&blocks)[kGroupBlocks]) noexcept {
    const char* const bytes = Next();
    Mask ends[kGroupBlocks];
    Mask quotes = 0;
    Mask quoteStarts = state_.quoteStarts;
    Mask quoting = state_.quoting;
    Mask odd = 0;
    for (std::size_t i = 0; i < kGroupBlocks; ++i) {
      quotes = blocks[i].Equal(dialect_.textDelimiter);
      const Mask allEnds = Ends(blocks[i], bytes[(i + 1) * kBlockBytes]);
      const Mask starts = blocks[i].Equal(dialect_.delimiter) | allEnds | quotes;
      const Mask quoted = Block::PrefixXor(quotes) ^ quoting;
      odd |= quotes & quoted & ~Behind<1>(starts, quoteStarts);
      ends[i] = allEnds & ~quoted;
      quoteStarts = starts;
      quoting = 0 - (quoted >> 63);
    }
    if (odd != 0 || !CountGroup(ends)) return false;
    state_.quotes = quotes;
    state_.quoteStarts = quoteStarts;
    state_.quoting = quoting;
    return true;
  }

  // The same for a group without quotes.
  [[gnu::always_inline]] inline bool TakeGroupWithoutQuotes(
      const Block (&blocks)[kGroupBlocks]) noexcept {
    const char* const bytes = Next();
    Mask ends[kGroupBlocks];
    Mask any = 0;
    for (std::size_t i = 0; i < kGroupBlocks; ++i) {
      ends[i] = Ends(blocks[i], bytes[(i + 1) * kBlockBytes]);
      any |= ends[i];
    }
    if (any == 0) {
      state_.ends = 0;
      state_.scanned += kGroupBytes;
    } else if (!CountGroup(ends)) {
      return false;
    }
    state_.quotes = 0;
    state_.quoteStarts = state_.ends | static_cast<Mask>(Next()[-1] == dialect_.delimiter) << 63;
    return true;
  }

  // CountEnds for a group, unless some of its records may be blank. In which block a record ends is
  // not to be guessed, so that no branch asks for it.
  [[gnu::always_inline]] inline bool CountGroup(const Mask (&ends)[kGroupBlocks]) noexcept {
    Mask before = state_.ends;
    Mask close = 0;
    Mask blocksWithEnds = 0;
    int records = 0;
    for (std::size_t i = 0; i < kGroupBlocks; ++i) {
      close |= CloseEnds(ends[i], before);
      before = ends[i];
      blocksWithEnds |= static_cast<Mask>(ends[i] != 0) << i;
      records += __builtin_popcountll(ends[i]);
    }
    if (close != 0) return false;
    if (blocksWithEnds != 0) {
      const unsigned block = PositionOf(blocksWithEnds);
      state_.recordStart = state_.scanned + block * kBlockBytes + PositionOf(ends[block]) + 1;
    }
    state_.records += records;
    state_.ends = before;
    state_.scanned += kGroupBytes;
    return true;
  }

  void TakeSingleBlock(const Block& block, char next) noexcept {
    state_.sawNonAscii |= block.AboveAscii() != 0;
    TakeBlock(block, next, true);
  }

  // The last bytes of the file, and behind them some that cannot occur in it.
  void TakeRest(std::size_t rest) noexcept {
    char padded[kBlockBytes];
    std::memset(padded, kTextEnd, kBlockBytes);
    std::memcpy(padded, Next(), rest);
    TakeSingleBlock(Block(padded), kTextEnd);
  }

  // False when the scan stops in front of a record that ends in this block or behind it. `zeros`
  // tells whether there may be some.
  [[gnu::always_inline]] inline bool TakeBlock(const Block& block, char next, bool zeros) noexcept {
    Mask stop = zeros ? block.Equal('\0') : 0;
    // Without a text delimiter these are zeros, and it does not matter what is behind the first.
    Mask quotes = block.Equal(dialect_.textDelimiter);
    const Mask allEnds = Ends(block, next);
    const Mask fieldEnds = block.Equal(dialect_.delimiter) | allEnds;
    const Mask quoted = FindQuoted(fieldEnds, allEnds, quotes, stop);
    Mask ends = allEnds & ~quoted;
    const bool crowded = Crowded(ends);
    if (crowded) stop |= DoubtfulEnds(ends, quotes);
    if (stop != 0) {
      ends &= Lowest(stop) - 1;
      state_.undecided = true;
    }
    CountEnds(ends, crowded ? BlankEnds(block, ends) : 0);
    state_.quotes = quotes;
    state_.quoteStarts = fieldEnds | quotes;
    state_.quoting = 0 - (quoted >> 63);
    return stop == 0;
  }

  // The terminators, in quotes or not.
  [[gnu::always_inline]] inline Mask Ends(const Block& block, char next) const noexcept {
    const Mask ends = block.Equal(dialect_.terminator);
    if (dialect_.terminator == '\n') return ends;
    return ends & ~(block.Equal('\n') >> 1 | static_cast<Mask>(next == '\n') << 63);
  }

  // The bytes inside quotes, the opening quote among them. Takes literal quotes out of `quotes`;
  // marks in `stop` the first one that cannot be told, and is wrong behind a mark there.
  [[gnu::always_inline]] inline Mask FindQuoted(Mask fieldEnds, Mask ends, Mask& quotes,
                                                Mask& stop) const noexcept {
    Mask accepted = 0;
    for (;;) {
      const Mask quoted = Block::PrefixXor(quotes) ^ state_.quoting;
      const Mask odd =
          quotes & quoted & ~(accepted | Behind<1>(fieldEnds | quotes, state_.quoteStarts));
      if (odd == 0) return quoted;
      const Mask lowest = Lowest(odd);
      switch (MeaningOfQuote(dialect_, RecordBefore(lowest, ends & ~quoted))) {
        case QuoteMeaning::kOpens:
          accepted |= lowest;
          break;
        case QuoteMeaning::kLiteral:
          quotes ^= lowest;
          break;
        case QuoteMeaning::kUndecided:
          stop |= lowest;
          return quoted;
      }
    }
  }

  // The current record up to the byte `at` of the block; `ends` holds those of records before it.
  [[gnu::always_inline]] inline std::string_view RecordBefore(Mask at, Mask ends) const noexcept {
    ends &= at - 1;
    const std::size_t start =
        ends == 0 ? state_.recordStart : state_.scanned + PositionOf(ends) + 1;
    return {bytes_ + start, state_.scanned + PositionOf(at) - start};
  }

  // Ends of records that may have fewer than four bytes. Only those may be blank.
  static Mask CloseEnds(Mask ends, Mask endsBefore) noexcept {
    const Mask two = ends << 1 | ends << 2;
    const Mask first = endsBefore >> 60 != 0 ? 0xF : 0;
    return ends & (two | two << 2 | first);
  }
  bool Crowded(Mask ends) const noexcept { return CloseEnds(ends, state_.ends) != 0; }

  // The ends of records that may be two quotes, which make a blank record.
  [[gnu::always_inline]] inline Mask DoubtfulEnds(Mask ends, Mask quotes) const noexcept {
    const Mask shortRecords = Behind<3>(ends, state_.ends) | Behind<4>(ends, state_.ends);
    return ends & shortRecords & Behind<2>(quotes, state_.quotes);
  }

  // The ends of lines without text, among other bytes. A carriage return in front of a line feed
  // belongs to it.
  [[gnu::always_inline]] inline Mask BlankEnds(const Block& block, Mask ends) const noexcept {
    const Mask empty = Behind<1>(ends, state_.ends);
    if (dialect_.terminator == '\r') return empty;
    const bool before = state_.scanned > 0 && Next()[-1] == '\r';
    const Mask behindReturn = block.Equal('\r') << 1 | static_cast<Mask>(before);
    return empty | (Behind<2>(ends, state_.ends) & behindReturn);
  }

  // Takes the records that end at `ends`, and the block.
  [[gnu::always_inline]] inline void CountEnds(Mask ends, Mask blank) noexcept {
    state_.records += __builtin_popcountll(ends & ~blank);
    const std::size_t behindLast = state_.scanned + PositionOf(ends | 1) + 1;
    state_.recordStart = ends != 0 ? behindLast : state_.recordStart;
    state_.ends = ends;
    state_.scanned += kBlockBytes;
  }

  const RecordDialect& dialect_;
  RecordScanState state_;
  const char* const bytes_;
};

}  // namespace TextFile
