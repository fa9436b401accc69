// A section of schema.ini as one text.
#pragma once

#include <string>
#include <string_view>

#include "schema/SchemaIniWriter.h"

namespace TextFile {

// The header line and the section's lines, each ended by a line feed.
inline std::u16string SchemaSectionText(std::u16string_view name, const SchemaOptions& options) {
  std::u16string text = u"[" + std::u16string(name) + u"]\n";
  for (const std::u16string& line : SchemaSectionLines(options)) text += line + u"\n";
  return text;
}

}  // namespace TextFile
