// The fields of one row.
//
//   record.Append(u'a');  record.EndField();
//   record[0];            // u"a"
//
// A field is either a part of the line that was read last, referred to where it stands, or a text
// that had to be put together (a doubled quote, a line end inside quotes). Those stand in one
// buffer that is used again for the next row, so after the first rows a record allocates nothing,
// however many fields it has.
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

  // Valid until the record or the line it refers to changes.
  std::u16string_view operator[](std::size_t index) const noexcept {
    const Field& field = fields_[index];
    return {(field.inLine ? line_ : text_.data()) + field.begin, field.length};
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
  void Append(std::u16string_view units) { text_.append(units); }
  void DropOpenField() noexcept { text_.resize(open_); }

  // The open field becomes the last field, and an empty one is opened.
  void EndField() { EndFieldAs(OpenField()); }

  // The same without U+0020 at either end.
  void EndTrimmedField() { EndFieldAs(quenra::TrimBlanks(OpenField())); }

  // Adds a field that is [begin, begin + length) of `line`. All such fields of a record are of one
  // line.
  void AddFromLine(const char16_t* line, std::size_t begin, std::size_t length) {
    line_ = line;
    fields_.push_back({begin, length, true});
  }

  // Copies the line that fields refer to, which is about to change. No more fields can be added
  // from lines to this record.
  void KeepLine(std::u16string_view line) {
    if (fields_.empty() || line_ == kept_.data()) return;
    kept_ = line;
    line_ = kept_.data();
  }

 private:
  struct Field {
    std::size_t begin;
    std::size_t length;
    bool inLine;
  };

  void EndFieldAs(std::u16string_view text) {
    fields_.push_back({static_cast<std::size_t>(text.data() - text_.data()), text.size(), false});
    open_ = text_.size();
  }

  std::vector<Field> fields_;
  std::u16string text_;             // the fields that are no parts of the line, and the open field
  std::size_t open_ = 0;            // where the open field begins in text_
  const char16_t* line_ = nullptr;  // what the other fields are parts of
  std::u16string kept_;             // a copy of that line, for records that go on behind it
};

}  // namespace TextFile
