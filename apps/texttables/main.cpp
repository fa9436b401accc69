// texttables: a host application for the text data source.
#include <algorithm>
#include <cctype>
#include <exception>
#include <new>
#include <optional>

#include "CommandFiles.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Diagnostics.h"
#include "EventLogFile.h"
#include "Failures.h"
#include "Output.h"
#include "ShownText.h"
#include "Terminal.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "host/DataCore/DataCoreUtil.h"

namespace TextTables {

namespace {

// What the system's own functions make of other spellings differs from system to system: de_DE is
// German here, unknown there, and the empty name is a locale of no country.
bool IsLanguageTag(std::u16string_view name) {
  for (std::size_t begin = 0; begin <= name.size();) {
    const std::size_t end = std::min(name.find(u'-', begin), name.size());
    if (end == begin || end - begin > 8) return false;
    for (const char16_t unit : name.substr(begin, end - begin))
      if (unit >= 0x80 || std::isalnum(unit) == 0) return false;
    begin = end + 1;
  }
  return true;
}

// The tag of a locale that is spelled as in the environment, de_DE.UTF-8@euro; else an example.
std::u16string TagToTry(std::u16string_view name) {
  std::u16string tag(name.substr(0, name.find_first_of(u".@")));
  std::replace(tag.begin(), tag.end(), u'_', u'-');
  return IsLanguageTag(tag) && tag.find(u'-') != std::u16string::npos ? tag : u"de-DE";
}

void SetUserLocale(const std::u16string& name) {
  if (!IsLanguageTag(name))
    throw UsageError(
        "--locale takes a name such as " + Shown(TagToTry(name)) + ", not \"" + Shown(name) + "\"",
        kGeneralHelp);
  if (!quenra::QUENRALocale::SetLocale(name))
    throw UsageError("there is no locale \"" + Shown(name) + "\"", kGeneralHelp);
}

// The settings of this process, which the module reads; to be made before it is loaded.
void ApplyHostSettings(const GlobalOptions& options) {
  using quenra::QUENRALocale;
  if (options.locale) SetUserLocale(*options.locale);
  if (options.ansiCodePage && !QUENRALocale::SetAnsiCodePage(*options.ansiCodePage))
    throw UsageError("there is no code page " + std::to_string(*options.ansiCodePage),
                     kGeneralHelp);
  for (const auto& [name, text] : options.hostOptions)
    quenra::DataCoreUtil::SetOption(name, quenra::Variant(text).Address());
}

// The log replaces its file, which must be none that the command needs.
void RequireFreeEventLog(const CommandLine& line) {
  if (IsOneOf(FilesOf(line), *line.global.eventLogFile))
    throw UsageError("the event log cannot be " + Shown(*line.global.eventLogFile) +
                     ", a file that the command works on");
}

void RunCommand(const CommandLine& line, Output& output) {
  switch (line.command) {
    case Command::kList:
      return RunList(line, output);
    case Command::kDescribe:
      return RunDescribe(line, output);
    case Command::kRows:
      return RunRows(line, output);
    case Command::kCount:
      return RunCount(line, output);
    case Command::kStat:
      return RunStat(line, output);
    case Command::kCreate:
      return RunCreate(line, output);
    case Command::kLoad:
      return RunLoad(line, output);
    case Command::kCopy:
      return RunCopy(line, output);
    case Command::kRename:
      return RunRename(line, output);
    case Command::kDelete:
      return RunDelete(line, output);
    case Command::kClaim:
      return RunClaim(line, output);
    case Command::kLocale:
      return RunLocale(line, output);
    case Command::kRegister:
      return RunRegister(line, output);
    case Command::kUnregister:
      return RunUnregister(line, output);
  }
}

void Run(std::vector<std::string> arguments) {
  const CommandLine line = ParseCommandLine(std::move(arguments));
  StandardOutput output;
  if (!line.reply.empty()) {
    output.Append(line.reply);
  } else {
    ApplyHostSettings(line.global);
    std::optional<EventLogFile> eventLog;
    if (line.global.eventLogFile) {
      RequireFreeEventLog(line);
      eventLog.emplace(*line.global.eventLogFile);
    }
    try {
      RunCommand(line, output);
    } catch (const UsageError& error) {
      throw UsageError(error.what(), error.HelpPage().value_or(NameOf(line.command)));
    } catch (const Refusal&) {
      // The rows before the refusal are good.
      output.Flush();
      throw;
    }
  }
  output.Flush();
}

int RunToExitCode(std::vector<std::string> arguments) {
  try {
    Run(std::move(arguments));
    return kExitDone;
  } catch (const OutputClosed&) {
    return kExitDone;
  } catch (const UsageError& error) {
    ReportUsageError(error.what(), error.HelpPage().value_or(kGeneralHelp));
    return kExitUsage;
  } catch (const Refusal& refusal) {
    ReportRefusal(refusal.Code(), refusal.what());
  } catch (const Interrupted&) {
    Terminal::EndAsInterrupted();
  } catch (const std::bad_alloc&) {
    ReportRefusal(E_OUTOFMEMORY, MeaningOf(E_OUTOFMEMORY));
  } catch (const std::exception& error) {
    ReportRefusal(E_UNEXPECTED, error.what());
  }
  return kExitRefused;
}

}  // namespace

}  // namespace TextTables

#ifdef _WIN32
// Read by the C library's start: an argument with wildcards is taken as it is.
extern "C" int _dowildcard;
int _dowildcard = 0;

int wmain(int count, wchar_t** values) {
#else
int main(int count, char** values) {
#endif
  TextTables::Terminal::Prepare();
  return TextTables::RunToExitCode(TextTables::Terminal::Arguments(count, values));
}
