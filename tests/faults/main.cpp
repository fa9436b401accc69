// A small program that does one thing to the tables of a folder, for tests that end it half-way.
//
//   writing_faults create FOLDER NAME              in place of a table of that name
//   writing_faults new FOLDER NAME                 unless something has the name
//   writing_faults load FOLDER NAME ROWS [FIRSTID]
//   writing_faults copy FOLDER NAME FOLDER NEWNAME
//   writing_faults rename FOLDER NAME NEWNAME
//   writing_faults delete FOLDER NAME
//   writing_faults mismatch FOLDER NAME COLUMN     declares a column as Double
//   writing_faults sections FOLDER PREFIX ROUNDS   writes and drops sections PREFIX0 to PREFIX9
//
// Exit code 0 when done; 1 with the reason on standard output.
#include <sys/resource.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "inference/MismatchReport.h"
#include "platform/FileNames.h"
#include "reading/OpenTextDataset.h"
#include "schema/ParseError.h"
#include "schema/RowWriter.h"
#include "schema/SchemaIniFile.h"
#include "schema/SchemaIniWriter.h"
#include "schema/TableFiles.h"
#include "support/TestText.h"

namespace {

using namespace TextFile;
using quenra::test::ToUtf16;
using quenra::test::ToUtf8;

TextDatasetDescription Opened(const TableLocation& table) {
  TextDatasetDescription description = DescribeFile(table.folder, table.name);
  auto status = OpenDatasetStatus::kScanFailed;
  if (!OpenTextDataset(description, OpenOptions(), status))
    FailTable(table.Path(), u"the table cannot be opened");
  return description;
}

void Create(const TableLocation& table, ExistingFile existing) {
  std::vector<FieldDefinition> fields(2);
  fields[0].name = u"Id";
  fields[0].type = FieldType::kInteger;
  fields[1].name = u"Name";
  CreateTableFiles(table, fields, existing);
}

void Load(const TableLocation& table, LONG rows, LONG firstId) {
  RowWriter writer(Opened(table));
  bool written = writer.Open();
  for (LONG row = 0; written && row < rows; ++row) {
    const quenra::Variant id(firstId + row);
    const quenra::Variant name(u"a name that makes the row longer");
    const VARIANT values[] = {id.Get(), name.Get()};
    written = writer.Write(values);
  }
  if (written) written = writer.Close();
  if (!written) throw TableFailure{writer.failure()};
}

void AddMismatch(const TableLocation& table, std::size_t column) {
  Mismatch mismatch{};
  mismatch.fileColumn = column;
  mismatch.fieldName = u"Id";
  mismatch.text = u"1.5";
  mismatch.found = FieldType::kDouble;
  RecordMismatches(Opened(table), {&mismatch, 1});
  if (mismatch.outcome != MismatchOutcome::kGenerated)
    FailTable(SchemaIniPaths(table.folder).schemaIni, u"not written");
}

void WriteSections(const TableLocation& table, int rounds) {
  const SchemaIniPaths paths(table.folder);
  SchemaOptions options;
  options.specified = SchemaOptions::kFormat;
  constexpr int kSections = 10;
  for (int round = 0; round < rounds; ++round) {
    const std::u16string name = table.name + static_cast<char16_t>(u'0' + round % kSections);
    std::u16string failure;
    if (round / kSections % 2 == 1) {
      SchemaIniFile file(paths, SchemaIniFile::Access::kWrite);
      if (file.Remove(name)) file.Save();
    } else if (!WriteSchemaSection(paths, name, options, &failure)) {
      FailTable(paths.schemaIni, failure);
    }
  }
}

void Run(const std::vector<std::string>& words) {
  const auto word = [&](std::size_t i) { return ToUtf16(words.at(i)); };
  const TableLocation table{word(1), word(2)};
  if (words[0] == "create") return Create(table, ExistingFile::kReplaced);
  if (words[0] == "new") return Create(table, ExistingFile::kKept);
  if (words[0] == "load")
    return Load(table, std::stoi(words.at(3)), words.size() > 4 ? std::stoi(words[4]) : 0);
  if (words[0] == "copy") return static_cast<void>(CopyTableFiles(table, {word(3), word(4)}));
  if (words[0] == "rename") return static_cast<void>(RenameTableFiles(table, word(3)));
  if (words[0] == "delete") return DeleteTableFiles(table);
  if (words[0] == "mismatch")
    return AddMismatch(table, static_cast<std::size_t>(std::stoi(words.at(3))));
  if (words[0] == "sections") return WriteSections(table, std::stoi(words.at(3)));
  throw TableFailure{FileMessage(u"", u"unknown operation")};
}

// FILE_LIMIT=BYTES: no file grows beyond that, as on a full disk.
void LimitFiles() {
  const char* const bytes = std::getenv("FILE_LIMIT");
  if (bytes == nullptr) return;
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  limit.rlim_cur = limit.rlim_max = static_cast<rlim_t>(std::strtol(bytes, nullptr, 10));
  ::setrlimit(RLIMIT_FSIZE, &limit);
}

}  // namespace

int main(int count, char** arguments) {
  quenra::QUENRALocale::SetLocale(u"en-US");
  LimitFiles();
  try {
    Run(std::vector<std::string>(arguments + 1, arguments + count));
    return 0;
  } catch (const TableFailure& failure) {
    std::printf("%s\n", ToUtf8(failure.message.text).c_str());
  } catch (const SchemaIniFailure& failure) {
    std::printf("schema.ini: %s\n", ToUtf8(failure.reason).c_str());
  } catch (const ParseError& error) {
    std::printf("schema.ini: %s\n", ToUtf8(error.text()).c_str());
  } catch (const std::exception& other) {
    std::printf("%s\n", other.what());
  }
  return 1;
}
