#include "reading/OpenTextDataset.h"

#include "host/CoreSupport/EventLogTimer.h"
#include "reading/ReaderFactory.h"
#include "schema/LocaleDefaults.h"
#include "schema/SchemaIniPaths.h"
#include "schema/SchemaIniReader.h"

namespace TextFile {

namespace {

constexpr int kOpenEventType = 2;

// The only column of a table whose file holds nothing. Names made for columns that exist count
// from 1, so this one is told apart.
FieldDefinition EmptyTableField() {
  FieldDefinition field;
  field.name = u"Field0";
  return field;
}

}  // namespace

TextDatasetDescription DescribeFile(std::u16string_view folder, std::u16string_view name) {
  TextDatasetDescription description;
  description.name = name;
  description.path = JoinPath(folder, name);
  description.options.delimiter = DelimiterOfExtension(name);
  return description;
}

bool OpenTextDataset(TextDatasetDescription& description, const OpenOptions& openOptions,
                     OpenDatasetStatus& status, LayoutMisfit* misfit) {
  const quenra::EventLogTimer timer(kOpenEventType, u"Korvanet.TextFile.OpenDataset",
                                    u"BeginOpenDataset", u"EndOpenDataset", description.path, 0);
  description.fields.clear();
  const SchemaIniPaths paths(FolderOf(description.path));
  if (!ReadSchemaSection(paths, description.name, description.options))
    CompleteFromLocale(description.options);
  return ScanTextDataset(description, openOptions, status, misfit);
}

bool ScanTextDataset(TextDatasetDescription& description, const OpenOptions& openOptions,
                     OpenDatasetStatus& status, LayoutMisfit* misfit) {
  description.fields.clear();
  const ReaderPtr reader = MakeReader(description);
  if (!reader->IsOpen()) {
    status = OpenDatasetStatus::kFileNotOpened;
    return false;
  }
  if (!reader->Scan(description.options, description.fields, openOptions)) {
    description.fields.clear();
    status = OpenDatasetStatus::kScanFailed;
    if (misfit != nullptr) *misfit = reader->misfit();
    return false;
  }
  if (description.fields.empty()) description.fields.push_back(EmptyTableField());
  status = OpenDatasetStatus::kOpened;
  description.loaded = true;
  return true;
}

}  // namespace TextFile
