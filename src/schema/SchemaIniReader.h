// Reads the section of one file from a folder's schema.ini.
//
//   SchemaOptions options;
//   options.delimiter = DelimiterOfExtension(u"a.csv");
//   if (!ReadSchemaSection(SchemaIniPaths(folder), u"a.csv", options)) CompleteFromLocale(options);
#pragma once

#include <memory>
#include <streambuf>
#include <string_view>

#include "schema/ParseError.h"
#include "schema/SchemaIniPaths.h"
#include "schema/TableSchema.h"

namespace TextFile {

// Applies the first section whose name equals `fileName` without regard to case, and completes the
// options from the user's locale. False, and `options` is left alone, when there is no schema.ini
// that can be read or no such section. Throws ParseError for anything it does not understand;
// `options` is left alone then too.
bool ReadSchemaSection(const SchemaIniPaths& paths, std::u16string_view fileName,
                       SchemaOptions& options);

// The same of a schema.ini of any bytes.
bool ReadSchemaSection(std::unique_ptr<std::streambuf> schemaIni, std::u16string_view fileName,
                       SchemaOptions& options);

}  // namespace TextFile
