// Reads a described table to its end and holds the readers and the row converter against what
// they promise, for the fuzz targets of both readers.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "platform/OleText.h"
#include "reading/OpenTextDataset.h"
#include "reading/ReaderFactory.h"
#include "reading/RecordCount.h"
#include "reading/TextLineStream.h"
#include "tests/support/ConverterWithSlots.h"

namespace Fuzz {

// A row as the plain readers of the targets give it.
using PlainRecord = std::vector<std::u16string>;

// A table that is not opened yet and whose file is in memory; `bytes` must outlive it. There can be
// no folder of that name, and so no schema.ini: mismatches are reported, and not recorded.
inline TextFile::TextDatasetDescription TableInMemory(std::u16string_view name,
                                                      std::string_view bytes) {
  // Mostly one that holds the whole input. The usual ones are a hundred times as large, and under
  // the sanitizer that takes more time than all else.
  constexpr std::size_t kWholeInput = 4096;
  const std::size_t blockSize = bytes.size() % 4 == 1 ? 1 + bytes.size() / 4 % 100 : kWholeInput;
  TextFile::TextDatasetDescription table = TextFile::DescribeFile(u"/dev/null/folder", name);
  table.openStream = [bytes, blockSize](TextFile::TextLineStream& stream) {
    stream.Open(std::make_unique<MemoryFile>(bytes), TextFile::TextLineStream::kTerminateLines,
                blockSize);
  };
  return table;
}

inline std::u16string MessageTemplate(std::uint32_t id) {
  Check(id >= 115 && id <= 118);
  return u"%1 %2 %3";
}

// Owns one value.
class Value {
 public:
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  Value(TextFile::ConverterWithSlots& converter, std::size_t field) {
    ::VariantInit(&value_);
    converter.MoveValue(field, value_);
  }
  ~Value() { ::VariantClear(&value_); }
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;

  const VARIANT* operator->() const noexcept { return &value_; }

  std::u16string_view Text() const noexcept { return ViewOf(value_.bstrVal); }

 private:
  VARIANT value_;
};

// The kinds of value that a field of the type may hold, blank and unfitting texts included.
inline bool MayHold(TextFile::FieldType type, VARTYPE kind) {
  using TextFile::FieldType;
  if (kind == VT_NULL) return true;
  switch (type) {
    case FieldType::kSmallInteger:
      return kind == VT_I2 || kind == VT_R8;
    case FieldType::kInteger:
      return kind == VT_I4 || kind == VT_R8;
    case FieldType::kBigInteger:
      return kind == VT_I8 || kind == VT_R8;
    case FieldType::kSingle:
      return kind == VT_R4 || kind == VT_R8;
    case FieldType::kDouble:
      return kind == VT_R8;
    case FieldType::kString:
      return kind == VT_BSTR;
    case FieldType::kDate:
    case FieldType::kDateOnly:
    case FieldType::kTimeOnly:
      return kind == VT_DATE;
    case FieldType::kTimestampOffset:
      return kind == VT_UNKNOWN;
    default:
      return false;
  }
}

inline bool HasVirtualFields(const TextFile::TextDatasetDescription& table) {
  for (const TextFile::FieldDefinition& field : table.fields)
    if (field.isCoordinate) return true;
  return false;
}

// Whether the field is the second text of a pair, which stays empty in a record that ends before
// it, although the fields behind it are null.
inline bool IsSecondOfPair(const TextFile::TextDatasetDescription& table, std::size_t field) {
  const auto& fields = table.fields;
  return field + 1 < fields.size() && fields[field + 1].isPair && !fields[field].isCoordinate;
}

// `quick` converts the same row without the texts, which nobody asked of it.
inline void CheckRow(const TextFile::TextDatasetDescription& table, const TextFile::Record& record,
                     bool plainColumns, TextFile::ConverterWithSlots& converter,
                     TextFile::ConverterWithSlots& quick) {
  using TextFile::FieldType;
  const std::size_t count = converter.Convert(record);
  Check(count <= table.fields.size() && quick.Convert(record) == count);
  if (plainColumns) Check(count == std::min(record.size(), table.fields.size()));
  for (std::size_t i = 0; i < table.fields.size(); ++i) {
    const FieldType type = table.fields.TypeOf(i);
    const Value value(converter, i);
    const Value other(quick, i);
    if (i >= count) {
      Check(value->vt == VT_EMPTY && other->vt == VT_EMPTY);
      continue;
    }
    Check(MayHold(type, value->vt) || (value->vt == VT_EMPTY && IsSecondOfPair(table, i)));
    if (value->vt == VT_BSTR && plainColumns) Check(value.Text() == record[i]);
    if (type == FieldType::kString) {
      Check(other->vt == VT_EMPTY);
      continue;
    }
    Check(other->vt == value->vt);
    if (value->vt == VT_I4) Check(other->lVal == value->lVal);
    if (value->vt == VT_DATE) Check(other->date == value->date);
  }
}

// Walks the table's rows as a cursor does, and converts them from their bytes where it can.
class PlainWalk {
 public:
  explicit PlainWalk(const std::shared_ptr<const TextFile::TextDatasetDescription>& table)
      : converter_(table, &MessageTemplate), reader_(TextFile::MakeDataReader(*table)) {}

