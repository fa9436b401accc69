// Number, currency and date conventions of the user's locale, for what schema.ini leaves open.
#pragma once

#include "schema/TableSchema.h"

namespace TextFile {

// Fills every option that is not specified. A decimal comma makes ";" the delimiter when the
// format is not specified, whatever the file's extension: files of such locales are separated that
// way.
void CompleteFromLocale(SchemaOptions& options);

}  // namespace TextFile
