// The names of a header row, in one text.
//
//   NameTexts names;
//   names.Add(u"Id");
//   names[0];  // u"Id"
//   names[1];  // empty
//
// A row of a million names is a line of some megabytes: its text can be taken over as it is, and
// the names are parts of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace TextFile {

class NameTexts {
 public:
  void Reserve(std::size_t names) { places_.reserve(names); }
  void Add(std::u16string_view name) {
    places_.push_back({text_.size(), name.size()});
    text_ += name;
  }

  // The next name is that part of the text which TakeText brings.
  void AddPlace(std::size_t begin, std::size_t length) { places_.push_back({begin, length}); }
  void TakeText(std::u16string text) noexcept {
    text_ = std::move(text);
    hasTakenText_ = true;
  }
  bool HasTakenText() const noexcept { return hasTakenText_; }

  // Empty behind the last name.
  std::u16string_view operator[](std::size_t index) const noexcept {
    if (index >= places_.size()) return {};
    return std::u16string_view(text_).substr(places_[index].begin, places_[index].length);
  }

 private:
  struct Place {
    std::size_t begin;
    std::size_t length;
  };

  std::u16string text_;
  std::vector<Place> places_;
  bool hasTakenText_ = false;
};

}  // namespace TextFile
