#include "schema/RowWriter.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <locale>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/DatetimeHelper.h"
#include "host/CoreSupport/Variant.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "inference/NumberFormatting.h"
#include "platform/FileNames.h"
#include "platform/LocaleInfo.h"
#include "platform/OleText.h"
#include "reading/TextDecoding.h"
#include "reading/TextLineStream.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

namespace fs = boost::filesystem;

// Rows are handed to the system in pieces of about this many bytes.
constexpr std::size_t kBufferBytes = 64 * 1024;

#ifdef _WIN32
constexpr std::string_view kLineEnd = "\r\n";
#else
constexpr std::string_view kLineEnd = "\n";
#endif

// Seconds and the offset are always written: without them a timestamp could not be told from a
// date, or not be read back.
constexpr std::u16string_view kTimestampPattern = u"yyyy-MM-ddTHH:mm:ss";

std::string Utf8Of(char16_t unit) {
  std::string bytes;
  if (unit != 0) AppendUtf8(std::u16string_view(&unit, 1), bytes);
  return bytes;
}

bool IsNull(const VARIANT& value) noexcept { return value.vt == VT_NULL || value.vt == VT_EMPTY; }

// The value as another variant type, by the rules of OLE with no locale's habits.
bool ChangeType(const VARIANT& value, VARTYPE type, quenra::Variant& changed) {
  return SUCCEEDED(::VariantChangeTypeEx(changed.Receive(), &value, LOCALE_INVARIANT, 0, type));
}

VARTYPE VariantTypeOf(FieldType type) noexcept {
  switch (type) {
    case FieldType::kSmallInteger:
      return VT_I2;
    case FieldType::kInteger:
    case FieldType::kObjectId:
      return VT_I4;
    case FieldType::kBigInteger:
      return VT_I8;
    case FieldType::kSingle:
      return VT_R4;
    case FieldType::kDouble:
      return VT_R8;
    default:
      return VT_BSTR;
  }
}

NumberValue NumberOf(const VARIANT& value) noexcept {
  NumberValue number;
  switch (value.vt) {
    case VT_I2:
      number.integer = value.iVal;
      break;
    case VT_I4:
      number.integer = value.lVal;
      break;
    case VT_I8:
      number.integer = value.llVal;
      break;
    case VT_R4:
      number.single = value.fltVal;
      break;
    default:
      number.real = value.dblVal;
      break;
  }
  return number;
}

// The first `length` units, without the first half of a surrogate pair at the end.
std::u16string_view CutTo(std::u16string_view text, std::size_t length) noexcept {
  if (text.size() <= length) return text;
  if (length > 0 && text[length - 1] >= 0xD800 && text[length - 1] < 0xDC00 &&
      text[length] >= 0xDC00 && text[length] < 0xE000)
    --length;
  return text.substr(0, length);
}

std::size_t Utf16Length(std::string_view utf8) noexcept {
  std::size_t units = 0;
  for (const char c : utf8) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) units += byte >= 0xF0 ? 2 : 1;
  }
  return units;
}

}  // namespace

RowWriter::RowWriter(const TextDatasetDescription& table)
    : path_(table.path),
      tableName_(table.name),
      options_(table.options),
      delimiter_(Utf8Of(table.options.delimiter)),
      textDelimiter_(Utf8Of(table.options.textDelimiter)),
      lineEnd_(table.options.recordTerminator == '\r' ? std::string_view("\r") : kLineEnd) {
  for (const FieldDefinition& field : table.fields) {
    Column column;
    column.name = field.name;
    column.type = field.type;
    column.width = static_cast<std::size_t>(std::max(field.width, 0));
    column.isVirtual = field.isCoordinate;
    column.hasOwnPattern = !field.dateFormat.pattern.empty();
    column.pattern =
        DatePattern(WritingPattern(field.dateFormat, field.type, options_.dateTimeFormat));
    columns_.push_back(std::move(column));
  }
  singleColumn_ = std::count_if(columns_.begin(), columns_.end(),
                                [](const Column& column) { return !column.isVirtual; }) == 1;
}

RowWriter::~RowWriter() {
  if (file_.is_open()) Close();
}

bool RowWriter::Fail(std::u16string_view reason) {
  failure_ = path_ + u": " + std::u16string(reason);
  return false;
}

bool RowWriter::Open() {
  // What the file is encoded in decides how rows are added to it.
  TextLineStream stream;
  if (!stream.Open(path_, TextLineStream::kPlainLines)) return Fail(u"the file cannot be read");
  switch (stream.encoding()) {
    case TextEncoding::kUtf16BE:
    case TextEncoding::kUtf32LE:
    case TextEncoding::kUtf32BE:
      return Fail(u"rows cannot be added to a file in this encoding");
    case TextEncoding::kUtf16LE:
      encoding_ = Encoding::kUtf16LE;
      break;
    default:
      encoding_ = Encoding::kUtf8;
      break;
  }
  file_.pubimbue(std::locale::classic());
  file_.pubsetbuf(nullptr, 0);
  const fs::path native(NativeFromFileName(path_));
  if (file_.open(native.c_str(), std::ios::out | std::ios::app | std::ios::binary) == nullptr)
    return Fail(u"the file cannot be written");
  EndLastLine();
  return true;
}

