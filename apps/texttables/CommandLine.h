// The command line: what the program was asked to do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "RowWriter.h"

namespace TextTables {

enum class Command {
  kList,
  kDescribe,
  kRows,
  kCount,
  kStat,
  kCreate,
  kLoad,
  kCopy,
  kRename,
  kDelete,
  kClaim,
  kLocale,
  kRegister,
  kUnregister
};

// Options that stand before or behind any command.
struct GlobalOptions {
  std::optional<std::u16string> moduleFile;
  std::optional<std::u16string> locale;  // BCP 47
  std::optional<unsigned> ansiCodePage;
  bool readAsManyRowsAsNeeded = false;
  bool noLatLongFields = false;
  bool inferTimeOnlyFields = false;
  std::optional<std::u16string> fieldTypeVersion;
  std::vector<std::pair<std::u16string, std::u16string>> hostOptions;  // name and value
  std::optional<std::u16string> eventLogFile;
  bool quiet = false;
};

struct RowOptions {
  std::optional<RowFormat> format;      // by default it depends on where the output goes
  std::vector<std::u16string> columns;  // empty: all
  std::optional<std::uint64_t> limit;
};

// A field of a table to be created.
struct NewField {
  std::u16string name;
  LONG type = 0;
  std::optional<LONG> length;
  std::optional<LONG> precision;
};

struct CommandLine {
  Command command = Command::kLocale;
  GlobalOptions global;
  std::u16string path;                // FOLDER or TABLE
  std::vector<std::u16string> names;  // claim
  bool json = false;
  RowOptions rows;
  std::vector<NewField> fields;          // create
  bool overwrite = false;                // create
  std::optional<std::u16string> source;  // load; nothing: standard input
  std::u16string target;                 // copy: NEWTABLE; rename: NEWNAME
  std::string reply;  // not empty: only this text is to be printed (help, version)
};

// The command's name on the command line.
const char* NameOf(Command command);

// `arguments` as Terminal::Arguments gives them. Throws UsageError.
CommandLine ParseCommandLine(std::vector<std::string> arguments);

}  // namespace TextTables
