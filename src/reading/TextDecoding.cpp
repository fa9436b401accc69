#include "reading/TextDecoding.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "host/CoreSupport/QUENRALocale.h"
#include "platform/CodePages.h"
#include "platform/OleText.h"
#include "platform/ProcessorClones.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

namespace {

// The system counts in int; longer lines are converted in pieces of this many bytes.
constexpr std::size_t kPieceBytes = std::size_t{1} << 30;

// How many bytes are widened at once.
constexpr std::size_t kStep = 16;

#if defined(__SSE2__)
void StoreWidened(__m128i narrow, char16_t* text) noexcept {
  const __m128i zeros = _mm_setzero_si128();
  auto* const wide = reinterpret_cast<__m128i*>(text);
  _mm_storeu_si128(wide, _mm_unpacklo_epi8(narrow, zeros));
  _mm_storeu_si128(wide + 1, _mm_unpackhi_epi8(narrow, zeros));
}
#endif

constexpr bool IsContinuation(unsigned char byte) noexcept { return (byte & 0xC0) == 0x80; }

// Widens kStep bytes and answers how many of them stand in front of the first one above 127; the
// units behind those are of no particular value.
std::size_t WidenStep(const char* bytes, char16_t* text) noexcept {
#if defined(__SSE2__)
  const __m128i narrow = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  StoreWidened(narrow, text);
  const auto above = static_cast<std::uint32_t>(_mm_movemask_epi8(narrow)) | 0x10000;
  return static_cast<std::size_t>(std::countr_zero(above));
#else
  std::size_t i = 0;
  for (; i < kStep && static_cast<unsigned char>(bytes[i]) < 0x80; ++i)
    text[i] = static_cast<unsigned char>(bytes[i]);
  return i;
#endif
}

static_assert(kFieldStep == kStep);

// The same for the first byte that is above 127 or `quote`.
std::size_t WidenFieldStep(const char* bytes, char quote, char16_t* text) noexcept {
#if defined(__SSE2__)
  const __m128i narrow = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  StoreWidened(narrow, text);
  const __m128i quotes = _mm_cmpeq_epi8(narrow, _mm_set1_epi8(quote));
  const auto special =
      static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_or_si128(narrow, quotes))) | 0x10000;
  return static_cast<std::size_t>(std::countr_zero(special));
#else
  std::size_t i = 0;
  for (; i < kStep && static_cast<unsigned char>(bytes[i]) < 0x80 && bytes[i] != quote; ++i)
    text[i] = static_cast<unsigned char>(bytes[i]);
  return i;
#endif
}

// Widens `bytes` up to the first byte above 127 and answers how many there are. `text` has room
// for all of them.
std::size_t WidenAscii(std::string_view bytes, char16_t* text) noexcept {
  const char* const source = bytes.data();
  const std::size_t size = bytes.size();
  std::size_t i = 0;
  while (i + kStep <= size) {
    const std::size_t step = WidenStep(source + i, text + i);
    if (step < kStep) return i + step;
    i += kStep;
  }
  if (i < size && size >= kStep) {
    // Once more over bytes that are known to be ASCII, rather than the last ones one by one.
    return size - kStep + WidenStep(source + size - kStep, text + size - kStep);
  }
  for (; i < size && static_cast<unsigned char>(source[i]) < 0x80; ++i)
    text[i] = static_cast<unsigned char>(source[i]);
  return i;
}

// A UTF-8 sequence of two to four bytes.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
struct Sequence {
  std::size_t length;  // 0: ill-formed
  char32_t character = 0;
};

// Reads the sequence at the start of `bytes`, which are not empty. Well-formed is what table 3-7
// of the Unicode standard lists: nothing overlong, no surrogates, nothing above U+10FFFF.
Sequence ReadSequence(std::string_view bytes) noexcept {
  const auto at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = at(0);
  // Most characters beyond ASCII, in most of Europe.
  if (lead >= 0xC2 && lead < 0xE0 && bytes.size() >= 2 && IsContinuation(at(1)))
    return {2, (lead & 0x1Fu) << 6 | (at(1) & 0x3Fu)};
  const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (length == 0 || lead > 0xF4 || bytes.size() < length) return {0};
  char32_t character = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(at(i))) return {0};
    character = character << 6 | (at(i) & 0x3Fu);
  }
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
  if (character < kLeast[length] || isSurrogate || character > 0x10FFFF) return {0};
  return {length, character};
}

