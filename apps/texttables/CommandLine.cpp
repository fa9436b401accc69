#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <unordered_set>

#include "Failures.h"
#include "Fields.h"
#include "ShownText.h"
#include "Terminal.h"

namespace TextTables {

namespace {

struct CommandName {
  Command command;
  const char* name;
};
constexpr CommandName kCommands[] = {
    {Command::kList, "list"},         {Command::kDescribe, "describe"},
    {Command::kRows, "rows"},         {Command::kCount, "count"},
    {Command::kStat, "stat"},         {Command::kCreate, "create"},
    {Command::kLoad, "load"},         {Command::kCopy, "copy"},
    {Command::kRename, "rename"},     {Command::kDelete, "delete"},
    {Command::kClaim, "claim"},       {Command::kLocale, "locale"},
    {Command::kRegister, "register"}, {Command::kUnregister, "unregister"},
};

constexpr const char* kHelpCommand = "help";

struct FormatName {
  RowFormat format;
  const char* name;
};
constexpr FormatName kFormats[] = {
    {RowFormat::kTable, "table"},     {RowFormat::kCsv, "csv"},
    {RowFormat::kJsonLines, "jsonl"}, {RowFormat::kTyped, "typed"},
    {RowFormat::kGeoJson, "geojson"}, {RowFormat::kNone, "none"},
};

template <class Entry, std::size_t count>
std::string NamesOf(const Entry (&entries)[count]) {
  std::string names;
  for (const Entry& entry : entries) names += (names.empty() ? "" : ", ") + std::string(entry.name);
  return names;
}

// The parser takes an argument in brackets for a list. A file may well be called [a], so that such
// arguments go through it behind a mark.
constexpr char kMark = '\x01';

std::string Marked(std::string argument) {
  if (!argument.empty() && (argument[0] == '[' || argument[0] == kMark))
    argument.insert(argument.begin(), kMark);
  return argument;
}

std::string Unmarked(const std::string& argument) {
  return !argument.empty() && argument[0] == kMark ? argument.substr(1) : argument;
}

std::u16string TextOf(const std::string& argument) {
  return Terminal::TextOfArgument(Unmarked(argument));
}

// Plain decimal digits only: no sign, no octal, no 0x.
template <class Number>
Number NumberOf(const std::string& argument, const char* option, const char* helpPage) {
  const std::string text = Unmarked(argument);
  Number value{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (text.empty() || result.ec != std::errc() || result.ptr != end)
    throw UsageError(std::string(option) + " takes a whole number, not \"" + Shown(text) + "\"",
                     helpPage);
  return value;
}

// Cuts "A,B" at the commas. A name that holds a comma or a quote stands in double quotes, with the
// quotes inside it doubled.
std::vector<std::string> SplitNames(const std::string& list) {
  std::vector<std::string> names(1);
  bool quoted = false;
  for (std::size_t i = 0; i < list.size(); ++i) {
    const char byte = list[i];
    if (byte == '"' && (quoted || names.back().empty())) {
      if (quoted && i + 1 < list.size() && list[i + 1] == '"') {
        names.back() += list[++i];
      } else {
        quoted = !quoted;
      }
    } else if (byte == ',' && !quoted) {
      names.emplace_back();
    } else {
      names.back() += byte;
    }
  }
  return names;
}

// The arguments as the parser stores them.
struct RawArguments {
  std::string moduleFile, locale, ansiCodePage, fieldTypeVersion, eventLogFile;
  std::vector<std::string> hostOptions;
  std::string path;
  std::vector<std::string> names;
  std::string format, limit;
  std::vector<std::string> columns;
  std::vector<std::string> fields;
  std::string source, target;
  std::string helpPage;
};

void AddGlobalOptions(CLI::App& app, RawArguments& raw, GlobalOptions& global) {
  app.add_option("--module", raw.moduleFile,
                 "The data source's module, instead of the installed one")
      ->type_name("FILE");
  app.add_option("--locale", raw.locale, "The user's locale, such as de-DE")->type_name("NAME");
  app.add_option("--ansi-code-page", raw.ansiCodePage, "The code page of ANSI files, such as 1252")
      ->type_name("N");
  app.add_flag("--read-as-many-rows-as-needed", global.readAsManyRowsAsNeeded,
               "Look at more rows when the first ones do not settle the types");
  app.add_flag(
      "--no-lat-long-fields", global.noLatLongFields,
      "No coordinate fields beside latitude/longitude texts; a table without a header line "
      "gets them beside every text");
  app.add_flag("--infer-time-only-fields", global.inferTimeOnlyFields,
               "Times of day get a type of their own");
  app.add_option("--field-type-version", raw.fieldTypeVersion,
                 "The workspace property FIELD_TYPE_VERSION; 13.1 chooses the older types")
      ->type_name("VALUE");
  app.add_option("--host-option", raw.hostOptions, "An option of the host; may be repeated")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  app.add_option("--event-log", raw.eventLogFile, "Write the data source's events as JSON lines")
      ->type_name("FILE");
  app.add_flag("--quiet", global.quiet, "No warnings, no progress, no count of loaded rows");
}

constexpr const char* kJson = "JSON instead of text for people";
constexpr const char* kFolder = "A folder of text files";
constexpr const char* kTable = "FOLDER/NAME, a path to a text file";

CLI::App* AddCommand(CLI::App& app, const char* name, const char* description) {
  CLI::App* command = app.add_subcommand(name, description)->fallthrough();
  command->footer("texttables --help lists the options that every command takes.");
  return command;
}

CLI::Option* AddPositional(CLI::App* command, const char* name, std::string& value,
                           const char* description) {
  return command->add_option(name, value, description)->required()->type_name("");
}

void AddRows(CLI::App& app, RawArguments& raw, bool& json) {
  CLI::App* rows = AddCommand(app, "rows", "The rows of a table");
  AddPositional(rows, "TABLE", raw.path, kTable);
  rows->add_option(
          "--format", raw.format,
          "table, csv, jsonl, typed, geojson or none; by default table on a terminal, else csv")
      ->type_name("FORMAT");
  rows->add_flag("--json", json, "The same as --format jsonl");
  rows->add_option("--columns", raw.columns, "Only these columns, in this order")
      ->type_name("A,B,...")
      ->allow_extra_args(false);
  rows->add_option("--limit", raw.limit, "At most so many rows")->type_name("N");
}

void AddWritingCommands(CLI::App& app, RawArguments& raw, bool& overwrite) {
  CLI::App* create = AddCommand(app, "create", "A new table");
  AddPositional(create, "TABLE", raw.path, kTable);
  create
      ->add_option("--field", raw.fields,
                   "A field; may be repeated. TYPE is a name that describe prints, or its code")
      ->type_name("NAME:TYPE[:LENGTH[:PRECISION]]")
      ->allow_extra_args(false);
  create->add_flag("--overwrite", overwrite, "In place of a file of that name");

  CLI::App* load = AddCommand(app, "load", "Append rows to a table");
  AddPositional(load, "TABLE", raw.path, kTable);
  load->add_option(
          "FILE", raw.source,
          "Lines of JSON, an array or an object a row; by default, and with -, standard input")
      ->type_name("");

  CLI::App* copy = AddCommand(app, "copy", "Copy a table with what schema.ini says of it");
  AddPositional(copy, "TABLE", raw.path, kTable);
  AddPositional(copy, "NEWTABLE", raw.target, "FOLDER/NAME of the copy");

  CLI::App* rename = AddCommand(app, "rename", "Give a table another name in its folder");
  AddPositional(rename, "TABLE", raw.path, kTable);
  AddPositional(rename, "NEWNAME", raw.target, "The new name, without a folder");

  CLI::App* remove = AddCommand(app, "delete", "Delete a table with what schema.ini says of it");
  AddPositional(remove, "TABLE", raw.path, kTable);
}

void AddCommands(CLI::App& app, RawArguments& raw, CommandLine& line) {
  bool& json = line.json;
  CLI::App* list = AddCommand(app, "list", "The tables of a folder");
  AddPositional(list, "FOLDER", raw.path, kFolder);
  list->add_flag("--json", json, kJson);

  const std::pair<const char*, const char*> tableCommands[] = {
      {"describe", "The delimiter and the fields of a table"},
      {"count", "The number of rows of a table"},
      {"stat", "Size, times and mode of a table's file"}};
  for (const auto& [name, description] : tableCommands) {
    CLI::App* command = AddCommand(app, name, description);
    AddPositional(command, "TABLE", raw.path, kTable);
    command->add_flag("--json", json, kJson);
    if (std::string_view(name) == "describe") AddRows(app, raw, json);
  }

  AddWritingCommands(app, raw, line.overwrite);

  CLI::App* claim = AddCommand(app, "claim", "Which of these files belong to the data source");
  AddPositional(claim, "FOLDER", raw.path, kFolder);
  claim->add_option("NAME", raw.names, "File names; by default those of the folder")->type_name("");
  claim->add_flag("--json", json, kJson);

  CLI::App* locale = AddCommand(app, "locale", "The locale values in force");
  locale->add_flag("--json", json, kJson);

  AddCommand(app, "register", "Write the module's registration");
  AddCommand(app, "unregister", "Take the module's registration back");

  CLI::App* help = AddCommand(app, kHelpCommand, "This help, or that of a command");
  help->add_option("COMMAND", raw.helpPage, "The command")->type_name("");
}

std::pair<std::u16string, std::u16string> HostOptionOf(const std::string& argument) {
  const std::string text = Unmarked(argument);
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0)
    throw UsageError("--host-option takes NAME=VALUE, not \"" + Shown(text) + "\"", kGeneralHelp);
  return {Terminal::TextOfArgument(text.substr(0, equals)),
          Terminal::TextOfArgument(text.substr(equals + 1))};
}

RowFormat FormatOf(const std::string& argument) {
  for (const FormatName& format : kFormats)
    if (format.name == argument) return format.format;
  throw UsageError("there is no format \"" + Shown(argument) + "\"; formats: " + NamesOf(kFormats),
                   "rows");
}

void FillGlobalOptions(const CLI::App& app, const RawArguments& raw, GlobalOptions& global) {
  if (app.count("--module") > 0) global.moduleFile = TextOf(raw.moduleFile);
  if (app.count("--locale") > 0) global.locale = TextOf(raw.locale);
  if (app.count("--ansi-code-page") > 0)
    global.ansiCodePage = NumberOf<unsigned>(raw.ansiCodePage, "--ansi-code-page", kGeneralHelp);
  if (app.count("--field-type-version") > 0) global.fieldTypeVersion = TextOf(raw.fieldTypeVersion);
  if (app.count("--event-log") > 0) global.eventLogFile = TextOf(raw.eventLogFile);
  for (const std::string& option : raw.hostOptions)
    global.hostOptions.push_back(HostOptionOf(option));
}

void FillRowOptions(const CLI::App& command, const RawArguments& raw, bool json, RowOptions& rows) {
  if (command.count("--format") > 0) rows.format = FormatOf(raw.format);
  if (json) {
    if (rows.format.value_or(RowFormat::kJsonLines) != RowFormat::kJsonLines)
      throw UsageError("--json and --format " + Shown(raw.format) + " exclude each other", "rows");
    rows.format = RowFormat::kJsonLines;
  }
  if (command.count("--limit") > 0)
    rows.limit = NumberOf<std::uint64_t>(raw.limit, "--limit", "rows");
  for (const std::string& list : raw.columns)
    for (const std::string& name : SplitNames(Unmarked(list)))
      rows.columns.push_back(Terminal::TextOfArgument(name));
}

// The LENGTH or PRECISION of a field; an empty one is not set.
bool ReadSize(std::string_view text, std::optional<LONG>& size) {
  if (text.empty()) return true;
  LONG value = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (text[0] == '-' || result.ec != std::errc() || result.ptr != end) return false;
  size = value;
  return true;
}

// NAME:TYPE and `sizes` numbers behind it, in the parts of a field's argument. A type that nothing
// stands in front of is part of a name.
std::optional<NewField> ReadField(std::string_view text, int sizes) {
  std::string_view parts[2];
  std::string_view rest = text;
  for (int i = sizes - 1; i >= 0; --i) {
    const std::size_t colon = rest.rfind(':');
    if (colon == std::string_view::npos) return std::nullopt;
    parts[i] = rest.substr(colon + 1);
    rest = rest.substr(0, colon);
  }
  const std::size_t colon = rest.rfind(':');
  if (colon == std::string_view::npos || colon == 0) return std::nullopt;
  const auto type = FieldTypeOf(rest.substr(colon + 1));
  NewField field;
  if (!type || !ReadSize(parts[0], field.length) || !ReadSize(parts[1], field.precision))
    return std::nullopt;
  field.name = Terminal::TextOfArgument(rest.substr(0, colon));
  field.type = *type;
  return field;
}

// A name may hold colons: what can be read as precision, length and type from the end is not part
// of the name.
NewField NewFieldOf(const std::string& text) {
  for (const int sizes : {2, 1, 0})
    if (auto field = ReadField(text, sizes)) return *std::move(field);
  throw UsageError("--field takes NAME:TYPE[:LENGTH[:PRECISION]], not \"" + Shown(text) +
                       "\"; types: " + FieldTypeNames(),
                   "create");
}

void FillNewFields(const std::vector<std::string>& arguments, std::vector<NewField>& fields) {
  std::unordered_set<std::u16string> names;
  for (const std::string& argument : arguments) {
    NewField field = NewFieldOf(Unmarked(argument));
    if (!names.insert(FoldedName(field.name)).second)
      throw UsageError("there are two fields \"" + Shown(field.name) + "\"", "create");
    fields.push_back(std::move(field));
  }
}

Command CommandOf(const std::string& name) {
  return std::find_if(std::begin(kCommands), std::end(kCommands),
                      [&name](const CommandName& entry) { return name == entry.name; })
      ->command;
}

std::string CommandNames() { return NamesOf(kCommands) + ", " + kHelpCommand; }

UsageError UnknownCommand(const std::string& name) {
  return UsageError("there is no command \"" + Shown(name) + "\"; commands: " + CommandNames(),
                    kGeneralHelp);
}

// As it would be typed, near enough to be recognised.
std::string Typed(const std::string& argument) {
  const std::string shown = Shown(Unmarked(argument));
  return argument.empty() || argument.find(' ') != std::string::npos ? "\"" + shown + "\"" : shown;
}

bool HasOption(const CLI::App& command, std::string_view argument) {
  const std::string name(argument.substr(0, argument.find('=')));
  return name.starts_with("-") && command.get_option_no_throw(name) != nullptr;
}

// Options and arguments that the command does not know, in the order in which they were given, or
// an option of its own that stands in front of it.
UsageError UnexpectedArguments(const CLI::App& command, const std::vector<std::string>& arguments) {
  const std::string name = command.get_name();
  if (HasOption(command, Unmarked(arguments.front())))
    return UsageError(Typed(arguments.front()) + " stands behind the command: " + name + " ... " +
                          Typed(arguments.front()),
                      name);
  std::string text = name + " does not take";
  for (const std::string& argument : arguments) text += " " + Typed(argument);
  return UsageError(text, name);
}

// The page that tells of the option which the parser complains of: its words begin with the name of
// the option, or have it behind a colon.
std::string HelpPageOf(const CLI::App& app, std::string_view complaint,
                       const std::string& command) {
  for (const CLI::Option* option : app.get_options())
    for (const std::string& name : option->get_lnames())
      if (complaint.starts_with("--" + name + ":") ||
          complaint.find(": --" + name + " = ") != std::string_view::npos)
        return kGeneralHelp;
  return command;
}

// What the parser could not make sense of, in words of ours where its own say less.
UsageError UsageErrorOf(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> others = app.remaining(true);
  std::string complaint = error.what();
  std::erase(complaint, kMark);
  if (!app.get_subcommands().empty()) {
    const std::string command = app.get_subcommands().front()->get_name();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr && !others.empty())
      return UnexpectedArguments(*app.get_subcommands().front(), others);
    return UsageError(Shown(complaint), HelpPageOf(app, complaint, command));
  }
  for (const std::string& argument : others)
    if (!argument.empty() && argument[0] != '-') return UnknownCommand(Unmarked(argument));
  if (!others.empty())
    return UsageError("there is no option \"" + Shown(others.front()) + "\"", kGeneralHelp);
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
    return UsageError("a command is missing; commands: " + CommandNames(), kGeneralHelp);
  return UsageError(Shown(complaint), kGeneralHelp);
}

// help and help COMMAND.
std::string HelpOf(const CLI::App& app, const RawArguments& raw) {
  if (raw.helpPage.empty())
    return app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
  const std::string name = Unmarked(raw.helpPage);
  for (const CLI::App* command : app.get_subcommands({}))
    if (command->get_name() == name) return command->help(app.get_name());
  throw UnknownCommand(name);
}

}  // namespace

