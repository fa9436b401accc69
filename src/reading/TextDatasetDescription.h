// What is known of one text table. Every reader is made from it.
#pragma once

#include <string>

#include "schema/FieldList.h"
#include "schema/TableSchema.h"

namespace TextFile {

struct TextDatasetDescription {
  std::u16string name;  // the file's name, extension included
  std::u16string path;  // its full path
  SchemaOptions options;
  bool loaded = false;  // set by OpenTextDataset; the options and fields are final then
  FieldList fields;
};

}  // namespace TextFile
