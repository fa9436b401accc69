#include "schema/SchemaIniFile.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <chrono>
#include <iterator>
#include <map>
#include <utility>

#include "host/DataCore/DataCoreUtil.h"
#include "platform/FileNames.h"
#include "platform/RegularFile.h"
#include "schema/TableNames.h"
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

// Whether a file's name can stand in a header line and be read back.
bool FitsHeader(std::u16string_view name) noexcept {
  constexpr std::u16string_view kUnreadable(u"\0\n\x1A", 3);
  return IsWellFormedText(name) && name.find_first_of(kUnreadable) == std::u16string_view::npos;
}

[[noreturn]] void Fail(std::u16string_view reason) {
  throw SchemaIniFailure{std::u16string(reason)};
}

// Fails for a reason that lies with a temporary file, and says what was in its way.
[[noreturn]] void FailOver(std::u16string_view reason, const ExclusiveFile& file) {
  std::u16string text(reason);
  if (!file.Obstacle().empty()) (text += u' ') += file.Obstacle() + u'.';
  Fail(text);
}

// Also for a link that leads nowhere.
bool HasName(const std::u16string& path) {
  boost::system::error_code ignored;
  return fs::exists(fs::symlink_status(fs::path(NativeFromFileName(path)), ignored));
}

// As HasName, but fails when the system does not tell: a schema.ini that is taken for none would be
// replaced by the new section alone.
bool IsThere(const std::u16string& schemaIni) {
  boost::system::error_code error;
  const fs::file_type type =
      fs::symlink_status(fs::path(NativeFromFileName(schemaIni)), error).type();
  if (type == fs::status_error) Fail(kCouldNotRead);
  return type != fs::file_not_found;
}

// Regular files only, whatever has taken the name since it was looked at. A file that breaks off is
// not to be rewritten.
bool ReadWhole(const NativeFileName& path, std::string& bytes) {
  RegularFile file;
  if (!file.Open(path, RegularFile::Access::kRead)) return false;
  constexpr std::size_t kBlockBytes = 64 * 1024;
  std::string block(kBlockBytes, '\0');
  for (;;) {
    const std::ptrdiff_t count = file.ReadAt(bytes.size(), block.data(), kBlockBytes);
    if (count <= 0) return count == 0;
    bytes.append(block, 0, static_cast<std::size_t>(count));
  }
}

SchemaIniSection NewSection(std::u16string_view name, const SectionLines& lines) {
  SchemaIniSection section;
  section.header = HeaderLine(name);
  for (const std::u16string& line : lines) section.Append(line);
  return section;
}

SchemaIniSection WithHeader(SchemaIniSection section, std::u16string_view name) {
  section.header = HeaderLine(name);
  section.headerSource = {};
  return section;
}

bool IsSame(const SchemaIniSection& section, const SchemaIniSection& other) {
  return section.header == other.header && section.lines == other.lines;
}

}  // namespace

SchemaIniFile::SchemaIniFile(SchemaIniPaths paths, Access access)
    : paths_(std::move(paths)),
      finished_(JoinPath(FolderOf(paths_.schemaIni), TemporaryNameOf(u"schema.ini", u".tmp"))),
      access_(access) {
  exists_ = IsThere(paths_.schemaIni);
  // The lock comes first: what is read behind it is what the writer before has left.
  if (access != Access::kRead) TakeHold();
  exists_ = IsThere(paths_.schemaIni);
  if (exists_) Read();
}

void SchemaIniFile::TakeHold() {
  const NativeFileName target = NativeFromFileName(paths_.schemaIni);
  const auto patience = access_ == Access::kUpdate ? kPatienceOfReading : kWriterPatience;
  const std::u16string_view reason = exists_ ? kCouldNotWriteTemporary : kCouldNotCreate;
  if (!temporary_.OpenToReplace(NativeFromFileName(paths_.temporary), target, patience,
                                MayWriteInPlace()))
    FailOver(reason, temporary_);
  // What a writer that had the lock has left may be all there is of a text that it was writing into
  // schema.ini.
  ExclusiveFile leftOver;
  if (HasName(finished_) &&
      !leftOver.OpenToReplace(NativeFromFileName(finished_), target, patience, MayWriteInPlace()))
    FailOver(reason, leftOver);
}

ExclusiveFile::InPlace SchemaIniFile::MayWriteInPlace() const noexcept {
  return access_ == Access::kWrite ? ExclusiveFile::InPlace::kAllowed
                                   : ExclusiveFile::InPlace::kRefused;
}