const char* NameOf(Command command) {
  return std::find_if(std::begin(kCommands), std::end(kCommands),
                      [command](const CommandName& entry) { return command == entry.command; })
      ->name;
}

CommandLine ParseCommandLine(std::vector<std::string> arguments) {
  CommandLine line;
  RawArguments raw;
  CLI::App app("Shows and writes folders of text files as tables.", "texttables");
  app.allow_windows_style_options(false);
  app.set_version_flag("--version", "texttables " TEXTTABLES_VERSION, "The program's version");
  app.require_subcommand(1);
  app.get_formatter()->label("OPTIONS", "options");
  app.get_formatter()->label("SUBCOMMAND", "COMMAND ...");
  app.get_formatter()->label("Subcommands", "Commands");
  app.get_formatter()->label("REQUIRED", "");
  AddGlobalOptions(app, raw, line.global);
  AddCommands(app, raw, line);

  std::transform(arguments.begin(), arguments.end(), arguments.begin(), Marked);
  std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the end
  try {
    app.parse(arguments);
  } catch (const CLI::CallForHelp&) {
    line.reply = app.help();
    return line;
  } catch (const CLI::CallForVersion& version) {
    line.reply = std::string(version.what()) + "\n";
    return line;
  } catch (const CLI::ParseError& error) {
    throw UsageErrorOf(app, error);
  }

  const CLI::App& command = *app.get_subcommands().front();
  if (command.get_name() == kHelpCommand) {
    line.reply = HelpOf(app, raw);
    return line;
  }
  line.command = CommandOf(command.get_name());
  line.path = TextOf(raw.path);
  for (const std::string& name : raw.names) line.names.push_back(TextOf(name));
  line.target = TextOf(raw.target);
  if (!raw.source.empty() && raw.source != "-") line.source = TextOf(raw.source);
  FillNewFields(raw.fields, line.fields);
  FillGlobalOptions(app, raw, line.global);
  if (line.command == Command::kRows) FillRowOptions(command, raw, line.json, line.rows);
  return line;
}

}  // namespace TextTables