// Writes a character as UTF-16 and answers how many units that takes.
std::size_t WriteCharacter(char32_t character, char16_t* text) noexcept {
  if (character < 0x10000) {
    text[0] = static_cast<char16_t>(character);
    return 1;
  }
  text[0] = static_cast<char16_t>(0xD7C0 + (character >> 10));
  text[1] = static_cast<char16_t>(0xDC00 + (character & 0x3FF));
  return 2;
}

// Takes the character at `at`, which is one beyond ASCII of well-formed UTF-8. The rest is that of
// WriteCharacter.
std::size_t TakeCharacter(const char*& at, char16_t* text) noexcept {
  const auto take = [&at] { return static_cast<unsigned char>(*at++); };
  const unsigned char lead = take();
  if (lead < 0xE0) {
    text[0] = static_cast<char16_t>((lead & 0x1Fu) << 6 | (take() & 0x3Fu));
    return 1;
  }
  char32_t character = lead & (lead < 0xF0 ? 0x0Fu : 0x07u);
  for (int more = lead < 0xF0 ? 2 : 3; more > 0; --more)
    character = character << 6 | (take() & 0x3Fu);
  return WriteCharacter(character, text);
}

// Converts well-formed UTF-8 and answers how many units it makes; kIllFormed for other bytes.
// `text` has a unit of room for each byte.
constexpr std::size_t kIllFormed = static_cast<std::size_t>(-1);
std::size_t WidenUtf8(std::string_view bytes, char16_t* text) noexcept {
  std::size_t units = 0;
  for (;;) {
    const std::size_t ascii = WidenAscii(bytes, text + units);
    units += ascii;
    bytes.remove_prefix(ascii);
    if (bytes.empty()) return units;
    const Sequence sequence = ReadSequence(bytes);
    if (sequence.length == 0) return kIllFormed;
    bytes.remove_prefix(sequence.length);
    units += WriteCharacter(sequence.character, text + units);
  }
}

// The length of the piece at the start of `bytes` that ends between two UTF-8 sequences.
std::size_t PieceLength(std::string_view bytes) noexcept {
  if (bytes.size() <= kPieceBytes) return bytes.size();
  std::size_t length = kPieceBytes;
  // No sequence has more than three continuation bytes.
  for (int i = 0; i < 3 && IsContinuation(static_cast<unsigned char>(bytes[length])); ++i) --length;
  return length;
}

// Lets the system convert `bytes` into `line`, which has that many units or more of room. False
// when it refuses.
bool ConvertBySystem(UINT codePage, DWORD flags, std::string_view bytes, std::size_t room,
                     UnitBuffer& line) {
  char16_t* const units = line.Overwrite(room);
  std::size_t done = 0;
  while (!bytes.empty()) {
    const std::size_t length = PieceLength(bytes);
    const int pieceRoom = static_cast<int>(std::min(room - done, kPieceBytes));
    const int made = ::MultiByteToWideChar(codePage, flags, bytes.data(), static_cast<int>(length),
                                           AsOle(units + done), pieceRoom);
    if (made <= 0) return false;
    done += static_cast<std::size_t>(made);
    bytes.remove_prefix(length);
  }
  line.Shorten(done);
  return true;
}

}  // namespace

