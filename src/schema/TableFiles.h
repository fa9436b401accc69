// A table's files as one thing: the text file, its section of schema.ini, and the metadata file
// beside it (the file's name with ".xml" behind it).
//
// Every function throws TableFailure with a text for the user, and has then undone what it had
// begun. Ended half-way, by a crash, it leaves the table as it was or as it was asked for; at worst
// a section of schema.ini, a metadata file or a temporary file stays that no table belongs to, and
// does not get into the way of the next try.
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

// Creates a table with a header line and a section, in place of a file of that name. A section
// that already describes the file decides the columns' types, widths and date formats; the
// extension decides the delimiter. A failure leaves an existing file as it was.
void CreateTableFiles(const TableLocation& table, std::vector<FieldDefinition> fields);

// Refuses a target that exists, the table itself included.
void CopyTableFiles(const TableLocation& from, const TableLocation& to);

// Within the folder. Refuses a name that exists.
void RenameTableFiles(const TableLocation& table, std::u16string_view newName);

void DeleteTableFiles(const TableLocation& table);

}  // namespace TextFile