  // `record` is the current one, and `other` has the values that its fields have.
  void CheckRow(const TextFile::Record& record, TextFile::ConverterWithSlots& other) {
    Check(plain_ ? row_.size() == record.size() : reader_->record().size() == record.size());
    TextFile::UnitBuffer buffer;
    for (std::size_t i = 0; i < record.size(); ++i)
      Check((plain_ ? row_.Text(i, buffer) : reader_->record()[i]) == record[i]);
    const std::size_t count =
        plain_ ? converter_.Convert(row_) : converter_.Convert(reader_->record());
    Check(other.Convert(record) == count);
    for (std::size_t i = 0; i < converter_.fieldCount(); ++i) {
      const Value value(converter_, i);
      const Value expected(other, i);
      Check(value->vt == expected->vt);
      if (value->vt == VT_BSTR) Check(value.Text() == expected.Text());
      if (value->vt == VT_R8) Check(SameBits(value->dblVal, expected->dblVal));
      if (value->vt == VT_R4) Check(value->fltVal == expected->fltVal);
      if (value->vt == VT_I8) Check(value->llVal == expected->llVal);
      if (value->vt == VT_I4) Check(value->lVal == expected->lVal);
      if (value->vt == VT_DATE) Check(SameBits(value->date, expected->date));
    }
  }

  // False behind the last row.
  bool Advance() {
    plain_ = (plain_ && row_.GoOn()) || reader_->ReadPlainRow(row_);
    return plain_ || reader_->ReadRecord();
  }

 private:
  static bool SameBits(double a, double b) noexcept {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
  }

  TextFile::ConverterWithSlots converter_;
  const TextFile::ReaderPtr reader_;
  TextFile::PlainRow row_;
  bool plain_ = false;
};

// Walks the table's rows. `next` answers each record of the file as a plain reader of the target
// cuts it, from the header on, and false behind the last one.
template <class NextPlainRecord>
void CheckRows(const TextFile::TextDatasetDescription& table, NextPlainRecord next) {
  const auto shared = std::make_shared<const TextFile::TextDatasetDescription>(table);
  TextFile::ConverterWithSlots converter(shared, &MessageTemplate);
  TextFile::ConverterWithSlots quick(shared, &MessageTemplate);
  Check(converter.fieldCount() == table.fields.size());
  for (std::size_t i = 0; i < table.fields.size(); ++i)
    if (table.fields.TypeOf(i) == TextFile::FieldType::kString) quick.SetWanted(i, false);
  const bool plainColumns = !HasVirtualFields(table);
  TextFile::ConverterWithSlots exact(shared, &MessageTemplate);
  PlainWalk walk(shared);

  PlainRecord plain;
  if (table.options.columnNameHeader) next(plain);
  const TextFile::ReaderPtr reader = TextFile::MakeDataReader(table);
  Check(reader->IsOpen());
  std::int64_t rows = 0;
  while (!reader->record().empty()) {
    const TextFile::Record& record = reader->record();
    ++rows;
    Check(next(plain) && plain.size() == record.size());
    for (std::size_t i = 0; i < plain.size(); ++i) Check(plain[i] == record[i]);
    CheckRow(table, record, plainColumns, converter, quick);
    walk.CheckRow(record, exact);
    Check(reader->ReadRecord() == !reader->record().empty());
    Check(walk.Advance() == !reader->record().empty());
  }
  Check(!next(plain) && reader->AtEnd());
  Check(!reader->ReadRecord());
  Check(TextFile::CountDataRecords(table) == rows);
}

}  // namespace Fuzz
