// Changes one section of arbitrary bytes that stand for a schema.ini. The first byte chooses the
// ANSI code page, the change and the section; the line behind it is the text to write; the rest is
// the file.
//
// Holds: what is written has every line that was not changed, with the bytes that it had, and every
// new line with its text; written once more without a change it stays as it is; and reading takes
// the same for each section that was left alone. A text that cannot be written so is refused.

#include <algorithm>
#include <memory>
#include <vector>

#include "FuzzInput.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/DataCore/DataCoreUtil.h"
#include "schema/SchemaIniReader.h"
#include "schema/SchemaIniText.h"

namespace {

using Fuzz::Check;
using TextFile::SchemaIniSection;
using TextFile::SchemaIniSource;
using TextFile::SchemaIniText;
using TextFile::SchemaOptions;

using Sections = std::vector<SchemaIniSection>;

constexpr UINT kCodePages[] = {1252, 932, 65001, 936};

enum class Kind { kAdd, kReplace, kRemove, kRename };

// What was done: a section of this header has come, gone or changed.
struct Change {
  std::u16string header;
  std::u16string newHeader;
  bool hidesHeaders = false;  // a line that reading may take for a header has come or gone
};

SchemaIniSection NewSection(const std::u16string& text) {
  SchemaIniSection section;
  section.header = u"[" + text + u"]";
  section.Append(u"Col1=" + text + u" Text");
  return section;
}

bool HidesHeaders(const SchemaIniSection& section) {
  return std::any_of(section.sources.begin(), section.sources.end(),
                     [](const SchemaIniSource& source) { return !source.innerHeader.empty(); });
}

// The lines in front of the first header are changed as well, but are never a section.
Change Apply(Kind kind, std::size_t place, const std::u16string& text, Sections& sections) {
  const auto at = sections.begin() + static_cast<std::ptrdiff_t>(place);
  if (kind == Kind::kAdd || (place == 0 && kind != Kind::kReplace)) {
    SchemaIniSection section = NewSection(text);
    Change change{section.header, section.header, HidesHeaders(section)};
    sections.insert(at + 1, std::move(section));
    return change;
  }
  Change change{at->header, at->header, HidesHeaders(*at)};
  if (kind == Kind::kRename) {
    at->header = change.newHeader = u"[" + text + u"]";
    at->headerSource = {};
  } else if (kind == Kind::kRemove) {
    sections.erase(at);
  } else {
    at->lines.clear();
    at->sources.clear();
    at->Append(text);
    change.hidesHeaders |= HidesHeaders(*at);
  }
  return change;
}

void CheckSource(const SchemaIniSource& written, const SchemaIniSource& asked) {
  if (asked.bytes.has_value()) Check(written.bytes == asked.bytes);
}

void CheckWritten(const Sections& written, const Sections& asked) {
  Check(written.size() == asked.size());
  for (std::size_t i = 0; i < asked.size(); ++i) {
    Check(written[i].header == asked[i].header && written[i].lines == asked[i].lines);
    CheckSource(written[i].headerSource, asked[i].headerSource);
    for (std::size_t j = 0; j < asked[i].lines.size(); ++j)
      CheckSource(written[i].sources[j], asked[i].sources[j]);
  }
}

// What reading takes for a file: its options, or what is wrong with them.
struct Reading {
  bool found = false;
  int error = -1;
  SchemaOptions options;
};

Reading Read(std::string_view bytes, std::u16string_view name) {
  Reading reading;
  try {
    reading.found = TextFile::ReadSchemaSection(std::make_unique<Fuzz::MemoryFile>(bytes), name,
                                                reading.options);
  } catch (const TextFile::ParseError& error) {
    reading.error = static_cast<int>(error.code());
  }
  return reading;
}

void CheckSameReading(const Reading& before, const Reading& after) {
  Check(before.found == after.found && before.error == after.error);
  const SchemaOptions& first = before.options;
  const SchemaOptions& second = after.options;
  Check(first.sectionName == second.sectionName && first.specified == second.specified);
  Check(first.delimiter == second.delimiter && first.dateTimeFormat == second.dateTimeFormat);
  Check(first.columns.size() == second.columns.size());
  Check(std::equal(first.columns.begin(), first.columns.end(), second.columns.begin(),
                   [](const auto& one, const auto& other) {
                     return one.first == other.first && one.second.name == other.second.name &&
                            one.second.type == other.second.type &&
                            one.second.width == other.second.width;
                   }));
}

// A value in quotes may span lines, blank ones and those of other sections among them.
bool HasQuotes(const Sections& sections) {
  return std::any_of(sections.begin(), sections.end(), [](const SchemaIniSection& section) {
    return std::any_of(section.lines.begin(), section.lines.end(), [](const std::u16string& line) {
      return line.find(u'"') != std::u16string::npos;
    });
  });
}

void CheckOthersAreRead(std::string_view before, std::string_view after, const Sections& sections,
                        const Change& change) {
  using quenra::DataCoreUtil;
  constexpr std::size_t kMostReadings = 8;
  for (std::size_t i = 1; i < std::min(sections.size(), kMostReadings); ++i) {
    const std::u16string_view header = sections[i].header;
    if (header.size() < 2 || !header.ends_with(u']') ||
        DataCoreUtil::CompareFoldCase(header, change.header) ||
        DataCoreUtil::CompareFoldCase(header, change.newHeader))
      continue;
    const std::u16string_view name = header.substr(1, header.size() - 2);
    CheckSameReading(Read(before, name), Read(after, name));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Check(quenra::QUENRALocale::SetLocale(u"en-US"));
  Fuzz::FuzzInput input(data, size);
  const unsigned switches = input.TakeSwitches();
  Check(quenra::QUENRALocale::SetAnsiCodePage(kCodePages[switches & 3]));
  const std::string_view line = input.TakeLine();
  const std::u16string text =
      Fuzz::FuzzInput(reinterpret_cast<const std::uint8_t*>(line.data()), line.size()).RestAsText();
  const std::string_view bytes = input.Rest();

  SchemaIniText ini;
  if (!ini.Parse(bytes)) return 0;
  const Sections before = ini.sections;
  const Change change = Apply(static_cast<Kind>(switches >> 2 & 3),
                              (switches >> 4 & 15) % before.size(), text, ini.sections);
  std::string written;
  if (!ini.Compose(written)) return 0;

  SchemaIniText again;
  Check(again.Parse(written));
  CheckWritten(again.sections, ini.sections);
  std::string settled;
  Check(again.Compose(settled) && settled == written);
  if (!change.hidesHeaders && !HasQuotes(before) && !HasQuotes(ini.sections))
    CheckOthersAreRead(bytes, written, before, change);
  return 0;
}
