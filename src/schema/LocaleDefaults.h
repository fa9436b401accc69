// Number, currency and date conventions of the user's locale, for what schema.ini leaves open.
#pragma once

#include <string>

#include "host/CoreSupport/QUENRALocale.h"
#include "schema/TableSchema.h"

namespace TextFile {

// A value of the user's locale, in a buffer of `bufferUnits` UTF-16 code units, the terminating
// zero included. Empty when the locale has none, or one that does not fit.
using LocaleValue = std::u16string (*)(LCTYPE type, int bufferUnits);

// Fills every option that is not specified. A decimal comma makes ";" the delimiter when the
// format is not specified, whatever the file's extension: files of such locales are separated that
// way.
void CompleteFromLocale(SchemaOptions& options,
                        LocaleValue localeValue = &quenra::QUENRALocale::Value);

}  // namespace TextFile
