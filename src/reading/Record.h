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

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/CharacterClasses.h"
#include "reading/UnitBuffer.h"

namespace TextFile {

class Record {
 public:
  // No fields: no record is held.
  bool empty() const noexcept { return count_ == 0; }
  std::size_t size() const noexcept { return count_; }

  // Valid until the record or the line it refers to changes.
  std::u16string_view operator[](std::size_t index) const noexcept {
    const Field& field = fields_[index];
    const bool inText = (field.begin & kInText) != 0;
    return {inText ? text_.data() + (field.begin ^ kInText) : line_ + field.begin, field.length};
  }

  void Clear() noexcept {
    text_.Shorten(0);
    count_ = 0;
    open_ = 0;
  }

  // The field that is being put together.
  std::u16string_view OpenField() const noexcept { return text_.View().substr(open_); }
  void Append(char16_t unit) { text_.Append(unit); }
  // Adds to it [begin, end) of `line`, behind whose end kSearchPadding units can be read.
  void AppendFromLine(const char16_t* line, std::size_t begin, std::size_t end) {
    text_.AppendInSteps(line + begin, end - begin);
  }
  void DropOpenField() noexcept { text_.Shorten(open_); }

  // The open field becomes the last field, and an empty one is opened.
  void EndField() { EndFieldAs(OpenField()); }

  // The same without U+0020 at either end.
  void EndTrimmedField() { EndFieldAs(quenra::TrimBlanks(OpenField())); }

  // Adds a field that is [begin, begin + length) of `line`. All such fields of a record are of one
  // line.
  void AddFromLine(const char16_t* line, std::size_t begin, std::size_t length) {
    MakeRoom(1);
    line_ = line;
    fields_[count_++] = {begin, length};
  }

  // Adds the fields of `line` that end in front of delimiters: the first one begins at `begin`,
  // and bit i of `delimiters` stands for the unit at `block + i`. Answers where the field behind
  // the last delimiter begins.
  std::size_t AddFromLine(const char16_t* line, std::size_t begin, std::size_t block,
                          std::uint32_t delimiters) {
    MakeRoom(32);
    line_ = line;
    Field* field = fields_.data() + count_;
    for (; delimiters != 0; delimiters &= delimiters - 1) {
      const std::size_t end = block + static_cast<std::size_t>(std::countr_zero(delimiters));
      *field++ = {begin, end - begin};
      begin = end + 1;
    }
    count_ = static_cast<std::size_t>(field - fields_.data());
    return begin;
  }

  // Copies the line that fields refer to, which is about to change. No more fields can be added
  // from lines to this record.
  void KeepLine(std::u16string_view line) {
    if (empty() || line_ == kept_.data()) return;
    kept_ = line;
    line_ = kept_.data();
  }

 private:
  struct Field {
    std::size_t begin;  // in the line, or in text_ with kInText set
    std::size_t length;
  };
  static constexpr std::size_t kInText = ~(~std::size_t{0} >> 1);

  // Leaves places for `more` fields behind the last one.
  void MakeRoom(std::size_t more) {
    if (fields_.size() - count_ < more) fields_.resize(2 * fields_.size() + more);
  }

  void EndFieldAs(std::u16string_view text) {
    MakeRoom(1);
    fields_[count_++] = {static_cast<std::size_t>(text.data() - text_.data()) | kInText,
                         text.size()};
    open_ = text_.size();
  }

  std::vector<Field> fields_;  // the first count_ are the record's
  std::size_t count_ = 0;
  UnitBuffer text_;                 // the fields that are no parts of the line, and the open field
  std::size_t open_ = 0;            // where the open field begins in text_
  const char16_t* line_ = nullptr;  // what the other fields are parts of
  std::u16string kept_;             // a copy of that line, for records that go on behind it
};

}  // namespace TextFile
