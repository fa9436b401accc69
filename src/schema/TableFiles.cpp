#include "schema/TableFiles.h"

#include <boost/filesystem.hpp>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "host/AppEventLog/EventLog.h"
#include "host/DataCore/DataCoreUtil.h"
#include "platform/ExclusiveFile.h"
#include "platform/FileNames.h"
#include "schema/SchemaIniPaths.h"
#include "schema/SchemaIniWriter.h"
#include "schema/TableNames.h"

namespace TextFile {

namespace {

namespace fs = boost::filesystem;

constexpr std::size_t kBlockBytes = 256 * 1024;

fs::path Native(const std::u16string& path) { return fs::path(NativeFromFileName(path)); }

bool Exists(const std::u16string& path) {
  boost::system::error_code ignored;
  return fs::exists(fs::symlink_status(Native(path), ignored));
}

void RequireName(std::u16string_view name) {
  if (const std::u16string_view reason = WhyNotATableName(name); !reason.empty())
    FailTable(name, reason);
}

void RequireTable(const TableLocation& table) {
  const std::u16string path = table.Path();
  // A table may be moved or go whatever its name is, but schema.ini is none.
  if (IsReservedFile(table.name)) FailTable(path, u"the file is no table");
  boost::system::error_code ignored;
  if (!fs::is_regular_file(Native(path), ignored)) FailTable(path, u"there is no such table");
}

[[noreturn]] void FailBecauseTaken(const std::u16string& path) {
  FailTable(path, u"the file exists already");
}

void RequireFree(const std::u16string& path) {
  if (Exists(path)) FailBecauseTaken(path);
}

// The same file under two names that differ in letter case alone, on a file system that does not
// tell them apart. Two links to one file are two files.
bool IsOnlyAnotherCase(const std::u16string& path, const std::u16string& other) {
  boost::system::error_code ignored;
  return path != other && quenra::DataCoreUtil::CompareFoldCase(path, other) &&
         fs::equivalent(Native(path), Native(other), ignored) &&
         fs::hard_link_count(Native(path), ignored) == 1;
}

bool HaveSameBytes(const std::u16string& path, const std::u16string& other) {
  std::ifstream first(Native(path).c_str(), std::ios::binary);
  std::ifstream second(Native(other).c_str(), std::ios::binary);
  using Bytes = std::istreambuf_iterator<char>;
  return first && second && std::equal(Bytes(first), Bytes(), Bytes(second), Bytes());
}

// Renames a file; something that has the new name stays.
void Move(const std::u16string& from, const std::u16string& to) {
  const std::error_code error =
      ExclusiveFile::Move(NativeFromFileName(from), NativeFromFileName(to));
  if (ExclusiveFile::MeansTaken(error)) FailBecauseTaken(to);
  if (error) FailTable(to, error);
}

// A complete copy under a temporary name, which goes away unless it is given its own.
class FinishedCopy {
 public:
  FinishedCopy(const std::u16string& from, const TableLocation& temporary, std::u16string to)
      : to_(std::move(to)) {
    if (!file_.Open(NativeFromFileName(temporary.Path()))) FailTable(to_, file_);
    std::filebuf source;
    if (source.open(Native(from).c_str(), std::ios::in | std::ios::binary) == nullptr)
      FailTable(from, u"the file cannot be read");
    CopyBytes(source, from);
    boost::system::error_code ignored;
    fs::permissions(Native(temporary.Path()), fs::status(Native(from), ignored).permissions(),
                    ignored);
  }

  // Fails when something has the name.
  void TakeName() {
    if (file_.TakeName(NativeFromFileName(to_))) return;
    if (ExclusiveFile::MeansTaken(file_.error())) FailBecauseTaken(to_);
    FailTable(to_, file_);
  }

 private:
  void CopyBytes(std::filebuf& source, const std::u16string& from) {
    std::vector<char> block(kBlockBytes);
    for (;;) {
      std::streamsize count = 0;
      try {
        count = source.sgetn(block.data(), static_cast<std::streamsize>(block.size()));
      } catch (const std::ios_base::failure&) {
        FailTable(from, u"the file cannot be read");
      }
      if (count <= 0) return;
      if (!file_.Write({block.data(), static_cast<std::size_t>(count)}))
        FailTable(to_, file_);
    }
  }

  std::u16string to_;
  ExclusiveFile file_;
};

// Steps to take back, the last one first, unless all went well.
class Rollback {
 public:
  Rollback() = default;
  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;
  ~Rollback() {
    // NOLINTNEXTLINE(modernize-loop-convert): ranges cannot be turned round with every compiler yet
    for (auto step = steps_.rbegin(); step != steps_.rend(); ++step) (*step)();
  }
  // `step` must not throw.
  void Add(std::function<void()> step) { steps_.push_back(std::move(step)); }
  void AddRemoval(const std::u16string& path) {
    Add([native = Native(path)] {
      boost::system::error_code ignored;
      fs::remove(native, ignored);
    });
  }
  void AddReturn(const std::u16string& from, const std::u16string& to) {
    Add([from = NativeFromFileName(from), to = NativeFromFileName(to)] {
      static_cast<void>(ExclusiveFile::Move(from, to));
    });
  }
  void Commit() noexcept { steps_.clear(); }

