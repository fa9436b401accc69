// describe, count and stat.
#include "AlignedText.h"
#include "Commands.h"
#include "DateText.h"
#include "Failures.h"
#include "Fields.h"
#include "JsonText.h"
#include "ModuleHost.h"
#include "NumberText.h"
#include "Progress.h"
#include "TextEncoding.h"
#include "host/CoreSupport/BString.h"

namespace TextTables {

namespace {

struct Description {
  std::u16string table;
  std::u16string delimiter;
  TableFields fields;
};

// The character between the fields; empty for a fixed-length table, and for the tables of a data
// source that does not tell.
std::u16string DelimiterOf(const quenra::ComPtr<quenra::IPlugInDatasetHelper>& dataset,
                           std::u16string_view name) {
  const auto text = dataset.As<quenra::ITextFileDataset>();
  OLECHAR delimiter = 0;
  if (text) Check(text->TableDelimiter(&delimiter), name);
  if (delimiter == 0) return {};
  return {static_cast<char16_t>(delimiter)};
}

Description Describe(const ModuleHost& host, const TablePath& path) {
  const auto dataset = host.OpenTable(path);
  quenra::BString title;
  const auto info = dataset.As<quenra::IPlugInDatasetInfo>();
  Check(info ? info->DatasetFileTitle(title.Receive()) : E_NOINTERFACE, path.name);
  TableFields fields(*dataset.Get(), path.name);
  return {std::u16string(title.View()), DelimiterOf(dataset, path.name), std::move(fields)};
}

void AppendJson(const Description& description, Output& output) {
  output.Append(R"({"table": )");
  AppendJsonString(output, description.table);
  output.Append(R"(, "delimiter": )");
  AppendJsonString(output, description.delimiter);
  output.Append(R"(, "fields": [)");
  for (std::size_t i = 0; i < description.fields.size(); ++i) {
    const Field field = description.fields[i];
    output.Append(i == 0 ? R"({"name": )" : R"(, {"name": )");
    AppendJsonString(output, field.name);
    output.Append(R"(, "type": )");
    AppendJsonString(output, FieldTypeName(field.type));
    output.Append(R"(, "typeCode": )");
    AppendShortest(output, field.type);
    output.Append(R"(, "length": )");
    AppendShortest(output, field.length);
    output.Append(R"(, "precision": )");
    AppendShortest(output, field.precision);
    output.Append(R"(, "tag": )");
    AppendJsonString(output, field.tag);
    output.Append('}');
  }
  output.Append("]}\n");
}

std::u16string ReadableDelimiter(const std::u16string& delimiter) {
  if (delimiter.empty()) return u"none (fixed width)";
  if (delimiter == u"\t") return u"tab";
  if (delimiter == u" ") return u"blank";
  return delimiter;
}

void AppendText(const Description& description, Output& output) {
  AlignedText head(output, {false, false});
  head.AddLine({PlainCell("Table"), TextCell(description.table)});
  head.AddLine({PlainCell("Delimiter"), TextCell(ReadableDelimiter(description.delimiter))});
  head.End();
  output.Append('\n');

  AlignedText fields(output, {false, false, true, true, false});
  fields.AddHeader({PlainCell("Field"), PlainCell("Type"), PlainCell("Length"),
                    PlainCell("Precision"), PlainCell("Tag")});
  for (std::size_t i = 0; i < description.fields.size(); ++i) {
    const Field field = description.fields[i];
    fields.AddLine({TextCell(field.name), PlainCell(FieldTypeName(field.type)),
                    PlainCell(std::to_string(field.length)),
                    PlainCell(std::to_string(field.precision)), TextCell(field.tag)});
  }
  fields.End();
}

// The kinds of times that a table's file has, as IDatasetFileStat numbers them.
constexpr LONG kTimeKinds = 3;

struct FileFacts {
  LONGLONG size = 0;
  LONG times[kTimeKinds] = {};
  LONG mode = 0;
};

FileFacts FactsOf(const ModuleHost& host, const TablePath& path) {
  const auto stat = host.OpenTable(path).As<quenra::IDatasetFileStat2>();
  FileFacts facts;
  Check(stat ? stat->FileSize64(&facts.size) : E_NOINTERFACE, path.name);
  for (LONG kind = 0; kind < kTimeKinds; ++kind)
    Check(stat->FileTime(kind, &facts.times[kind]), path.name);
  Check(stat->FileMode(&facts.mode), path.name);
  return facts;
}

void AppendJson(const FileFacts& facts, Output& output) {
  output.Append(R"({"size": )");
  AppendShortest(output, facts.size);
  for (LONG kind = 0; kind < kTimeKinds; ++kind) {
    output.Append(kind == 0 ? R"(, "times": [)" : ", ");
    AppendShortest(output, facts.times[kind]);
  }
  output.Append(R"(], "mode": )");
  AppendShortest(output, facts.mode);
  output.Append("}\n");
}

std::string ReadableMode(LONG mode) {
  switch (mode) {
    case 2:
      return "writable";
    case 4:
      return "readable";
    case 6:
      return "readable, writable";
    default:
      return "neither readable nor writable";
  }
}

void AppendText(const FileFacts& facts, Output& output) {
  AlignedText text(output, {false, false});
  std::string size = std::to_string(facts.size) + " bytes";
  if (facts.size >= 1000)
    size += " (" + ReadableBytes(static_cast<std::uint64_t>(facts.size)) + ")";
  text.AddLine({PlainCell("Size"), PlainCell(size)});
  const char* const names[kTimeKinds] = {"Created", "Last read", "Last written"};
  for (LONG kind = 0; kind < kTimeKinds; ++kind)
    text.AddLine(
        {PlainCell(names[kind]), PlainCell(std::string(IsoUnixTime(facts.times[kind]).View()))});
  text.AddLine({PlainCell("Mode"), PlainCell(ReadableMode(facts.mode))});
  text.End();
}

}  // namespace

void RunDescribe(const CommandLine& line, Output& output) {
  const TablePath path = SplitTablePath(line.path);
  const ModuleHost host(line.global);
  const Description description = Describe(host, path);
  if (line.json) return AppendJson(description, output);
  AppendText(description, output);
}

void RunCount(const CommandLine& line, Output& output) {
  const TablePath path = SplitTablePath(line.path);
  const ModuleHost host(line.global);
  const auto counter = host.OpenTable(path).As<quenra::IPlugInRowCount>();
  const auto count = [&] {
    const WaitingLine waiting = host.Wait(path);
    LONG rows = 0;
    Check(counter ? counter->CountRows(0, &rows) : E_NOINTERFACE, path.name);
    return rows;
  }();
  AppendShortest(output, count);
  output.Append('\n');
}

void RunStat(const CommandLine& line, Output& output) {
  const TablePath path = SplitTablePath(line.path);
  const ModuleHost host(line.global);
  const FileFacts facts = FactsOf(host, path);
  if (line.json) return AppendJson(facts, output);
  AppendText(facts, output);
}

}  // namespace TextTables
