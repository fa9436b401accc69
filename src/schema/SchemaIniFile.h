// The sections of a schema.ini, read whole, changed, and written back.
//
//   SchemaIniFile file(paths);     // waits for other writers
//   file.Replace(u"a.csv", body);
//   file.Save();
//
// The new file is finished under a temporary name and takes the old one's place in one rename, so
// that schema.ini is never seen half written. From its making for writing until Save an object of
// this class is the only writer of the folder's schema.ini, in this process and in others.
// Operations on tables hold one all the time, their files' moves included, and so come one after
// another. Sections keep their order, and lines that are not changed keep their bytes; blank lines
// go and line ends become LF. New lines are written in the encoding of the file, a new file in
// UTF-8.
//
// A section is a file's when its header is the file's name, compared without regard to case.
// Where the file system tells letter case, one whose header is spelled exactly as another file of
// the folder is that file's, and no change made for a name touches it. Reading takes the first
// section that matches, whosever it is.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
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

  // What became of a change.
  struct Change {
    bool made = false;   // there is something to save
    bool stood = false;  // sections of the new name stand behind the new one now
  };

  // Reads schema.ini; one that does not exist has no sections. One that nobody reads, since it is
  // no regular file or in an encoding that is not read, has none either and is never saved. Throws
  // SchemaIniFailure when it cannot be read this time or by this user, or (but for kRead) when the
  // temporary file cannot be made; the reason then names it and, where that is known, who has it.
  // Writing into schema.ini that a process has left half-way is completed first, or (kUpdate) a
  // reason to fail.
  SchemaIniFile(SchemaIniPaths paths, Access access);

  // The section that reading takes for that name; null when there is none. The pointer lives until
  // the next change.
  const SectionLines* Find(std::u16string_view name) const noexcept;

  // The first section that is the file's own; null when there is none.
  const SectionLines* FindOwn(std::u16string_view name) const;

  // Whether that section's lines tell all that stands in the file: not so when bytes have no
  // meaning in its encoding, or text stands behind a zero byte. True when there is no such section.
  bool TellsAll(std::u16string_view name) const;

  // Whether reading takes a section of another file for that name.
  bool ReadsAnothers(std::u16string_view name) const;

  // Puts `lines` in place of the section's, whose header line stays as it was found and whose
  // duplicates go; appends the section when there is none. A line that the section had already
  // keeps its bytes. Throws SchemaIniFailure when the reader takes something else for the section,
  // or when a line goes whose text does not tell all that it holds.
  void Replace(std::u16string_view name, const SectionLines& lines);

  // Puts a section `newName` in front of those of that name, or behind all others; one with the
  // same lines that is the first already is left as it is. Throws SchemaIniFailure as Replace does.
  Change Insert(std::u16string_view newName, const SectionLines& lines);

  // The same with the lines of `name`, and their bytes. Nothing happens when there is no section
  // `name`.
  Change InsertCopy(std::u16string_view name, std::u16string_view newName);

  // Puts a section `newName` with the lines of `name` behind it, unless that stands there already,
  // and behind that one those of the new name that stood in front of it. Nothing happens when there
  // is no section `name`. Throws SchemaIniFailure as Replace does.
  Change Duplicate(std::u16string_view name, std::u16string_view newName);

  // Takes every section of that name away. False when there is none.
  bool Remove(std::u16string_view name);

  // Gives every section of that name another header line; its lines stay. What Duplicate has put
  // behind the first one goes. False when there is none. Throws SchemaIniFailure as Replace does.
  bool Rename(std::u16string_view name, std::u16string_view newName);

  // Writes the sections back, and lets other writers in. Throws SchemaIniFailure, also when the
  // file's encoding cannot hold the new lines or when text stands behind its end (a byte 1A);
  // schema.ini is then as it was.
  void Save();

  // The same, but other writers still wait.
  void SaveAndHold();

  // Takes back what SaveAndHold has done: schema.ini is byte for byte what it was before, unless
  // somebody who does not wait for others has written it since.
  void Restore() noexcept;

 private:
  using Places = std::vector<std::size_t>;  // ascending

  // Which sections are the file's own.
  Places PlacesOf(std::u16string_view name) const;
  std::vector<SchemaIniSection>::iterator At(std::size_t place) noexcept {
    return text_.sections.begin() + static_cast<std::ptrdiff_t>(place);
  }
  void Erase(std::span<const std::size_t> places);
  bool IsHiddenBefore(std::size_t place, std::u16string_view name) const noexcept;
  SchemaIniSection Rewritten(const SchemaIniSection& old, const SectionLines& lines) const;
  ExclusiveFile::InPlace MayWriteInPlace() const noexcept;
  Change InsertSection(std::u16string_view newName, SchemaIniSection section);
  void Read();
  std::string Bytes() const;
  void TakeHold();
  bool ReplaceAndHold(std::string_view bytes, ExclusiveFile& finished) const;

  const SchemaIniPaths paths_;
  const std::u16string finished_;  // the temporary file of SaveAndHold
  const Access access_;
  ExclusiveFile temporary_;
  SchemaIniText text_;
  bool exists_ = false;
  bool isRead_ = true;
  std::optional<std::string> before_;   // of schema.ini, when SaveAndHold has first replaced it
  std::optional<std::string> written_;  // by SaveAndHold
};

}  // namespace TextFile
