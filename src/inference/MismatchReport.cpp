#include "inference/MismatchReport.h"

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/String.h"
#include "schema/SchemaIniWriter.h"

namespace TextFile {

namespace {

constexpr std::uint32_t kFirstOutcomeMessage = 115;

FieldDefinition DefinitionFrom(const Mismatch& mismatch) {
  FieldDefinition definition;
  definition.name = mismatch.fieldName;
  definition.type = mismatch.found;
  definition.dateFormat.type = mismatch.found;
  return definition;
}

MismatchOutcome OutcomeOf(const ColumnToAdd& column) {
  if (column.added) return MismatchOutcome::kGenerated;
  if (!column.declared.has_value()) return MismatchOutcome::kNotWritten;
  return column.declared->type == column.column.type ? MismatchOutcome::kAlreadyUpdated
                                                     : MismatchOutcome::kDefinedOtherwise;
}

void UpdateSchemaIni(const TextDatasetDescription& table, std::span<Mismatch> mismatches) {
  std::vector<ColumnToAdd> columns;
  columns.reserve(mismatches.size());
  for (const Mismatch& mismatch : mismatches)
    columns.push_back(
        {static_cast<std::int32_t>(mismatch.fileColumn), DefinitionFrom(mismatch), {}, false});
  AddSchemaColumns(SchemaIniPaths(FolderOf(table.path)), table.name, columns);
  for (std::size_t i = 0; i < columns.size(); ++i) mismatches[i].outcome = OutcomeOf(columns[i]);
}

}  // namespace

void RecordMismatches(const TextDatasetDescription& table,
                      std::span<Mismatch> mismatches) noexcept {
  try {
    UpdateSchemaIni(table, mismatches);
  } catch (...) {
    // A schema.ini that cannot be understood or memory that is short: nothing has been written.
  }
}

std::vector<quenra::MessageText> ReportMismatches(const TextDatasetDescription& table,
                                                  std::span<Mismatch> mismatches,
                                                  MessageLoader loadMessage) {
  RecordMismatches(table, mismatches);
  std::vector<quenra::MessageText> messages;
  messages.reserve(mismatches.size());
  for (const Mismatch& mismatch : mismatches) {
    const std::u16string format =
        loadMessage(kFirstOutcomeMessage + static_cast<std::uint32_t>(mismatch.outcome));
    messages.push_back(
        quenra::String::ComposeMessage(format, {table.name, mismatch.text, mismatch.fieldName}));
    quenra::EventLog::Write(messages.back().text);
  }
  return messages;
}

}  // namespace TextFile
