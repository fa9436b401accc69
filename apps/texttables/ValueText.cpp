#include "ValueText.h"

#include <string>

#include "DateText.h"
#include "NumberText.h"
#include "TextEncoding.h"
#include "host/CoreSupport/Variant.h"

namespace TextTables {

namespace {

// A date that no calendar holds is shown as the number that it is.
void AppendDateOrNumber(Output& output, const IsoText& text, DATE date) {
  if (text.length > 0) return output.Append(text.View());
  AppendPlain(output, date);
}

void AppendPlainTimestamp(Output& output, IUnknown* object) {
  Timestamp timestamp;
  if (!ReadTimestamp(object, timestamp)) return;
  AppendDateOrNumber(output, IsoTimestamp(timestamp.date, timestamp.offsetMinutes), timestamp.date);
}

}  // namespace

void AppendPlainValue(Output& output, const VARIANT& value, LONG fieldType) {
  switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return;
    case VT_I2:
      return AppendShortest(output, value.iVal);
    case VT_I4:
      return AppendShortest(output, value.lVal);
    case VT_I8:
      return AppendShortest(output, value.llVal);
    case VT_R4:
      return AppendPlain(output, value.fltVal);
    case VT_R8:
      return AppendPlain(output, value.dblVal);
    case VT_DATE:
      return AppendDateOrNumber(output, IsoDate(value.date, DatePartsOfField(fieldType)),
                                value.date);
    case VT_UNKNOWN:
      return AppendPlainTimestamp(output, value.punkVal);
    default:
      return AppendUtf8(output, ConvertedText(value));
  }
}

std::u16string ConvertedText(const VARIANT& value) {
  quenra::Variant text;
  if (FAILED(text.ConvertFrom(value, VT_BSTR))) return {};
  return std::u16string(text.Text());
}

}  // namespace TextTables
