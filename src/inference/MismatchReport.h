// What happens when a value does not fit the type of its column: the right type is recorded in
// schema.ini where that is safe, and the user is told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/MessageText.h"
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

// A value that did not fit, and what was made of that.
struct Mismatch {
  std::size_t fileColumn = 0;  // zero-based position among the file's columns
  std::u16string_view fieldName;
  std::u16string_view text;
  FieldType found = FieldType::kString;  // kDouble when the text is a floating-point number
  MismatchOutcome outcome = MismatchOutcome::kNotWritten;
};

// Records the types found in schema.ini, in one write, unless that already says something about a
// column. The mismatches are of different columns. Never throws: whatever goes wrong is
// kNotWritten.
void RecordMismatches(const TextDatasetDescription& table, std::span<Mismatch> mismatches) noexcept;

// Records the mismatches, writes the messages of their outcomes to the event log and answers them.
std::vector<quenra::MessageText> ReportMismatches(const TextDatasetDescription& table,
                                                  std::span<Mismatch> mismatches,
                                                  MessageLoader loadMessage);

}  // namespace TextFile
