#include "reading/TextDecoding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "host/CoreSupport/QUENRALocale.h"
#include "platform/CodePages.h"
#include "platform/OleText.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

namespace {

// The system counts in int; longer lines are converted in pieces of this many bytes.
constexpr std::size_t kPieceBytes = std::size_t{1} << 30;

constexpr bool IsContinuation(unsigned char byte) noexcept { return (byte & 0xC0) == 0x80; }

#if defined(__SSE2__)
constexpr std::size_t kAsciiStep = 16;

// Widens kAsciiStep bytes; false, and nothing is said about `text`, when one is above 127.
bool WidenAsciiStep(const char* bytes, char16_t* text) noexcept {
  const __m128i narrow = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  if (_mm_movemask_epi8(narrow) != 0) return false;
  const __m128i zeros = _mm_setzero_si128();
  auto* const wide = reinterpret_cast<__m128i*>(text);
  _mm_storeu_si128(wide, _mm_unpacklo_epi8(narrow, zeros));
  _mm_storeu_si128(wide + 1, _mm_unpackhi_epi8(narrow, zeros));
  return true;
}
#else
constexpr std::size_t kAsciiStep = 8;

bool WidenAsciiStep(const char* bytes, char16_t* text) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, kAsciiStep);
  if ((word & 0x8080808080808080u) != 0) return false;
  for (std::size_t i = 0; i < kAsciiStep; ++i) text[i] = static_cast<unsigned char>(bytes[i]);
  return true;
}
#endif

// Widens `bytes` up to the first byte above 127 and answers how many there are. `text` has room
// for all of them.
std::size_t WidenAscii(std::string_view bytes, char16_t* text) noexcept {
  const char* const source = bytes.data();
  const std::size_t size = bytes.size();
  std::size_t i = 0;
  while (i + kAsciiStep <= size && WidenAsciiStep(source + i, text + i)) i += kAsciiStep;
  for (; i < size && static_cast<unsigned char>(source[i]) < 0x80; ++i)
    text[i] = static_cast<unsigned char>(source[i]);
  return i;
}

// A UTF-8 sequence of two to four bytes.
struct Sequence {
  std::size_t length;  // 0: ill-formed
  char32_t character = 0;
};

// Reads the sequence at the start of `bytes`, which are not empty. Well-formed is what table 3-7
// of the Unicode standard lists: nothing overlong, no surrogates, nothing above U+10FFFF.
Sequence ReadSequence(std::string_view bytes) noexcept {
  const auto at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = at(0);
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
    if (sequence.character < 0x10000) {
      text[units++] = static_cast<char16_t>(sequence.character);
    } else {
      text[units++] = static_cast<char16_t>(0xD7C0 + (sequence.character >> 10));
      text[units++] = static_cast<char16_t>(0xDC00 + (sequence.character & 0x3FF));
    }
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
