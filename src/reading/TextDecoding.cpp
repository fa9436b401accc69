#include "reading/TextDecoding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "host/CoreSupport/QUENRALocale.h"
#include "platform/CodePages.h"
#include "platform/OleText.h"

namespace TextFile {

namespace {

// The system counts in int; longer lines are converted in pieces of this many bytes.
constexpr std::size_t kPieceBytes = std::size_t{1} << 30;

// Widens `bytes` up to the first byte above 127 and answers how many there are. `text` has room
// for all of them.
std::size_t WidenAscii(std::string_view bytes, char16_t* text) noexcept {
  constexpr std::size_t kStep = 16;
  const char* source = bytes.data();
  const std::size_t size = bytes.size();
  std::size_t i = 0;
  for (; i + kStep <= size; i += kStep) {
    std::uint64_t words[2];
    std::memcpy(words, source + i, kStep);
    if (((words[0] | words[1]) & 0x8080808080808080u) != 0) break;
    for (std::size_t k = 0; k < kStep; ++k) text[i + k] = static_cast<unsigned char>(source[i + k]);
  }
  for (; i < size && static_cast<unsigned char>(source[i]) < 0x80; ++i)
    text[i] = static_cast<unsigned char>(source[i]);
  return i;
}

// The length of the piece at the start of `bytes` that ends between two UTF-8 sequences.
std::size_t PieceLength(std::string_view bytes) noexcept {
  if (bytes.size() <= kPieceBytes) return bytes.size();
  std::size_t length = kPieceBytes;
  // No sequence has more than three continuation bytes.
  for (int i = 0; i < 3 && (static_cast<unsigned char>(bytes[length]) & 0xC0) == 0x80; ++i)
    --length;
  return length;
}

// Converts `bytes` behind the `done` units that `line` already holds; `line` has a unit of room
// for each byte. False when the system refuses.
bool ConvertRest(UINT codePage, DWORD flags, std::string_view bytes, std::size_t done,
                 std::u16string& line) {
  while (!bytes.empty()) {
    const std::size_t length = PieceLength(bytes);
    const int room = static_cast<int>(std::min(line.size() - done, kPieceBytes));
    const int units = ::MultiByteToWideChar(codePage, flags, bytes.data(), static_cast<int>(length),
                                            AsOle(line.data() + done), room);
    if (units <= 0) return false;
    done += static_cast<std::size_t>(units);
    bytes.remove_prefix(length);
  }
  line.resize(done);
  return true;
}

bool DecodeUtf8With(DWORD flags, std::string_view bytes, std::u16string& line) {
  line.resize(bytes.size());
  const std::size_t ascii = WidenAscii(bytes, line.data());
  return ConvertRest(CP_UTF8, flags, bytes.substr(ascii), ascii, line);
}

}  // namespace

void DecodeUtf8(std::string_view bytes, std::u16string& line) {
  if (!DecodeUtf8With(0, bytes, line)) line.clear();
}

bool DecodeStrictUtf8(std::string_view bytes, std::u16string& line) {
  return DecodeUtf8With(MB_ERR_INVALID_CHARS, bytes, line);
}

void DecodeAnsi(std::string_view bytes, std::u16string& line) {
  line.resize(bytes.size());
  if (WidenAscii(bytes, line.data()) == bytes.size()) return;
  // No ANSI code page makes more units than bytes, but a code page of another kind may.
  const UINT codePage = quenra::QUENRALocale::GetAnsiCodePage();
  if (ConvertRest(codePage, 0, bytes, 0, line)) return;
  line.resize(4 * bytes.size());
  if (!ConvertRest(codePage, 0, bytes, 0, line)) line.assign(bytes.size(), u'\uFFFD');
}

void DecodeUtf16LE(std::string_view bytes, std::u16string& line) {
  line.resize(bytes.size() / 2);
  for (std::size_t i = 0; i < line.size(); ++i) {
    const auto low = static_cast<unsigned char>(bytes[2 * i]);
    const auto high = static_cast<unsigned char>(bytes[2 * i + 1]);
    line[i] = static_cast<char16_t>(low | high << 8);
  }
}

}  // namespace TextFile
