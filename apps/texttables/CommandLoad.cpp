// load.
#include <optional>
#include <unordered_set>

#include "Commands.h"
#include "Diagnostics.h"
#include "EventLogFile.h"
#include "Failures.h"
#include "InputLines.h"
#include "LoadedRow.h"
#include "ModuleHost.h"
#include "Progress.h"
#include "ShownText.h"
#include "Terminal.h"
#include "TextEncoding.h"

namespace TextTables {

namespace {

using quenra::ComPtr;

constexpr HRESULT kFieldValueError = static_cast<HRESULT>(0x80040955u);

std::string RowsLoaded(std::uint64_t rows) {
  return std::to_string(rows) + (rows == 1 ? " row loaded" : " rows loaded");
}

bool IsBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

// Rows on their way from the lines into the table. Not to be used after it has thrown.
class Loading {
 public:
  Loading(quenra::IPlugInDatasetHelper& dataset, const std::vector<Field>& fields,
          const TablePath& path, std::string source, bool quiet)
      : table_(path.name), source_(std::move(source)), quiet_(quiet) {
    ComPtr<quenra::HostFieldCollection> collection;
    Check(dataset.DescribeFields(0, collection.Receive()), table_);
    row_.emplace(*collection, fields);
    const auto load = quenra::QueryFor<quenra::IPlugInDatasetLoad>(&dataset);
    Check(load ? load->CreateLoader(nullptr, loader_.Receive()) : E_NOINTERFACE, table_);
    counter_ = quenra::QueryFor<quenra::IPlugInRowCount>(&dataset);
  }

  // Throws a Refusal that names the line and says how many rows there are.
  void LoadLine(std::string_view line, std::uint64_t number) {
    try {
      row_->Read(line);
    } catch (const BadRow& bad) {
      Finish();
      throw Refusal(bad.Code(), Place(number) + bad.what() + "; " + RowsLoaded(rows_));
    }
    const HRESULT result = loader_->LoadRow(row_->Buffer());
    if (FAILED(result)) {
      const std::string text = TakeChainedError(result).text;
      loader_.Reset();
      RefuseWriting(result, text);
    }
    ++rows_;
    for (const std::string& warning : row_->Warnings()) Warn(number, warning);
    for (const std::u16string& message : watch_.Take())
      if (told_.insert(message).second) Warn(number, MessageBytes(message));
  }

  // Completes the file. An ending loader has no result: what it could not write is in the log.
  void Finish() {
    loader_.Reset();
    const std::vector<std::u16string> messages = watch_.Take();
    if (!messages.empty()) RefuseWriting(E_FAIL, MessageBytes(messages.back()));
  }

  std::uint64_t Rows() const noexcept { return rows_; }

 private:
  // Rows wait in the data source's buffer: those that were taken are not all in the file.
  [[noreturn]] void RefuseWriting(HRESULT code, const std::string& text) {
    std::string whole = text.empty() ? MeaningOf(code) + ": " + Shown(table_) : text;
    LONG count = 0;
    if (counter_ && !FAILED(counter_->CountRows(0, &count)))
      whole += "; the table has " + std::to_string(count) + (count == 1 ? " row" : " rows");
    throw Refusal(code, whole);
  }

  std::string Place(std::uint64_t number) const {
    return source_ + ", line " + std::to_string(number) + ": ";
  }

  void Warn(std::uint64_t number, const std::string& text) const {
    if (!quiet_) ReportWarning(kFieldValueError, Place(number) + text);
  }

  const std::u16string table_;
  const std::string source_;
  const bool quiet_;
  MessageWatch watch_;
  std::optional<LoadedRow> row_;
  ComPtr<quenra::IPlugInDatasetLoader> loader_;
  ComPtr<quenra::IPlugInRowCount> counter_;
  std::uint64_t rows_ = 0;
  std::unordered_set<std::u16string> told_;
};

// What is added to it would come in again, and a table's text is not what rows are loaded from.
void RequireOtherFile(const Terminal::Input& input, const CommandLine& line) {
  if (input.IsFile(line.path))
    throw UsageError("a table cannot be loaded from its own file, " +
                     (line.source ? Shown(*line.source) : "standard input"));
}

void LoadLines(InputLines& lines, Loading& loading, bool showProgress) {
  Progress progress(showProgress);
  while (lines.Next()) {
    if (IsBlank(lines.Line())) continue;
    loading.LoadLine(lines.Line(), lines.Number());
    progress.Advance(lines.Bytes());
    Terminal::DeferInterrupts::Poll();
  }
}

}  // namespace

void RunLoad(const CommandLine& line, Output&) {
  const TablePath path = SplitTablePath(line.path);
  const bool quiet = line.global.quiet;
  std::optional<Terminal::Input> input;
  if (line.source)
    input.emplace(*line.source);
  else
    input.emplace();
  RequireOtherFile(*input, line);
  InputLines lines(*input);
  const ModuleHost host(line.global);
  const auto dataset = host.OpenTable(path);
  const std::vector<Field> fields = FieldsOf(*dataset.Get(), path.name);
  const Terminal::DeferInterrupts defer;
  Loading loading(*dataset.Get(), fields, path,
                  line.source ? Shown(*line.source) : "standard input", quiet);
  const auto tell = [&] {
    if (!quiet) Terminal::WriteStandardError(RowsLoaded(loading.Rows()) + "\n");
  };
  try {
    LoadLines(lines, loading, !quiet);
  } catch (const Interrupted&) {
    loading.Finish();
    tell();
    throw;
  }
  loading.Finish();
  tell();
}

}  // namespace TextTables
