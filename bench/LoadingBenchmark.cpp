// Adding rows to a table: mixed rows of ten columns, beside the least work that makes the same
// bytes. With BENCHMARK_MANY_ROWS in the environment also a million rows.

#include <boost/filesystem.hpp>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "Throughput.h"
#include "host/CoreSupport/Variant.h"
#include "platform/FileNames.h"
#include "reading/OpenTextDataset.h"
#include "schema/RowWriter.h"
#include "schema/TableFiles.h"

namespace {

namespace fs = boost::filesystem;

using TextFile::FieldDefinition;
using TextFile::FieldType;

constexpr std::int64_t kDefaultRows = 100'000;
constexpr std::int64_t kManyRows = 1'000'000;
constexpr std::int64_t kColumns = 10;
constexpr std::u16string_view kTable = u"loaded.csv";

// A new folder, removed with the table in it.
class LoadingFolder {
 public:
  LoadingFolder()
      : path_(fs::path(BENCHMARK_DATA_DIR) / fs::unique_path("loading-%%%%-%%%%-%%%%")) {
    fs::create_directories(path_);
  }
  ~LoadingFolder() {
    boost::system::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  LoadingFolder(const LoadingFolder&) = delete;
  LoadingFolder& operator=(const LoadingFolder&) = delete;
  std::u16string Name() const { return FileNameFromNative(path_.native()); }
  fs::path File() const { return path_ / fs::path(NativeFromFileName(kTable)); }

 private:
  fs::path path_;
};

std::vector<FieldDefinition> MixedFields() {
  constexpr FieldType kTypes[kColumns] = {
      FieldType::kInteger, FieldType::kString,    FieldType::kDouble,       FieldType::kDate,
      FieldType::kString,  FieldType::kSingle,    FieldType::kSmallInteger, FieldType::kDateOnly,
      FieldType::kDouble,  FieldType::kBigInteger};
  std::vector<FieldDefinition> fields;
  for (const FieldType type : kTypes) {
    FieldDefinition field;
    field.name = u"Field" + std::u16string(1, static_cast<char16_t>(u'A' + fields.size()));
    field.type = type;
    field.dateFormat.type = type;
    fields.push_back(std::move(field));
  }
  return fields;
}

// One row of values; the numbers and dates change from row to row, as a host's buffer does.
class MixedRow {
 public:
  MixedRow() : values_(kColumns) {
    Start(0, VT_I4);
    values_[1] = quenra::Variant(u"a name of usual length");
    Start(2, VT_R8);
    Start(3, VT_DATE);
    values_[4] = quenra::Variant(u"with \"quotes\", a comma and caf\u00E9");
    Start(5, VT_R4);
    Start(6, VT_I2);
    Start(7, VT_DATE);
    Start(8, VT_R8);
    Start(9, VT_I8);
    for (const quenra::Variant& value : values_) views_.push_back(value.Get());
  }

  std::span<const VARIANT> At(std::int64_t row) {
    const auto number = static_cast<double>(row);
    views_[0].lVal = static_cast<LONG>(row);
    views_[2].dblVal = number * 1.000244140625;
    views_[3].date = 36526 + number / 1024;
    views_[5].fltVal = static_cast<float>(row % 8192) / 16;
    views_[6].iVal = static_cast<SHORT>(row % 30000);
    views_[7].date = static_cast<double>(30000 + row % 20000);
    views_[8].dblVal = -number / 4;
    views_[9].llVal = row * 1'000'003;
    return views_;
  }

 private:
  void Start(std::size_t column, VARTYPE type) {
    VARIANT* const raw = values_[column].Receive();
    raw->vt = type;
    raw->llVal = 0;
  }

