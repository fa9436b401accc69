#include "reading/RecordScan.h"

#include <algorithm>

#include "host/CoreSupport/CharacterClasses.h"
#include "reading/RecordScanKernel.h"
#include "reading/RecordScanVector.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

namespace {

// For processors that nothing is known of, and the measure for the others.
class PlainBlock {
 public:
  explicit PlainBlock(const char* bytes) noexcept : bytes_(bytes) {}

  std::uint64_t Equal(char byte) const noexcept {
    std::uint64_t mask = 0;
    for (unsigned i = 0; i < 64; ++i) mask |= static_cast<std::uint64_t>(bytes_[i] == byte) << i;
    return mask;
  }
  std::uint64_t AboveAscii() const noexcept {
    std::uint64_t mask = 0;
    for (unsigned i = 0; i < 64; ++i)
      mask |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes_[i]) >> 7) << i;
    return mask;
  }
  static bool AnyEqual(const PlainBlock (&blocks)[4], char byte) noexcept {
    std::uint64_t all = 0;
    for (const PlainBlock& block : blocks) all |= block.Equal(byte);
    return all != 0;
  }
  static bool AnyAboveAscii(const PlainBlock (&blocks)[4]) noexcept {
    std::uint64_t all = 0;
    for (const PlainBlock& block : blocks) all |= block.AboveAscii();
    return all != 0;
  }
  static std::uint64_t PrefixXor(std::uint64_t bits) noexcept {
    for (unsigned step = 1; step < 64; step *= 2) bits ^= bits << step;
    return bits;
  }

 private:
  const char* bytes_;
};

#if defined(__SSE2__)

// Every x86-64 processor has these instructions.
class Sse2Block {
 public:
  explicit Sse2Block(const char* bytes) noexcept {
    for (int i = 0; i < 4; ++i)
      parts_[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes) + i);
  }

  std::uint64_t Equal(char byte) const noexcept {
    const __m128i wanted = _mm_set1_epi8(byte);
    std::uint64_t mask = 0;
    for (int i = 0; i < 4; ++i) mask |= Bits(_mm_cmpeq_epi8(parts_[i], wanted)) << 16 * i;
    return mask;
  }
  std::uint64_t AboveAscii() const noexcept {
    std::uint64_t mask = 0;
    for (int i = 0; i < 4; ++i) mask |= Bits(parts_[i]) << 16 * i;
    return mask;
  }
  static bool AnyEqual(const Sse2Block (&blocks)[4], char byte) noexcept {
    const __m128i wanted = _mm_set1_epi8(byte);
    __m128i hits = _mm_setzero_si128();
    for (const Sse2Block& block : blocks)
      for (const __m128i& part : block.parts_)
        hits = _mm_or_si128(hits, _mm_cmpeq_epi8(part, wanted));
    return Bits(hits) != 0;
  }
  static bool AnyAboveAscii(const Sse2Block (&blocks)[4]) noexcept {
    __m128i all = _mm_setzero_si128();
    for (const Sse2Block& block : blocks)
      for (const __m128i& part : block.parts_) all = _mm_or_si128(all, part);
    return Bits(all) != 0;
  }
  static std::uint64_t PrefixXor(std::uint64_t bits) noexcept {
    return PlainBlock::PrefixXor(bits);
  }

 private:
  static std::uint64_t Bits(__m128i bytes) noexcept {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes));
  }

  __m128i parts_[4];
};

using BaselineBlock = Sse2Block;

#else

using BaselineBlock = PlainBlock;

#endif

template <class Block>
void Run(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes, bool last) {
  state = RecordScanKernel<Block>(dialect, state, bytes.data()).Take(bytes.size(), last);
}

// Whether the last byte may be the end of a white space character beyond ASCII, in UTF-8 or in a
// code page of one byte a character.
bool MayEndInWhiteSpace(std::string_view text) noexcept {
  const auto last = static_cast<unsigned char>(text.back());
  if (last == 0x85 || last == 0xA0) return true;
  // U+1680, U+2000 to U+205F and U+3000 have three bytes in UTF-8.
  const auto middle = static_cast<unsigned char>(text.size() < 2 ? 0 : text[text.size() - 2]);
  return last < 0xB0 && (middle == 0x80 || middle == 0x81 || middle == 0x9A);
}

}  // namespace

QuoteMeaning MeaningOfQuote(const RecordDialect& dialect, std::string_view before) noexcept {
  if (before.ends_with(dialect.textDelimiter)) return QuoteMeaning::kLiteral;
  const auto isBlank = [&](char byte) {
    return byte != dialect.delimiter && static_cast<unsigned char>(byte) < 0x80 &&
           quenra::IsWhiteSpace(static_cast<unsigned char>(byte));
  };
  while (!before.empty() && isBlank(before.back())) before.remove_suffix(1);
  if (before.empty()) return QuoteMeaning::kUndecided;
  const char last = before.back();
  if (last == dialect.delimiter) return QuoteMeaning::kOpens;
  // A field that goes on behind its closing quote may still be blank.
  if (last == dialect.textDelimiter) return QuoteMeaning::kUndecided;
  if (static_cast<unsigned char>(last) >= 0x80 && MayEndInWhiteSpace(before))
    return QuoteMeaning::kUndecided;
  return QuoteMeaning::kLiteral;
}

RecordScan::RecordScan(const RecordDialect& dialect, Code code) noexcept
    : dialect_(dialect), kernel_(Choose(code)) {
  Begin();
}

RecordScan::Kernel RecordScan::Choose(Code code) noexcept {
  if (code == Code::kPlain) return &Run<PlainBlock>;
  if (code == Code::kBest && HasAvx512Scan()) return &RunAvx512Scan;
  if (code != Code::kBaseline && HasAvx2Scan()) return &RunAvx2Scan;
  return &Run<BaselineBlock>;
}

void RecordScan::Begin() noexcept {
  const std::int64_t records = state_.records;
  const bool sawNonAscii = state_.sawNonAscii;
  state_ = {};
  state_.records = records;
  state_.sawNonAscii = sawNonAscii;
  // As if a record had just ended.
  state_.ends = state_.quoteStarts = std::uint64_t{1} << 63;
}

std::size_t RecordScan::Take(std::string_view bytes, bool last) noexcept {
  kernel_(dialect_, state_, bytes, last);
  if (last && !state_.undecided) TakeUnterminated(bytes.substr(state_.recordStart));
  const std::size_t whole = state_.recordStart;
  state_.scanned -= std::min(whole, state_.scanned);
  state_.recordStart = 0;
  return whole;
}

// Takes the record that the end of the file ends.
void RecordScan::TakeUnterminated(std::string_view record) noexcept {
  if (record.empty()) return;
  // One or two quotes are no record; anything longer that begins with one holds text.
  state_.undecided = dialect_.textDelimiter != '\0' && record.size() <= 2 &&
                     record.starts_with(dialect_.textDelimiter);
  if (state_.undecided) return;
  ++state_.records;
  state_.recordStart += record.size();
}

}  // namespace TextFile