// Rows must not run into a last line that has no end.
void RowWriter::EndLastLine() {
  const fs::path native(NativeFromFileName(path_));
  std::filebuf reader;
  reader.open(native.c_str(), std::ios::in | std::ios::binary);
  constexpr std::streamoff kUnit[] = {1, 2};
  const std::streamoff unit = kUnit[encoding_ == Encoding::kUtf16LE ? 1 : 0];
  const std::streamoff size = reader.pubseekoff(0, std::ios::end, std::ios::in);
  // A byte-order mark alone has no line either.
  const std::streamoff mark = encoding_ == Encoding::kUtf16LE ? 2 : 3;
  if (size <= 0) return;
  std::string head(static_cast<std::size_t>(std::min(size, mark)), '\0');
  reader.pubseekoff(0, std::ios::beg, std::ios::in);
  reader.sgetn(head.data(), static_cast<std::streamsize>(head.size()));
  if (size == mark && (encoding_ == Encoding::kUtf16LE || head == "\xEF\xBB\xBF")) return;
  if (size < unit) return;
  reader.pubseekoff(size - unit, std::ios::beg, std::ios::in);
  const int last = reader.sbumpc();
  if (last != '\n' && last != '\r') buffer_ += lineEnd_;
}

bool RowWriter::Write(std::span<const VARIANT> values) {
  bool first = true;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].isVirtual) continue;
    if (!first && !options_.fixedLength) buffer_ += delimiter_;
    first = false;
    static const VARIANT kMissing{};
    AppendValue(columns_[i], i < values.size() ? values[i] : kMissing);
  }
  buffer_ += lineEnd_;
  return buffer_.size() < kBufferBytes || Flush();
}

bool RowWriter::Flush() {
  if (buffer_.empty()) return true;
  const fs::path native(NativeFromFileName(path_));
  boost::system::error_code error;
  const std::uintmax_t before = fs::file_size(native, error);
  std::string encoded;
  if (encoding_ == Encoding::kUtf16LE) {
    std::u16string text;
    DecodeUtf8(buffer_, text);
    for (const char16_t unit : text) {
      encoded += static_cast<char>(unit & 0xFF);
      encoded += static_cast<char>(unit >> 8);
    }
  }
  const std::string& bytes = encoding_ == Encoding::kUtf16LE ? encoded : buffer_;
  const auto size = static_cast<std::streamsize>(bytes.size());
  const bool written = file_.sputn(bytes.data(), size) == size && file_.pubsync() == 0;
  buffer_.clear();
  if (written) return true;
  // Part of a row may have reached the file.
  if (!error) fs::resize_file(native, before, error);
  return Fail(u"the rows could not be written");
}

bool RowWriter::Close() {
  const bool flushed = Flush();
  const bool closed = file_.close() != nullptr;
  if (flushed && !closed) return Fail(u"the rows could not be written");
  return flushed;
}

// ---------------------------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------------------------

void RowWriter::AppendValue(const Column& column, const VARIANT& value) {
  value_.clear();
  leadingQuote_ = false;
  if (!IsNull(value) && !FormatValue(column, value)) {
    value_.clear();
    quenra::EventLog::Write(u"In file " + tableName_ + u", a value of field " + column.name +
                            u" cannot be written as the field's type. It is left blank.");
  }
  if (options_.fixedLength)
    AppendPadded(column);
  else
    AppendDelimited();
}

bool RowWriter::FormatValue(const Column& column, const VARIANT& value) {
  if ((value.vt & VT_BYREF) != 0) {
    quenra::Variant direct;
    return SUCCEEDED(::VariantCopyInd(direct.Receive(), &value)) &&
           (IsNull(direct.Get()) || FormatValue(column, direct.Get()));
  }
  switch (column.type) {
    case FieldType::kString:
    case FieldType::kGuid:
    case FieldType::kGlobalId:
      return FormatText(column, value);
    case FieldType::kDate:
    case FieldType::kDateOnly:
    case FieldType::kTimeOnly:
    case FieldType::kTimestampOffset:
      return FormatDate(column, value);
    default:
      return FormatNumber(column, value);
  }
}