 private:
  std::vector<std::function<void()>> steps_;
};

TableLocation Temporary(const std::u16string& folder, const std::u16string& name) {
  return {folder, TemporaryNameOf(name, u".tmp")};
}

// Whether the metadata file has to be made. One that is the same already is what an operation that
// was ended half-way has left; any other is somebody's.
bool MetadataIsWanted(const TableLocation& from, const TableLocation& to) {
  if (!Exists(from.MetadataPath())) return false;
  if (!Exists(to.MetadataPath())) return true;
  if (!HaveSameBytes(from.MetadataPath(), to.MetadataPath())) FailBecauseTaken(to.MetadataPath());
  return false;
}

void CopyMetadata(const TableLocation& from, const TableLocation& to, Rollback& rollback) {
  FinishedCopy copy(from.MetadataPath(), Temporary(to.folder, to.name + u".xml"),
                    to.MetadataPath());
  copy.TakeName();
  rollback.AddRemoval(to.MetadataPath());
}

// Gives the metadata file a second name, by a link where there are links.
void LinkMetadata(const TableLocation& from, const TableLocation& to, Rollback& rollback) {
  boost::system::error_code error;
  fs::create_hard_link(Native(from.MetadataPath()), Native(to.MetadataPath()), error);
  if (error) return CopyMetadata(from, to, rollback);
  rollback.AddRemoval(to.MetadataPath());
}

void LogLeftover(std::u16string_view path, std::u16string_view reason) {
  quenra::EventLog::Write(std::u16string(path) + u": " + std::u16string(reason));
}

void RemoveLeftover(const std::u16string& path) {
  boost::system::error_code error;
  fs::remove(Native(path), error);
  if (error) LogLeftover(path, u"the file could not be removed");
}

// A change of letter case where the file system takes both names for one.
void RenameCase(const TableLocation& table, const TableLocation& renamed) {
  Rollback rollback;
  Move(table.Path(), renamed.Path());
  rollback.AddReturn(renamed.Path(), table.Path());
  if (Exists(table.MetadataPath())) Move(table.MetadataPath(), renamed.MetadataPath());
  rollback.Commit();
}

void RenameFiles(const TableLocation& table, const TableLocation& renamed) {
  RequireFree(renamed.Path());
  const bool metadataIsWanted = MetadataIsWanted(table, renamed);
  const SchemaIniPaths paths(table.folder);
  Rollback rollback;
  if (!quenra::DataCoreUtil::CompareFoldCase(table.name, renamed.name)) {
    // Until the file has its new name, both names have the section.
    const SavedSchemaSection before(paths, renamed.name);
    std::u16string failure;
    if (!DuplicateSchemaSection(paths, table.name, renamed.name, &failure))
      FailTable(paths.schemaIni, failure);
    rollback.Add([before] { before.Restore(); });
  }
  if (metadataIsWanted) LinkMetadata(table, renamed, rollback);
  Move(table.Path(), renamed.Path());
  rollback.Commit();
  if (Exists(table.MetadataPath())) RemoveLeftover(table.MetadataPath());
}

}  // namespace

std::u16string TableLocation::Path() const { return JoinPath(folder, name); }
std::u16string TableLocation::MetadataPath() const { return Path() + u".xml"; }

void CopyTableFiles(const TableLocation& from, const TableLocation& to) {
  RequireName(to.name);
  RequireTable(from);
  RequireFree(to.Path());
  const bool metadataIsWanted = MetadataIsWanted(from, to);

  Rollback rollback;
  FinishedCopy copy(from.Path(), Temporary(to.folder, to.name), to.Path());
  if (metadataIsWanted) CopyMetadata(from, to, rollback);
  const SchemaIniPaths target(to.folder);
  const SavedSchemaSection before(target, to.name);
  std::u16string failure;
  if (!CopySchemaSection(SchemaIniPaths(from.folder), from.name, target, to.name, &failure))
    FailTable(target.schemaIni, failure);
  rollback.Add([before] { before.Restore(); });
  // The name comes last: whoever sees the table sees all of it.
  copy.TakeName();
  rollback.Commit();
}

void RenameTableFiles(const TableLocation& table, std::u16string_view newName) {
  const TableLocation renamed{table.folder, std::u16string(newName)};
  RequireName(newName);
  RequireTable(table);
  if (IsOnlyAnotherCase(table.Path(), renamed.Path()))
    RenameCase(table, renamed);
  else
    RenameFiles(table, renamed);

  const SchemaIniPaths paths(table.folder);
  std::u16string failure;
  const bool settled = quenra::DataCoreUtil::CompareFoldCase(table.name, newName)
                           ? RenameSchemaSection(paths, table.name, newName, &failure)
                           : DropSchemaSection(paths, table.name, &failure);
  // The table has its new name and its section: what is left over is no reason to refuse.
  if (!settled) LogLeftover(paths.schemaIni, failure);
}

void DeleteTableFiles(const TableLocation& table) {
  RequireTable(table);
  // Set aside first, which can be taken back when something else cannot be removed.
  const auto setAside = [&](const std::u16string& name, const std::u16string& path) {
    std::u16string aside = JoinPath(table.folder, TemporaryNameOf(name, u".old"));
    boost::system::error_code error;
    fs::rename(Native(path), Native(aside), error);
    if (error) FailTable(path, std::error_code(error.value(), std::system_category()));
    return aside;
  };
  Rollback rollback;
  std::vector<std::u16string> leftovers;
  leftovers.push_back(setAside(table.name, table.Path()));
  rollback.AddReturn(leftovers.back(), table.Path());
  if (Exists(table.MetadataPath())) {
    leftovers.push_back(setAside(table.name + u".xml", table.MetadataPath()));
    rollback.AddReturn(leftovers.back(), table.MetadataPath());
  }
  const SchemaIniPaths paths(table.folder);
  std::u16string failure;
  if (!DropSchemaSection(paths, table.name, &failure)) FailTable(paths.schemaIni, failure);
  rollback.Commit();
  for (const std::u16string& leftover : leftovers) RemoveLeftover(leftover);
}

}  // namespace TextFile
