// Whether what is added at the end of a table's file would be read as rows.
//
//   const TextEnd end = FindTextEnd(table, encoding, file, 0);
//   if (end.state != TextEnd::State::kTakesRows) ...
#pragma once

#include <cstdint>

#include "platform/RegularFile.h"
#include "reading/TextDatasetDescription.h"
#include "reading/TextLineStream.h"

namespace TextFile {

struct TextEnd {
  enum class State : std::uint8_t {
    kTakesRows,
    kInQuotes,       // rows would be a part of the last field
    kBehindTextEnd,  // a byte 1A with more behind it: nothing there is read
    kHalfCharacter,  // every character behind it would be another one
    kNotRead,        // the file cannot be read
  };

  State state = State::kTakesRows;
  std::uint64_t size = 0;  // of the file without the bytes 1A at its end
  bool endsLine = true;    // or there is no line
};

// Looks at the file from its end to its front. Bytes 1A, which may stand anywhere in 8-bit text,
// are looked for in all of it; quotes only as far back as it takes to know whether they are open,
// and where bytes alone do not tell (UTF-16, code pages of several bytes, carriage returns that end
// the rows) the file is read as a table. What is in front of `from`, where a row begins or the file
// does, has been looked at before. `table` has its fields if it is of fixed width, and
// `encoding` is what the byte-order mark says.
TextEnd FindTextEnd(const TextDatasetDescription& table, TextEncoding encoding, RegularFile& file,
                    std::uint64_t from);

// Whether the file has no record, not even one of names.
bool HasNoRecord(const TextDatasetDescription& table);

}  // namespace TextFile
