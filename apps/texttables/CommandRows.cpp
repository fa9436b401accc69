// rows.
#include "Commands.h"
#include "Diagnostics.h"
#include "Failures.h"
#include "ModuleHost.h"
#include "Progress.h"
#include "RowSlots.h"
#include "Terminal.h"

namespace TextTables {

namespace {

using quenra::ComPtr;

RowFormat FormatOf(const RowOptions& options) {
  if (options.format) return *options.format;
  return Terminal::StandardOutputIsTerminal() ? RowFormat::kTable : RowFormat::kCsv;
}

// Where the rows come from, and where they go.
struct RowJob {
  quenra::IPlugInCursorHelper& cursor;
  quenra::IPlugInFastQueryValues& values;
  RowSlots& slots;
  RowWriter& writer;
  Output& output;
};

void CopyRows(const RowJob& job, std::optional<std::uint64_t> limit, bool quiet,
              bool showProgress) {
  Progress progress(showProgress);
  const Terminal::DeferInterrupts defer;
  VARIANT_BOOL finished = VARIANT_FALSE;
  Check(job.cursor.AtLastRecord(&finished), u"rows");
  if (finished != VARIANT_FALSE) return;
  for (std::uint64_t row = 0; !limit || row < *limit; ++row) {
    if (row > 0 && job.cursor.AdvanceRecord() != S_OK) break;
    job.slots.Clear();
    Check(job.values.ReadRecordValuesFast(job.slots.Get()), u"rows");
    ReportWarnings(quiet);
    job.writer.Write(job.slots.Get());
    progress.Advance(job.output.Bytes());
    Terminal::DeferInterrupts::Poll();
  }
}

}  // namespace

void RunRows(const CommandLine& line, Output& output) {
  const TablePath path = SplitTablePath(line.path);
  const ModuleHost host(line.global);
  const auto dataset = host.OpenTable(path);
  const RowFormat format = FormatOf(line.rows);
  const TableFields fields(*dataset.Get(), path.name);
  const ColumnPlan plan = format == RowFormat::kGeoJson ? PlanFeatures(fields, line.rows.columns)
                                                        : PlanColumns(fields, line.rows.columns);

  const FieldMap fieldMap(plan.fieldMap);
  ComPtr<quenra::IPlugInCursorHelper> cursor;
  Check(dataset->FetchAllRows(0, nullptr, fieldMap.Get(), cursor.Receive()), path.name);
  const auto values = cursor.As<quenra::IPlugInFastQueryValues>();
  if (!values) Check(E_NOINTERFACE, path.name);

  const auto writer = MakeRowWriter(format, output, plan.points);
  RowSlots slots(plan.slots);
  // Rows that scroll by on the terminal are progress enough.
  const bool showProgress =
      !line.global.quiet && (format == RowFormat::kNone || !Terminal::StandardOutputIsTerminal());
  writer->Begin(plan.columns, fields);
  try {
    CopyRows({*cursor, *values, slots, *writer, output}, line.rows.limit, line.global.quiet,
             showProgress);
  } catch (const Refusal&) {
    writer->End();  // the rows before the refusal are good
    throw;
  }
  writer->End();
}

}  // namespace TextTables
