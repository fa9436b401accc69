#include "schema/RowWriter.h"

#include <algorithm>
#include <cstring>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/DatetimeHelper.h"
#include "host/CoreSupport/Variant.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "inference/DateRoundTrip.h"
#include "inference/Digits.h"
#include "inference/NumberFormatting.h"
#include "platform/FileNames.h"
#include "platform/LocaleInfo.h"
#include "platform/OleText.h"
#include "reading/TextDecoding.h"
#include "schema/SchemaIniPaths.h"
#include "schema/TableFailure.h"
#include "schema/TableMetadata.h"
#include "schema/TableNames.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

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
  // The call's parameter is not const, though it reads alone.
  VARIANT shallow = value;
  return SUCCEEDED(::VariantChangeTypeEx(changed.Receive(), &shallow, LOCALE_INVARIANT, 0, type));
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

// Of a VT_I2, VT_I4 or VT_I8.
std::int64_t IntegerOf(const VARIANT& value) noexcept {
  switch (value.vt) {
    case VT_I2:
      return value.iVal;
    case VT_I4:
      return value.lVal;
    default:
      return value.llVal;
  }
}

NumberValue NumberOf(const VARIANT& value) noexcept {
  NumberValue number;
  switch (value.vt) {
    case VT_R4:
      number.single = value.fltVal;
      break;
    case VT_R8:
      number.real = value.dblVal;
      break;
    default:
      number.integer = IntegerOf(value);
      break;
  }
  return number;
}

std::size_t Utf16Length(std::string_view utf8) noexcept {
  std::size_t units = 0;
  for (const char c : utf8) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) units += byte >= 0xF0 ? 2 : 1;
  }
  return units;
}

// The table's pattern. It gives way to the order of day, month and year in which the column's dates
// have been found to stand: what is added must read like the rest. A pattern of the section whose
// order cannot be told from its first letter stays.
std::u16string TablePatternFor(const FieldDefinition& field, const SchemaOptions& options) {
  const std::u16string& pattern = options.dateTimeFormat;
  const DateOrder order = OrderOfPattern(pattern);
  if (!IsDateType(field.type) || field.dateFormat.order == DateOrder::kAny ||
      field.dateFormat.order == order ||
      (order == DateOrder::kAny && options.IsSpecified(SchemaOptions::kDateTimeFormat)))
    return pattern;
  const std::u16string day = ReadablePattern(FieldType::kDateOnly, field.dateFormat.order);
  return day + u' ' + WritingPattern({}, FieldType::kTimeOnly, pattern);
}

// The pattern that a column of dates is written with. Of a locale's nobody has said that it is one
// that can be read.
std::u16string ColumnPattern(const FieldDefinition& field, const SchemaOptions& options) {
  std::u16string pattern =
      WritingPattern(field.dateFormat, field.type, TablePatternFor(field, options));
  const bool isLocales =
      field.dateFormat.pattern.empty() && !options.IsSpecified(SchemaOptions::kDateTimeFormat);
  if (!isLocales || ReadsBack(pattern, field.type, field.dateFormat.order)) return pattern;
  return ReadablePattern(field.type, field.dateFormat.order);
}

