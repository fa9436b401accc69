// The fields of one row.
//
//   record.Append(u'a');  record.EndField();
//   record[0];            // u"a"
//
// All texts stand in one buffer that is used again for the next row, so after the first rows a
// record allocates nothing, however many fields it has.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/CharacterClasses.h"

namespace TextFile {

class Record {
 public:
  // No fields: no record is held.
  bool empty() const noexcept { return fields_.empty(); }
  std::size_t size() const noexcept { return fields_.size(); }

  // Valid until the record changes.
  std::u16string_view operator[](std::size_t index) const noexcept {
    const Field& field = fields_[index];
    return {text_.data() + field.begin, field.end - field.begin};
  }

  void Clear() noexcept {
    text_.clear();
    fields_.clear();
    open_ = 0;
  }

  // The field that is being put together.
  std::u16string_view OpenField() const noexcept {
    return {text_.data() + open_, text_.size() - open_};
  }
  void Append(char16_t unit) { text_.push_back(unit); }
  void DropOpenField() noexcept { text_.resize(open_); }

  // The open field becomes the last field, and an empty one is opened.
  void EndField() {
    fields_.push_back({open_, text_.size()});
    open_ = text_.size();
  }

  // The same without U+0020 at either end.
  void EndTrimmedField() {
    const std::u16string_view kept = quenra::TrimBlanks(OpenField());
    const auto begin = static_cast<std::size_t>(kept.data() - text_.data());
    fields_.push_back({begin, begin + kept.size()});
    open_ = text_.size();
  }

 private:
  struct Field {
    std::size_t begin;
    std::size_t end;
  };

  std::u16string text_;
  std::vector<Field> fields_;
  std::size_t open_ = 0;  // where the open field begins in text_
};

}  // namespace TextFile