void SchemaIniFile::Read() {
  const NativeFileName native = NativeFromFileName(paths_.schemaIni);
  boost::system::error_code error;
  const fs::file_type type = fs::status(fs::path(native), error).type();
  std::string bytes;
  if (type == fs::status_error || (type == fs::regular_file && !ReadWhole(native, bytes)))
    Fail(kCouldNotRead);
  if (type == fs::regular_file && text_.Parse(bytes)) return;
  // Those who open tables read no sections there either.
  text_ = SchemaIniText();
  isRead_ = false;
}

const SectionLines* SchemaIniFile::Find(std::u16string_view name) const noexcept {
  const auto found = std::find_if(
      text_.sections.begin(), text_.sections.end(),
      [&](const SchemaIniSection& section) { return IsHeaderOf(section.header, name); });
  return found == text_.sections.end() ? nullptr : &found->lines;
}

SchemaIniFile::Places SchemaIniFile::PlacesOf(std::u16string_view name) const {
  Places own;
  for (std::size_t i = 0; i < text_.sections.size(); ++i) {
    const std::u16string& header = text_.sections[i].header;
    if (IsHeaderOf(header, name) &&
        !IsAnotherFile(FolderOf(paths_.schemaIni), NameIn(header), name))
      own.push_back(i);
  }
  return own;
}

const SectionLines* SchemaIniFile::FindOwn(std::u16string_view name) const {
  const Places own = PlacesOf(name);
  return own.empty() ? nullptr : &text_.sections[own.front()].lines;
}

bool SchemaIniFile::ReadsAnothers(std::u16string_view name) const {
  const SectionLines* const found = Find(name);
  return found != nullptr && found != FindOwn(name);
}

bool SchemaIniFile::TellsAll(std::u16string_view name) const {
  const Places own = PlacesOf(name);
  if (own.empty()) return true;
  const SchemaIniSection& section = text_.sections[own.front()];
  for (std::size_t i = 0; i < section.lines.size(); ++i)
    if (!text_.TellsAll(section.lines[i], section.sources[i])) return false;
  return true;
}

