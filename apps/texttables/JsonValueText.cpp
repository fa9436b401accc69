#include "JsonValueText.h"

#include "DateText.h"
#include "JsonText.h"
#include "NumberText.h"
#include "ValueText.h"
#include "platform/OleText.h"

namespace TextTables {

namespace {

// A date that no calendar holds is shown as the number that it is.
void AppendDateOrNumber(Output& output, const IsoText& text, DATE date) {
  if (text.length == 0) return AppendJsonNumber(output, date);
  output.Append('"');
  output.Append(text.View());
  output.Append('"');
}

void AppendTimestamp(Output& output, IUnknown* object) {
  Timestamp timestamp;
  if (!ReadTimestamp(object, timestamp)) return output.Append("null");
  AppendDateOrNumber(output, IsoTimestamp(timestamp.date, timestamp.offsetMinutes), timestamp.date);
}

}  // namespace

void JsonKeys::Add(std::u16string_view name) {
  StringOutput key;
  AppendJsonString(key, name);
  text_ += key.Take();
  text_ += ':';
  ends_.push_back(text_.size());
}

void AppendJsonValue(Output& output, const VARIANT& value, LONG fieldType) {
  switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return output.Append("null");
    case VT_I2:
      return AppendShortest(output, value.iVal);
    case VT_I4:
      return AppendShortest(output, value.lVal);
    case VT_I8:
      return AppendShortest(output, value.llVal);
    case VT_R4:
      return AppendJsonNumber(output, value.fltVal);
    case VT_R8:
      return AppendJsonNumber(output, value.dblVal);
    case VT_BSTR:
      return AppendJsonString(output, ViewOf(value.bstrVal));
    case VT_DATE:
      return AppendDateOrNumber(output, IsoDate(value.date, DatePartsOfField(fieldType)),
                                value.date);
    case VT_UNKNOWN:
      return AppendTimestamp(output, value.punkVal);
    default:
      return AppendJsonString(output, ConvertedText(value));
  }
}

}  // namespace TextTables
