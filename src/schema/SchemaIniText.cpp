#include "schema/SchemaIniText.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <sstream>
#include <utility>

#include "host/CoreSupport/QUENRALocale.h"
#include "platform/CodePages.h"
#include "platform/OleText.h"
#include "reading/TextDecoding.h"
#include "reading/UnitBuffer.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kWideCarriageReturn = "\r\0"sv;
constexpr std::string_view kWideLineFeed = "\n\0"sv;
constexpr std::string_view kWideBracket = "[\0"sv;
constexpr char kTextEnd = 0x1A;

TextEncoding EncodingOf(std::string_view bytes) {
  constexpr std::size_t kLongestMark = 4;
  TextLineStream probe;
  probe.Open(std::make_unique<std::stringbuf>(std::string(bytes.substr(0, kLongestMark))),
             TextLineStream::kPlainLines);
  return probe.encoding();
}

std::string Utf16Of(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(2 * text.size());
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

// Appends `text` in the ANSI code page. False for characters that the page lacks.
bool AppendAnsi(std::u16string_view text, std::string& bytes) {
  if (text.empty()) return true;
  if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()) / 8) return false;
  const UINT codePage = quenra::QUENRALocale::GetAnsiCodePage();
  const int units = static_cast<int>(text.size());
  const bool isUtf8 = codePage == CP_UTF8;
  BOOL lacked = FALSE;
  const auto convert = [&](char* target, int size) {
    return ::WideCharToMultiByte(codePage, isUtf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS,
                                 AsOle(text.data()), units, target, size, nullptr,
                                 isUtf8 ? nullptr : &lacked);
  };
  const int size = convert(nullptr, 0);
  if (size <= 0) return false;
  const std::size_t start = bytes.size();
  bytes.resize(start + static_cast<std::size_t>(size));
  return convert(bytes.data() + start, size) == size && lacked == FALSE;
}

// What is behind the end of the text: old editors fill their last block with such bytes.
bool IsFilling(std::string_view tail) noexcept {
  constexpr std::string_view kFilling = "\x1A\0\r\n "sv;
  return tail.find_first_not_of(kFilling) == std::string_view::npos;
}

