// The files that a command works on, so that nothing else is written over them.
//
//   if (IsOneOf(FilesOf(line), logFile)) throw UsageError(...);
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "CommandLine.h"

namespace TextTables {

// Every file that the command reads or writes, whether it is there or not: tables with their
// metadata, the schema.ini of their folders, the rows that are loaded, the module.
std::vector<std::u16string> FilesOf(const CommandLine& line);

// Whether `file` is one of `files`, or one of the files behind the standard streams, under whatever
// name or link; also when none of the names has a file yet. Devices and pipes are never.
bool IsOneOf(const std::vector<std::u16string>& files, std::u16string_view file);

}  // namespace TextTables
