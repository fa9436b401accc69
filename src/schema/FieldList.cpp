#include "schema/FieldList.h"

#include <charconv>

namespace TextFile {

std::u16string GeneratedFieldName(std::size_t position) {
  char text[32] = "Field";
  constexpr std::size_t kPrefix = 5;
  auto* const end = std::to_chars(text + kPrefix, text + sizeof(text), position + 1).ptr;
  return {text, end};
}

const FieldDefinition* FieldList::StoredBehind(std::size_t index) const noexcept {
  const auto found = behind_.find(index);
  return found == behind_.end() ? nullptr : &found->second;
}

FieldDefinition FieldList::operator[](std::size_t index) const {
  if (const FieldDefinition* const stored = Stored(index)) return *stored;
  FieldDefinition text;
  const std::size_t position = index - virtualFields_;
  if (names_ != nullptr) text.name = (*names_)[position];
  if (text.name.empty()) text.name = GeneratedFieldName(position);
  return text;
}

FieldDefinition& FieldList::operator[](std::size_t index) {
  if (index < stored_.size()) return stored_[index];
  const auto found = behind_.find(index);
  if (found != behind_.end()) return found->second;
  return behind_.emplace(index, std::as_const(*this)[index]).first->second;
}

}  // namespace TextFile
