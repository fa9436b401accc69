// A table's files as one thing: the text file, its section of schema.ini, and the metadata file
// beside it (the file's name with ".xml" behind it).
//
// Every function throws TableFailure with a text for the user, and has then undone what it had
// begun: schema.ini is byte for byte what it was. Ended half-way, by a crash, it leaves the table
// as it was or as it was asked for; at worst a section of schema.ini, a metadata file or a
// temporary file stays that no table belongs to, and does not get into the way of the next try.
//
// Operations on the tables of one folder come one after another, also those of several processes:
// each holds the folder's schema.ini from before it looks at the files until all is done. A table's
// sections are those that SchemaIniFile counts as its own.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "schema/FieldDefinition.h"
#include "schema/TableFailure.h"

namespace TextFile {

// Where a table is. `name` is the file's name, extension included.
struct TableLocation {
  std::u16string folder;
  std::u16string name;

  std::u16string Path() const;
  std::u16string MetadataPath() const;
};

// What becomes of a file that has the name of a new table.
enum class ExistingFile { kReplaced, kKept };

// Creates a table with a header line and a section. It takes the place of a file that has the name
// when the call begins and is not to be kept; any other file of the name is refused, with `taken`
// set, until the last step. A section that already describes the file decides the columns' types,
// widths and date formats; the extension decides the delimiter. A table that could not be opened
// again is not created. Throws also ParseError when the section cannot be understood.
void CreateTableFiles(const TableLocation& table, std::vector<FieldDefinition> fields,
                      ExistingFile existing = ExistingFile::kReplaced);

// Refuses a target that exists, the table itself included. The section goes in front of one that
// stands under the new name. Answers what the user should know, which the event log has been told
// as well; mostly empty.
std::u16string CopyTableFiles(const TableLocation& from, const TableLocation& to);

// Within the folder. Refuses a name that exists. Every section of the old name gets the new one;
// one that stood under the new name goes behind. Answers as CopyTableFiles does.
std::u16string RenameTableFiles(const TableLocation& table, std::u16string_view newName);

void DeleteTableFiles(const TableLocation& table);

}  // namespace TextFile
