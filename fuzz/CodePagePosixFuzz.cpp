// Converts arbitrary bytes of arbitrary code pages to UTF-16 and back. The first character chooses
// the code page, and whether ill-formed bytes are refused.
//
// Holds: asking for the size gives the size; a buffer that is one too small is refused and not
// overrun; what was decoded and can be encoded decodes the same again; UTF-8 that is well-formed
// comes back byte for byte; a line stream's ways of decoding give what the system gives.

#include <iterator>
#include <optional>
#include <string>

#include "FuzzInput.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "platform/CodePages.h"
#include "platform/OleText.h"
#include "reading/TextDecoding.h"

namespace {

using Fuzz::Check;
using TextFile::UnitBuffer;

constexpr UINT kCodePages[] = {65001, 1252, 932,  936,  949,  950, 1250, 1251, 1253,
                               1254,  1255, 1256, 1257, 1258, 874, 437,  850,  866};

// Null when it cannot be decoded.
std::optional<std::u16string> Decoded(UINT codePage, DWORD flags, std::string_view bytes) {
  const int length = static_cast<int>(bytes.size());
  const int size = ::MultiByteToWideChar(codePage, flags, bytes.data(), length, nullptr, 0);
  if (size == 0) return std::nullopt;
  constexpr char16_t kGuard = 0xABCD;
  std::u16string text(static_cast<std::size_t>(size) + 1, kGuard);
  Check(::MultiByteToWideChar(codePage, flags, bytes.data(), length, AsOle(text.data()), size) ==
        size);
  Check(text.back() == kGuard);
  text.pop_back();
  if (size > 1) {
    std::u16string small(static_cast<std::size_t>(size), kGuard);
    Check(::MultiByteToWideChar(codePage, flags, bytes.data(), length, AsOle(small.data()),
                                size - 1) == 0);
    Check(small.back() == kGuard);
  }
  return text;
}

// Null when there is a character that the code page does not have.
std::optional<std::string> Encoded(UINT codePage, std::u16string_view text) {
  const bool isUtf8 = codePage == CP_UTF8;
  const DWORD flags = isUtf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
  const int length = static_cast<int>(text.size());
  BOOL usedDefault = FALSE;
  BOOL* const used = isUtf8 ? nullptr : &usedDefault;
  const int size =
      ::WideCharToMultiByte(codePage, flags, AsOle(text.data()), length, nullptr, 0, nullptr, used);
  if (size == 0) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(size), '\0');
  Check(::WideCharToMultiByte(codePage, flags, AsOle(text.data()), length, bytes.data(), size,
                              nullptr, used) == size);
  return usedDefault ? std::nullopt : std::optional(bytes);
}

// The line stream's ways of decoding. They take a line without zeros.
void CheckLine(std::string_view bytes) {
  if (bytes.find('\0') != std::string_view::npos) return;
  UnitBuffer line;
  const auto loose = bytes.empty() ? std::u16string() : Decoded(CP_UTF8, 0, bytes).value();
  TextFile::DecodeUtf8(bytes, line);
  Check(line.View() == loose);
  const auto strict = bytes.empty() ? std::optional(std::u16string())
                                    : Decoded(CP_UTF8, MB_ERR_INVALID_CHARS, bytes);
  Check(TextFile::DecodeStrictUtf8(bytes, line) == strict.has_value());
  if (strict.has_value()) Check(line.View() == *strict);
  const auto ansi = bytes.empty()
                        ? std::u16string()
                        : Decoded(quenra::QUENRALocale::GetAnsiCodePage(), 0, bytes).value();
  TextFile::DecodeAnsi(bytes, line);
  Check(line.View() == ansi);
  // A line as it stands in a block, with more behind it.
  const std::string block = std::string(bytes) + "\n" + std::string(64, 'x');
  UnitBuffer widened;
  widened.Overwrite(bytes.size() + 64);
  const std::size_t length = TextFile::WidenLine(block, true, widened);
  if (length == TextFile::kNoPlainLine) return;
  const std::string_view first = bytes.substr(0, bytes.find('\n'));
  Check(length == first.size());
  Check(widened.View() ==
        (first.empty() ? std::u16string() : Decoded(CP_UTF8, MB_ERR_INVALID_CHARS, first).value()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::FuzzInput input(data, size);
  const unsigned switches = input.TakeSwitches();
  const UINT codePage = kCodePages[(switches & 0x1F) % std::size(kCodePages)];
  const DWORD flags = (switches & 0x20) != 0 ? MB_ERR_INVALID_CHARS : 0;
  const std::string_view bytes = input.Rest();
  Check(quenra::QUENRALocale::SetAnsiCodePage(codePage));
  CheckLine(bytes);
  if (bytes.empty()) return 0;

  const auto text = Decoded(codePage, flags, bytes);
  Check(text.has_value() || flags != 0);
  if (!text.has_value()) return 0;
  const auto encoded = Encoded(codePage, *text);
  if (!encoded.has_value()) return 0;
  Check(Decoded(codePage, 0, *encoded) == text);
  if (codePage == CP_UTF8 && flags != 0) Check(*encoded == bytes);
  return 0;
}
