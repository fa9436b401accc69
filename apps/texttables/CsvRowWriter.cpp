// Comma-separated values as RFC 4180 has them, with line feeds at the ends of the lines.
#include "RowWriter.h"
#include "TextEncoding.h"
#include "ValueText.h"
#include "platform/OleText.h"

namespace TextTables {

namespace {

class CsvRowWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;

  void Begin(std::span<const OutputColumn> columns, const TableFields& fields) override {
    RowWriter::Begin(columns, fields);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (i > 0) output_.Append(',');
      AppendText(NameOf(columns_[i]));
    }
    output_.Append('\n');
  }

  void Write(const quenra::HostFieldValue* slots) override {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (i > 0) output_.Append(',');
      const VARIANT& value = slots[columns_[i].slot].value;
      if (value.vt == VT_BSTR) {
        AppendText(ViewOf(value.bstrVal));
      } else {
        AppendPlainValue(output_, value, columns_[i].type);
      }
    }
    output_.Append('\n');
  }

 private:
  void AppendText(std::u16string_view text) {
    if (text.find_first_of(u",\"\r\n") == std::u16string_view::npos)
      return AppendUtf8(output_, text);
    output_.Append('"');
    for (;;) {
      const std::size_t quote = text.find(u'"');
      AppendUtf8(output_, text.substr(0, quote));
      if (quote == std::u16string_view::npos) break;
      output_.Append("\"\"");
      text.remove_prefix(quote + 1);
    }
    output_.Append('"');
  }
};

}  // namespace

std::unique_ptr<RowWriter> MakeCsvRowWriter(Output& output) {
  return std::make_unique<CsvRowWriter>(output);
}

}  // namespace TextTables
