// Opens a file of a test and shows the fields that were found.
//
//   OpenedTable table(folder, u"a.csv");
//   EXPECT_EQ(table.Fields(), "id:int name:text seen:date/dmy place:text place_X:double[x]");
//
// Types: small int single double text datetime big date time offset. Dates have their order behind
// a slash (any, mdy, dmy, ymd) and a dot for fractions of a second. [x] is a virtual coordinate
// field made of one text, [d] one made of two.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "inference/OpenOptions.h"
#include "reading/OpenTextDataset.h"
#include "support/TemporaryFolder.h"

class OpenedTable {
 public:
  OpenedTable(const quenra::test::TemporaryFolder& folder, std::u16string_view name,
              const TextFile::OpenOptions& options = {})
      : table_(std::make_shared<TextFile::TextDatasetDescription>(
            TextFile::DescribeFile(folder.Path(), name))) {
    opened_ = TextFile::OpenTextDataset(*table_, options, status_);
  }

  bool opened() const noexcept { return opened_; }
  TextFile::OpenDatasetStatus status() const noexcept { return status_; }
  TextFile::TextDatasetDescription& table() noexcept { return *table_; }
  const std::shared_ptr<TextFile::TextDatasetDescription>& shared() const noexcept {
    return table_;
  }
  TextFile::FieldDefinition field(std::size_t index) const { return table_->fields.at(index); }
  char16_t decimalSymbol() const noexcept { return table_->options.number.decimalSymbol; }

  // "not opened" after a failure. Names are shown as ASCII.
  std::string Fields() const {
    if (!opened_) return "not opened";
    std::string shown;
    for (const TextFile::FieldDefinition& field : table_->fields) {
      if (!shown.empty()) shown += ' ';
      for (const char16_t unit : field.name) shown += unit < 0x7F ? static_cast<char>(unit) : '?';
      shown += ':' + TypeOf(field);
      if (field.isCoordinate) shown += field.isPair ? "[d]" : "[x]";
    }
    return shown;
  }

 private:
  static std::string TypeOf(const TextFile::FieldDefinition& field) {
    using TextFile::FieldType;
    switch (field.type) {
      case FieldType::kSmallInteger:
        return "small";
      case FieldType::kInteger:
        return "int";
      case FieldType::kSingle:
        return "single";
      case FieldType::kDouble:
        return "double";
      case FieldType::kString:
        return "text";
      case FieldType::kBigInteger:
        return "big";
      case FieldType::kDate:
        return "datetime" + OrderOf(field);
      case FieldType::kDateOnly:
        return "date" + OrderOf(field);
      case FieldType::kTimeOnly:
        return std::string("time") + (field.dateFormat.fractionalSeconds ? "." : "");
      case FieldType::kTimestampOffset:
        return "offset" + OrderOf(field);
      default:
        return "another type";
    }
  }

  static std::string OrderOf(const TextFile::FieldDefinition& field) {
    constexpr const char* kOrders[] = {"/any", "/mdy", "/dmy", "/ymd"};
    return kOrders[static_cast<int>(field.dateFormat.order)] +
           std::string(field.dateFormat.fractionalSeconds ? "." : "");
  }

  std::shared_ptr<TextFile::TextDatasetDescription> table_;
  TextFile::OpenDatasetStatus status_ = TextFile::OpenDatasetStatus::kScanFailed;
  bool opened_ = false;
};