  std::vector<quenra::Variant> values_;  // own the texts
  std::vector<VARIANT> views_;
};

TextFile::TextDatasetDescription NewTable(const LoadingFolder& folder) {
  TextFile::CreateTableFiles({folder.Name(), std::u16string(kTable)}, MixedFields());
  TextFile::TextDatasetDescription table = TextFile::DescribeFile(folder.Name(), kTable);
  auto status = TextFile::OpenDatasetStatus::kScanFailed;
  TextFile::OpenTextDataset(table, {}, status);
  return table;
}

void Load(benchmark::State& state) {
  const std::int64_t rows = state.range(0);
  std::int64_t bytes = 0;
  for (auto iteration : state) {
    state.PauseTiming();
    const LoadingFolder folder;
    const TextFile::TextDatasetDescription table = NewTable(folder);
    MixedRow row;
    state.ResumeTiming();
    TextFile::RowWriter writer(table);
    bool written = writer.Open();
    for (std::int64_t i = 0; written && i < rows; ++i) written = writer.Write(row.At(i));
    if (!written || !writer.Close()) return state.SkipWithError("the rows could not be written");
    state.PauseTiming();
    bytes = static_cast<std::int64_t>(fs::file_size(folder.File()));
    state.ResumeTiming();
  }
  Report(state, bytes, rows * kColumns);
}

// Numbers into a buffer and the buffer into a file; dates as the six numbers that they are.
class FloorRow {
 public:
  explicit FloorRow(std::string& buffer) : buffer_(buffer) {}

  void Write(std::span<const VARIANT> values) {
    Number(values[0].lVal);
    Text("a name of usual length");
    Fixed(values[2].dblVal, 15);
    Date(6);
    Text("\"with \"\"quotes\"\", a comma and caf\xC3\xA9\"");
    Fixed(values[5].fltVal, 7);
    Number(values[6].iVal);
    Date(3);
    Fixed(values[8].dblVal, 15);
    Number(values[9].llVal);
    buffer_.back() = '\n';
  }

 private:
  template <class Value, class... More>
  void Append(Value value, More... more) {
    char text[400];
    const auto end = std::to_chars(text, text + sizeof text, value, more...).ptr;
    buffer_.append(text, end);
  }
  template <class Value>
  void Number(Value value) {
    Append(value);
    buffer_ += ',';
  }
  template <class Value>
  void Fixed(Value value, int digits) {
    Append(value, std::chars_format::fixed, digits);
    buffer_ += ',';
  }
  void Date(int parts) {
    for (int part = 0; part < parts; ++part) {
      Append(part + 10);
      buffer_ += part + 1 < parts ? '-' : ',';
    }
  }
  void Text(std::string_view text) { (buffer_ += text) += ','; }

  std::string& buffer_;
};

void LoadFloor(benchmark::State& state) {
  const std::int64_t rows = state.range(0);
  constexpr std::size_t kBufferBytes = 64 * 1024;
  std::int64_t bytes = 0;
  for (auto iteration : state) {
    state.PauseTiming();
    const LoadingFolder folder;
    MixedRow row;
    state.ResumeTiming();
    std::filebuf file;
    file.pubsetbuf(nullptr, 0);
    if (file.open(folder.File().c_str(), std::ios::out | std::ios::binary) == nullptr)
      return state.SkipWithError("the file could not be made");
    std::string buffer;
    FloorRow floor(buffer);
    bytes = 0;
    const auto flush = [&] {
      bytes += file.sputn(buffer.data(), static_cast<std::streamsize>(buffer.size()));
      buffer.clear();
    };
    for (std::int64_t i = 0; i < rows; ++i) {
      floor.Write(row.At(i));
      if (buffer.size() >= kBufferBytes) flush();
    }
    flush();
    file.close();
  }
  Report(state, bytes, rows * kColumns);
}

void RowCounts(benchmark::internal::Benchmark* load) {
  load->ArgName("rows")->Arg(kDefaultRows)->Unit(benchmark::kMillisecond)->UseRealTime();
  if (std::getenv("BENCHMARK_MANY_ROWS") != nullptr) load->Arg(kManyRows);
}

BENCHMARK(Load)->Apply(RowCounts);
BENCHMARK(LoadFloor)->Apply(RowCounts);

}  // namespace
