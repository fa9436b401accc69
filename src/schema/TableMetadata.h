// The metadata file of a table, "a.csv.xml" beside "a.csv", and files that are set aside.
//
// All failures are a TableFailure.
#pragma once

#include <string>

#include "schema/TableFiles.h"

namespace TextFile {

// Whether the table has one. It is a regular file, or a link to one: anything else of that name, a
// folder or a pipe, is somebody's, and no operation on the table touches it.
bool HasMetadata(const TableLocation& table);

// The file of the folder whose metadata has or would have the table's name; empty when there is
// none.
std::u16string MetadataOwner(const TableLocation& table);

// Refuses a table the name that the metadata of another file of its folder has or would have.
void RequireNoMetadataName(const TableLocation& table);

// Whether both are regular files that can be read, with the same bytes.
bool HaveSameBytes(const std::u16string& path, const std::u16string& other);

// Gives a file of the folder another name, one that is free and that no table has: "~a.csv.old",
// else "~a.csv.2.old" and so on. Answers its path.
std::u16string SetAside(const std::u16string& folder, const std::u16string& name);

}  // namespace TextFile
