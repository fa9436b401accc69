#include "inference/MismatchReport.h"

#include <optional>

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

MismatchOutcome UpdateSchemaIni(const TextDatasetDescription& table, const Mismatch& mismatch) {
  const SchemaIniPaths paths(FolderOf(table.path));
  std::optional<FieldDefinition> declared;
  if (AddSchemaColumn(paths, table.name, static_cast<std::int32_t>(mismatch.fileColumn),
                      DefinitionFrom(mismatch), declared))
    return MismatchOutcome::kGenerated;
  if (!declared.has_value()) return MismatchOutcome::kNotWritten;
  return declared->type == mismatch.found ? MismatchOutcome::kAlreadyUpdated
                                          : MismatchOutcome::kDefinedOtherwise;
}

}  // namespace

MismatchOutcome RecordMismatch(const TextDatasetDescription& table,
                               const Mismatch& mismatch) noexcept {
  try {
    return UpdateSchemaIni(table, mismatch);
  } catch (...) {
    // A schema.ini that cannot be understood or memory that is short: nothing has been written.
    return MismatchOutcome::kNotWritten;
  }
}

std::u16string ReportMismatch(const TextDatasetDescription& table, const Mismatch& mismatch,
                              MessageLoader loadMessage) {
  const MismatchOutcome outcome = RecordMismatch(table, mismatch);
  const std::u16string format =
      loadMessage(kFirstOutcomeMessage + static_cast<std::uint32_t>(outcome));
  std::u16string message =
      quenra::String::FormatMessageW(format, {table.name, mismatch.text, mismatch.fieldName});
  quenra::EventLog::Write(message);
  return message;
}

}  // namespace TextFile
