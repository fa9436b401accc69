// Picks the data source's files out of the host's list of file names.
#pragma once

#include "host/interfaces/HostFileNames.h"

namespace quenra {

// Whether the list holds a text file; directories do not count. The list is left unchanged.
bool HoldsTextFile(HostFileNames& names);

// Takes the text files out of the list, and then their metadata files (the name with ".xml"
// appended). False, and the list is unchanged, when it holds no text file.
bool ClaimTextFiles(HostFileNames& names);

}  // namespace quenra
