// A message, and which parts of it are not its own words: names and values, as they came from files
// and from the user.
//
//   MessageText message;
//   message.Insert(tableName).Add(u": there is no such column");
//
// Who shows the message to people can tell a line that it has from one that a value has.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quenra {

// In UTF-16 code units.
struct TextPart {
  std::size_t begin;
  std::size_t length;
};

struct MessageText {
  std::u16string text;
  std::vector<TextPart> inserts;  // from left to right, without overlap

  MessageText& Add(std::u16string_view words) {
    text += words;
    return *this;
  }
  MessageText& Insert(std::u16string_view value) {
    inserts.push_back({text.size(), value.size()});
    text += value;
    return *this;
  }
};

}  // namespace quenra
