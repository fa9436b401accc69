// What the operations on tables have in common: the order in which they take hold of things, and
// the way back. For TableFiles.cpp and TableCreation.cpp alone.
//
// Things are taken in one order, so that no two operations wait for each other: the temporary file
// of a new table, the table's own file, schema.ini.
#pragma once

#include <boost/filesystem/path.hpp>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/FileHold.h"
#include "schema/SchemaIniFile.h"
#include "schema/TableFiles.h"

namespace TextFile {

boost::filesystem::path NativePath(const std::u16string& path);

// Whether something has the name; a link that leads nowhere is something.
bool HasName(const std::u16string& path);

// Throw TableFailure with `taken` set.
[[noreturn]] void FailBecauseTaken(const std::u16string& path);
void RequireFree(const std::u16string& path);

// The temporary file that becomes the file `name` when it is finished.
std::u16string TemporaryPath(const std::u16string& folder, const std::u16string& name);

// Takes the table's file, when there is one, and then the folder's schema.ini: until the result
// goes, no rows are added to the table and no other operation changes a table of the folder.
// Throws TableFailure when rows are being added for too long, SchemaIniFailure as SchemaIniFile
// does.
std::unique_ptr<SchemaIniFile> HoldTable(const TableLocation& table, FileHold& hold);

// Steps to take back, the last one first, unless all went well.
class Rollback {
 public:
  Rollback() = default;
  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;
  ~Rollback();
  // `step` must not throw.
  void Add(std::function<void()> step) { steps_.push_back(std::move(step)); }
  void AddRemoval(const std::u16string& path);
  void AddReturn(const std::u16string& from, const std::u16string& to);
  void AddRestoration(SchemaIniFile& sections);
  void Commit() noexcept { steps_.clear(); }

 private:
  std::vector<std::function<void()>> steps_;
};

// Runs an operation; a schema.ini that stands in its way becomes a TableFailure that names it.
template <class Operation>
auto RunOperation(const std::u16string& folder, const Operation& operation) {
  try {
    return operation();
  } catch (const SchemaIniFailure& failure) {
    FailTable(SchemaIniPaths(folder).schemaIni, failure.reason);
  }
}

}  // namespace TextFile
