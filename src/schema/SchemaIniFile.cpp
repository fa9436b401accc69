#include "schema/SchemaIniFile.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <utility>

#include "host/DataCore/DataCoreUtil.h"
#include "reading/TextLineStream.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

namespace fs = boost::filesystem;

constexpr std::u16string_view kCouldNotCreate = u"Could not create schema.ini.";
constexpr std::u16string_view kCouldNotWrite = u"Could not write to schema.ini.";
constexpr std::u16string_view kCouldNotWriteTemporary = u"Could not write to temp schema.ini.";
constexpr std::u16string_view kCouldNotRead = u"Could not read schema.ini.";
constexpr std::u16string_view kSectionHidden =
    u"Another line of schema.ini is taken for the section's header.";
constexpr std::u16string_view kNameNotText = u"The file's name cannot be written to schema.ini.";

std::u16string HeaderLine(std::u16string_view name) { return u'[' + std::u16string(name) + u']'; }

bool IsHeaderOf(std::u16string_view header, std::u16string_view name) noexcept {
  return header.size() == name.size() + 2 && header.back() == u']' &&
         quenra::DataCoreUtil::CompareFoldCase(header.substr(1, name.size()), name);
}

// Whether a file's name can stand in a header line and be read back.
bool FitsHeader(std::u16string_view name) noexcept {
  constexpr std::u16string_view kUnreadable(u"\0\n\x1A", 3);
  return IsWellFormedText(name) && name.find_first_of(kUnreadable) == std::u16string_view::npos;
}

[[noreturn]] void Fail(std::u16string_view reason) {
  throw SchemaIniFailure{std::u16string(reason)};
}

}  // namespace

SchemaIniFile::SchemaIniFile(SchemaIniPaths paths, Access access) : paths_(std::move(paths)) {
  boost::system::error_code ignored;
  const fs::path native(NativeFromFileName(paths_.schemaIni));
  exists_ = fs::exists(fs::symlink_status(native, ignored));
  // The lock comes first: what is read behind it is what the writer before has left.
  if (access == Access::kWrite && !temporary_.Open(NativeFromFileName(paths_.temporary)))
    Fail(exists_ ? kCouldNotWriteTemporary : kCouldNotCreate);
  exists_ = fs::exists(fs::symlink_status(native, ignored));
  sections_.emplace_back();
  if (exists_) Read();
}

void SchemaIniFile::Read() {
  TextLineStream stream;
  if (!stream.Open(paths_.schemaIni, TextLineStream::kPlainLines)) Fail(kCouldNotRead);
  const TextEncoding encoding = stream.encoding();
  if (encoding == TextEncoding::kUtf16BE || encoding == TextEncoding::kUtf32LE ||
      encoding == TextEncoding::kUtf32BE)
    Fail(kCouldNotRead);
  hadMark_ = encoding != TextEncoding::kUndetermined;
  std::u16string line;
  while (stream.ReadLine(line)) {
    if (line.starts_with(u'['))
      sections_.push_back({line, {}});
    else if (!line.empty())
      sections_.back().lines.push_back(line);
  }
}

const SectionLines* SchemaIniFile::Find(std::u16string_view name) const noexcept {
  const auto found = std::find_if(sections_.begin(), sections_.end(), [&](const Section& section) {
    return IsHeaderOf(section.header, name);
  });
  return found == sections_.end() ? nullptr : &found->lines;
}

// Whether the reader takes the end of another line for the section's header, as in "; [a.csv]":
// then the section's own lines do not describe the file, and replacing them would lose them.
bool SchemaIniFile::IsHiddenBefore(std::vector<Section>::const_iterator section,
                                   std::u16string_view name) const noexcept {
  const auto endsInHeader = [&](std::u16string_view line) {
    const std::size_t bracket = line.find(u'[');
    return bracket != std::u16string_view::npos && IsHeaderOf(line.substr(bracket), name);
  };
  return std::any_of(sections_.begin(), section, [&](const Section& before) {
    return std::any_of(before.lines.begin(), before.lines.end(), endsInHeader);
  });
}

void SchemaIniFile::Replace(std::u16string_view name, SectionLines lines) {
  if (!FitsHeader(name)) Fail(kNameNotText);
  std::u16string header = HeaderLine(name);
  const auto isNamed = [&](const Section& section) { return IsHeaderOf(section.header, name); };
  const auto found = std::find_if(sections_.begin(), sections_.end(), isNamed);
  if (IsHiddenBefore(found, name)) Fail(kSectionHidden);
  if (found == sections_.end()) {
    sections_.push_back({std::move(header), std::move(lines)});
    return;
  }
  found->lines = std::move(lines);
  sections_.erase(std::remove_if(found + 1, sections_.end(), isNamed), sections_.end());
}

void SchemaIniFile::Duplicate(std::u16string_view name, std::u16string_view newName) {
  if (!FitsHeader(newName)) Fail(kNameNotText);
  const auto found = std::find_if(sections_.begin(), sections_.end(), [&](const Section& section) {
    return IsHeaderOf(section.header, name);
  });
  if (found == sections_.end()) return;
  if (IsHiddenBefore(found + 1, newName)) Fail(kSectionHidden);
  Section copy{HeaderLine(newName), found->lines};
  sections_.insert(found + 1, std::move(copy));
}

void SchemaIniFile::Remove(std::u16string_view name) {
  std::erase_if(sections_,
                [&](const Section& section) { return IsHeaderOf(section.header, name); });
}

void SchemaIniFile::Rename(std::u16string_view name, std::u16string_view newName) {
  if (!FitsHeader(newName)) Fail(kNameNotText);
  for (auto section = sections_.begin(); section != sections_.end(); ++section) {
    if (!IsHeaderOf(section->header, name)) continue;
    if (IsHiddenBefore(section, newName)) Fail(kSectionHidden);
    section->header = HeaderLine(newName);
  }
}

std::string SchemaIniFile::Bytes() const {
  std::u16string text;
  for (const Section& section : sections_) {
    if (!section.header.empty()) (text += section.header) += u'\n';
    for (const std::u16string& line : section.lines) (text += line) += u'\n';
  }
  std::string bytes = hadMark_ ? "\xEF\xBB\xBF" : "";
  AppendUtf8(text, bytes);
  return bytes;
}

void SchemaIniFile::Save() {
  if (!temporary_.Write(Bytes())) Fail(exists_ ? kCouldNotWriteTemporary : kCouldNotWrite);
  if (!temporary_.Replace(NativeFromFileName(paths_.schemaIni)))
    Fail(exists_ ? kCouldNotWrite : kCouldNotCreate);
}

}  // namespace TextFile
