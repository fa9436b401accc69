// Whether dates that are written with a pattern come back as they were.
//
//   if (!ColumnReadsBack(u"d.M.yyyy H.mm.ss", FieldType::kDate))  // no reader takes "3.04.05"
//     pattern = ReadablePattern(FieldType::kDate, DateOrder::kAny);  // u"yyyy-MM-dd HH:mm:ss"
//
// Locales write dates in ways that nothing here reads: points in times, words between the numbers.
// What is tried is what the readers do, not a list of locales.
#pragma once

#include <string>
#include <string_view>

#include "schema/FieldDefinition.h"

namespace TextFile {

// Whether values written with the pattern are read back by a column of the type and order: days of
// every year from 100 on, times to the millisecond. `type` is kDate, kDateOnly or kTimeOnly.
bool ReadsBack(std::u16string_view pattern, FieldType type, DateOrder order);

// The same of a column whose line in schema.ini holds the pattern, from which type and order
// follow.
bool ColumnReadsBack(std::u16string_view pattern, FieldType type);

// A pattern whose values are read back by a column of the type and order. With kAny the year comes
// first.
std::u16string ReadablePattern(FieldType type, DateOrder order);

}  // namespace TextFile