TextDatasetDescription WithoutFields(const TextDatasetDescription& table) {
  TextDatasetDescription bare;
  bare.name = table.name;
  bare.path = table.path;
  bare.options = table.options;
  bare.loaded = table.loaded;
  return bare;
}

}  // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
RowWriter::RowWriter(const TextDatasetDescription& table)
    : table_(WithoutFields(table)),
      options_(table.options),
      delimiter_(Utf8Of(table.options.delimiter)),
      textDelimiter_(Utf8Of(table.options.textDelimiter)),
      texts_(static_cast<char>(table.options.delimiter),
             static_cast<char>(table.options.textDelimiter)),
      lineEnd_(EndsLinesWithCr() ? std::string_view("\r") : kLineEnd) {
  // Their widths cut the records.
  if (options_.fixedLength) table_.fields = table.fields;
  for (std::size_t i = 0; i < table.fields.size(); ++i) {
    const FieldDefinition& field = table.fields[i];
    if (field.isCoordinate) continue;
    Column column;
    column.field = i;
    column.name = field.name;
    column.type = field.type;
    // A delimited column has no use for a width of nothing; schema.ini would not keep it either.
    const bool anyWidth = !options_.fixedLength && field.width < 1;
    column.width =
        static_cast<std::size_t>(anyWidth ? kDefaultTextWidth : std::max(field.width, 0));
    column.hasOwnPattern = !field.dateFormat.pattern.empty();
    if (IsDateType(field.type) || field.type == FieldType::kTimeOnly) {
      const std::u16string pattern = ColumnPattern(field, options_);
      column.pattern = DatePattern(pattern);
      if (options_.fixedLength && field.type == FieldType::kDate)
        column.dayPattern = DatePattern(WritingPattern({}, FieldType::kDateOnly, pattern));
    }
    column.digits = NumberFormat::DigitsOf(options_.number, field.type);
    column.way = WayOf(column);
    column.wanted = column.way == Way::kDate ? VARTYPE{VT_DATE} : VariantTypeOf(column.type);
    column.room = column.way == Way::kDate ? column.pattern.Room() : kFixedRoom;
    column.room += separator_.size() + 1;
    column.separatorSize = columns_.empty() || options_.fixedLength ? 0 : delimiter_.size();
    column.texts = 0;
    column.place = columns_.size();
    textColumns_.push_back({column.width, column.separatorSize});
    columns_.push_back(std::move(column));
    fieldCount_ = i + 1;
  }
  for (std::size_t i = columns_.size(); i-- > 0;) {
    Column& column = columns_[i];
    const Column* const next = i + 1 < columns_.size() ? &columns_[i + 1] : nullptr;
    const bool goesOn = next != nullptr && next->field == column.field + 1;
    column.texts = column.way == Way::kText ? 1 + (goesOn ? next->texts : 0) : 0;
  }
  delimiter_.copy(separator_.data(), separator_.size());
  singleColumn_ = columns_.size() == 1;
}

// A column may go straight into the buffer when nothing but a text can hold the delimiter.
RowWriter::Way RowWriter::WayOf(const Column& column) const {
  const char16_t delimiter = options_.delimiter;
  const char16_t symbol = options_.number.decimalSymbol;
  const bool usual =
      IsUsualMark(delimiter) && delimiter != u'-' && (delimiter < u'0' || delimiter > u'9');
  if (options_.fixedLength || !usual) return Way::kGeneral;
  switch (column.type) {
    case FieldType::kString:
    case FieldType::kGuid:
    case FieldType::kGlobalId:
      return QuotedText::Takes(delimiter, options_.textDelimiter) && !EndsLinesWithCr()
                 ? Way::kText
                 : Way::kGeneral;
    case FieldType::kDate:
    case FieldType::kDateOnly:
    case FieldType::kTimeOnly:
      return column.pattern.HasText(static_cast<char>(delimiter)) || column.pattern.HasText('\r') ||
                     column.pattern.HasText('\n')
                 ? Way::kGeneral
                 : Way::kDate;
    case FieldType::kSingle:
    case FieldType::kDouble:
      return IsUsualMark(symbol) && symbol != delimiter && column.digits <= kMostPlainDigits
                 ? Way::kReal
                 : Way::kGeneral;
    case FieldType::kSmallInteger:
    case FieldType::kInteger:
    case FieldType::kBigInteger:
    case FieldType::kObjectId:
      return Way::kInteger;
    default:
      return Way::kGeneral;
  }
}

RowWriter::~RowWriter() {
  if (file_.IsOpen()) Close();
}

bool RowWriter::Fail(std::u16string_view reason) {
  failure_ = FileMessage(table_.path, reason);
  return false;
}

