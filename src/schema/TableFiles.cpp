#include "schema/TableFiles.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/AppEventLog/EventLog.h"
#include "host/DataCore/DataCoreUtil.h"
#include "platform/ExclusiveFile.h"
#include "platform/FileHold.h"
#include "platform/FileNames.h"
#include "platform/RegularFile.h"
#include "schema/SchemaIniFile.h"
#include "schema/SchemaIniPaths.h"
#include "schema/TableMetadata.h"
#include "schema/TableNames.h"
#include "schema/TableOperation.h"

namespace TextFile {

namespace {

namespace fs = boost::filesystem;

constexpr std::size_t kBlockBytes = 256 * 1024;

void RequireName(std::u16string_view name) {
  if (const std::u16string_view reason = WhyNotATableName(name); !reason.empty())
    FailTable(name, reason);
}

void RequireTable(const TableLocation& table) {
  const std::u16string path = table.Path();
  // A table may be moved or go whatever its name is, but schema.ini is none.
  if (IsReservedFile(table.name)) FailTable(path, u"the file is no table");
  boost::system::error_code ignored;
  if (!fs::is_regular_file(NativePath(path), ignored)) FailTable(path, u"there is no such table");
}

// The same file under two names that differ in letter case alone, on a file system that does not
// tell them apart. Two links to one file are two files.
bool IsOnlyAnotherCase(const std::u16string& path, const std::u16string& other) {
  boost::system::error_code ignored;
  return path != other && quenra::DataCoreUtil::CompareFoldCase(path, other) &&
         fs::equivalent(NativePath(path), NativePath(other), ignored) &&
         fs::hard_link_count(NativePath(path), ignored) == 1;
}

// Renames a file; something that has the new name stays.
void Move(const std::u16string& from, const std::u16string& to) {
  const std::error_code error =
      ExclusiveFile::Move(NativeFromFileName(from), NativeFromFileName(to));
  if (ExclusiveFile::MeansTaken(error)) FailBecauseTaken(to);
  if (error) FailTable(to, error);
}

// A complete copy under a temporary name, which goes away unless it is given its own. Rows that are
// added meanwhile are in it whole or not at all.
class FinishedCopy {
 public:
  FinishedCopy(std::u16string from, const std::u16string& temporary, std::u16string to)
      : from_(std::move(from)), to_(std::move(to)) {
    if (!file_.Open(NativeFromFileName(temporary))) FailTable(to_, file_);
    OpenSource();
    CopyBytes();
    boost::system::error_code ignored;
    fs::permissions(NativePath(temporary), fs::status(NativePath(from_), ignored).permissions(),
                    ignored);
  }

  // Fails when the file that was copied has been renamed, removed or replaced since.
  void RequireSource() const {
    if (!source_.IsAt(NativeFromFileName(from_)))
      FailTable(from_, u"another program has changed it");
  }

  // Fails when something has the name.
  void TakeName() {
    if (file_.TakeName(NativeFromFileName(to_))) return;
    if (ExclusiveFile::MeansTaken(file_.error())) FailBecauseTaken(to_);
    FailTable(to_, file_);
  }

 private:
  // Measures the file while nobody adds rows: it can only grow then, and it may.
  void OpenSource() {
    if (!source_.Open(NativeFromFileName(from_), RegularFile::Access::kRead))
      FailTable(from_, WithReason(u"the file cannot be read", source_.error()));
    if (!source_.Lock()) FailTable(from_, u"rows are being added to the table");
    const bool isKnown = source_.Size(size_);
    source_.Unlock();
    if (!isKnown) FailTable(from_, WithReason(u"the file cannot be read", source_.error()));
  }

  void CopyBytes() {
    std::vector<char> block(kBlockBytes);
    for (std::uint64_t done = 0; done < size_;) {
      const auto wanted =
          static_cast<std::size_t>(std::min<std::uint64_t>(size_ - done, block.size()));
      const std::ptrdiff_t count = source_.ReadAt(done, block.data(), wanted);
      if (count < 0) FailTable(from_, WithReason(u"the file cannot be read", source_.error()));
      if (count == 0) return;  // somebody has cut it
      if (!file_.Write({block.data(), static_cast<std::size_t>(count)})) FailTable(to_, file_);
      done += static_cast<std::uint64_t>(count);
    }
  }

