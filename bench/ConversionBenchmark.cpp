// Numbers, dates, and whole rows, from texts that are in memory already.

#include <vector>

#include "CoreTables.h"
#include "Throughput.h"
#include "host/CoreSupport/Variant.h"
#include "inference/DateParsing.h"
#include "inference/NumberParsing.h"
#include "inference/RowConverter.h"
#include "reading/ReaderFactory.h"

namespace {

using TextFile::FieldType;

// Few enough to stay in the cache, so that the conversion alone is measured.
constexpr std::size_t kRecords = 1000;

// The same fields, without the line that a reader's record refers to.
TextFile::Record CopyOf(const TextFile::Record& record) {
  TextFile::Record copy;
  for (std::size_t i = 0; i < record.size(); ++i) {
    for (const char16_t unit : record[i]) copy.Append(unit);
    copy.EndField();
  }
  return copy;
}

std::vector<TextFile::Record> FirstRecords(const TextFile::TextDatasetDescription& table) {
  std::vector<TextFile::Record> records;
  const TextFile::ReaderPtr reader = TextFile::MakeDataReader(table);
  while (!reader->record().empty() && records.size() < kRecords) {
    records.push_back(CopyOf(reader->record()));
    reader->ReadRecord();
  }
  return records;
}

struct Texts {
  std::vector<std::u16string> texts;
  std::int64_t bytes = 0;  // in the file; these texts are ASCII
};

// The texts of one column that are not empty.
Texts TextsOf(TableKind kind, std::size_t column) {
  Texts result;
  const auto table = OpenTable(Table(kind));
  for (const TextFile::Record& record : FirstRecords(*table)) {
    if (record[column].empty()) continue;
    result.texts.emplace_back(record[column]);
    result.bytes += static_cast<std::int64_t>(record[column].size());
  }
  return result;
}

// Runs `use` on each text of a column; it answers whether the text was what it is taken for.
template <class Use>
void ForEachText(benchmark::State& state, TableKind kind, std::size_t column, Use use) {
  const Texts texts = TextsOf(kind, column);
  for (auto iteration : state)
    for (const std::u16string& text : texts.texts)
      if (!use(text)) return state.SkipWithError("a text is not of its type");
  Report(state, texts.bytes, static_cast<std::int64_t>(texts.texts.size()));
}

void ConvertNumber(benchmark::State& state, TableKind kind, std::size_t column, FieldType type) {
  const TextFile::NumberFormat::Settings settings;
  TextFile::NumberValue value;
  ForEachText(state, kind, column, [&](const std::u16string& text) {
    const bool converted = TextFile::NumberFormat::Convert(settings, text, type, value);
    benchmark::DoNotOptimize(value);
    return converted;
  });
}

void ClassifyNumber(benchmark::State& state, TableKind kind, std::size_t column) {
  const TextFile::NumberFormat::Settings settings;
  ForEachText(state, kind, column, [&](const std::u16string& text) {
    return TextFile::NumberFormat::Classify(settings, text, TextFile::kCurrentFieldTypeVersion) !=
           FieldType::kUndetermined;
  });
}

void ParseDate(benchmark::State& state, std::size_t column, FieldType type) {
  TextFile::DateFieldFormat format;
  format.type = type;
  format.order = TextFile::DateOrder::kYearMonthDay;
  TextFile::ParsedDateTime value;
  ForEachText(state, TableKind::kMixed, column, [&](const std::u16string& text) {
    const bool parsed = TextFile::ParseDateTime(format, text, value);
    benchmark::DoNotOptimize(value);
    return parsed;
  });
}

void ClassifyDate(benchmark::State& state, std::size_t column) {
  TextFile::DateClass found;
  ForEachText(state, TableKind::kMixed, column, [&](const std::u16string& text) {
    return TextFile::ClassifyDate(text, TextFile::kCurrentFieldTypeVersion, false, found);
  });
}

BENCHMARK_CAPTURE(ConvertNumber, integer, TableKind::kMixed, 1, FieldType::kInteger);
BENCHMARK_CAPTURE(ConvertNumber, decimals, TableKind::kNumeric, 0, FieldType::kDouble);
BENCHMARK_CAPTURE(ConvertNumber, all_digits, TableKind::kNumeric, 7, FieldType::kDouble);
BENCHMARK_CAPTURE(ConvertNumber, exponent, TableKind::kNumeric, 9, FieldType::kDouble);
BENCHMARK_CAPTURE(ClassifyNumber, integer, TableKind::kMixed, 1);
BENCHMARK_CAPTURE(ClassifyNumber, decimals, TableKind::kNumeric, 0);
BENCHMARK_CAPTURE(ParseDate, day, 4, FieldType::kDateOnly);
BENCHMARK_CAPTURE(ParseDate, stamp, 5, FieldType::kDate);
BENCHMARK_CAPTURE(ClassifyDate, day, 4);
BENCHMARK_CAPTURE(ClassifyDate, stamp, 5);

// None of the rows holds a value that contradicts its column.
std::u16string NoMessage(std::uint32_t) { throw std::logic_error("a value does not fit"); }

void ConvertRow(benchmark::State& state, const BenchmarkTable& table) {
  const auto description = OpenTable(table);
  const std::vector<TextFile::Record> records = FirstRecords(*description);
  TextFile::RowConverter converter(description, &NoMessage);
  std::vector<quenra::Variant> row(converter.fieldCount());
  for (std::size_t i = 0; i < row.size(); ++i) converter.SetSlot(i, row[i].Receive());
  for (auto iteration : state)
    for (const TextFile::Record& record : records)
      benchmark::DoNotOptimize(converter.Convert(record));
  const auto rows = static_cast<std::int64_t>(records.size());
  Report(state, table.bytes * rows / table.rows, table.cells() * rows / table.rows);
}

const int kRegistered = ForEveryTable("ConvertRow", &ConvertRow);

}  // namespace