bool RowWriter::FormatNumber(const Column& column, const VARIANT& value) {
  const VARTYPE wanted = VariantTypeOf(column.type);
  quenra::Variant changed;
  if (value.vt != wanted && !ChangeType(value, wanted, changed)) return false;
  const NumberValue number = NumberOf(value.vt == wanted ? value : changed.Get());
  if (!options_.fixedLength) {
    NumberFormat::AppendNumber(options_.number, column.type, number, value_);
    return true;
  }
  return NumberFormat::AppendNumberWithin(options_.number, column.type, number, column.width,
                                          value_);
}

bool RowWriter::FormatText(const Column& column, const VARIANT& value) {
  quenra::Variant changed;
  if (value.vt != VT_BSTR && !ChangeType(value, VT_BSTR, changed)) return false;
  const std::u16string_view text =
      CutTo(ViewOf(value.vt == VT_BSTR ? value.bstrVal : changed.Get().bstrVal), column.width);
  const char16_t quote = options_.fixedLength ? u'\0' : options_.textDelimiter;
  std::u16string kept;
  kept.reserve(text.size());
  for (const char16_t unit : text) {
    const char16_t written = Writable(unit);
    if (written != 0) kept += written;
    if (quote != 0 && written == quote) kept += quote;
  }
  AppendUtf8(kept, value_);
  const auto first = std::find_if_not(text.begin(), text.end(), quenra::IsWhiteSpace);
  leadingQuote_ = quote != 0 && first != text.end() && *first == quote;
  return true;
}

// What stands for a character in the file; 0 for nothing. A zero would end the line's text and a
// byte 1A the file's when they are read. Where nothing can be quoted, characters that would end the
// value become blanks.
char16_t RowWriter::Writable(char16_t unit) const noexcept {
  if (unit == 0 || unit == 0x1A) return u'\0';
  const bool quoting = !options_.fixedLength && options_.textDelimiter != 0;
  const bool ends =
      unit == u'\r' || unit == u'\n' || (!options_.fixedLength && unit == options_.delimiter);
  return ends && !quoting ? u' ' : unit;
}

bool RowWriter::FormatDate(const Column& column, const VARIANT& value) {
  const bool keepsOffset = column.type == FieldType::kTimestampOffset ||
                           (column.type == FieldType::kDate && !column.hasOwnPattern);
  if (value.vt == VT_UNKNOWN && keepsOffset && FormatTimestamp(value.punkVal)) return true;

  quenra::Variant changed;
  DATE date = 0;
  if (value.vt == VT_DATE) {
    date = value.date;
  } else if (value.vt == VT_UNKNOWN) {
    quenra::ComPtr<quenra::HostTimestampOffset> timestamp;
    if (value.punkVal == nullptr ||
        FAILED(value.punkVal->QueryInterface(quenra::kInterfaceId<quenra::HostTimestampOffset>,
                                             reinterpret_cast<void**>(timestamp.Receive()))) ||
        FAILED(timestamp->GetDate(&date)))
      return false;
  } else {
    if (!ChangeType(value, VT_DATE, changed)) return false;
    date = changed.Get().date;
  }
  SYSTEMTIME time{};
  if (!quenra::DatetimeHelper::FromOADate(date, time)) return false;
  column.pattern.Append(time, value_);
  if (column.type == FieldType::kTimestampOffset) AppendOffset(0, value_);
  return true;
}

// A date and time with its offset, in the one form that is read back as such.
bool RowWriter::FormatTimestamp(IUnknown* object) {
  quenra::ComPtr<quenra::HostTimestampOffset> timestamp;
  DATE date = 0;
  SHORT offset = 0;
  SYSTEMTIME time{};
  if (object == nullptr ||
      FAILED(object->QueryInterface(quenra::kInterfaceId<quenra::HostTimestampOffset>,
                                    reinterpret_cast<void**>(timestamp.Receive()))) ||
      FAILED(timestamp->GetDate(&date)) || FAILED(timestamp->GetOffsetMinutes(&offset)) ||
      !quenra::DatetimeHelper::FromOADate(date, time))
    return false;
  static const DatePattern pattern(kTimestampPattern);
  pattern.Append(time, value_);
  AppendOffset(offset, value_);
  return true;
}

bool RowWriter::NeedsQuotes() const noexcept {
  return leadingQuote_ || value_.find_first_of("\r\n") != std::string::npos ||
         value_.find(delimiter_) != std::string::npos;
}

void RowWriter::AppendDelimited() {
  if (value_.empty()) {
    // A blank line would be no row.
    if (singleColumn_) buffer_ += ' ';
    return;
  }
  const bool quotes = !textDelimiter_.empty() && NeedsQuotes();
  if (quotes) buffer_ += textDelimiter_;
  buffer_ += value_;
  if (quotes) buffer_ += textDelimiter_;
}

void RowWriter::AppendPadded(const Column& column) {
  const std::size_t units = Utf16Length(value_);
  if (units < column.width) buffer_.append(column.width - units, ' ');
  buffer_ += value_;
}

}  // namespace TextFile