  std::u16string from_;
  std::u16string to_;
  RegularFile source_;
  std::uint64_t size_ = 0;
  ExclusiveFile file_;
};

// Whether the metadata file has to be made. One that is the same already is what an operation that
// was ended half-way has left; any other is somebody's.
bool MetadataIsWanted(const TableLocation& from, const TableLocation& to) {
  if (!HasMetadata(from)) return false;
  if (!HasName(to.MetadataPath())) return true;
  if (!HaveSameBytes(from.MetadataPath(), to.MetadataPath())) FailBecauseTaken(to.MetadataPath());
  return false;
}

void CopyMetadata(const TableLocation& from, const TableLocation& to, Rollback& rollback) {
  FinishedCopy copy(from.MetadataPath(), TemporaryPath(to.folder, to.name + u".xml"),
                    to.MetadataPath());
  copy.TakeName();
  rollback.AddRemoval(to.MetadataPath());
}

// Gives the metadata file a second name, by a link where there are links.
void LinkMetadata(const TableLocation& from, const TableLocation& to, Rollback& rollback) {
  boost::system::error_code error;
  fs::create_hard_link(NativePath(from.MetadataPath()), NativePath(to.MetadataPath()), error);
  if (error) return CopyMetadata(from, to, rollback);
  rollback.AddRemoval(to.MetadataPath());
}

void LogLeftover(std::u16string_view path, std::u16string_view reason) {
  quenra::EventLog::Write(std::u16string(path) + u": " + std::u16string(reason));
}

void RemoveLeftover(const std::u16string& path) {
  boost::system::error_code error;
  fs::remove(NativePath(path), error);
  if (error) LogLeftover(path, u"the file could not be removed");
}

// What the user should know of sections that a table has got in front of.
std::u16string Remark(const SchemaIniFile::Change& change, const TableLocation& table) {
  if (!change.stood) return {};
  std::u16string remark = SchemaIniPaths(table.folder).schemaIni + u": a section [" + table.name +
                          u"] was there before; it stands behind the table's own now";
  quenra::EventLog::Write(remark);
  return remark;
}

// Nothing when the schema.ini cannot be read either.
std::optional<SectionLines> OwnLines(const TableLocation& table) {
  std::optional<SectionLines> lines;
  try {
    const SchemaIniFile file(SchemaIniPaths(table.folder), SchemaIniFile::Access::kRead);
    if (const SectionLines* own = file.FindOwn(table.name)) lines = *own;
    if (file.TellsAll(table.name)) return lines;
  } catch (const SchemaIniFailure& failure) {
    FailTable(SchemaIniPaths(table.folder).schemaIni, failure.reason);
  }
  FailTable(SchemaIniPaths(table.folder).schemaIni,
            u"the section holds text that its encoding does not show");
}

// Within a folder the lines keep their bytes.
SchemaIniFile::Change CopySection(const TableLocation& from, const TableLocation& to,
                                  SchemaIniFile& sections) {
  boost::system::error_code ignored;
  const auto folderOf = [](const TableLocation& table) {
    return table.folder.empty() ? fs::path(".") : NativePath(table.folder);
  };
  if (fs::equivalent(folderOf(from), folderOf(to), ignored))
    return sections.InsertCopy(from.name, to.name);
  const std::optional<SectionLines> lines = OwnLines(from);
  return lines.has_value() ? sections.Insert(to.name, *lines) : SchemaIniFile::Change();
}

// The table has its new name and its section: what is left over is no reason to refuse.
void SaveLast(SchemaIniFile& sections, const TableLocation& table) {
  try {
    sections.Save();
  } catch (const SchemaIniFailure& failure) {
    LogLeftover(SchemaIniPaths(table.folder).schemaIni, failure.reason);
  }
}

std::u16string CopyWhenHeld(const TableLocation& from, const TableLocation& to, FinishedCopy& copy,
                            SchemaIniFile& sections) {
  RequireFree(to.Path());
  const bool metadataIsWanted = MetadataIsWanted(from, to);
  Rollback rollback;
  if (metadataIsWanted) CopyMetadata(from, to, rollback);
  const SchemaIniFile::Change change = CopySection(from, to, sections);
  // Renaming gives the section away after the file: with the file still there, it was its own.
  copy.RequireSource();
  rollback.AddRestoration(sections);
  if (change.made) sections.SaveAndHold();
  // The name comes last: whoever sees the table sees all of it.
  copy.TakeName();
  rollback.Commit();
  return Remark(change, to);
}

std::u16string RenameWhenHeld(const TableLocation& table, const TableLocation& renamed,
                              SchemaIniFile& sections) {
  const bool isCase = IsOnlyAnotherCase(table.Path(), renamed.Path());
  if (!isCase) RequireFree(renamed.Path());
  const bool metadataIsWanted = !isCase && MetadataIsWanted(table, renamed);

  Rollback rollback;
  SchemaIniFile::Change change;
  if (!quenra::DataCoreUtil::CompareFoldCase(table.name, renamed.name)) {
    // Until the file has its new name, both names have the section.
    change = sections.Duplicate(table.name, renamed.name);
    rollback.AddRestoration(sections);
    if (change.made) sections.SaveAndHold();
  }
  const bool settles = sections.Rename(table.name, renamed.name);
  if (metadataIsWanted) LinkMetadata(table, renamed, rollback);
  Move(table.Path(), renamed.Path());
  rollback.AddReturn(renamed.Path(), table.Path());
  if (isCase && HasMetadata(table)) Move(table.MetadataPath(), renamed.MetadataPath());
  rollback.Commit();
  if (!isCase && HasMetadata(table)) RemoveLeftover(table.MetadataPath());
  if (settles) SaveLast(sections, renamed);
  return Remark(change, renamed);
}

}  // namespace

std::u16string TableLocation::Path() const { return JoinPath(folder, name); }
std::u16string TableLocation::MetadataPath() const { return Path() + u".xml"; }

std::u16string CopyTableFiles(const TableLocation& from, const TableLocation& to) {
  RequireName(to.name);
  RequireNoMetadataName(to);
  RequireTable(from);
  RequireFree(to.Path());
  // Before others have to wait: a table may be large.
  FinishedCopy copy(from.Path(), TemporaryPath(to.folder, to.name), to.Path());
  return RunOperation(to.folder, [&] {
    SchemaIniFile sections(SchemaIniPaths(to.folder), SchemaIniFile::Access::kWrite);
    return CopyWhenHeld(from, to, copy, sections);
  });
}

std::u16string RenameTableFiles(const TableLocation& table, std::u16string_view newName) {
  const TableLocation renamed{table.folder, std::u16string(newName)};
  RequireName(newName);
  RequireNoMetadataName(renamed);
  RequireTable(table);
  return RunOperation(table.folder, [&] {
    SchemaIniFile sections(SchemaIniPaths(table.folder), SchemaIniFile::Access::kWrite);
    // Another operation may just have finished.
    RequireTable(table);
    return RenameWhenHeld(table, renamed, sections);
  });
}

void DeleteTableFiles(const TableLocation& table) {
  RequireTable(table);
  RequireNoMetadataName(table);
  RunOperation(table.folder, [&] {
    FileHold hold;
    const auto sections = HoldTable(table, hold);
    RequireTable(table);
    Rollback rollback;
    std::vector<std::u16string> leftovers;
    // Set aside first, which can be taken back when something else cannot be removed.
    leftovers.push_back(SetAside(table.folder, table.name));
    rollback.AddReturn(leftovers.back(), table.Path());
    if (HasMetadata(table)) {
      leftovers.push_back(SetAside(table.folder, table.name + u".xml"));
      rollback.AddReturn(leftovers.back(), table.MetadataPath());
    }
    rollback.AddRestoration(*sections);
    if (sections->Remove(table.name)) sections->SaveAndHold();
    rollback.Commit();
    for (const std::u16string& leftover : leftovers) RemoveLeftover(leftover);
  });
}

}  // namespace TextFile
