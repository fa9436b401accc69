// The steps of PlainRowScan over blocks of 64 bytes, for any way of comparing bytes (ByteBlock.h).
// Included by the files that bring such a way, each compiled for its processors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "reading/PlainRow.h"
#include "reading/PlainRowScan.h"

namespace TextFile {

template <class Block>
class PlainRowKernel {
 public:
  PlainRowKernel(const PlainRowDialect& dialect, std::string_view bytes) noexcept
      : dialect_(dialect), line_(bytes.data()), end_(bytes.data() + bytes.size()) {}

  [[gnu::always_inline]] inline PlainRowEnd Take(PlainRow& row) {
    row.Begin(PlainRow::Bounds::kShared, dialect_.textDelimiter);
    PlainRow::Bound* bound = row.Places(kPlaces + 2);
    *bound++ = line_ - 1;
    for (const char* at = line_; at < end_; at += kBlockBytes) {
      Masks masks;
      if (!Look(Block(at), at, masks)) return {};
      if (dialect_.delimiter != '\0') AddAll(at, masks.delimiters, bound);
      if (masks.lineFeeds != 0) return End(at, masks, bound, row);
      bound = row.Places(bound, kPlaces + 1);
    }
    return {};
  }

 private:
  using Mask = std::uint64_t;
  static constexpr std::size_t kBlockBytes = 64;

  static constexpr std::size_t kAtOnce = 8;
  static constexpr std::size_t kPlaces = kBlockBytes + kAtOnce;

  // What a block has up to its first line feed.
  struct Masks {
    Mask lineFeeds;   // all of them
    Mask delimiters;  // outside quotes
    Mask quoted;      // the bytes inside quotes, the opening one among them
  };

  // False when the line is not plain.
  [[gnu::always_inline]] inline bool Look(const Block& block, const char* at,
                                          Masks& masks) noexcept {
    masks.lineFeeds = block.Equal('\n');
    const Mask line = masks.lineFeeds ^ (masks.lineFeeds - 1);  // up to the first
    masks.delimiters = block.Equal(dialect_.delimiter) & line;
    const Mask quotes = block.Equal(dialect_.textDelimiter) & line;
    Mask wrong = block.Equal('\0') & line;
    const Mask starts = masks.delimiters | quotes;
    masks.quoted = 0;
    if ((quotes | quoting_) != 0) {
      // What opens a field stands at its start; what goes on with it is doubled.
      masks.quoted = Block::PrefixXor(quotes) ^ quoting_;
      wrong |= quotes & masks.quoted & ~(starts << 1 | behindStart_);
      quoting_ = 0 - (masks.quoted >> 63);
      masks.delimiters &= ~masks.quoted;
    }
    behindStart_ = starts >> 63;
    const Mask above = block.AboveAscii() & line;
    if ((above | continuations_) != 0) wrong |= IllFormed(block, at, above);
    return wrong == 0;
  }

  // The bytes that are not well-formed UTF-8, if there are any, or not ASCII where that alone is
  // plain. `above` are those above 127.
  [[gnu::always_inline]] inline Mask IllFormed(const Block& block, const char* at,
                                               Mask above) noexcept {
    nonAscii_ = true;
    if (dialect_.asciiOnly) return above;
    const Mask belowThree = block.BelowSigned('\xE0');
    const Mask two = belowThree & ~block.BelowSigned('\xC2') & above;
    const Mask longer = above & ~belowThree;
    Mask expected = (two | longer) << 1 | continuations_;
    const bool behindLead = continuations_ != 0;
    continuations_ = (two | longer) >> 63;
    Mask wrong = expected & ~block.BelowSigned('\xC0');
    if (longer != 0 || behindLead) wrong |= IllFormedLonger(block, at, longer, expected);
    return wrong | (above ^ (two | longer | expected));
  }

  // The same for the sequences of three bytes and four, whose leads are `longer`. Puts the places
  // of their other bytes into `expected`. Some leads allow fewer continuations behind them than
  // others (table 3-7 of the Unicode standard): nothing is overlong, a surrogate, or above
  // U+10FFFF.
  [[gnu::always_inline]] inline Mask IllFormedLonger(const Block& block, const char* at,
                                                     Mask longer, Mask& expected) noexcept {
    const Mask four = longer & ~block.BelowSigned('\xF0');
    expected |= longer << 2 | four << 3;
    continuations_ |= longer >> 62 | four >> 61;
    // Continuations are expected at the block's start only when it is not the line's.
    const char before = at == line_ ? '\0' : at[-1];
    const auto behind = [&](char lead) {
      return block.Equal(lead) << 1 | static_cast<Mask>(before == lead);
    };
    const Mask below90 = block.BelowSigned('\x90');
    const Mask belowA0 = block.BelowSigned('\xA0');
    const Mask outOfRange = (behind('\xE0') & belowA0) | (behind('\xED') & ~belowA0) |
                            (behind('\xF0') & below90) | (behind('\xF4') & ~below90);
    return (outOfRange & expected) | (four & ~block.BelowSigned('\xF5')) |
           (expected & ~block.BelowSigned('\xC0'));
  }

  // Adds the bytes that `ends` marks in the block at `at`, so many at once whatever there are:
  // their number can hardly be foretold.
  [[gnu::always_inline]] static inline void AddAll(const char* at, Mask ends,
                                                   PlainRow::Bound*& bound) noexcept {
    PlainRow::Bound* place = bound;
    bound += __builtin_popcountll(ends);
    do {
      for (std::size_t i = 0; i < kAtOnce; ++i) {
        place[i] = at + Block::PositionOf(ends);
        ends &= ends - 1;
      }
      place += kAtOnce;
    } while (ends != 0);
  }

  // Ends the row at the first line feed of the block at `at`.
  [[gnu::always_inline]] inline PlainRowEnd End(const char* at, const Masks& masks,
                                                PlainRow::Bound* bound, PlainRow& row) noexcept {
    const char* const lineFeed = at + Block::PositionOf(masks.lineFeeds);
    const bool quoted = (masks.quoted & masks.lineFeeds & (0 - masks.lineFeeds)) != 0;
    if (lineFeed >= end_ || quoted) return {};
    const char* const end = lineFeed - (lineFeed != line_ && lineFeed[-1] == '\r');
    *bound++ = end;
    row.End(bound);
    // A line without text is no record, and quotes alone are no text.
    if (row.size() == 1 && (end == line_ || *line_ == dialect_.textDelimiter)) return {};
    return {static_cast<std::size_t>(lineFeed + 1 - line_), nonAscii_};
  }

  const PlainRowDialect& dialect_;
  const char* const line_;
  const char* const end_;
  Mask quoting_ = 0;        // all ones inside quotes
  Mask behindStart_ = 1;    // bit 0: the next byte may be a quote that opens a field or is doubled
  Mask continuations_ = 0;  // which of the next bytes have to go on with a sequence
  bool nonAscii_ = false;
};

}  // namespace TextFile
