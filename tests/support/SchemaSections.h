// Changes of one section of a schema.ini, as the operations on tables make them.
//
//   std::u16string failure;
//   EXPECT_FALSE(RenameSchemaSection(paths, u"a.csv", u"b.csv", &failure));
//
// True also when there is no such section, and nothing is written then.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "schema/SchemaIniFile.h"

namespace TextFile {

inline bool ChangeSchemaIni(const SchemaIniPaths& paths, std::u16string* failure,
                            const std::function<bool(SchemaIniFile&)>& change) {
  try {
    SchemaIniFile file(paths, SchemaIniFile::Access::kWrite);
    if (change(file)) file.Save();
    return true;
  } catch (const SchemaIniFailure& known) {
    if (failure != nullptr) *failure = known.reason;
    return false;
  }
}

inline bool DropSchemaSection(const SchemaIniPaths& paths, std::u16string_view name,
                              std::u16string* failure = nullptr) {
  return ChangeSchemaIni(paths, failure, [&](SchemaIniFile& file) { return file.Remove(name); });
}

inline bool RenameSchemaSection(const SchemaIniPaths& paths, std::u16string_view name,
                                std::u16string_view newName, std::u16string* failure = nullptr) {
  return ChangeSchemaIni(paths, failure,
                         [&](SchemaIniFile& file) { return file.Rename(name, newName); });
}

inline bool DuplicateSchemaSection(const SchemaIniPaths& paths, std::u16string_view name,
                                   std::u16string_view newName, std::u16string* failure = nullptr) {
  return ChangeSchemaIni(paths, failure,
                         [&](SchemaIniFile& file) { return file.Duplicate(name, newName).made; });
}

}  // namespace TextFile
