// Decides the type of every column from the first rows of a file.
//
//   TypeInference inference(reader, options, openOptions);
//   inference.ReadHeader();
//   if (inference.Scan()) inference.WriteFields(fields);
//
// Columns that schema.ini declares keep their type, apart from their date kind and the decimal
// symbol. Everything else is inferred: the header row, types, date orders, the decimal symbol of
// the file, and which columns hold coordinates.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "host/DataCore/LatLongFormat.h"
#include "inference/ColumnState.h"
#include "inference/OpenOptions.h"
#include "reading/LayoutMisfit.h"
#include "reading/Reader.h"
#include "schema/FieldList.h"
#include "schema/TableSchema.h"

namespace TextFile {

// What reading the first record has shown.
struct HeaderReading {
  bool foundRecord = false;
  bool onlyLineEnds = false;  // the record is nothing but CRs and line feeds
  bool reachedEnd = false;    // the file holds nothing beyond its first record
};

class TypeInference {
 public:
  // Starts from the columns declared in `options`. `reader` and `options` are used until the end,
  // and `options` is written to: the header flag and the decimal symbol.
  TypeInference(Reader& reader, SchemaOptions& options, const OpenOptions& openOptions);

  // Reads the first record from the start of the file, decides whether it is a header (unless
  // schema.ini has) and gives its texts to the columns without a name. The reader is left behind
  // the header, or at the start of the file when there is none.
  HeaderReading ReadHeader();

  // Takes back what ReadHeader has given to the columns.
  void ForgetHeader();

  // Reads and classifies rows until enough is known. False when a row has more values than a
  // header row has names.
  [[nodiscard]] bool Scan();

  // Replaces `fields` by the columns as they are now, coordinate fields included.
  void WriteFields(FieldList& fields) const;

  // Why Scan has answered false, or what there is of the last record that was read.
  LayoutMisfit Misfit() const noexcept;

  // The number of fields of the last record that was read successfully; 0 when none was.
  std::size_t lastRecordSize() const noexcept { return lastRecordSize_; }

 private:
  void StartFromDeclaredColumns();
  bool ReadRecord();
  void Rewind();
  bool IsHeader() const;
  void NameColumns();
  FieldType Classify(std::u16string_view text, DateClass& date) const;
  bool AnotherRowIsWanted(std::size_t rows, std::size_t lowerLimit) const noexcept;
  bool ClassifyRow();
  void ClassifyField(ColumnState& column, std::u16string_view text);
  void CheckDeclared(ColumnState& column, std::u16string_view text);
  void CheckDecimalSymbol(std::u16string_view text);
  FieldType TypeWithOtherDecimalSymbol(std::u16string_view text) const;
  bool MoreRowsWouldTell() const;
  void DecideDecimalSymbol();
  std::size_t FieldsToStore() const;
  FieldDefinition MakeField(const ColumnState& column, std::size_t position,
                            std::u16string_view name) const;

  Reader& reader_;
  SchemaOptions& options_;
  const OpenOptions openOptions_;
  quenra::LatLongFormat latLong_;
  ColumnStates columns_;
  bool needsMoreRows_ = true;
  bool doubleSeen_ = false;
  std::size_t lastRecordSize_ = 0;
  std::uint64_t recordsRead_ = 0;  // since the start of the file
};

}  // namespace TextFile
