// Counts the records of arbitrary bytes in an arbitrary code page. The first line of the input is
// the dialect: a character for the code page, the delimiter, the text delimiter (a blank: none),
// "r" for records that end with a carriage return, "h" for a header.
//
// Holds: as many records are counted as a reader gives, and as one gives that takes each character
// by itself; the records are the same.

#include <iterator>
#include <string>

#include "FuzzInput.h"
#include "RowChecks.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "reading/DelimitedReader.h"

namespace {

using Fuzz::Check;
using TextFile::TextDatasetDescription;

constexpr UINT kCodePages[] = {1252, 932, 936, 949, 950, 1251, 1255, 1258, 874, 65001};

TextDatasetDescription TableOf(std::string_view dialect, std::string_view bytes) {
  const auto at = [dialect](std::size_t i) { return i < dialect.size() ? dialect[i] : '0'; };
  Check(quenra::QUENRALocale::SetAnsiCodePage(
      kCodePages[(static_cast<unsigned char>(at(0)) + 2U) % std::size(kCodePages)]));
  TextDatasetDescription table = Fuzz::TableInMemory(u"t.csv", bytes);
  const auto unit = [&at](std::size_t i) {
    return static_cast<char16_t>(static_cast<unsigned char>(at(i)));
  };
  table.options.delimiter = unit(1);
  table.options.textDelimiter = at(2) == ' ' ? u'\0' : unit(2);
  if (at(3) == 'r') table.options.recordTerminator = '\r';
  table.options.columnNameHeader = at(4) == 'h';
  table.loaded = true;
  return table;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::FuzzInput input(data, size);
  const std::string_view dialect = input.TakeLine();
  const TextDatasetDescription table = TableOf(dialect, input.Rest());
  TextFile::DelimitedReader quick(table);
  TextFile::DelimitedReader exact(table);
  exact.SplitExactly();
  std::int64_t records = 0;
  while (quick.ReadRecord()) {
    Check(exact.ReadRecord() && exact.record().size() == quick.record().size());
    for (std::size_t i = 0; i < quick.record().size(); ++i)
      Check(quick.record()[i] == exact.record()[i]);
    ++records;
  }
  Check(!exact.ReadRecord() && quick.AtEnd());
  const std::int64_t rows = records > 0 && table.options.columnNameHeader ? records - 1 : records;
  Check(TextFile::CountDataRecords(table) == rows);
  return 0;
}
