// Benchmark tables as the core opens them.
#pragma once

#include <memory>
#include <stdexcept>

#include "BenchmarkTables.h"
#include "platform/FileNames.h"
#include "reading/OpenTextDataset.h"
#include "schema/SchemaIniPaths.h"

// The table's description before it has been opened.
inline TextFile::TextDatasetDescription Describe(const BenchmarkTable& table) {
  const std::u16string path =
      FileNameFromNative(NativeFileName(table.path.begin(), table.path.end()));
  return TextFile::DescribeFile(TextFile::FolderOf(path),
                                std::u16string(table.fileName.begin(), table.fileName.end()));
}

// Throws std::runtime_error when the table does not open with a field for each of its columns.
inline std::shared_ptr<const TextFile::TextDatasetDescription> OpenTable(
    const BenchmarkTable& table) {
  auto description = std::make_shared<TextFile::TextDatasetDescription>(Describe(table));
  auto status = TextFile::OpenDatasetStatus::kScanFailed;
  if (!TextFile::OpenTextDataset(*description, {}, status) ||
      description->fields.size() < table.columns.size())
    throw std::runtime_error("cannot open " + table.path);
  return description;
}
