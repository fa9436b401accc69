#include "schema/TableFiles.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <functional>

#include "host/AppEventLog/EventLog.h"
#include "host/DataCore/DataCoreUtil.h"
#include "platform/FileNames.h"
#include "schema/SchemaIniPaths.h"
#include "schema/SchemaIniWriter.h"
#include "schema/TableNames.h"

namespace TextFile {

namespace {

namespace fs = boost::filesystem;

[[noreturn]] void Fail(const std::u16string& path, std::u16string_view reason) {
  throw TableFailure{path + u": " + std::u16string(reason)};
}

[[noreturn]] void Fail(const std::u16string& path, const boost::system::error_code& error) {
  const std::string reason = error.message();
  Fail(path, FileNameFromNative(fs::path(reason).native()));
}

fs::path Native(const std::u16string& path) { return fs::path(NativeFromFileName(path)); }

bool Exists(const std::u16string& path) {
  boost::system::error_code ignored;
  return fs::exists(fs::symlink_status(Native(path), ignored));
}

void RequireName(std::u16string_view name) {
  if (const std::u16string_view reason = WhyNotATableName(name); !reason.empty())
    Fail(std::u16string(name), reason);
}

void RequireTable(const std::u16string& path) {
  boost::system::error_code ignored;
  if (!fs::is_regular_file(Native(path), ignored)) Fail(path, u"there is no such table");
}

void RequireFree(const std::u16string& path) {
  if (Exists(path)) Fail(path, u"the file exists already");
}

void Rename(const std::u16string& from, const std::u16string& to) {
  boost::system::error_code error;
  fs::rename(Native(from), Native(to), error);
  if (error) Fail(to, error);
}

void Remove(const std::u16string& path) {
  boost::system::error_code error;
  fs::remove(Native(path), error);
  if (error) Fail(path, error);
}

void CopyFile(const std::u16string& from, const std::u16string& to) {
  boost::system::error_code error;
  fs::copy_file(Native(from), Native(to), fs::copy_options::overwrite_existing, error);
  if (error) Fail(to, error);
}

// Steps to take back, the last one first, unless all went well.
class Rollback {
 public:
  Rollback() = default;
  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;
  ~Rollback() {
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
  void Commit() noexcept { steps_.clear(); }

 private:
  std::vector<std::function<void()>> steps_;
};

// A name that no listing takes for a table.
std::u16string TemporaryPath(const std::u16string& folder, std::u16string_view name) {
  return JoinPath(folder, u"~" + std::u16string(name) + u".tmp");
}

}  // namespace

std::u16string TableLocation::Path() const { return JoinPath(folder, name); }
std::u16string TableLocation::MetadataPath() const { return Path() + u".xml"; }

void CopyTableFiles(const TableLocation& from, const TableLocation& to) {
  RequireName(to.name);
  RequireTable(from.Path());
  RequireFree(to.Path());
  const bool hasMetadata = Exists(from.MetadataPath());
  if (hasMetadata) RequireFree(to.MetadataPath());

  Rollback rollback;
  const std::u16string copy = TemporaryPath(to.folder, to.name);
  rollback.AddRemoval(copy);
  CopyFile(from.Path(), copy);
  if (hasMetadata) {
    const std::u16string metadataCopy = TemporaryPath(to.folder, to.name + u".xml");
    rollback.AddRemoval(metadataCopy);
    CopyFile(from.MetadataPath(), metadataCopy);
    rollback.AddRemoval(to.MetadataPath());
    Rename(metadataCopy, to.MetadataPath());
  }
  const SchemaIniPaths target(to.folder);
  std::u16string failure;
  if (!CopySchemaSection(SchemaIniPaths(from.folder), from.name, target, to.name, &failure))
    Fail(target.schemaIni, failure);
  if (!quenra::DataCoreUtil::CompareFoldCase(from.Path(), to.Path()))
    rollback.Add([target, name = to.name] { DropSchemaSection(target, name); });
  // The name comes last: whoever sees the table sees all of it.
  Rename(copy, to.Path());
  rollback.Commit();
}

void RenameTableFiles(const TableLocation& table, std::u16string_view newName) {
  const TableLocation renamed{table.folder, std::u16string(newName)};
  RequireName(newName);
  RequireTable(table.Path());
  RequireFree(renamed.Path());
  const bool hasMetadata = Exists(table.MetadataPath());
  if (hasMetadata) RequireFree(renamed.MetadataPath());

  const SchemaIniPaths paths(table.folder);
  const bool sameSection = quenra::DataCoreUtil::CompareFoldCase(table.name, newName);
  Rollback rollback;
  std::u16string failure;
  if (!sameSection) {
    // Until the file has its new name, both names have the section.
    if (!DuplicateSchemaSection(paths, table.name, newName, &failure))
      Fail(paths.schemaIni, failure);
    rollback.Add([paths, name = renamed.name] { DropSchemaSection(paths, name); });
  }
  if (hasMetadata) {
    Rename(table.MetadataPath(), renamed.MetadataPath());
    rollback.Add([from = Native(renamed.MetadataPath()), to = Native(table.MetadataPath())] {
      boost::system::error_code ignored;
      fs::rename(from, to, ignored);
    });
  }
  Rename(table.Path(), renamed.Path());
  rollback.Commit();

  const bool settled = sameSection ? RenameSchemaSection(paths, table.name, newName, &failure)
                                   : DropSchemaSection(paths, table.name, &failure);
  // The table has its new name and its section: what is left over is no reason to refuse.
  if (!settled) quenra::EventLog::Write(paths.schemaIni + u": " + failure);
}

void DeleteTableFiles(const TableLocation& table) {
  RequireTable(table.Path());
  Remove(table.Path());
  if (Exists(table.MetadataPath())) Remove(table.MetadataPath());
  const SchemaIniPaths paths(table.folder);
  std::u16string failure;
  if (!DropSchemaSection(paths, table.name, &failure)) Fail(paths.schemaIni, failure);
}

}  // namespace TextFile
