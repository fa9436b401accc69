// The sections of a schema.ini, read whole, changed, and written back.
//
//   SchemaIniFile file(paths);     // waits for other writers
//   file.Replace(u"a.csv", body);
//   file.Save();
//
// The new file is finished under its temporary name and takes the old one's place in one rename,
// so that schema.ini is never seen half written. While an object of this class lives, no other
// writer, of this process or another, changes the folder's schema.ini. Sections keep their order,
// and lines that are not changed keep their bytes; blank lines go and line ends become LF. New
// lines are written in the encoding of the file, a new file in UTF-8.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/ExclusiveFile.h"
#include "schema/SchemaIniPaths.h"
#include "schema/SchemaIniText.h"

namespace TextFile {

// Why schema.ini could not be written. Stays inside the core.
struct SchemaIniFailure {
  std::u16string reason;
};

class SchemaIniFile {
 public:
  enum class Access {
    kRead,
    // Waits ten seconds for other writers.
    kWrite,
    // For what reading does by itself: waits one second, and never writes into the old file where
    // that cannot be replaced without changing whose it is (see ExclusiveFile).
    kUpdate,
  };

  // Reads schema.ini; one that does not exist has no sections. Throws SchemaIniFailure when it
  // cannot be read, is in an encoding that is not read, or (kWrite, kUpdate) when the temporary
  // file cannot be made; the reason then names it and, where that is known, who has it. Writing
  // into schema.ini that a process left half-way is completed first (kWrite).
  SchemaIniFile(SchemaIniPaths paths, Access access);

  // The first section of that name, compared without regard to case; null when there is none. The
  // pointer lives until the next change.
  const SectionLines* Find(std::u16string_view name) const noexcept;

  // Whether the section's lines, as Find answers them, tell all that stands in the file: not so
  // when bytes have no meaning in its encoding, or text stands behind a zero byte. True when there
  // is no such section.
  bool TellsAll(std::u16string_view name) const;

  // Puts `lines` in place of the section's, whose header line stays as it was found and whose
  // duplicates go; appends the section when there is none. A line that the section had already
  // keeps its bytes. Throws SchemaIniFailure when the reader takes something else for the section,
  // or when a line goes whose text does not tell all that it holds.
  void Replace(std::u16string_view name, SectionLines lines);

  // Puts a section `newName` with the lines of `name` behind it. Nothing happens when there is no
  // section `name`. Throws SchemaIniFailure as Replace does.
  void Duplicate(std::u16string_view name, std::u16string_view newName);

  // Takes every section of that name away.
  void Remove(std::u16string_view name);

  // Gives every section of that name another header line; its lines stay. Throws SchemaIniFailure
  // as Replace does; some sections may have the new header then.
  void Rename(std::u16string_view name, std::u16string_view newName);

  // Writes the sections back. Throws SchemaIniFailure, also when the file's encoding cannot hold
  // the new lines or when text stands behind its end (a byte 1A); schema.ini is then as it was.
  void Save();

 private:
  using Sections = std::vector<SchemaIniSection>;

  Sections::iterator Locate(std::u16string_view name) noexcept;
  bool IsHiddenBefore(Sections::const_iterator section, std::u16string_view name) const noexcept;
  SchemaIniSection Rewritten(const SchemaIniSection& old, const SectionLines& lines) const;
  ExclusiveFile::InPlace MayWriteInPlace() const noexcept;
  [[noreturn]] void FailOver(std::u16string_view reason) const;
  void Read();

  const SchemaIniPaths paths_;
  const Access access_;
  ExclusiveFile temporary_;
  SchemaIniText text_;
  bool exists_ = false;
};

}  // namespace TextFile
