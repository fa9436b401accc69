#include "support/PlainTextLines.h"

#include <array>
#include <cstdint>

namespace {

using TextFile::TextEncoding;

std::string TranslateTextMode(std::string_view bytes) {
  std::string translated;
  for (std::size_t i = 0; i < bytes.size() && bytes[i] != '\x1A'; ++i) {
    const bool pair = bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n';
    if (!pair) translated += bytes[i];
  }
  return translated;
}

// How many bytes a well-formed sequence has that begins with `lead`, and which second bytes it
// allows; none for bytes that begin no sequence.
struct Sequence {
  int length;
  int second_from;
  int second_to;
};

Sequence SequenceOf(int lead) {
  if (lead <= 0x7F) return {1, 0, 0};
  if (lead >= 0xC2 && lead <= 0xDF) return {2, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0xA0, 0xBF};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0x90, 0xBF};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, 0x80, 0xBF};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

void AppendCodePoint(std::uint32_t code, std::u16string& text) {
  if (code < 0x10000) {
    text += static_cast<char16_t>(code);
    return;
  }
  text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
  text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
}

// Answers whether the bytes were well formed. Each longest beginning of a sequence that goes no
// further, and each byte that begins none, becomes one U+FFFD.
bool DecodeUtf8(std::string_view bytes, std::u16string& text) {
  bool wellFormed = true;
  for (std::size_t i = 0; i < bytes.size();) {
    const int lead = static_cast<unsigned char>(bytes[i]);
    const Sequence sequence = SequenceOf(lead);
    auto code = static_cast<std::uint32_t>(
        sequence.length <= 1 ? lead : lead & (0xFF >> (sequence.length + 1)));
    int taken = 1;
    for (; taken < sequence.length && i + static_cast<std::size_t>(taken) < bytes.size(); ++taken) {
      const int next = static_cast<unsigned char>(bytes[i + static_cast<std::size_t>(taken)]);
      const int from = taken == 1 ? sequence.second_from : 0x80;
      const int to = taken == 1 ? sequence.second_to : 0xBF;
      if (next < from || next > to) break;
      code = code << 6 | static_cast<std::uint32_t>(next & 0x3F);
    }
    i += static_cast<std::size_t>(taken);
    if (taken == sequence.length) {
      AppendCodePoint(code, text);
    } else {
      text += u'\uFFFD';
      wellFormed = false;
    }
  }
  return wellFormed;
}

// Code page 1252 as Windows decodes it.
void DecodeAnsi(std::string_view bytes, std::u16string& text) {
  static constexpr std::array<char16_t, 32> kFrom80 = {
      u'\u20AC', 0x81,      u'\u201A', u'\u0192', u'\u201E', u'\u2026', u'\u2020', u'\u2021',
      u'\u02C6', u'\u2030', u'\u0160', u'\u2039', u'\u0152', 0x8D,      u'\u017D', 0x8F,
      0x90,      u'\u2018', u'\u2019', u'\u201C', u'\u201D', u'\u2022', u'\u2013', u'\u2014',
      u'\u02DC', u'\u2122', u'\u0161', u'\u203A', u'\u0153', 0x9D,      u'\u017E', u'\u0178'};
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    text += code >= 0x80 && code < 0xA0 ? kFrom80[code - 0x80u] : char16_t{code};
  }
}

}  // namespace

PlainTextLines::PlainTextLines(std::string_view file, char delimiter) : delimiter_(delimiter) {
  const std::string_view probe = file.substr(0, 3);
  const std::string_view beforeLine = probe.substr(0, probe.find('\n'));
  std::size_t start = 0;
  if (beforeLine == "\xEF\xBB\xBF") {
    encoding_ = TextEncoding::kUtf8;
    start = 3;
  } else if (beforeLine.substr(0, 2) == "\xFE\xFF") {
    encoding_ = TextEncoding::kUtf16BE;
  } else if (beforeLine.substr(0, 2) == "\xFF\xFE") {
    const bool third = beforeLine.size() == 3 && beforeLine[2] != '\0';
    encoding_ = third ? TextEncoding::kUtf16LE : TextEncoding::kUtf32LE;
    start = 2;
  }
  data_ = file.substr(start);
  if (Is8Bit()) data_ = TranslateTextMode(data_);
  atEnd_ = !IsReadable() || data_.empty();
}

bool PlainTextLines::Is8Bit() const noexcept {
  return encoding_ == TextEncoding::kUndetermined || encoding_ == TextEncoding::kAnsi ||
         encoding_ == TextEncoding::kUtf8;
}

bool PlainTextLines::IsReadable() const noexcept {
  return Is8Bit() || encoding_ == TextEncoding::kUtf16LE;
}

bool PlainTextLines::ReadLine(std::u16string& line) {
  if (atEnd_ || next_ == data_.size()) {
    atEnd_ = true;
    if (encoding_ == TextEncoding::kUndetermined) encoding_ = TextEncoding::kUtf8;
    return false;
  }
  std::string bytes;
  if (encoding_ == TextEncoding::kUtf16LE)
    bytes = TakeUtf16Bytes();
  else
    TakeUpToDelimiter(bytes);
  Decode(bytes, line);
  return true;
}

bool PlainTextLines::TakeUpToDelimiter(std::string& bytes) {
  for (; next_ < data_.size(); ++next_) {
    if (data_[next_] == delimiter_) {
      ++next_;
      return true;
    }
    bytes += data_[next_];
  }
  atEnd_ = true;
  return false;
}

std::string PlainTextLines::TakeUtf16Bytes() {
  std::string bytes;
  bool found = TakeUpToDelimiter(bytes);
  while (found && next_ < data_.size() && data_[next_] != '\0') {
    bytes += '\n';
    found = TakeUpToDelimiter(bytes);
  }
  if (found && next_ < data_.size())
    ++next_;
  else
    atEnd_ = true;
  return bytes;
}

void PlainTextLines::Decode(const std::string& bytes, std::u16string& line) {
  line.clear();
  if (encoding_ == TextEncoding::kUtf16LE) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
      line += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                    static_cast<unsigned char>(bytes[i + 1]) << 8);
    if (!line.empty() && line.back() == u'\r') line.pop_back();
    if (line.empty() || line.back() != u'\0') line += u'\0';
    return;
  }
  const std::string text = bytes.substr(0, bytes.find('\0'));
  const bool wellFormed = DecodeUtf8(text, line);
  if (encoding_ == TextEncoding::kUndetermined && !wellFormed) encoding_ = TextEncoding::kAnsi;
  if (encoding_ == TextEncoding::kAnsi) {
    line.clear();
    DecodeAnsi(text, line);
  }
  line += u'\0';
}