// The lock of the file, and the certainty that it still is the table's.
class RowWriter::LockedFile {
 public:
  explicit LockedFile(RowWriter& writer) : writer_(writer) {
    if (!writer_.file_.Lock()) {
      writer_.Fail(RegularFile::MeansBusy(writer_.file_.error())
                       ? u"another program has kept the file locked for ten seconds"
                       : u"the file cannot be locked");
      return;
    }
    locked_ = true;
    isTable_ = writer_.RequireItsName();
  }
  ~LockedFile() {
    if (locked_) writer_.file_.Unlock();
  }
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;

  // False: the writer has the reason.
  bool IsTable() const noexcept { return isTable_; }

 private:
  RowWriter& writer_;
  bool locked_ = false;
  bool isTable_ = false;
};

// What the file is encoded in decides how rows are added to it.
bool RowWriter::FindEncoding() {
  TextLineStream stream;
  if (!stream.Open(table_.path, TextLineStream::kPlainLines)) {
    RegularFile probe;
    probe.Open(NativeFromFileName(table_.path), RegularFile::Access::kRead);
    return Fail(WithReason(u"the file cannot be read", probe.error()));
  }
  encoding_ = stream.encoding();
  switch (encoding_) {
    case TextEncoding::kUtf16BE:
    case TextEncoding::kUtf32LE:
    case TextEncoding::kUtf32BE:
      return Fail(u"rows cannot be added to a file in this encoding");
    default:
      return true;
  }
}

// The file of the sections is none, by whatever name it was opened, nor is another's metadata.
bool RowWriter::RequireTable() {
  const std::u16string folder = FolderOf(table_.path);
  if (const std::u16string owner = MetadataOwner({folder, table_.name}); !owner.empty())
    return Fail(u"the file is no table but the metadata of " + owner);
  const SchemaIniPaths paths(folder);
  if (IsReservedFile(table_.name) || file_.IsAt(NativeFromFileName(paths.schemaIni)) ||
      file_.IsAt(NativeFromFileName(paths.temporary)))
    return Fail(u"the file is no table");
  return true;
}

bool RowWriter::RequireItsName() {
  return file_.IsAt(NativeFromFileName(table_.path)) ||
         Fail(u"the file has been removed or replaced meanwhile");
}

// A table that is created anew may keep its file, where that cannot be exchanged. Nobody who adds
// rows makes the text shorter: at most the bytes 1A behind it go.
bool RowWriter::RequireItsRows(std::uint64_t size) {
  return size >= textEnd_.size ||
         Fail(u"the file has been cut or created anew meanwhile, and its rows are gone");
}

bool RowWriter::Open() {
  if (!FindEncoding()) return false;
  if (!file_.Open(NativeFromFileName(table_.path), RegularFile::Access::kAppend))
    return Fail(WithReason(u"the file cannot be written", file_.error()));
  if (!RequireTable()) return false;
  const LockedFile locked(*this);
  return locked.IsTable() && LookAtEnd(0);
}

// Looks at what stands behind `from`, where a row begins.
bool RowWriter::LookAtEnd(std::uint64_t from) {
  // Without a word of schema.ini what stands first may be a header.
  const bool mayHaveHeader =
      options_.columnNameHeader || !options_.IsSpecified(SchemaOptions::kColNameHeader);
  if (from == 0 && mayHaveHeader && HasNoRecord(table_))
    return Fail(
        u"the file is empty, and its first row would be read as the names of the fields unless "
        u"schema.ini has ColNameHeader=False for it");
  textEnd_ = FindTextEnd(table_, encoding_, file_, from);
  switch (textEnd_.state) {
    case TextEnd::State::kTakesRows:
      end_ = textEnd_.fileSize;
      return true;
    case TextEnd::State::kInQuotes:
      return Fail(
          u"the last row has a quote that is not closed: what is added would be a part of it");
    case TextEnd::State::kBehindTextEnd:
      return Fail(u"a byte 1A ends the text within the file: what is added would not be read");
    case TextEnd::State::kHalfCharacter:
      return Fail(u"the file ends in half a character: what is added would not be read");
    default:
      return Fail(WithReason(u"the file cannot be read", file_.error()));
  }
}

