// A table's fields as the host's field collection tells them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/interfaces/PlugInDataset.h"

namespace TextTables {

struct Field {
  std::u16string name;
  LONG type = 0;
  LONG length = 0;
  LONG precision = 0;
  std::u16string tag;
};

// Throws a Refusal; `table` is for its text.
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

// Finds fields by their names, in a time that does not depend on how many there are.
class FieldNames {
 public:
  explicit FieldNames(const std::vector<Field>& fields);

  // The field of that name, exactly, else without regard to case; the first of several. -1 when
  // there is none.
  int Find(const std::u16string& name) const;

 private:
  std::unordered_map<std::u16string, int> exact_;
  std::unordered_map<std::u16string, int> folded_;
};

}  // namespace TextTables
