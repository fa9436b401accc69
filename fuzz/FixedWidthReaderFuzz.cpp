// Opens arbitrary bytes as a fixed-width table and reads every row. The first line of the input
// describes the columns, one character each:
//   '0'..'?'  text of width 0..15      '@'..'O'  whole number      'P'..'_'  Double
//   '`'..'o'  date                     'p'..     16-bit number     above 127: text without width
// '+' or '-' in front says whether there is a header row.
//
// Holds: opening fails cleanly or leaves the declared columns; every record is the one that a
// plain cut of the same lines gives; every value is of a kind that its field may hold; counting
// gives as many rows.

#include "FuzzInput.h"
#include "RowChecks.h"
#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "schema/SchemaIniReader.h"

namespace {

using Fuzz::Check;
using Fuzz::PlainRecord;
using TextFile::TextDatasetDescription;
using TextFile::TextLineStream;

std::string TypeOfCode(unsigned char code) {
  switch (code >> 4) {
    case 4:
      return "Long";
    case 5:
      return "Double";
    case 6:
      return "Date";
    case 7:
      return "Short";
    default:
      return "Text";
  }
}

std::string SchemaOf(std::string_view columns) {
  std::string schema = "[t.txt]\nFormat=FixedLength\n";
  if (!columns.empty() && (columns.front() == '+' || columns.front() == '-')) {
    schema += columns.front() == '+' ? "ColNameHeader=True\n" : "ColNameHeader=False\n";
    columns.remove_prefix(1);
  }
  int number = 0;
  for (const char character : columns) {
    const auto code = static_cast<unsigned char>(character);
    const std::string position = std::to_string(++number);
    schema += "Col" + position + "=c" + position + ' ' + TypeOfCode(code);
    if (code < 0x80) schema += " Width " + std::to_string(code & 0x0F);
    schema += '\n';
  }
  return schema;
}

// Cuts whole lines by widths.
class PlainReader {
 public:
  explicit PlainReader(const TextDatasetDescription& table) {
    for (const TextFile::FieldDefinition& field : table.fields)
      if (!field.isCoordinate) widths_.push_back(field.width);
    table.openStream(stream_);
    stream_.SetLineDelimiter(table.options.recordTerminator);
  }

  bool ReadRecord(PlainRecord& record) {
    record.clear();
    std::u16string line;
    while (record.empty() && !widths_.empty() && NextRecordText(line)) Cut(line, record);
    return !record.empty();
  }

 private:
  // A line, or a part of one: the record terminator may also stand inside it, in UTF-16 files.
  bool NextRecordText(std::u16string& text) {
    const auto terminator =
        static_cast<char16_t>(static_cast<unsigned char>(stream_.lineDelimiter()));
    if (rest_.empty() && !NextLine()) return false;
    const std::size_t end = rest_.find(terminator);
    text = rest_.substr(0, end);
    rest_.erase(0, end + 1);
    return true;
  }

  // The line up to its first zero unit, with a terminator behind it.
  bool NextLine() {
    if (!stream_.ReadLine(rest_)) return false;
    rest_.resize(rest_.find(u'\0'));
    rest_ += static_cast<char16_t>(static_cast<unsigned char>(stream_.lineDelimiter()));
    return true;
  }

  void Cut(std::u16string_view line, PlainRecord& record) const {
    while (!line.empty() && record.size() < widths_.size()) {
      const std::int64_t width = widths_[record.size()];
      const std::size_t length =
          width <= 0 ? line.size() : std::min(static_cast<std::size_t>(width), line.size());
      record.emplace_back(quenra::TrimBlanks(line.substr(0, length)));
      line.remove_prefix(length);
    }
  }

  std::vector<std::int64_t> widths_;
  TextLineStream stream_;
  std::u16string rest_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Check(quenra::QUENRALocale::SetLocale(u"en-US"));
  Fuzz::FuzzInput input(data, size);
  const std::string schema = SchemaOf(input.TakeLine());

  TextDatasetDescription table = Fuzz::TableInMemory(u"t.txt", input.Rest());
  Check(TextFile::ReadSchemaSection(std::make_unique<Fuzz::MemoryFile>(schema), u"t.txt",
                                    table.options));
  auto status = TextFile::OpenDatasetStatus::kFileNotOpened;
  const bool opened = TextFile::ScanTextDataset(table, {}, status);
  Check(status != TextFile::OpenDatasetStatus::kFileNotOpened && opened != table.fields.empty());
  Check(table.options.fixedLength);
  if (!opened) return 0;
  if (table.options.columns.empty()) {
    Check(table.fields.size() == 1 && table.fields.front().name == u"Field0");
    return 0;
  }
  for (const auto& [index, declared] : table.options.columns) {
    const TextFile::FieldDefinition& field = table.fields[static_cast<std::size_t>(index)];
    Check(field.name == declared.name && field.width == declared.width);
    Check(field.type == declared.type || TextFile::IsDateType(declared.type));
  }

  PlainReader plain(table);
  Fuzz::CheckRows(table, [&](PlainRecord& record) { return plain.ReadRecord(record); });
  return 0;
}
