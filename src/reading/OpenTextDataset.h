// Turns a text file into a described table.
//
//   TextDatasetDescription table = DescribeFile(u"/data", u"a.csv");
//   OpenDatasetStatus status;
//   OpenTextDataset(table, openOptions, status);
#pragma once

#include <cstdint>
#include <string_view>

#include "inference/OpenOptions.h"
#include "reading/LayoutMisfit.h"
#include "reading/TextDatasetDescription.h"

namespace TextFile {

enum class OpenDatasetStatus : std::int32_t {
  kOpened = 0,
  kFileNotOpened = 1,
  kScanFailed = 2,  // no delimiter or layout fits the file
};

// The description of a file that has not been opened yet, with what its extension tells.
TextDatasetDescription DescribeFile(std::u16string_view folder, std::u16string_view name);

// Reads the file's section of schema.ini and the beginning of the file, and fills the description
// of an unopened table. True, and the description is loaded, with status kOpened only; after a
// failure it has no fields. The host's event log gets one begin and one end event, whatever
// happens. Throws ParseError when schema.ini cannot be understood. With status kScanFailed `misfit`
// (may be null) tells why no layout fits.
bool OpenTextDataset(TextDatasetDescription& description, const OpenOptions& openOptions,
                     OpenDatasetStatus& status, LayoutMisfit* misfit = nullptr);

// The part of that behind schema.ini, of which the description already has the options (see
// ReadSchemaSection, CompleteFromLocale). The event log gets nothing.
bool ScanTextDataset(TextDatasetDescription& description, const OpenOptions& openOptions,
                     OpenDatasetStatus& status, LayoutMisfit* misfit = nullptr);

}  // namespace TextFile
