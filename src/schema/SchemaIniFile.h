// The sections of a schema.ini, read whole, changed, and written back.
//
//   SchemaIniFile file(paths);     // waits for other writers
//   file.Replace(u"a.csv", body);
//   file.Save();
//
// The new file is finished under its temporary name and takes the old one's place in one rename,
// so that schema.ini is never seen half written. While an object of this class lives, no other
// writer, of this process or another, changes the folder's schema.ini. Sections keep their order
// and their lines; blank lines go.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ExclusiveFile.h"
#include "schema/SchemaIniPaths.h"

namespace TextFile {

// Why schema.ini could not be written. Stays inside the core.
struct SchemaIniFailure {
  std::u16string reason;
};

// The lines between one header line and the next, without blank ones.
using SectionLines = std::vector<std::u16string>;

class SchemaIniFile {
 public:
  enum class Access { kRead, kWrite };

  // Reads schema.ini; one that does not exist has no sections. Throws SchemaIniFailure when it
  // cannot be read, is in an encoding that is not read, or (kWrite) when the temporary file cannot
  // be made.
  SchemaIniFile(SchemaIniPaths paths, Access access);

  // The first section of that name, compared without regard to case; null when there is none. The
  // pointer lives until the next change.
  const SectionLines* Find(std::u16string_view name) const noexcept;

  // Puts `lines` in place of the section's, whose header line stays as it was found and whose
  // duplicates go; appends the section when there is none. Throws SchemaIniFailure when the reader
  // takes something else for the section.
  void Replace(std::u16string_view name, SectionLines lines);

  // Puts a section `newName` with the lines of `name` behind it. Nothing happens when there is no
  // section `name`. Throws SchemaIniFailure as Replace does.
  void Duplicate(std::u16string_view name, std::u16string_view newName);

  // Takes every section of that name away.
  void Remove(std::u16string_view name);

  // Gives every section of that name another header line; its lines stay. Throws SchemaIniFailure
  // as Replace does; some sections may have the new header then.
  void Rename(std::u16string_view name, std::u16string_view newName);

  // Writes the sections back. Throws SchemaIniFailure; schema.ini is then as it was.
  void Save();

 private:
  struct Section {
    std::u16string header;  // "[name]"; empty for the lines before the first header
    SectionLines lines;
  };

  bool IsHiddenBefore(std::vector<Section>::const_iterator section,
                      std::u16string_view name) const noexcept;
  void Read();
  std::string Bytes() const;

  const SchemaIniPaths paths_;
  ExclusiveFile temporary_;
  std::vector<Section> sections_;
  bool exists_ = false;
  bool hadMark_ = false;  // the file began with a byte-order mark
};

}  // namespace TextFile
