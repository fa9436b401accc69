// What is known of one text table. Every reader is made from it.
#pragma once

#include <functional>
#include <string>

#include "schema/FieldList.h"
#include "schema/TableSchema.h"

namespace TextFile {

class TextLineStream;

struct TextDatasetDescription {
  std::u16string name;  // the file's name, extension included
  std::u16string path;  // its full path
  SchemaOptions options;
  bool loaded = false;  // set by OpenTextDataset; the options and fields are final then
  FieldList fields;

  // Opens a reader's stream, with zero-terminated lines, on bytes that are not in the file at
  // `path`. Empty for files.
  std::function<void(TextLineStream&)> openStream;
};

}  // namespace TextFile
