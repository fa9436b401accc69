// Takes plain rows (see PlainRow.h) from the bytes of a file.
//
//   const PlainRowScan scan({.delimiter = ';', .textDelimiter = '"'});
//   const PlainRowEnd end = scan.Take(bytes, row);
//   if (end.length != 0) ...  // the row has been found; its line is that long
//
// A row is found as the readers find it, or not at all: whatever the bytes alone do not tell is
// left to the readers. That is a row that no line feed ends, or that goes on behind one; that has a
// zero byte or an ill-formed sequence; or that has a text delimiter which stands neither at the
// start of a field nor where one that is open may end. Lines that may be blank are left to them
// too.
#pragma once

#include <cstddef>
#include <string_view>

#include "reading/PlainRow.h"

namespace TextFile {

// What separates the fields. ASCII characters, different from each other, and neither line feed nor
// carriage return.
struct PlainRowDialect {
  char delimiter = ',';      // 0: the line is one field
  char textDelimiter = '"';  // 0: no quoting
  bool asciiOnly = false;    // a line of other characters is not plain
};

struct PlainRowEnd {
  std::size_t length = 0;  // of the line in bytes, its line feed included; 0: no plain row
  bool nonAscii = false;   // whether it has bytes above 127
};

class PlainRowScan {
 public:
  // The code of lesser processors may be asked for, for comparison; what this one lacks is
  // kBaseline.
  enum class Code { kBest, kAvx2, kBaseline, kPlain };
  explicit PlainRowScan(const PlainRowDialect& dialect, Code code = Code::kBest) noexcept;

  // Takes the row at the start of `bytes`, behind which kPlainRowPadding more can be read. The row
  // refers to them; without a plain row it is unspecified.
  PlainRowEnd Take(std::string_view bytes, PlainRow& row) const {
    return kernel_(dialect_, bytes, row);
  }

 private:
  using Kernel = PlainRowEnd (*)(const PlainRowDialect&, std::string_view, PlainRow&);

  static Kernel Choose(Code code) noexcept;

  PlainRowDialect dialect_;
  Kernel kernel_;
};

}  // namespace TextFile