// Whether the reader takes the end of another line for the section's header, as in "; [a.csv]":
// then the section's own lines do not describe the file, and replacing them would lose them.
bool SchemaIniFile::IsHiddenBefore(std::size_t place, std::u16string_view name) const noexcept {
  const auto end = text_.sections.cbegin() + static_cast<std::ptrdiff_t>(place);
  return std::any_of(text_.sections.cbegin(), end, [&](const SchemaIniSection& before) {
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

// The last one first, so that the places of the others hold.
void SchemaIniFile::Erase(std::span<const std::size_t> places) {
  for (std::size_t i = places.size(); i-- > 0;) text_.sections.erase(At(places[i]));
}

void SchemaIniFile::Replace(std::u16string_view name, const SectionLines& lines) {
  if (!FitsHeader(name)) Fail(kNameNotText);
  const Places own = PlacesOf(name);
  if (IsHiddenBefore(own.empty() ? text_.sections.size() : own.front(), name)) Fail(kSectionHidden);
  if (own.empty()) {
    text_.sections.push_back(NewSection(name, lines));
    return;
  }
  text_.sections[own.front()] = Rewritten(text_.sections[own.front()], lines);
  Erase(std::span(own).subspan(1));
}

SchemaIniFile::Change SchemaIniFile::Insert(std::u16string_view newName,
                                            const SectionLines& lines) {
  return InsertSection(newName, NewSection(newName, lines));
}

SchemaIniFile::Change SchemaIniFile::InsertCopy(std::u16string_view name,
                                                std::u16string_view newName) {
  const Places own = PlacesOf(name);
  if (own.empty()) return {};
  return InsertSection(newName, WithHeader(text_.sections[own.front()], newName));
}

SchemaIniFile::Change SchemaIniFile::InsertSection(std::u16string_view newName,
                                                   SchemaIniSection section) {
  if (!FitsHeader(newName)) Fail(kNameNotText);
  const Places own = PlacesOf(newName);
  const std::size_t place = own.empty() ? text_.sections.size() : own.front();
  if (IsHiddenBefore(place, newName)) Fail(kSectionHidden);
  if (!own.empty() && text_.sections[place].lines == section.lines) return {};
  text_.sections.insert(At(place), std::move(section));
  return {true, !own.empty()};
}

SchemaIniFile::Change SchemaIniFile::Duplicate(std::u16string_view name,
                                               std::u16string_view newName) {
  Places own = PlacesOf(name);
  if (own.empty()) return {};
  if (!FitsHeader(newName)) Fail(kNameNotText);
  if (IsHiddenBefore(own.front() + 1, newName)) Fail(kSectionHidden);
  Places others = PlacesOf(newName);
  const std::size_t count = others.size();
  others.erase(std::lower_bound(others.begin(), others.end(), own.front()), others.end());
  std::vector<SchemaIniSection> moved;
  for (const std::size_t other : others) moved.push_back(std::move(text_.sections[other]));
  Erase(others);

  std::size_t behind = own.front() - moved.size() + 1;
  SchemaIniSection copy = WithHeader(text_.sections[behind - 1], newName);
  const bool stands = behind < text_.sections.size() && IsSame(text_.sections[behind], copy);
  if (!stands) text_.sections.insert(At(behind), std::move(copy));
  text_.sections.insert(At(behind + 1), std::make_move_iterator(moved.begin()),
                        std::make_move_iterator(moved.end()));
  return {!stands || !moved.empty(), count > (stands ? 1u : 0u)};
}

bool SchemaIniFile::Remove(std::u16string_view name) {
  const Places own = PlacesOf(name);
  Erase(own);
  return !own.empty();
}

bool SchemaIniFile::Rename(std::u16string_view name, std::u16string_view newName) {
  const Places own = PlacesOf(name);
  if (own.empty()) return false;
  if (!FitsHeader(newName)) Fail(kNameNotText);
  if (IsHiddenBefore(own.front(), newName)) Fail(kSectionHidden);
  for (const std::size_t place : own) {
    SchemaIniSection& section = text_.sections[place];
    if (!text_.TellsAll(section.header, section.headerSource)) Fail(kTextWouldBeLost);
    section.header = HeaderLine(newName);
    section.headerSource = {};
  }
  // What Duplicate has put there, now or in a renaming that was ended half-way, is the same.
  const std::size_t next = own.front() + 1;
  const bool nextIsOwn = own.size() > 1 && own[1] == next;
  if (!nextIsOwn && next < text_.sections.size() &&
      IsSame(text_.sections[next], text_.sections[own.front()]))
    text_.sections.erase(At(next));
  return true;
}

std::string SchemaIniFile::Bytes() const {
  if (!isRead_) Fail(kCouldNotRead);
  std::string bytes;
  if (!text_.Compose(bytes)) Fail(kNotInItsEncoding);
  return bytes;
}

void SchemaIniFile::Save() {
  if (!temporary_.Write(Bytes()))
    FailOver(exists_ ? kCouldNotWriteTemporary : kCouldNotWrite, temporary_);
  if (!temporary_.Replace(NativeFromFileName(paths_.schemaIni), MayWriteInPlace()))
    FailOver(exists_ ? kCouldNotWrite : kCouldNotCreate, temporary_);
}

// By way of another temporary file: the usual one stays where it is, for others to wait for.
bool SchemaIniFile::ReplaceAndHold(std::string_view bytes, ExclusiveFile& finished) const {
  const NativeFileName target = NativeFromFileName(paths_.schemaIni);
  return finished.OpenToReplace(NativeFromFileName(finished_), target) && finished.Write(bytes) &&
         finished.Replace(target, MayWriteInPlace());
}

void SchemaIniFile::SaveAndHold() {
  std::string bytes = Bytes();
  if (!written_.has_value() && exists_ &&
      !ReadWhole(NativeFromFileName(paths_.schemaIni), before_.emplace()))
    Fail(kCouldNotRead);
  ExclusiveFile finished;
  if (!ReplaceAndHold(bytes, finished))
    FailOver(exists_ ? kCouldNotWriteTemporary : kCouldNotCreate, finished);
  written_ = std::move(bytes);
  exists_ = true;
}

void SchemaIniFile::Restore() noexcept try {
  std::string found;
  if (!written_.has_value() || !ReadWhole(NativeFromFileName(paths_.schemaIni), found) ||
      found != *written_)
    return;
  if (before_.has_value()) {
    ExclusiveFile finished;
    ReplaceAndHold(*before_, finished);
  } else {
    boost::system::error_code ignored;
    fs::remove(fs::path(NativeFromFileName(paths_.schemaIni)), ignored);
  }
  written_.reset();
} catch (const std::exception&) {
  // Memory is short; the section that is left over belongs to no table.
}

}  // namespace TextFile
