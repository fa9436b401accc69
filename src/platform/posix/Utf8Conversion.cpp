#include "platform/posix/Utf8Conversion.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "platform/posix/Utf8.h"

namespace {

constexpr std::size_t kBlock = 16;

// Copies the ASCII characters at the start of `bytes` and answers how many there were.
std::size_t WidenAscii(const unsigned char* bytes, std::size_t length, char16_t* text) {
  std::size_t i = 0;
  for (; i + kBlock <= length; i += kBlock) {
#ifdef __SSE2__
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    if (_mm_movemask_epi8(block) != 0) break;
    const __m128i zero = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text + i), _mm_unpacklo_epi8(block, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text + i + 8), _mm_unpackhi_epi8(block, zero));
#else
    std::uint64_t halves[2];
    std::memcpy(halves, bytes + i, sizeof halves);
    if (((halves[0] | halves[1]) & 0x8080808080808080u) != 0) break;
    for (std::size_t k = 0; k < kBlock; ++k) text[i + k] = bytes[i + k];
#endif
  }
  for (; i < length && bytes[i] < 0x80; ++i) text[i] = bytes[i];
  return i;
}

std::size_t CountAscii(const unsigned char* bytes, std::size_t length) {
  std::size_t i = 0;
  for (; i + 8 <= length; i += 8) {
    std::uint64_t block = 0;
    std::memcpy(&block, bytes + i, sizeof block);
    if ((block & 0x8080808080808080u) != 0) break;
  }
  while (i < length && bytes[i] < 0x80) ++i;
  return i;
}

std::size_t NarrowAscii(const char16_t* text, std::size_t length, char* bytes) {
  std::size_t i = 0;
#ifdef __SSE2__
  for (; i + kBlock <= length; i += kBlock) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i + 8));
    const __m128i beyond =
        _mm_and_si128(_mm_or_si128(low, high), _mm_set1_epi16(static_cast<short>(0xFF80)));
    if (_mm_movemask_epi8(_mm_cmpeq_epi8(beyond, _mm_setzero_si128())) != 0xFFFF) break;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + i), _mm_packus_epi16(low, high));
  }
#endif
  for (; i < length && text[i] < 0x80; ++i) bytes[i] = static_cast<char>(text[i]);
  return i;
}

// Where converted units go: into a buffer, or nowhere when only their number is asked for.
template <typename Unit>
class Output {
 public:
  Output(Unit* buffer, std::size_t size) : buffer_(buffer), size_(size) {}

  bool HasRoomFor(std::size_t units) const {
    return buffer_ == nullptr || size_ - written_ >= units;
  }
  bool Counts() const { return buffer_ == nullptr; }
  Unit* Next() const { return buffer_ + written_; }
  std::size_t Room() const { return size_ - written_; }
  void Advance(std::size_t units) { written_ += units; }
  void Put(char32_t unit) {
    if (buffer_ != nullptr) buffer_[written_] = static_cast<Unit>(unit);
    ++written_;
  }
  ConversionResult Ended(ConversionOutcome outcome) const { return {outcome, written_}; }

 private:
  Unit* buffer_;
  std::size_t size_;
  std::size_t written_ = 0;
};

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t c) { return (c & 0xFC00) == 0xD800; }
bool IsLowSurrogate(char16_t c) { return (c & 0xFC00) == 0xDC00; }
bool IsSurrogate(char32_t c) { return (c & 0xFFFFF800) == 0xD800; }

void PutUtf8(char32_t code, std::size_t units, Output<char>* output) {
  constexpr char32_t kLeads[] = {0, 0, 0xC0, 0xE0, 0xF0};
  auto shift = static_cast<unsigned>(6 * (units - 1));
  output->Put(kLeads[units] | (code >> shift));
  while (shift != 0) {
    shift -= 6;
    output->Put(0x80u | ((code >> shift) & 0x3Fu));
  }
}

}  // namespace

ConversionResult Utf16FromUtf8(const char* bytes, std::size_t length, bool strict, char16_t* text,
                               std::size_t size) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes);
  const auto* const end = p + length;
  Output<char16_t> output(text, size);
  while (p != end) {
    if (*p < 0x80) {
      const auto left = static_cast<std::size_t>(end - p);
      const std::size_t run = output.Counts()
                                  ? CountAscii(p, left)
                                  : WidenAscii(p, std::min(left, output.Room()), output.Next());
      if (run == 0) return output.Ended(ConversionOutcome::kBufferTooSmall);
      output.Advance(run);
      p += run;
      continue;
    }
    Utf8Character c = ReadUtf8Character(p, end);
    p += c.length;
    if (c.code == kIllFormedUtf8) {
      if (strict) return output.Ended(ConversionOutcome::kIllFormed);
      c.code = kReplacement;
    }
    const std::size_t units = c.code < 0x10000 ? 1 : 2;
    if (!output.HasRoomFor(units)) return output.Ended(ConversionOutcome::kBufferTooSmall);
    if (units == 1) {
      output.Put(c.code);
    } else {
      output.Put(0xD7C0u + (c.code >> 10));
      output.Put(0xDC00u + (c.code & 0x3FFu));
    }
  }
  return output.Ended(ConversionOutcome::kDone);
}

ConversionResult Utf8FromUtf16(const char16_t* text, std::size_t length, bool strict, char* bytes,
                               std::size_t size) {
  const char16_t* p = text;
  const char16_t* const end = p + length;
  Output<char> output(bytes, size);
  while (p != end) {
    if (*p < 0x80 && !output.Counts()) {
      const auto left = static_cast<std::size_t>(end - p);
      const std::size_t run = NarrowAscii(p, std::min(left, output.Room()), output.Next());
      if (run == 0) return output.Ended(ConversionOutcome::kBufferTooSmall);
      output.Advance(run);
      p += run;
      continue;
    }
    char32_t code = *p++;
    if (IsHighSurrogate(static_cast<char16_t>(code)) && p != end && IsLowSurrogate(*p)) {
      code = 0x10000u + ((code & 0x3FFu) << 10) + (*p++ & 0x3FFu);
    } else if (IsSurrogate(code)) {
      if (strict) return output.Ended(ConversionOutcome::kIllFormed);
      code = kReplacement;
    }
    const std::size_t units = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
    if (!output.HasRoomFor(units)) return output.Ended(ConversionOutcome::kBufferTooSmall);
    if (units == 1) {
      output.Put(code);
    } else {
      PutUtf8(code, units, &output);
    }
  }
  return output.Ended(ConversionOutcome::kDone);
}
