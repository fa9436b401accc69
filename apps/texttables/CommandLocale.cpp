// locale: the values that the data source goes by where a table says nothing.
#include "AlignedText.h"
#include "Commands.h"
#include "JsonText.h"
#include "NumberText.h"
#include "host/CoreSupport/QUENRALocale.h"

namespace TextTables {

namespace {

struct LocaleEntry {
  LCTYPE type;
  const char* key;   // in JSON
  const char* name;  // for people
};

constexpr LocaleEntry kEntries[] = {
    {LOCALE_SSHORTDATE, "shortDate", "Short date"},
    {LOCALE_STIMEFORMAT, "timeFormat", "Time format"},
    {LOCALE_IDATE, "dateOrder", "Date order"},
    {LOCALE_SDECIMAL, "decimal", "Decimal symbol"},
    {LOCALE_STHOUSAND, "thousand", "Thousands symbol"},
    {LOCALE_IDIGITS, "digits", "Decimal places"},
    {LOCALE_ILZERO, "leadingZeros", "Leading zeros"},
    {LOCALE_SCURRENCY, "currency", "Currency symbol"},
    {LOCALE_ICURRDIGITS, "currencyDigits", "Currency places"},
};

// Longer than any value: Windows allows 80 characters for date and time formats.
constexpr int kValueUnits = 256;

std::u16string ReadableDateOrder(const std::u16string& value) {
  if (value == u"0") return u"month day year";
  if (value == u"1") return u"day month year";
  if (value == u"2") return u"year month day";
  return value;
}

}  // namespace

void RunLocale(const CommandLine& line, Output& output) {
  using quenra::QUENRALocale;
  if (line.json) {
    output.Append('{');
    for (const LocaleEntry& entry : kEntries) {
      AppendJsonString(output, std::string_view(entry.key));
      output.Append(':');
      AppendJsonString(output, QUENRALocale::Value(entry.type, kValueUnits));
      output.Append(',');
    }
    output.Append("\"ansiCodePage\":");
    AppendShortest(output, QUENRALocale::GetAnsiCodePage());
    output.Append("}\n");
    return;
  }
  AlignedText text(output, {false, false});
  for (const LocaleEntry& entry : kEntries) {
    std::u16string value = QUENRALocale::Value(entry.type, kValueUnits);
    if (entry.type == LOCALE_IDATE) value = ReadableDateOrder(value);
    text.AddLine({PlainCell(entry.name), TextCell(value)});
  }
  text.AddLine(
      {PlainCell("ANSI code page"), PlainCell(std::to_string(QUENRALocale::GetAnsiCodePage()))});
  text.End();
}

}  // namespace TextTables
