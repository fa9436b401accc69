#include "inference/MismatchReport.h"

#include <mutex>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/String.h"
#include "schema/SchemaIniReader.h"
#include "schema/SchemaIniWriter.h"

namespace TextFile {

namespace {

constexpr std::uint32_t kFirstOutcomeMessage = 115;

// Cursors of several threads may find a mismatch at the same moment; each adds its column to what
// the one before has written.
std::mutex& SchemaIniLock() {
  static std::mutex lock;
  return lock;
}

FieldDefinition DefinitionFrom(const Mismatch& mismatch) {
  FieldDefinition definition;
  definition.name = mismatch.fieldName;
  definition.type = mismatch.found;
  definition.dateFormat.type = mismatch.found;
  return definition;
}

MismatchOutcome UpdateSchemaIni(const TextDatasetDescription& table, const Mismatch& mismatch) {
  const std::lock_guard<std::mutex> guard(SchemaIniLock());
  const SchemaIniPaths paths(FolderOf(table.path));
  SchemaOptions options;
  ReadSchemaSection(paths, table.name, options);
  const auto index = static_cast<std::int32_t>(mismatch.fileColumn);
  const auto declared = options.columns.find(index);
  if (declared != options.columns.end())
    return declared->second.type == mismatch.found ? MismatchOutcome::kAlreadyUpdated
                                                   : MismatchOutcome::kDefinedOtherwise;
  options.columns.emplace(index, DefinitionFrom(mismatch));
  return WriteSchemaSection(paths, table.name, options) ? MismatchOutcome::kGenerated
                                                        : MismatchOutcome::kNotWritten;
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