// Rows must not run into a last line that has no end, nor follow a byte 1A, behind which nothing is
// read. The file is locked.
bool RowWriter::PrepareEnd() {
  std::uint64_t size = 0;
  if (!file_.Size(size)) return Fail(WithReason(u"the file cannot be read", file_.error()));
  if (!RequireItsRows(size)) return false;
  // Another writer has been here.
  const bool rowBegins = textEnd_.endsLine && size > end_;
  if (size != end_ && !LookAtEnd(rowBegins ? textEnd_.size : 0)) return false;
  if (textEnd_.size < end_ && !file_.CutTo(textEnd_.size))
    return Fail(WithReason(u"the file cannot be written", file_.error()));
  end_ = textEnd_.size;
  if (!textEnd_.endsLine && WriteRows(lineEnd_) != RegularFile::Appended::kWhole)
    return Fail(WithReason(u"the rows could not be written", file_.error()));
  return true;
}

// Answers where the value begins.
inline char* RowWriter::WriteSeparator(const Column& column, char* to) const {
  std::memcpy(to, separator_.data(), separator_.size());
  return to + column.separatorSize;
}

// The end of a value that takes no more than its column's room; null when it is not a usual one.
inline char* RowWriter::WriteSized(const Column& column, const VARIANT& value, char* to) const {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  SYSTEMTIME time;
  switch (column.way) {
    case Way::kInteger:
      return WriteInteger(IntegerOf(value), to);
    case Way::kReal:
      return WriteFixed(value.vt == VT_R4 ? static_cast<double>(value.fltVal) : value.dblVal,
                        column.digits, static_cast<char>(options_.number.decimalSymbol), to);
    case Way::kDate:
      return quenra::DatetimeHelper::FromOADate(value.date, time) ? column.pattern.Write(time, to)
                                                                  : nullptr;
    default:
      return nullptr;
  }
}

// Writes a usual value of a usual table and the separator before it to `to`, the end of what is in
// the buffer: what AppendGenerally would append. False, and `to` is the same end, for any other.
// The column is none of texts.
inline bool RowWriter::WriteStraight(const Column& column, const VARIANT& value, char*& to) {
  if (column.way == Way::kGeneral) return false;
  const bool isNull = IsNull(value);
  if (!isNull && value.vt != column.wanted) return false;
  to = buffer_.RoomAt(to, column.room);
  char* const start = WriteSeparator(column, to);
  char* end = isNull ? start : WriteSized(column, value, start);
  if (end == nullptr) return false;
  // A blank line would be no row.
  if (end == start && singleColumn_) *end++ = ' ';
  to = end;
  return true;
}

// WriteStraight for the texts that stand one behind the other from a column on. Answers how many of
// them it has written.
inline std::size_t RowWriter::WriteTexts(const Column& first, const VARIANT* row, char*& to) {
  const std::span<const TextColumn> columns(textColumns_.data() + first.place, first.texts);
  const VARIANT* const values = row + first.field;
  TextRun run{to, buffer_.Limit(), 0};
  std::size_t done = writeTexts_(texts_, columns, values, run);
  while (run.room != 0) {
    run.to = buffer_.RoomAt(run.to, run.room);
    run.limit = buffer_.Limit();
    if (done == 0) to = run.to;
    done += writeTexts_(texts_, columns.subspan(done), values + done, run);
  }
  // A blank line would be no row.
  if (singleColumn_ && done != 0 && run.to == to) *run.to++ = ' ';
  to = run.to;
  return done;
}

