// The steps of PlainRowIndex over blocks of 64 bytes, for any way of comparing bytes (ByteBlock.h).
// Included by the files that bring such a way, each compiled for its processors.
#pragma once

#include <cstddef>
#include <cstdint>

#include "reading/PlainRowIndex.h"

namespace TextFile {

template <class Block>
class PlainRowKernel {
 public:
  PlainRowKernel(const PlainRowDialect& dialect, PlainRowState& state) noexcept
      : dialect_(dialect), result_(state), state_(state) {}

  // Takes blocks until there are no more, or one has something that is not plain.
  [[gnu::always_inline]] inline void TakeBlocks() noexcept {
    for (std::size_t i = 0; i < PlainRowIndex::kBlocks && state_.next < state_.end; ++i) {
      TakeBlock(Block(state_.next));
      if (state_.stopped) break;
      state_.next += kBlockBytes;
    }
    result_ = state_;
  }

 private:
  using Mask = std::uint64_t;
  static constexpr std::ptrdiff_t kBlockBytes = 64;
  static constexpr std::size_t kAtOnce = 8;

  static Mask Lowest(Mask bits) noexcept { return bits & (0 - bits); }
  static std::size_t CountOf(Mask bits) noexcept {
    return static_cast<std::size_t>(__builtin_popcountll(bits));
  }

  [[gnu::always_inline]] inline void TakeBlock(const Block& block) noexcept {
    const Mask lineFeeds = block.Equal('\n');
    const Mask bounds = block.Equal(dialect_.delimiter) | lineFeeds;
    const Mask quotes = block.Equal(dialect_.textDelimiter);
    Mask wrong = block.Equal('\0');
    Mask quoted = 0;
    if ((quotes | state_.quoting) != 0) {
      // What opens a field stands at its start; what goes on with it is doubled.
      quoted = Block::PrefixXor(quotes) ^ state_.quoting;
      wrong |= quotes & quoted & ~((bounds | quotes) << 1 | state_.behindStart);
      wrong |= lineFeeds & quoted;
      state_.quoting = 0 - (quoted >> 63);
    }
    state_.behindStart = (bounds | quotes) >> 63;
    const Mask above = block.AboveAscii();
    if ((above | state_.continuations) != 0) wrong |= IllFormed(block, above);

    Mask found = bounds & ~quoted;
    const std::ptrdiff_t left = state_.end - state_.next;
    if (left < kBlockBytes) found &= (Mask{1} << left) - 1;
    if (wrong != 0) {
      found &= Lowest(wrong) - 1;
      state_.stopped = true;
    }
    Add(found, found & lineFeeds);
  }

  // The bytes that are not well-formed UTF-8, at least the first of them; or not ASCII, where that
  // alone is plain. `above` are those above 127.
  [[gnu::always_inline]] inline Mask IllFormed(const Block& block, Mask above) noexcept {
    if (state_.nonAscii == nullptr && above != 0)
      state_.nonAscii = state_.next + Block::PositionOf(above);
    if (state_.asciiOnly) return above;
    const Mask belowThree = block.BelowSigned('\xE0');
    const Mask two = belowThree & ~block.BelowSigned('\xC2');
    const Mask longer = above & ~belowThree;
    Mask expected = (two | longer) << 1 | state_.continuations;
    const bool goesOn = state_.continuations != 0;
    state_.continuations = (two | longer) >> 63;
    Mask wrong = 0;
    if (longer != 0 || goesOn) wrong = OutOfRange(block, longer, expected);
    return wrong | (expected & ~block.BelowSigned('\xC0')) | (above ^ (two | longer | expected));
  }

  // Puts into `expected` the other bytes of sequences of three bytes and four, whose leads are
  // `longer`. Some leads allow fewer continuations behind them than others (table 3-7 of the
  // Unicode standard): nothing is overlong, a surrogate, or above U+10FFFF.
  [[gnu::always_inline]] inline Mask OutOfRange(const Block& block, Mask longer,
                                                Mask& expected) noexcept {
    // Of a byte that is looked at here only when a continuation has to be the next.
    const char before = (expected & 1) != 0 ? state_.next[-1] : '\0';
    const auto behind = [&](char lead) {
      return block.Equal(lead) << 1 | static_cast<Mask>(before == lead);
    };
    const Mask four = longer & ~block.BelowSigned('\xF0');
    expected |= longer << 2 | four << 3;
    state_.continuations |= longer >> 62 | four >> 61;
    const Mask below90 = block.BelowSigned('\x90');
    const Mask belowA0 = block.BelowSigned('\xA0');
    return (behind('\xE0') & belowA0) | (behind('\xED') & ~belowA0) | (behind('\xF0') & below90) |
           (behind('\xF4') & ~below90) | (four & ~block.BelowSigned('\xF5'));
  }

  // Adds bounds of the block, some of which end rows. Always so many at once: their number can
  // hardly be foretold.
  [[gnu::always_inline]] inline void Add(Mask bounds, Mask rowEnds) noexcept {
    state_.rows[state_.rowCount] = PlaceOf(rowEnds, bounds);
    state_.rowCount += rowEnds != 0;
    for (rowEnds &= rowEnds - 1; rowEnds != 0; rowEnds &= rowEnds - 1)
      state_.rows[state_.rowCount++] = PlaceOf(rowEnds, bounds);

    PlainRow::Bound* place = state_.bounds + state_.boundCount;
    state_.boundCount += CountOf(bounds);
    if (dialect_.delimiter == '\0' && bounds == 0) return;
    if constexpr (requires { Block::WritePlaces(bounds, state_.next, place); })
      Block::WritePlaces(bounds, state_.next, place);
    else
      WritePlaces(bounds, place);
  }

  // The block's byte of every bit, kAtOnce of them or a multiple.
  [[gnu::always_inline]] inline void WritePlaces(Mask bits, PlainRow::Bound* place) const noexcept {
    do {
      for (std::size_t i = 0; i < kAtOnce; ++i) {
        place[i] = state_.next + Block::PositionOf(bits);
        bits &= bits - 1;
      }
      place += kAtOnce;
    } while (bits != 0);
  }

  // Where the lowest of `rowEnds` comes among the bounds.
  std::uint32_t PlaceOf(Mask rowEnds, Mask bounds) const noexcept {
    return static_cast<std::uint32_t>(state_.boundCount + CountOf(bounds & (Lowest(rowEnds) - 1)));
  }

  const PlainRowDialect dialect_;
  PlainRowState& result_;
  PlainRowState state_;  // a copy that nobody else knows of, so that it can stay in registers
};

}  // namespace TextFile
