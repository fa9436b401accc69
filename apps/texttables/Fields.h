// A table's fields as the host's field collection tells them.
#pragma once

#include <string>
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

// "Integer" for 1, and so on.
std::string FieldTypeName(LONG type);

// The field of that name, exactly, else without regard to case; the first of several. -1 when
// there is none.
int FindField(const std::vector<Field>& fields, const std::u16string& name);

}  // namespace TextTables
