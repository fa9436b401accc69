// A line a row: objects with natural values, and arrays that tell each value's variant kind.
#include "DateText.h"
#include "JsonText.h"
#include "JsonValueText.h"
#include "NumberText.h"
#include "RowWriter.h"
#include "ValueText.h"
#include "platform/OleText.h"

namespace TextTables {

namespace {

class JsonLinesRowWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;

  void Begin(std::span<const OutputColumn> columns, const TableFields& fields) override {
    RowWriter::Begin(columns, fields);
    for (const OutputColumn& column : columns_) keys_.Add(NameOf(column));
  }

  void Write(const quenra::HostFieldValue* slots) override {
    if (columns_.empty()) output_.Append('{');
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      output_.Append(i == 0 ? '{' : ',');
      output_.Append(keys_[i]);
      AppendJsonValue(output_, slots[columns_[i].slot].value, columns_[i].type);
    }
    output_.Append("}\n");
  }

 private:
  JsonKeys keys_;
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
        return output_.Append(R"({"VT_EMPTY":null)");
      case VT_NULL:
        return output_.Append(R"({"VT_NULL":null)");
      case VT_I2:
        return AppendInteger(R"({"VT_I2":)", value.iVal);
      case VT_I4:
        return AppendInteger(R"({"VT_I4":)", value.lVal);
      case VT_I8:
        return AppendInteger(R"({"VT_I8":)", value.llVal);
      case VT_R4:
        return AppendFloating(R"({"VT_R4":)", value.fltVal);
      case VT_R8:
        return AppendFloating(R"({"VT_R8":)", value.dblVal);
      case VT_DATE:
        return AppendFloating(R"({"VT_DATE":)", value.date);
      case VT_BSTR:
        output_.Append(R"({"VT_BSTR":)");
        return AppendJsonString(output_, ViewOf(value.bstrVal));
      case VT_UNKNOWN:
        return AppendObject(value.punkVal);
      default:
        // Kinds that only another module could deliver go by their number.
        output_.Append(R"({"VT_)");
        AppendShortest(output_, value.vt);
        output_.Append(R"(":)");
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
    if (!ReadTimestamp(object, timestamp)) return output_.Append(R"({"VT_UNKNOWN":null)");
    output_.Append(R"({"VT_UNKNOWN":{"date":)");
    AppendJsonNumber(output_, timestamp.date);
    output_.Append(R"(,"offsetMinutes":)");
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
