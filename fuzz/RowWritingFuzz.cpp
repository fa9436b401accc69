// Writes arbitrary values into a table of an arbitrary dialect, by the quick ways and by the exact
// one. The first line of the input is the delimiter, the text delimiter, the decimal symbol, and
// then one character a column:
//   's' 'i' 'l'  whole numbers of 16, 32 and 64 bits   'f' 'r'  floating-point numbers
//   'd' 'D' 'T'  date and time, date, time             others   texts, as wide as the character
//   says
// Each further line is a value: 'n' null, 't' a text ('\x0B' for a line feed), 's' 'i' 'l' 'f' 'r'
// 'd' up to eight bytes that are the number, the lowest first. Rows follow one another.
//
// Holds: the file has the same bytes when each value is handed over by reference to a variant,
// which is the exact way, and when texts are lent.

#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

#include "FuzzInput.h"
#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "schema/RowWriter.h"

namespace {

using Fuzz::Check;
using Fuzz::FuzzInput;
using quenra::Variant;
using TextFile::FieldDefinition;
using TextFile::FieldType;
using TextFile::TextDatasetDescription;

FieldType TypeOfCode(char code) {
  switch (code) {
    case 's':
      return FieldType::kSmallInteger;
    case 'i':
      return FieldType::kInteger;
    case 'l':
      return FieldType::kBigInteger;
    case 'f':
      return FieldType::kSingle;
    case 'r':
      return FieldType::kDouble;
    case 'd':
      return FieldType::kDate;
    case 'D':
      return FieldType::kDateOnly;
    case 'T':
      return FieldType::kTimeOnly;
    default:
      return FieldType::kString;
  }
}

std::u16string TextOf(std::string_view bytes) {
  return FuzzInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()).RestAsText();
}

TextDatasetDescription TableOf(std::string_view line, const std::u16string& folder) {
  TextDatasetDescription table;
  table.name = u"t.csv";
  table.path = folder + u"/t.csv";
  // Else the first row of an empty file could be its header.
  table.options.specified = TextFile::SchemaOptions::kColNameHeader;
  std::u16string codes = TextOf(line);
  codes.resize(std::max<std::size_t>(codes.size(), 4), u'"');
  table.options.delimiter = codes[0];
  table.options.textDelimiter = codes[1];
  table.options.number.decimalSymbol = codes[2];
  for (const char16_t code : codes.substr(3)) {
    FieldDefinition field;
    field.name = u"F";
    field.type = TypeOfCode(code < 0x80 ? static_cast<char>(code) : 't');
    field.width = code == u't' ? 255 : code;
    field.dateFormat.type = field.type;
    table.fields.push_back(std::move(field));
  }
  return table;
}

Variant ValueOf(std::string_view line) {
  const char kind = line.empty() ? 'n' : line.front();
  if (kind == 't') {
    std::u16string text = TextOf(line.substr(1));
    std::replace(text.begin(), text.end(), u'\x0B', u'\n');
    return Variant(text);
  }
  static constexpr std::pair<char, VARENUM> kKinds[] = {{'s', VT_I2}, {'i', VT_I4}, {'l', VT_I8},
                                                        {'f', VT_R4}, {'r', VT_R8}, {'d', VT_DATE}};
  Variant value;
  for (const auto& [name, type] : kKinds) {
    if (kind != name) continue;
    VARIANT* const raw = value.Receive();
    std::memcpy(&raw->llVal, line.data() + 1, std::min<std::size_t>(line.size() - 1, 8));
    raw->vt = static_cast<VARTYPE>(type);
  }
  return value;
}

VARIANT Lent(const Variant& value) {
  VARIANT lent = value.Get();
  if (value.Type() == VT_BSTR) {
    lent.vt = VT_BSTR | VT_BYREF;
    lent.pbstrVal = const_cast<BSTR*>(&value.Get().bstrVal);
  }
  return lent;
}

VARIANT ReferenceTo(VARIANT& value) {
  VARIANT reference{};
  reference.vt = VT_VARIANT | VT_BYREF;
  reference.pvarVal = &value;
  return reference;
}

std::string Written(const TextDatasetDescription& table, const Fuzz::TemporaryFolder& folder,
                    const std::vector<VARIANT>& values) {
  folder.Write("t.csv", "\xEF\xBB\xBF");
  TextFile::RowWriter writer(table);
  Check(writer.Open());
  const std::size_t columns = table.fields.size();
  for (std::size_t i = 0; i < values.size(); i += columns)
    Check(writer.Write({&values[i], std::min(columns, values.size() - i)}));
  Check(writer.Close());
  std::ifstream file(NativeFromFileName(table.path).c_str(), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::TemporaryFolder folder;
  quenra::EventLog::SetSink([](const quenra::EventLogRecord&) {});
  Check(quenra::QUENRALocale::SetLocale(u"en-US"));
  FuzzInput input(data, size);
  const TextDatasetDescription table = TableOf(input.TakeLine(), folder.Path());
  std::vector<Variant> kept;
  while (!input.empty()) kept.push_back(ValueOf(input.TakeLine()));

  std::vector<VARIANT> values;
  std::vector<VARIANT> lent;
  std::vector<VARIANT> references;
  for (const Variant& value : kept) values.push_back(value.Get());
  for (const Variant& value : kept) lent.push_back(Lent(value));
  for (VARIANT& value : values) references.push_back(ReferenceTo(value));
  const std::string exact = Written(table, folder, references);
  Check(Written(table, folder, values) == exact);
  Check(Written(table, folder, lent) == exact);
  return 0;
}
