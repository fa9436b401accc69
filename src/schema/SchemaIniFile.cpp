#include "schema/SchemaIniFile.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <chrono>
#include <fstream>
#include <map>
#include <utility>

#include "host/DataCore/DataCoreUtil.h"
#include "platform/FileNames.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

namespace fs = boost::filesystem;

// A reader shall not be kept waiting for what it can do without.
constexpr std::chrono::milliseconds kPatienceOfReading{1000};

constexpr std::u16string_view kCouldNotCreate = u"Could not create schema.ini.";
constexpr std::u16string_view kCouldNotWrite = u"Could not write to schema.ini.";
constexpr std::u16string_view kCouldNotWriteTemporary = u"Could not write to temp schema.ini.";
constexpr std::u16string_view kCouldNotRead = u"Could not read schema.ini.";
constexpr std::u16string_view kSectionHidden =
    u"Another line of schema.ini is taken for the section's header.";
constexpr std::u16string_view kTextWouldBeLost =
    u"Text of schema.ini that its encoding does not show would be lost.";
constexpr std::u16string_view kNotInItsEncoding =
    u"What is new cannot be written to schema.ini so that all of it reads back.";
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

// Regular files only, as the line reader has it. A file that breaks off is not to be rewritten.
bool ReadWhole(const NativeFileName& path, std::string& bytes) {
  boost::system::error_code ignored;
  if (!fs::is_regular_file(fs::path(path), ignored)) return false;
  std::filebuf file;
  if (file.open(fs::path(path).c_str(), std::ios::in | std::ios::binary) == nullptr) return false;
  constexpr std::size_t kBlockBytes = 64 * 1024;
  std::string block(kBlockBytes, '\0');
  try {
    for (;;) {
      const std::streamsize count = file.sgetn(block.data(), kBlockBytes);
      if (count <= 0) return true;
      bytes.append(block, 0, static_cast<std::size_t>(count));
    }
  } catch (const std::ios_base::failure&) {
    return false;
  }
}

}  // namespace

SchemaIniFile::SchemaIniFile(SchemaIniPaths paths, Access access)
    : paths_(std::move(paths)), access_(access) {
  boost::system::error_code ignored;
  const fs::path native(NativeFromFileName(paths_.schemaIni));
  exists_ = fs::exists(fs::symlink_status(native, ignored));
  // The lock comes first: what is read behind it is what the writer before has left.
  if (access != Access::kRead &&
      !temporary_.OpenToReplace(
          NativeFromFileName(paths_.temporary), native.native(),
          access == Access::kUpdate ? kPatienceOfReading : ExclusiveFile::kPatience,
          MayWriteInPlace()))
    FailOver(exists_ ? kCouldNotWriteTemporary : kCouldNotCreate);
  exists_ = fs::exists(fs::symlink_status(native, ignored));
  if (exists_) Read();
}

ExclusiveFile::InPlace SchemaIniFile::MayWriteInPlace() const noexcept {
  return access_ == Access::kWrite ? ExclusiveFile::InPlace::kAllowed
                                   : ExclusiveFile::InPlace::kRefused;
}

// Fails for a reason that lies with the temporary file, and says what stands in its way.
void SchemaIniFile::FailOver(std::u16string_view reason) const {
  std::u16string text(reason);
  if (!temporary_.Obstacle().empty()) (text += u' ') += temporary_.Obstacle() + u'.';
  Fail(text);
}

void SchemaIniFile::Read() {
  std::string bytes;
  if (!ReadWhole(NativeFromFileName(paths_.schemaIni), bytes) || !text_.Parse(bytes))
    Fail(kCouldNotRead);
}

SchemaIniFile::Sections::iterator SchemaIniFile::Locate(std::u16string_view name) noexcept {
  return std::find_if(
      text_.sections.begin(), text_.sections.end(),
      [&](const SchemaIniSection& section) { return IsHeaderOf(section.header, name); });
}

const SectionLines* SchemaIniFile::Find(std::u16string_view name) const noexcept {
  const auto found = std::find_if(
      text_.sections.begin(), text_.sections.end(),
      [&](const SchemaIniSection& section) { return IsHeaderOf(section.header, name); });
  return found == text_.sections.end() ? nullptr : &found->lines;
}