bool RowWriter::Write(std::span<const VARIANT> values) {
  if (values.size() < fieldCount_) {
    std::vector<VARIANT> all(values.begin(), values.end());
    all.resize(fieldCount_);
    return Write(all);
  }
  const VARIANT* const row = values.data();
  const std::size_t start = buffer_.size();
  try {
    char* to = buffer_.Room(0);
    const Column* const end = columns_.data() + columns_.size();
    for (const Column* column = columns_.data(); column != end; ++column) {
      if (column->texts != 0) {
        const std::size_t done = WriteTexts(*column, row, to);
        const bool all = done == column->texts;
        column += all ? done - 1 : done;
        if (all) continue;
      } else if (WriteStraight(*column, row[column->field], to)) {
        continue;
      }
      buffer_.EndAt(to);
      AppendGenerally(*column, row[column->field]);
      to = buffer_.Room(0);
    }
    // Both of its bytes, or the one and the text's own zero.
    to = buffer_.RoomAt(to, 2);
    std::memcpy(to, lineEnd_.c_str(), 2);
    buffer_.EndAt(to + lineEnd_.size());
  } catch (...) {
    buffer_.CutTo(start);
    throw;
  }
  const std::size_t marked = markCount_ == 0 ? 0 : marks_[markCount_ - 1];
  if (buffer_.size() - marked < kPieceBytes) return true;
  if (buffer_.size() >= kBufferBytes) return Flush();
  marks_[markCount_++] = buffer_.size();
  return true;
}

bool RowWriter::Flush() {
  const std::string_view rows = buffer_.View();
  if (rows.empty()) return true;
  const bool written = WriteInPieces(rows);
  buffer_.CutTo(0);
  markCount_ = 0;
  return written;
}

bool RowWriter::WriteInPieces(std::string_view rows) {
  const LockedFile locked(*this);
  if (!locked.IsTable() || !PrepareEnd()) return false;
  RegularFile::Appended written = WriteRows(rows);
  // What there is still room for is written all the same.
  if (written == RegularFile::Appended::kTakenBack && markCount_ != 0) {
    written = RegularFile::Appended::kWhole;
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= markCount_ && written == RegularFile::Appended::kWhole; ++i) {
      const std::size_t end = i < markCount_ ? marks_[i] : rows.size();
      written = WriteRows(rows.substr(begin, end - begin));
      begin = end;
    }
  }
  return written == RegularFile::Appended::kWhole ||
         Fail(WithReason(u"the rows could not be written", file_.error()));
}

// Whole rows, in front of which a row may begin.
RegularFile::Appended RowWriter::WriteRows(std::string_view rows) {
  std::string encoded;
  if (encoding_ == TextEncoding::kUtf16LE) {
    UnitBuffer text;
    DecodeUtf8(rows, text);
    for (const char16_t unit : text.View()) {
      encoded += static_cast<char>(unit & 0xFF);
      encoded += static_cast<char>(unit >> 8);
    }
    rows = encoded;
  }
  const RegularFile::Appended written = file_.Append(rows);
  if (written != RegularFile::Appended::kWhole) return written;
  hasWritten_ = true;
  textEnd_.endsLine = true;
  // A program that does not ask for the lock may have written too: that is looked at next time.
  std::uint64_t size = 0;
  if (file_.Size(size) && size == end_ + rows.size()) textEnd_.size = end_ = size;
  return written;
}

bool RowWriter::Close() {
  bool written = Flush();
  // Rows of earlier blocks may be in a file that nobody has any more, or have been cut off.
  std::uint64_t size = 0;
  if (written && hasWritten_)
    written = RequireItsName() && (!file_.Size(size) || RequireItsRows(size));
  file_.Close();
  return written;
}

// ---------------------------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------------------------

