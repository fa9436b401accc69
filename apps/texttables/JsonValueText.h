// Values of rows as natural JSON: numbers, texts, dates in ISO 8601, null for blanks.
//
//   JsonKeys keys;
//   keys.Add(name);
//   output.Append(keys[0]);
//   AppendJsonValue(output, slot.value, column.type);
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Output.h"
#include "platform/OleAutomation.h"

namespace TextTables {

// Names in quotes with the colon behind each. They stand in one text, since a table may have a
// million columns.
class JsonKeys {
 public:
  void Add(std::u16string_view name);
  std::string_view operator[](std::size_t index) const noexcept {
    const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
    return std::string_view(text_).substr(begin, ends_[index] - begin);
  }

 private:
  std::string text_;
  std::vector<std::size_t> ends_;
};

void AppendJsonValue(Output& output, const VARIANT& value, LONG fieldType);

}  // namespace TextTables
