// Opens arbitrary bytes as a delimited table and reads every row. The first byte holds switches:
// three bits for the extension, then many rows, no coordinate fields, times alone, the old field
// types, and a locale with decimal commas.
//
// Holds: opening fails cleanly or gives fields; every record is the one that a plain reader, which
// follows the rules of quoting character by character, cuts from the same lines; every value is of
// a kind that its field may hold, and the same when the texts are not asked for; counting gives as
// many rows.

#include <optional>

#include "FuzzInput.h"
#include "RowChecks.h"
#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "schema/LocaleDefaults.h"

namespace {

using Fuzz::Check;
using Fuzz::PlainRecord;
using TextFile::TextDatasetDescription;
using TextFile::TextLineStream;

constexpr const char16_t* kNames[] = {u"t.csv", u"t.txt", u"t.tsv", u"t.psv", u"t.tab", u"t.asc"};

// The rules of delimited records, written for being looked through alone.
class PlainReader {
 public:
  explicit PlainReader(const TextDatasetDescription& table)
      : delimiter_(table.options.delimiter),
        quote_(table.options.textDelimiter),
        terminator_(static_cast<unsigned char>(table.options.recordTerminator)) {
    table.openStream(stream_);
    stream_.SetLineDelimiter(table.options.recordTerminator);
  }

  bool ReadRecord(PlainRecord& record) {
    record.clear();
    do {
      ReadFields(record);
    } while (record.empty() && !stream_.AtEnd());
    return !record.empty();
  }

 private:
  bool Take(char16_t& unit) {
    if (used_) {
      if (!stream_.ReadLine(line_)) return false;
      position_ = 0;
      used_ = false;
    }
    unit = line_[position_++];
    if (unit != 0) return true;
    used_ = true;
    unit = terminator_;
    return true;
  }

  bool QuoteFollows() const { return !used_ && line_[position_] == quote_; }

  void ReadFields(PlainRecord& record) {
    std::u16string text;
    bool quoting = false;
    char16_t unit = 0;
    while (Take(unit)) {
      const bool quote = quote_ != 0 && unit == quote_;
      if (quote && !quoting && quenra::IsBlank(text)) {
        text.clear();
        quoting = true;
      } else if (quote && QuoteFollows()) {
        Take(unit);
        text += quote_;
      } else if (quote && quoting) {
        quoting = false;
      } else if (!quote && !quoting && unit == delimiter_) {
        record.push_back(text);
        text.clear();
      } else if (!quote && !quoting && unit == terminator_) {
        break;
      } else {
        text += unit;
      }
    }
    if (!record.empty() || !text.empty()) record.push_back(text);
  }

  const char16_t delimiter_;
  const char16_t quote_;
  const char16_t terminator_;
  TextLineStream stream_;
  std::u16string line_;
  std::size_t position_ = 0;
  bool used_ = true;
};

TextFile::OpenOptions OptionsOf(unsigned switches) {
  TextFile::OpenOptions options;
  options.readAsManyRowsAsNeeded = (switches & 0x08) != 0;
  options.generateLatLongFields = (switches & 0x10) == 0;
  options.inferTimeOnlyFields = (switches & 0x20) != 0;
  if ((switches & 0x40) != 0) options.fieldTypeVersion = TextFile::kOldFieldTypeVersion;
  return options;
}

TextDatasetDescription TableOf(unsigned switches, std::string_view bytes) {
  const char16_t* const name = kNames[(switches & 0x07) % std::size(kNames)];
  const bool isGerman = (switches & 0x80) != 0;
  // To ask for the locale's values takes as long as to read a small table.
  static std::optional<bool> wasGerman;
  static TextFile::SchemaOptions options;
  if (wasGerman != isGerman) {
    Check(quenra::QUENRALocale::SetLocale(isGerman ? u"de-DE" : u"en-US"));
    options = {};
    TextFile::CompleteFromLocale(options);
    wasGerman = isGerman;
  }
  TextDatasetDescription table = Fuzz::TableInMemory(name, bytes);
  const char16_t delimiter = table.options.delimiter;
  table.options = options;
  table.options.delimiter = delimiter;
  return table;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::FuzzInput input(data, size);
  const unsigned switches = input.TakeSwitches();
  TextDatasetDescription table = TableOf(switches, input.Rest());
  auto status = TextFile::OpenDatasetStatus::kFileNotOpened;
  const bool opened = TextFile::ScanTextDataset(table, OptionsOf(switches), status);
  Check(status != TextFile::OpenDatasetStatus::kFileNotOpened);
  Check(opened == (status == TextFile::OpenDatasetStatus::kOpened) && opened == table.loaded);
  Check(opened != table.fields.empty());
  if (!opened) return 0;

  PlainReader plain(table);
  Fuzz::CheckRows(table, [&](PlainRecord& record) { return plain.ReadRecord(record); });
  return 0;
}
