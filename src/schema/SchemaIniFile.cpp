#include "schema/SchemaIniFile.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <fstream>
#include <iterator>
#include <utility>

#include "host/DataCore/DataCoreUtil.h"
#include "reading/TextLineStream.h"
#include "schema/TableNames.h"
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

std::u16string_view NameIn(std::u16string_view header) noexcept {
  return header.substr(1, header.size() - 2);
}

bool IsFile(std::u16string_view folder, std::u16string_view name) {
  boost::system::error_code ignored;
  return fs::is_regular_file(fs::path(NativeFromFileName(JoinPath(folder, name))), ignored);
}

// Whether `spelling`, which differs from `name` in letter case alone, is the name of another file.
// Only a listing tells on a file system that finds one file under both.
bool IsAnotherFile(std::u16string_view folder, std::u16string_view spelling,
                   std::u16string_view name) {
  if (spelling == name || !IsFile(folder, spelling)) return false;
  bool isListed = false;
  bool nameIsListed = false;
  boost::system::error_code error;
  const fs::path native(NativeFromFileName(folder.empty() ? std::u16string_view(u".") : folder));
  for (fs::directory_iterator entry(native, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::u16string listed = FileNameFromNative(entry->path().filename().native());
    isListed = isListed || listed == spelling;
    nameIsListed = nameIsListed || listed == name;
  }
  return isListed && (nameIsListed || !IsFile(folder, name));
}

// Nothing when the file cannot be read.
std::optional<std::string> BytesOf(const std::u16string& path) {
  const fs::path native(NativeFromFileName(path));
  std::ifstream stream(native.c_str(), std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream.is_open() || stream.bad()) return std::nullopt;
  return bytes;
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
  if (!exists_) return;
  try {
    Read();
  } catch (const SchemaIniFailure&) {
    if (access == Access::kRead) throw;
    isRead_ = false;
  }
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

bool SchemaIniFile::IsOwn(const Section& section, std::u16string_view name) const {
  return IsHeaderOf(section.header, name) &&
         !IsAnotherFile(FolderOf(paths_.schemaIni), NameIn(section.header), name);
}

std::vector<std::size_t> SchemaIniFile::SectionsOf(std::u16string_view name) const {
  std::vector<std::size_t> own;
  for (std::size_t i = 0; i < sections_.size(); ++i)
    if (IsOwn(sections_[i], name)) own.push_back(i);
  return own;
}

const SectionLines* SchemaIniFile::FindOwn(std::u16string_view name) const {
  const std::vector<std::size_t> own = SectionsOf(name);
  return own.empty() ? nullptr : &sections_[own.front()].lines;
}

bool SchemaIniFile::ReadsAnothers(std::u16string_view name) const {
  const SectionLines* const found = Find(name);
  return found != nullptr && found != FindOwn(name);
}

// Whether the reader takes the end of another line for the section's header, as in "; [a.csv]":
// then the section's own lines do not describe the file, and replacing them would lose them.
bool SchemaIniFile::IsHiddenBefore(std::size_t section, std::u16string_view name) const noexcept {
  const auto endsInHeader = [&](std::u16string_view line) {
    const std::size_t bracket = line.find(u'[');
    return bracket != std::u16string_view::npos && IsHeaderOf(line.substr(bracket), name);
  };
  const auto end = sections_.begin() + static_cast<std::ptrdiff_t>(section);
  return std::any_of(sections_.begin(), end, [&](const Section& before) {
    return std::any_of(before.lines.begin(), before.lines.end(), endsInHeader);
  });
}

void SchemaIniFile::Replace(std::u16string_view name, SectionLines lines) {
  if (!FitsHeader(name)) Fail(kNameNotText);
  const std::vector<std::size_t> own = SectionsOf(name);
  if (IsHiddenBefore(own.empty() ? sections_.size() : own.front(), name)) Fail(kSectionHidden);
  if (own.empty()) {
    sections_.push_back({HeaderLine(name), std::move(lines)});
    return;
  }
  sections_[own.front()].lines = std::move(lines);
  for (std::size_t i = own.size(); i-- > 1;)
    sections_.erase(sections_.begin() + static_cast<std::ptrdiff_t>(own[i]));
}

SchemaIniFile::Change SchemaIniFile::Insert(std::u16string_view newName,
                                            const SectionLines& lines) {
  if (!FitsHeader(newName)) Fail(kNameNotText);
  const std::vector<std::size_t> own = SectionsOf(newName);
  const std::size_t place = own.empty() ? sections_.size() : own.front();
  if (IsHiddenBefore(place, newName)) Fail(kSectionHidden);
  if (!own.empty() && sections_[place].lines == lines) return {};
  sections_.insert(sections_.begin() + static_cast<std::ptrdiff_t>(place),
                   {HeaderLine(newName), lines});
  return {true, !own.empty()};
}

SchemaIniFile::Change SchemaIniFile::Duplicate(std::u16string_view name,
                                               std::u16string_view newName) {
  const std::vector<std::size_t> own = SectionsOf(name);
  if (own.empty()) return {};
  if (!FitsHeader(newName)) Fail(kNameNotText);
  if (IsHiddenBefore(own.front() + 1, newName)) Fail(kSectionHidden);
  const std::vector<std::size_t> others = SectionsOf(newName);
  std::vector<Section> moved;
  for (const std::size_t other : others)
    if (other < own.front()) moved.push_back(std::move(sections_[other]));
  for (std::size_t i = moved.size(); i-- > 0;)
    sections_.erase(sections_.begin() + static_cast<std::ptrdiff_t>(others[i]));

  auto behind = sections_.begin() + static_cast<std::ptrdiff_t>(own.front() - moved.size() + 1);
  Section copy{HeaderLine(newName), (behind - 1)->lines};
  const bool stands = behind != sections_.end() && *behind == copy;
  if (!stands) behind = sections_.insert(behind, std::move(copy));
  const bool made = !stands || !moved.empty();
  sections_.insert(behind + 1, std::make_move_iterator(moved.begin()),
                   std::make_move_iterator(moved.end()));
  return {made, others.size() > (stands ? 1u : 0u)};
}

bool SchemaIniFile::Remove(std::u16string_view name) {
  const std::vector<std::size_t> own = SectionsOf(name);
  for (std::size_t i = own.size(); i-- > 0;)
    sections_.erase(sections_.begin() + static_cast<std::ptrdiff_t>(own[i]));
  return !own.empty();
}

bool SchemaIniFile::Rename(std::u16string_view name, std::u16string_view newName) {
  const std::vector<std::size_t> own = SectionsOf(name);
  if (own.empty()) return false;
  if (!FitsHeader(newName)) Fail(kNameNotText);
  if (IsHiddenBefore(own.front(), newName)) Fail(kSectionHidden);
  const std::size_t next = own.front() + 1;
  const bool nextIsOwn = own.size() > 1 && own[1] == next;
  for (const std::size_t section : own) sections_[section].header = HeaderLine(newName);
  // What a renaming that was ended half-way has left is the same as well.
  if (!nextIsOwn && next < sections_.size() && sections_[next] == sections_[own.front()])
    sections_.erase(sections_.begin() + static_cast<std::ptrdiff_t>(next));
  return true;
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
  if (!isRead_) Fail(kCouldNotRead);
  if (!temporary_.Write(Bytes())) Fail(exists_ ? kCouldNotWriteTemporary : kCouldNotWrite);
  if (!temporary_.Replace(NativeFromFileName(paths_.schemaIni)))
    Fail(exists_ ? kCouldNotWrite : kCouldNotCreate);
}

// By way of another temporary file: the usual one stays where it is, for others to wait for.
bool SchemaIniFile::PutInPlace(std::string_view bytes) {
  const std::u16string finished =
      JoinPath(FolderOf(paths_.schemaIni), TemporaryNameOf(u"schema.ini", u".tmp"));
  ExclusiveFile file;
  return file.Open(NativeFromFileName(finished)) && file.Write(bytes) &&
         file.Replace(NativeFromFileName(paths_.schemaIni));
}

void SchemaIniFile::SaveAndHold() {
  if (!isRead_) Fail(kCouldNotRead);
  if (!written_.has_value() && exists_) {
    before_ = BytesOf(paths_.schemaIni);
    if (!before_.has_value()) Fail(kCouldNotRead);
  }
  std::string bytes = Bytes();
  if (!PutInPlace(bytes)) Fail(exists_ ? kCouldNotWriteTemporary : kCouldNotCreate);
  written_ = std::move(bytes);
  exists_ = true;
}

void SchemaIniFile::Restore() noexcept try {
  if (!written_.has_value() || BytesOf(paths_.schemaIni) != written_) return;
  if (before_.has_value()) {
    PutInPlace(*before_);
  } else {
    boost::system::error_code ignored;
    fs::remove(fs::path(NativeFromFileName(paths_.schemaIni)), ignored);
  }
  written_.reset();
} catch (const std::exception&) {
  // Memory is short; the section that is left over belongs to no table.
}

}  // namespace TextFile
