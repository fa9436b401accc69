// The steps of TextColumns.h for any way of writing clean units. Included by the files that bring
// such a way, each compiled for its processors.
//
// Units has
//   static constexpr std::size_t kExcess;  // bytes that it may write behind a text
//   Units(char delimiter, char quote);
//   std::size_t Write(const char16_t* text, std::size_t size, char* to) const;  // as CleanUnits
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "platform/OleText.h"
#include "schema/TextColumns.h"
#include "schema/Utf8.h"

namespace TextFile {

template <class Units>
std::size_t RunTextColumns(const QuotedText& texts, std::span<const TextColumn> columns,
                           const VARIANT* values, TextRun& run) noexcept {
  const Units units(texts.Delimiter(), texts.Quote());
  const char delimiter = texts.Delimiter();
  const char* const limit = run.limit;
  const VARIANT* value = values;
  char* to = run.to;
  run.room = 0;
  for (const TextColumn& column : columns) {
    BSTR held = nullptr;  // of a null, which looks the same as no text
    if (value->vt == (VT_BSTR | VT_BYREF) && value->pbstrVal != nullptr)
      held = *value->pbstrVal;  // a host that spares itself the copy lends its text
    else if (value->vt == VT_BSTR)
      held = value->bstrVal;
    else if (value->vt != VT_NULL && value->vt != VT_EMPTY)
      break;
    std::u16string_view text = ViewOf(held);
    if (text.size() > column.width) [[unlikely]]
      text = CutText(text, column.width);
    const std::size_t room = 1 + QuotedText::Room(text.size()) + Units::kExcess;
    if (static_cast<std::size_t>(limit - to) < room) [[unlikely]] {
      run.room = room;
      break;
    }
    *to = delimiter;
    char* const start = to + column.separatorSize;
    const std::size_t clean = units.Write(text.data(), text.size(), start);
    char* end = start + clean;
    if (clean != text.size()) {
      end = texts.Finish(text, clean, start);
      if (end == nullptr) break;
    }
    to = end;
    ++value;
  }
  run.to = to;
  return static_cast<std::size_t>(value - values);
}

}  // namespace TextFile