bool SchemaIniFile::TellsAll(std::u16string_view name) const {
  for (const SchemaIniSection& section : text_.sections) {
    if (!IsHeaderOf(section.header, name)) continue;
    for (std::size_t i = 0; i < section.lines.size(); ++i)
      if (!text_.TellsAll(section.lines[i], section.sources[i])) return false;
    return true;
  }
  return true;
}

// Whether the reader takes the end of another line for the section's header, as in "; [a.csv]":
// then the section's own lines do not describe the file, and replacing them would lose them.
bool SchemaIniFile::IsHiddenBefore(Sections::const_iterator section,
                                   std::u16string_view name) const noexcept {
  return std::any_of(text_.sections.cbegin(), section, [&](const SchemaIniSection& before) {
    return std::any_of(
        before.sources.begin(), before.sources.end(),
        [&](const SchemaIniSource& source) { return IsHeaderOf(source.innerHeader, name); });
  });
}

// `lines` as a section, with the bytes of those that `old` has. Fails when text would go that
// nobody could see.
SchemaIniSection SchemaIniFile::Rewritten(const SchemaIniSection& old,
                                          const SectionLines& lines) const {
  SchemaIniSection asked{old.header, old.headerSource, {}, {}};
  for (const std::u16string& line : lines) asked.Append(line);
  std::multimap<std::u16string_view, std::size_t> places;
  for (std::size_t i = 0; i < old.lines.size(); ++i) places.emplace(old.lines[i], i);
  for (std::size_t i = 0; i < asked.lines.size(); ++i) {
    const auto place = places.lower_bound(asked.lines[i]);
    if (place == places.end() || place->first != asked.lines[i]) continue;
    asked.sources[i] = old.sources[place->second];
    places.erase(place);
  }
  for (const auto& [text, place] : places)
    if (!text_.TellsAll(text, old.sources[place])) Fail(kTextWouldBeLost);
  return asked;
}

void SchemaIniFile::Replace(std::u16string_view name, SectionLines lines) {
  if (!FitsHeader(name)) Fail(kNameNotText);
  Sections& sections = text_.sections;
  const auto found = Locate(name);
  if (IsHiddenBefore(found, name)) Fail(kSectionHidden);
  if (found == sections.end()) {
    SchemaIniSection added;
    added.header = HeaderLine(name);
    for (const std::u16string& line : lines) added.Append(line);
    sections.push_back(std::move(added));
    return;
  }
  *found = Rewritten(*found, lines);
  sections.erase(std::remove_if(found + 1, sections.end(),
                                [&](const SchemaIniSection& section) {
                                  return IsHeaderOf(section.header, name);
                                }),
                 sections.end());
}

void SchemaIniFile::Duplicate(std::u16string_view name, std::u16string_view newName) {
  if (!FitsHeader(newName)) Fail(kNameNotText);
  const auto found = Locate(name);
  if (found == text_.sections.end()) return;
  if (IsHiddenBefore(found + 1, newName)) Fail(kSectionHidden);
  SchemaIniSection copy = *found;
  copy.header = HeaderLine(newName);
  copy.headerSource = {};
  text_.sections.insert(found + 1, std::move(copy));
}

void SchemaIniFile::Remove(std::u16string_view name) {
  std::erase_if(text_.sections,
                [&](const SchemaIniSection& section) { return IsHeaderOf(section.header, name); });
}

void SchemaIniFile::Rename(std::u16string_view name, std::u16string_view newName) {
  if (!FitsHeader(newName)) Fail(kNameNotText);
  for (auto section = text_.sections.begin(); section != text_.sections.end(); ++section) {
    if (!IsHeaderOf(section->header, name)) continue;
    if (IsHiddenBefore(section, newName)) Fail(kSectionHidden);
    if (!text_.TellsAll(section->header, section->headerSource)) Fail(kTextWouldBeLost);
    section->header = HeaderLine(newName);
    section->headerSource = {};
  }
}

void SchemaIniFile::Save() {
  std::string bytes;
  if (!text_.Compose(bytes)) Fail(kNotInItsEncoding);
  if (!temporary_.Write(bytes)) Fail(exists_ ? kCouldNotWriteTemporary : kCouldNotWrite);
  if (!temporary_.Replace(NativeFromFileName(paths_.schemaIni), MayWriteInPlace()))
    FailOver(exists_ ? kCouldNotWrite : kCouldNotCreate);
}

}  // namespace TextFile