// Any value of any table.
void RowWriter::AppendGenerally(const Column& column, const VARIANT& value) {
  value_.clear();
  leadingQuote_ = false;
  buffer_.Append({separator_.data(), column.separatorSize});
  if (!IsNull(value) && (!FormatValue(column, value) || !CanStand(column))) {
    value_.clear();
    quenra::EventLog::Write(u"In file " + table_.name + u", a value of field " + column.name +
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
    return SUCCEEDED(direct.CopyFrom(value)) &&
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
      CutText(ViewOf(value.vt == VT_BSTR ? value.bstrVal : changed.Get().bstrVal), column.width);
  const char16_t quote = options_.fixedLength ? u'\0' : options_.textDelimiter;
  std::u16string kept;
  kept.reserve(text.size());
  for (const char16_t unit : text) {
    const char16_t written = Writable(unit);
    if (written != 0) kept += written;
    if (quote != 0 && written == quote) kept += quote;
  }
  AppendUtf8(kept, value_);
  // Looked for in what is written: a character that is dropped may have stood in front of it.
  const auto first = std::find_if_not(kept.begin(), kept.end(), quenra::IsWhiteSpace);
  leadingQuote_ = quote != 0 && first != kept.end() && *first == quote;
  return true;
}

// What stands for a character in the file; 0 for nothing. A zero would end the line's text and a
// byte 1A the file's when they are read. Where nothing can be quoted, characters that would end the
// value become blanks. A line feed becomes a CR in a table of CRs, which are known by it that the
// file has no line feed.
char16_t RowWriter::Writable(char16_t unit) const noexcept {
  if (unit == 0 || unit == 0x1A) return u'\0';
  const bool quoting = !options_.fixedLength && options_.textDelimiter != 0;
  const bool ends =
      unit == u'\r' || unit == u'\n' || (!options_.fixedLength && unit == options_.delimiter);
  if (ends && !quoting) return u' ';
  return unit == u'\n' && EndsLinesWithCr() ? u'\r' : unit;
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
  AppendDate(column, time);
  if (column.type == FieldType::kTimestampOffset) AppendOffset(0, value_);
  return true;
}

// In a fixed-length table midnight gives way where the column has room for the day alone.
void RowWriter::AppendDate(const Column& column, const SYSTEMTIME& time) {
  column.pattern.Append(time, value_);
  const bool isMidnight =
      time.wHour == 0 && time.wMinute == 0 && time.wSecond == 0 && time.wMilliseconds == 0;
  if (column.dayPattern.empty() || !isMidnight || Utf16Length(value_) <= column.width) return;
  value_.clear();
  column.dayPattern.Append(time, value_);
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

// Whether the value leaves those beside it alone. Where nothing can be quoted, a number or date
// that holds the delimiter would be two values; one that is wider than its column would move all
// behind it. Texts have been cut and have lost their delimiters by now.
bool RowWriter::CanStand(const Column& column) const noexcept {
  if (options_.fixedLength) return Utf16Length(value_) <= column.width;
  return !textDelimiter_.empty() || !NeedsQuotes();
}

bool RowWriter::NeedsQuotes() const noexcept {
  return leadingQuote_ || value_.find_first_of("\r\n") != std::string::npos ||
         value_.find(delimiter_) != std::string::npos;
}

void RowWriter::AppendDelimited() {
  if (value_.empty()) {
    // A blank line would be no row.
    if (singleColumn_) buffer_.Append(" ");
    return;
  }
  const bool quotes = !textDelimiter_.empty() && NeedsQuotes();
  if (quotes) buffer_.Append(textDelimiter_);
  buffer_.Append(value_);
  if (quotes) buffer_.Append(textDelimiter_);
}

void RowWriter::AppendPadded(const Column& column) {
  const std::size_t units = Utf16Length(value_);
  if (units < column.width) {
    const std::size_t blanks = column.width - units;
    char* const place = buffer_.Room(blanks);
    buffer_.EndAt(std::fill_n(place, blanks, ' '));
  }
  buffer_.Append(value_);
}

}  // namespace TextFile
