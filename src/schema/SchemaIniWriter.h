// Writes the section of one file in a folder's schema.ini.
//
// WriteSchemaSection answers whether the change was made. When it was not, schema.ini is as it was
// and `failure` (may be null) says why; nothing is thrown. Whose a section is, SchemaIniFile tells.
// A schema.ini in an encoding that is not read (UTF-16 with the high byte first, UTF-32) is never
// rewritten. Lines that are not changed keep their bytes; new lines are written in the encoding of
// the file, a new file in UTF-8 without a mark.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "schema/SchemaIniPaths.h"
#include "schema/TableSchema.h"

namespace TextFile {

// Replaces the section, whose header line stays as it was found, or appends it. Only options that
// are marked as specified are written, and the columns. A column whose line would not read back (a
// double quote in its name, for instance) makes the write fail.
bool WriteSchemaSection(const SchemaIniPaths& paths, std::u16string_view sectionName,
                        const SchemaOptions& options, std::u16string* failure = nullptr) noexcept;

// A column to be added to a section, and what became of that.
struct ColumnToAdd {
  std::int32_t index = 0;  // zero-based position among the file's columns
  FieldDefinition column;
  std::optional<FieldDefinition> declared;  // what the section declares already
  bool added = false;                       // false as well when it could not be written
};

// Adds the columns that the section does not declare, in one write; the section is made when there
// is none, and what other writers do meanwhile is kept. The columns have different positions.
// Nothing is added for a file that has gone, or when another file's section is taken for its own.
// Throws ParseError when the section cannot be understood.
void AddSchemaColumns(const SchemaIniPaths& paths, std::u16string_view sectionName,
                      std::span<ColumnToAdd> columns);

// Throws SchemaIniFailure when a column's line would not read back.
void RequireReadableColumns(const SchemaOptions& options);

// The lines of a section, without the header line.
std::vector<std::u16string> SchemaSectionLines(const SchemaOptions& options);

}  // namespace TextFile
