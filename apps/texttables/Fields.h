// A table's fields as the host's field collection tells them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/com/ComPtr.h"
#include "host/interfaces/PlugInDataset.h"

namespace TextTables {

struct Field {
  std::u16string name;
  LONG type = 0;
  LONG length = 0;
  LONG precision = 0;
  std::u16string tag;
};

// The fields one by one, since a table may have a million of them and nobody needs all at once.
// Every method throws a Refusal where the data source refuses.
class TableFields {
 public:
  // No fields.
  TableFields() = default;
  // `table` is for the texts of refusals.
  TableFields(quenra::IPlugInDatasetHelper& dataset, std::u16string table);

  std::size_t size() const noexcept { return size_; }
  Field operator[](std::size_t index) const;
  std::u16string NameOf(std::size_t index) const;
  LONG TypeOf(std::size_t index) const;

 private:
  quenra::ComPtr<quenra::HostField> At(std::size_t index) const;

  std::u16string table_;
  quenra::ComPtr<quenra::HostFieldCollection> collection_;
  std::size_t size_ = 0;
};

// All of them. Throws a Refusal; `table` is for its text.
std::vector<Field> FieldsOf(quenra::IPlugInDatasetHelper& dataset, const std::u16string& table);

// The codes of the field types that the program treats in a way of their own.
enum FieldTypeCode : LONG {
  kSmallIntegerField = 0,
  kIntegerField = 1,
  kSingleField = 2,
  kDoubleField = 3,
  kStringField = 4,
  kDateField = 5,
  kObjectIdField = 6,
  kGuidField = 10,
  kGlobalIdField = 11,
  kBigIntegerField = 13,
  kDateOnlyField = 14,
  kTimeOnlyField = 15,
  kTimestampOffsetField = 16,
};

// "Integer" for 1, and so on.
std::string FieldTypeName(LONG type);

// The code of a type named as FieldTypeName does, without regard to case, or given in decimal
// digits: any number is a code, whether or not the data source knows it.
std::optional<LONG> FieldTypeOf(std::string_view name);

// "SmallInteger, Integer, ...".
std::string FieldTypeNames();

// Whether the field is one of the numbers that the data source makes of latitude/longitude texts;
// the file has no column for it.
bool IsVirtualCoordinate(const Field& field);

// What names have in common that differ in case only.
std::u16string FoldedName(std::u16string_view name);

// The fields of these names, each exactly, else without regard to case; the first of several. The
// number of fields where there is none. The fields are looked through once.
std::vector<std::size_t> FindFields(const TableFields& fields,
                                    const std::vector<std::u16string>& names);

}  // namespace TextTables