std::u16string InnerHeaderOf(std::u16string_view line) {
  const std::size_t bracket = line.find(u'[');
  return bracket == std::u16string_view::npos ? std::u16string()
                                              : std::u16string(line.substr(bracket));
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Sections
// ---------------------------------------------------------------------------------------------

void SchemaIniSection::Append(std::u16string_view line) {
  while (!line.empty()) {
    const std::size_t end = std::min(line.find(u'\n'), line.size());
    const std::u16string_view piece = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    if (!piece.empty()) Append(std::u16string(piece), {std::nullopt, InnerHeaderOf(piece)});
  }
}

void SchemaIniSection::Append(std::u16string line, SchemaIniSource source) {
  lines.push_back(std::move(line));
  sources.push_back(std::move(source));
}

// ---------------------------------------------------------------------------------------------
// From bytes
// ---------------------------------------------------------------------------------------------

// Decodes lines as the reader of sections does. In a text without a mark it decides line by line,
// and its way to a section leads over the header lines alone: a line of another section that is no
// UTF-8 does not decide how the section is read.
class SchemaIniText::Decoder {
 public:
  explicit Decoder(TextEncoding encoding) : encoding_(encoding) {}

  bool IsHeaderLine(std::string_view bytes) const noexcept {
    return bytes.starts_with(IsWide() ? kWideBracket : kWideBracket.substr(0, 1));
  }

  std::u16string TakeHeader(std::string_view bytes) {
    std::u16string text = Decode(bytes, ansiInHeaders_);
    ansiInLines_ = ansiInHeaders_;
    return text;
  }

  std::u16string TakeLine(std::string_view bytes, std::u16string& innerHeader) {
    const std::size_t bracket = BracketIn(bytes);
    if (bracket != std::string_view::npos)
      innerHeader = Decode(bytes.substr(bracket), ansiInHeaders_);
    return Decode(bytes, ansiInLines_);
  }

  // Whether the next such line is read as ANSI text whatever its bytes are.
  bool IsAnsi(bool header) const noexcept { return header ? ansiInHeaders_ : ansiInLines_; }

  bool hasUtf8() const noexcept { return hasUtf8_; }
  bool hasAnsi() const noexcept { return hasAnsi_; }

 private:
  bool IsWide() const noexcept { return encoding_ == TextEncoding::kUtf16LE; }

  std::size_t BracketIn(std::string_view bytes) const noexcept {
    if (!IsWide()) return bytes.find('[');
    for (std::size_t at = bytes.find(kWideBracket); at != std::string_view::npos;
         at = bytes.find(kWideBracket, at + 1))
      if (at % 2 == 0) return at;
    return std::string_view::npos;
  }

  std::u16string Decode(std::string_view bytes, bool& ansi) {
    if (IsWide()) {
      DecodeUtf16LE(bytes, units_);
      std::u16string_view text = units_.View();
      if (text.ends_with(u'\r')) text.remove_suffix(1);
      if (text.ends_with(u'\0')) text.remove_suffix(1);
      return std::u16string(text);
    }
    bytes = bytes.substr(0, bytes.find('\0'));
    if (encoding_ == TextEncoding::kUtf8) {
      DecodeUtf8(bytes, units_);
    } else if (!ansi && DecodeStrictUtf8(bytes, units_)) {
      hasUtf8_ |= units_.size() != bytes.size();
    } else {
      ansi = hasAnsi_ = true;
      DecodeAnsi(bytes, units_);
    }
    return std::u16string(units_.View());
  }

  TextEncoding encoding_;
  bool ansiInHeaders_ = false;
  bool ansiInLines_ = false;
  bool hasUtf8_ = false;
  bool hasAnsi_ = false;
  UnitBuffer units_;
};

SchemaIniText::RawLine SchemaIniText::TakeLine(std::string_view& bytes) const {
  if (encoding_ == TextEncoding::kUtf16LE) return TakeUtf16Line(bytes);
  const std::size_t end = bytes.find('\n');
  const bool last = end == std::string_view::npos;
  std::string_view line = bytes.substr(0, end);
  bytes.remove_prefix(last ? bytes.size() : end + 1);
  // A carriage return that no line feed follows is part of the line.
  if (!last && line.ends_with('\r')) line.remove_suffix(1);
  return {line, last};
}

// A byte 0A ends the line where a zero byte or nothing follows, as in the line reader.
SchemaIniText::RawLine SchemaIniText::TakeUtf16Line(std::string_view& bytes) {
  std::size_t end = bytes.find('\n');
  while (end != std::string_view::npos && end + 1 < bytes.size() && bytes[end + 1] != '\0')
    end = bytes.find('\n', end + 1);
  const std::string_view line = bytes.substr(0, end);
  bytes.remove_prefix(std::min(end == std::string_view::npos ? end : end + 2, bytes.size()));
  return {line, bytes.empty()};
}

// In UTF-16 the carriage return of a line end is still there.
std::string_view SchemaIniText::WithoutLineEnd(std::string_view line) const {
  const bool ends = encoding_ == TextEncoding::kUtf16LE && line.size() % 2 == 0 &&
                    line.ends_with(kWideCarriageReturn);
  return ends ? line.substr(0, line.size() - kWideCarriageReturn.size()) : line;
}

bool SchemaIniText::Parse(std::string_view bytes) {
  *this = SchemaIniText();
  encoding_ = EncodingOf(bytes);
  switch (encoding_) {
    case TextEncoding::kUndetermined:
      break;
    case TextEncoding::kUtf8:
      bytes.remove_prefix(kUtf8Mark.size());
      break;
    case TextEncoding::kUtf16LE:
      bytes.remove_prefix(kUtf16Mark.size());
      break;
    default:
      return false;
  }
  if (encoding_ != TextEncoding::kUtf16LE) {
    const std::size_t end = std::min(bytes.find(kTextEnd), bytes.size());
    tail_ = bytes.substr(end);
    bytes = bytes.substr(0, end);
  }
  Decoder decoder(encoding_);
  while (!bytes.empty()) {
    const RawLine line = TakeLine(bytes);
    // Behind half a character the reader of sections finds no header any more.
    if (encoding_ == TextEncoding::kUtf16LE && !line.last && line.bytes.size() % 2 != 0)
      return false;
    const std::string_view kept = WithoutLineEnd(line.bytes);
    if (kept.empty()) continue;
    SchemaIniSource source{std::string(kept), {}};
    if (decoder.IsHeaderLine(line.bytes)) {
      std::u16string header = decoder.TakeHeader(line.bytes);
      sections.push_back({std::move(header), std::move(source), {}, {}});
    } else {
      std::u16string text = decoder.TakeLine(line.bytes, source.innerHeader);
      sections.back().Append(std::move(text), std::move(source));
    }
  }
  hasUtf8_ = decoder.hasUtf8();
  hasAnsi_ = decoder.hasAnsi();
  return true;
}

// ---------------------------------------------------------------------------------------------
// To bytes
// ---------------------------------------------------------------------------------------------

bool SchemaIniText::Encode(std::u16string_view text, bool ansi, std::string& bytes) const {
  if (!IsWellFormedText(text)) return false;
  if (encoding_ == TextEncoding::kUtf16LE) {
    bytes = Utf16Of(text);
    return true;
  }
  bytes.clear();
  if (ansi) return AppendAnsi(text, bytes);
  AppendUtf8(text, bytes);
  return true;
}

// Appends a line, in the encoding of the file if it is a new one. A file that is both UTF-8 and
// ANSI gets what the reader will take the line for where it stands.
bool SchemaIniText::AppendLine(std::u16string_view text, const SchemaIniSource& source,
                               bool isHeader, Decoder& decoder, std::string& bytes) const {
  std::string line;
  if (source.bytes.has_value())
    line = *source.bytes;
  else if (!Encode(text, hasAnsi_ && (!hasUtf8_ || decoder.IsAnsi(isHeader)), line))
    return false;
  std::u16string ignored;
  if (isHeader)
    decoder.TakeHeader(line);
  else
    decoder.TakeLine(line, ignored);
  bytes += line;
  // A carriage return at the line's own end is only kept in front of another one.
  if (encoding_ == TextEncoding::kUtf16LE) {
    if (line.size() % 2 == 0 && line.ends_with(kWideCarriageReturn)) bytes += kWideCarriageReturn;
    bytes += kWideLineFeed;
  } else {
    bytes += line.ends_with('\r') ? "\r\n" : "\n";
  }
  return true;
}

bool SchemaIniText::Compose(std::string& bytes) const {
  // Behind the end of the text nothing new would be read, and what is there is not known.
  if (!IsFilling(tail_)) return false;
  bytes.clear();
  Decoder decoder(encoding_);
  for (const SchemaIniSection& section : sections) {
    if (!section.header.empty() &&
        !AppendLine(section.header, section.headerSource, true, decoder, bytes))
      return false;
    for (std::size_t i = 0; i < section.lines.size(); ++i)
      if (!AppendLine(section.lines[i], section.sources[i], false, decoder, bytes)) return false;
  }
  bytes += tail_;
  if (encoding_ == TextEncoding::kUtf8) {
    bytes.insert(0, kUtf8Mark);
  } else if (encoding_ == TextEncoding::kUtf16LE) {
    // Before a zero byte, or alone, the mark would be taken for that of UTF-32.
    if (bytes.empty() || bytes.front() == '\0')
      bytes.insert(0, std::string(kWideCarriageReturn) + std::string(kWideLineFeed));
    bytes.insert(0, kUtf16Mark);
  }
  SchemaIniText read;
  return read.Parse(bytes) && read.ReadsAs(*this);
}

// Whether all lines have the same texts.
bool SchemaIniText::ReadsAs(const SchemaIniText& other) const {
  const auto isSameSource = [](const SchemaIniSource& read, const SchemaIniSource& asked) {
    return read.innerHeader == asked.innerHeader;
  };
  const auto isSame = [&](const SchemaIniSection& read, const SchemaIniSection& asked) {
    return read.header == asked.header && read.lines == asked.lines &&
           std::equal(read.sources.begin(), read.sources.end(), asked.sources.begin(),
                      asked.sources.end(), isSameSource);
  };
  return encoding_ == other.encoding_ &&
         std::equal(sections.begin(), sections.end(), other.sections.begin(), other.sections.end(),
                    isSame);
}

bool SchemaIniText::TellsAll(std::u16string_view text, const SchemaIniSource& source) const {
  if (!source.bytes.has_value()) return true;
  std::string encoded;
  if (Encode(text, false, encoded) && encoded == *source.bytes) return true;
  return encoding_ == TextEncoding::kUndetermined && Encode(text, true, encoded) &&
         encoded == *source.bytes;
}

}  // namespace TextFile
