// The bytes of a schema.ini as sections of lines, and back.
//
//   SchemaIniText ini;
//   if (!ini.Parse(bytes)) ...                        // an encoding that is not read
//   ini.sections.back().Append(u"Col1=Id Long");
//   if (!ini.Compose(bytes)) ...                      // the encoding cannot hold the new lines
//
// Every line has the text that the reader of sections (SchemaIniReader) sees, and the bytes that
// it was read from. Lines that are not changed are written with these bytes; new lines are written
// in the encoding of the others. What is composed has been read again: it gives the same texts.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reading/TextLineStream.h"

namespace TextFile {

// The lines between one header line and the next, without blank ones.
using SectionLines = std::vector<std::u16string>;

// Where a line comes from.
struct SchemaIniSource {
  std::optional<std::string> bytes;  // without its line end; none for a new line
  // The rest of a line from its first "[" on, which the reader looks at as it does at header lines.
  // Empty for header lines and for lines without a "[".
  std::u16string innerHeader;
};

struct SchemaIniSection {
  // Adds a new line; one that holds line ends becomes several, and blank ones go.
  void Append(std::u16string_view line);
  // The same for a line that has been read.
  void Append(std::u16string line, SchemaIniSource source);

  std::u16string header;  // "[name]"; empty for the lines before the first header
  SchemaIniSource headerSource;
  SectionLines lines;
  std::vector<SchemaIniSource> sources;  // of the lines, one each
};

class SchemaIniText {
 public:
  // A text without sections, and without a mark when it is composed.
  SchemaIniText() : sections(1) {}

  // False when the bytes are in an encoding that the line reader does not read, or cannot be cut
  // into lines and put together again; the sections are then unspecified.
  [[nodiscard]] bool Parse(std::string_view bytes);

  // False when the text cannot be written so that every line reads back; `bytes` is then
  // unspecified.
  [[nodiscard]] bool Compose(std::string& bytes) const;

  // Whether `text` tells all that the line's bytes hold: it does not when bytes have no meaning in
  // the encoding, or stand behind a zero byte.
  bool TellsAll(std::u16string_view text, const SchemaIniSource& source) const;

  // The first one holds the lines before the first header. It is always there.
  std::vector<SchemaIniSection> sections;

 private:
  class Decoder;
  struct RawLine {
    std::string_view bytes;
    bool last = false;
  };

  RawLine TakeLine(std::string_view& bytes) const;
  static RawLine TakeUtf16Line(std::string_view& bytes);
  std::string_view WithoutLineEnd(std::string_view line) const;
  bool Encode(std::u16string_view text, bool ansi, std::string& bytes) const;
  bool AppendLine(std::u16string_view text, const SchemaIniSource& source, bool isHeader,
                  Decoder& decoder, std::string& bytes) const;
  bool ReadsAs(const SchemaIniText& other) const;

  TextEncoding encoding_ = TextEncoding::kUndetermined;
  // What the lines beyond ASCII of a text without a mark are.
  bool hasUtf8_ = false;
  bool hasAnsi_ = false;
  // From the first byte 1A on, which ends a text of bytes.
  std::string tail_;
};

}  // namespace TextFile
