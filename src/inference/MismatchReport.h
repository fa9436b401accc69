// What happens when a value does not fit the type of its column: the right type is recorded in
// schema.ini where that is safe, and the user is told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "reading/TextDatasetDescription.h"

namespace TextFile {

// The message of an outcome is the string resource 115 + outcome.
enum class MismatchOutcome : std::uint32_t {
  kGenerated = 0,         // schema.ini had no such column; it has now
  kAlreadyUpdated = 1,    // schema.ini defines the column with the type found
  kDefinedOtherwise = 2,  // schema.ini defines the column with another type
  kNotWritten = 3,        // schema.ini could not be read or written
};

// Loads a text of the module's string table.
using MessageLoader = std::u16string (*)(std::uint32_t id);

// A value that did not fit.
struct Mismatch {
  std::size_t fileColumn = 0;  // zero-based position among the file's columns
  std::u16string_view fieldName;
  std::u16string_view text;
  FieldType found = FieldType::kString;  // kDouble when the text is a floating-point number
};

// Records the type found in schema.ini unless that already says something about the column. Never
// throws: whatever goes wrong is kNotWritten.
MismatchOutcome RecordMismatch(const TextDatasetDescription& table,
                               const Mismatch& mismatch) noexcept;

// Records the mismatch, writes the message of the outcome to the event log and answers it.
std::u16string ReportMismatch(const TextDatasetDescription& table, const Mismatch& mismatch,
                              MessageLoader loadMessage);

}  // namespace TextFile
