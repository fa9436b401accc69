// A line a row: objects with natural values, and arrays that tell each value's variant kind.
#include "DateText.h"
#include "JsonText.h"
#include "NumberText.h"
#include "RowWriter.h"
#include "ValueText.h"
#include "platform/OleText.h"

namespace TextTables {

namespace {

class JsonLinesRowWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;

  void Begin(const std::vector<OutputColumn>& columns) override {
    RowWriter::Begin(columns);
    for (const OutputColumn& column : columns_) keys_.push_back(KeyOf(column));
  }

  void Write(const quenra::HostFieldValue* slots) override {
    if (columns_.empty()) output_.Append('{');
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      output_.Append(i == 0 ? '{' : ',');
      output_.Append(keys_[i]);
      AppendValue(slots[columns_[i].slot].value, columns_[i].type);
    }
    output_.Append("}\n");
  }

 private:
  // The name in quotes with the colon behind it, since it is the same in every row.
  static std::string KeyOf(const OutputColumn& column) {
    StringOutput key;
    AppendJsonString(key, column.name);
    key.Append(':');
    return key.Take();
  }

  // A date that no calendar holds is shown as the number that it is.
  void AppendDateOrNumber(const IsoText& text, DATE date) {
    if (text.length == 0) return AppendJsonNumber(output_, date);
    output_.Append('"');
    output_.Append(text.View());
    output_.Append('"');
  }

  void AppendTimestamp(IUnknown* object) {
    Timestamp timestamp;
    if (!ReadTimestamp(object, timestamp)) return output_.Append("null");
    AppendDateOrNumber(IsoTimestamp(timestamp.date, timestamp.offsetMinutes), timestamp.date);
  }

  void AppendValue(const VARIANT& value, LONG fieldType) {
    switch (value.vt) {
      case VT_EMPTY:
      case VT_NULL:
        return output_.Append("null");
      case VT_I2:
        return AppendShortest(output_, value.iVal);
      case VT_I4:
        return AppendShortest(output_, value.lVal);
      case VT_I8:
        return AppendShortest(output_, value.llVal);
      case VT_R4:
        return AppendJsonNumber(output_, value.fltVal);
      case VT_R8:
        return AppendJsonNumber(output_, value.dblVal);
      case VT_BSTR:
        return AppendJsonString(output_, ViewOf(value.bstrVal));
      case VT_DATE:
        return AppendDateOrNumber(IsoDate(value.date, DatePartsOfField(fieldType)), value.date);
      case VT_UNKNOWN:
        return AppendTimestamp(value.punkVal);
      default:
        return AppendJsonString(output_, ConvertedText(value));
    }
  }

  std::vector<std::string> keys_;
};

class TypedRowWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;

  void Write(const quenra::HostFieldValue* slots) override {
    output_.Append('[');
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (i > 0) output_.Append(',');
      AppendValue(slots[columns_[i].slot].value);
      output_.Append('}');
    }
    output_.Append("]\n");
  }

 private:
  // Everything but the closing brace.
  void AppendValue(const VARIANT& value) {
    switch (value.vt) {
      case VT_EMPTY:
        return output_.Append("{\"VT_EMPTY\":null");
      case VT_NULL:
        return output_.Append("{\"VT_NULL\":null");
      case VT_I2:
        return AppendInteger("{\"VT_I2\":", value.iVal);
      case VT_I4:
        return AppendInteger("{\"VT_I4\":", value.lVal);
      case VT_I8:
        return AppendInteger("{\"VT_I8\":", value.llVal);
      case VT_R4:
        return AppendFloating("{\"VT_R4\":", value.fltVal);
      case VT_R8:
        return AppendFloating("{\"VT_R8\":", value.dblVal);
      case VT_DATE:
        return AppendFloating("{\"VT_DATE\":", value.date);
      case VT_BSTR:
        output_.Append("{\"VT_BSTR\":");
        return AppendJsonString(output_, ViewOf(value.bstrVal));
      case VT_UNKNOWN:
        return AppendObject(value.punkVal);
      default:
        // Kinds that only another module could deliver go by their number.
        output_.Append("{\"VT_");
        AppendShortest(output_, value.vt);
        output_.Append("\":");
        return AppendJsonString(output_, ConvertedText(value));
    }
  }

  template <class Integer>
  void AppendInteger(std::string_view start, Integer value) {
    output_.Append(start);
    AppendShortest(output_, value);
  }

  template <class Floating>
  void AppendFloating(std::string_view start, Floating value) {
    output_.Append(start);
    AppendJsonNumber(output_, value);
  }

  void AppendObject(IUnknown* object) {
    Timestamp timestamp;
    if (!ReadTimestamp(object, timestamp)) return output_.Append("{\"VT_UNKNOWN\":null");
    output_.Append("{\"VT_UNKNOWN\":{\"date\":");
    AppendJsonNumber(output_, timestamp.date);
    output_.Append(",\"offsetMinutes\":");
    AppendShortest(output_, timestamp.offsetMinutes);
    output_.Append('}');
  }
};

}  // namespace

std::unique_ptr<RowWriter> MakeJsonLinesRowWriter(Output& output) {
  return std::make_unique<JsonLinesRowWriter>(output);
}

std::unique_ptr<RowWriter> MakeTypedRowWriter(Output& output) {
  return std::make_unique<TypedRowWriter>(output);
}

}  // namespace TextTables
