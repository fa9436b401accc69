// Makes the reader of a table's format.
#pragma once

#include <memory>

#include "reading/Reader.h"

namespace TextFile {

// Deletes the reader as the class it was made as.
using ReaderPtr = std::unique_ptr<Reader, void (*)(Reader*)>;

// A reader of the description's format, standing before the first record, with the description's
// record terminator. The file may have failed to open. The description is not looked at again.
ReaderPtr MakeReader(const TextDatasetDescription& description);

// The same, standing on the first data record: the header row, if there is one, has been read.
ReaderPtr MakeDataReader(const TextDatasetDescription& description);

}  // namespace TextFile
