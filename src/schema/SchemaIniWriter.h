// Writes the section of one file into a folder's schema.ini.
//
// The new file is finished under its temporary name and takes the old one's place in one rename,
// so that schema.ini is never seen half written. Other sections keep their order and their lines;
// blank lines go. Written as UTF-8, with a byte-order mark only when the old file had a mark.
#pragma once

#include <string>
#include <string_view>

#include "schema/SchemaIniPaths.h"
#include "schema/TableSchema.h"

namespace TextFile {

// Replaces the section named `sectionName` (compared without regard to case; its header line stays
// as it was found), or appends it. Only options that are marked as specified are written, and the
// columns of `options`. False when schema.ini does not hold the section now: it is then as it was,
// and `failure` (may be null) says why. A schema.ini in an encoding that is not read (UTF-16 with
// the high byte first, UTF-32) is never rewritten, and a column whose line would not read back (a
// double quote in its name, for instance) is not written.
bool WriteSchemaSection(const SchemaIniPaths& paths, std::u16string_view sectionName,
                        const SchemaOptions& options, std::u16string* failure = nullptr) noexcept;

// The lines of a section, each ended by a line feed, from the header line on.
std::u16string SchemaSectionText(std::u16string_view sectionName, const SchemaOptions& options);

}  // namespace TextFile
