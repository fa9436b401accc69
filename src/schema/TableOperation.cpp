#include "schema/TableOperation.h"

#include <boost/filesystem.hpp>

#include "platform/ExclusiveFile.h"
#include "platform/FileNames.h"
#include "schema/SchemaIniPaths.h"
#include "schema/TableNames.h"

namespace TextFile {

namespace fs = boost::filesystem;

fs::path NativePath(const std::u16string& path) { return fs::path(NativeFromFileName(path)); }

bool HasName(const std::u16string& path) {
  boost::system::error_code ignored;
  return fs::exists(fs::symlink_status(NativePath(path), ignored));
}

void FailBecauseTaken(const std::u16string& path) {
  throw TableFailure{FileMessage(path, u"the file exists already"), true};
}

void RequireFree(const std::u16string& path) {
  if (HasName(path)) FailBecauseTaken(path);
}

std::u16string TemporaryPath(const std::u16string& folder, const std::u16string& name) {
  return JoinPath(folder, TemporaryNameOf(name, u".tmp"));
}

std::unique_ptr<SchemaIniFile> HoldTable(const TableLocation& table, FileHold& hold) {
  const std::u16string path = table.Path();
  const NativeFileName native = NativeFromFileName(path);
  for (;;) {
    const FileHold::Result result = hold.Take(native);
    if (result == FileHold::Result::kBusy) FailTable(path, u"rows are being added to the table");
    auto sections = std::make_unique<SchemaIniFile>(SchemaIniPaths(table.folder),
                                                    SchemaIniFile::Access::kWrite);
    // Another operation may have put another file there before schema.ini was to be had.
    boost::system::error_code ignored;
    if (result == FileHold::Result::kUnable || hold.IsAt(native) ||
        !fs::exists(NativePath(path), ignored))
      return sections;
  }
}

Rollback::~Rollback() {
  // NOLINTNEXTLINE(modernize-loop-convert): ranges cannot be turned round with every compiler yet
  for (auto step = steps_.rbegin(); step != steps_.rend(); ++step) (*step)();
}

void Rollback::AddRemoval(const std::u16string& path) {
  Add([native = NativePath(path)] {
    boost::system::error_code ignored;
    fs::remove(native, ignored);
  });
}

void Rollback::AddReturn(const std::u16string& from, const std::u16string& to) {
  Add([from = NativeFromFileName(from), to = NativeFromFileName(to)] {
    static_cast<void>(ExclusiveFile::Move(from, to));
  });
}

void Rollback::AddRestoration(SchemaIniFile& sections) {
  Add([&sections] { sections.Restore(); });
}

}  // namespace TextFile