CLONED_FOR_PROCESSORS
std::size_t WidenLine(std::string_view bytes, bool asUtf8, UnitBuffer& line) {
#if defined(__SSE2__)
  char16_t* const text = line.Overwrite(line.capacity());
  // There are never more units than bytes.
  const std::size_t limit = std::min(bytes.size(), line.capacity());
  const __m128i lineFeeds = _mm_set1_epi8('\n');
  const __m128i zeros = _mm_setzero_si128();
  std::size_t units = 0;
  for (std::size_t i = 0; i + kStep <= limit;) {
    const __m128i narrow = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data() + i));
    StoreWidened(narrow, text + units);
    const __m128i ends =
        _mm_or_si128(_mm_cmpeq_epi8(narrow, lineFeeds), _mm_cmpeq_epi8(narrow, zeros));
    // Bytes above 127 have the bit that is gathered set themselves.
    const auto special = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_or_si128(ends, narrow)));
    if (special == 0) {
      // Apart from the counting below, so that no step waits for the one before it.
      i += kStep;
      units += kStep;
      continue;
    }
    const auto plain = static_cast<std::size_t>(std::countr_zero(special));
    i += plain;
    units += plain;
    if (bytes[i] == '\n') {
      line.Shorten(units);
      return i;
    }
    const Sequence sequence = asUtf8 ? ReadSequence(bytes.substr(i, limit - i)) : Sequence{0};
    if (sequence.length == 0) break;
    i += sequence.length;
    units += WriteCharacter(sequence.character, text + units);
  }
#endif
  return kNoPlainLine;
}

CLONED_FOR_PROCESSORS
void WidenField(std::string_view bytes, char textDelimiter, UnitBuffer& text) {
  const char* at = bytes.data();
  const char* const end = at + bytes.size();
  const bool quoted = at != end && *at == textDelimiter && textDelimiter != '\0';
  const char quote = quoted ? textDelimiter : '\0';
  at += quoted;
  char16_t* const begin = text.Overwrite(bytes.size() + kFieldStep);
  char16_t* out = begin;
  for (;;) {
    const std::size_t plain = WidenFieldStep(at, quote, out);
    const auto left = static_cast<std::size_t>(end - at);
    if (plain >= left) {
      out += left;
      break;
    }
    at += plain;
    out += plain;
    if (plain == kFieldStep) continue;
    if (*at != quote) {
      out += TakeCharacter(at, out);
    } else if (++at != end && *at == quote) {
      *out++ = static_cast<unsigned char>(*at++);
    }
  }
  text.Shorten(static_cast<std::size_t>(out - begin));
}

void DecodeUtf8(std::string_view bytes, UnitBuffer& line) {
  if (DecodeStrictUtf8(bytes, line)) return;
  // What ill-formed sequences become is for the system to say.
  if (!ConvertBySystem(CP_UTF8, 0, bytes, bytes.size(), line)) line.Shorten(0);
}

bool DecodeStrictUtf8(std::string_view bytes, UnitBuffer& line) {
  const std::size_t units = WidenUtf8(bytes, line.Overwrite(bytes.size()));
  if (units == kIllFormed) return false;
  line.Shorten(units);
  return true;
}

void DecodeAnsi(std::string_view bytes, UnitBuffer& line) {
  if (WidenAscii(bytes, line.Overwrite(bytes.size())) == bytes.size()) return;
  // No ANSI code page makes more units than bytes, but a code page of another kind may.
  const UINT codePage = quenra::QUENRALocale::GetAnsiCodePage();
  if (ConvertBySystem(codePage, 0, bytes, bytes.size(), line)) return;
  if (ConvertBySystem(codePage, 0, bytes, 4 * bytes.size(), line)) return;
  std::fill_n(line.Overwrite(bytes.size()), bytes.size(), u'\uFFFD');
}

void DecodeUtf16LE(std::string_view bytes, UnitBuffer& line) {
  const std::size_t size = bytes.size() / 2;
  char16_t* const units = line.Overwrite(size);
  for (std::size_t i = 0; i < size; ++i) {
    const auto low = static_cast<unsigned char>(bytes[2 * i]);
    const auto high = static_cast<unsigned char>(bytes[2 * i + 1]);
    units[i] = static_cast<char16_t>(low | high << 8);
  }
}

}  // namespace TextFile
