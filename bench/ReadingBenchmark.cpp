// Lines, records, and opening a table.

#include "CoreTables.h"
#include "Throughput.h"
#include "reading/ReaderFactory.h"
#include "reading/TextLineStream.h"

namespace {

using TextFile::TextLineStream;

void ReadLine(benchmark::State& state, const BenchmarkTable& table) {
  const std::u16string path = Describe(table).path;
  std::u16string line;
  for (auto iteration : state) {
    TextLineStream stream;
    if (!stream.Open(path, TextLineStream::kTerminateLines))
      return state.SkipWithError("cannot read the table");
    while (stream.ReadLine(line)) benchmark::DoNotOptimize(line.data());
  }
  ReportTable(state, table);
}

void ReadRecord(benchmark::State& state, const BenchmarkTable& table) {
  const auto description = OpenTable(table);
  for (auto iteration : state) {
    std::int64_t rows = 0;
    const TextFile::ReaderPtr reader = TextFile::MakeDataReader(*description);
    while (!reader->record().empty()) {
      ++rows;
      reader->ReadRecord();
    }
    if (rows != table.rows) return state.SkipWithError("rows are missing");
  }
  ReportTable(state, table);
}

// What a user waits for before the first row: only the scanned rows count.
void OpenWithInference(benchmark::State& state, const BenchmarkTable& table) {
  for (auto iteration : state) benchmark::DoNotOptimize(OpenTable(table).get());
  Report(state, table.bytes * table.scannedRows / table.rows,
         table.cells() * table.scannedRows / table.rows);
}

// With no limit on the scanned rows; whole numbers keep it going to the end of the file.
void InferWholeFile(benchmark::State& state, const BenchmarkTable& table) {
  TextFile::OpenOptions options;
  options.readAsManyRowsAsNeeded = true;
  for (auto iteration : state) {
    TextFile::TextDatasetDescription description = Describe(table);
    auto status = TextFile::OpenDatasetStatus::kScanFailed;
    if (!TextFile::OpenTextDataset(description, options, status))
      return state.SkipWithError("cannot open the table");
  }
  ReportTable(state, table);
}

int RegisterInferWholeFile() {
  Register("InferWholeFile/mixed", TableKind::kMixed, &InferWholeFile);
  Register("InferWholeFile/wide", TableKind::kWide, &InferWholeFile);
  return 0;
}

const int kRegistered[] = {
    ForEveryTable("ReadLine", &ReadLine), ForEveryTable("ReadRecord", &ReadRecord),
    ForEveryTable("OpenWithInference", &OpenWithInference), RegisterInferWholeFile()};

}  // namespace
