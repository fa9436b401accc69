// What each command does. They write to `output`, which the caller flushes, and throw the
// failures of Failures.h.
#pragma once

#include "CommandLine.h"
#include "Output.h"

namespace TextTables {

void RunList(const CommandLine& line, Output& output);
void RunClaim(const CommandLine& line, Output& output);
void RunDescribe(const CommandLine& line, Output& output);
void RunCount(const CommandLine& line, Output& output);
void RunStat(const CommandLine& line, Output& output);
void RunRows(const CommandLine& line, Output& output);
void RunCreate(const CommandLine& line, Output& output);
void RunLoad(const CommandLine& line, Output& output);
void RunCopy(const CommandLine& line, Output& output);
void RunRename(const CommandLine& line, Output& output);
void RunDelete(const CommandLine& line, Output& output);
void RunLocale(const CommandLine& line, Output& output);

}  // namespace TextTables
