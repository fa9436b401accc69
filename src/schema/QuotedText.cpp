#include "schema/QuotedText.h"

#include <cstring>

#include "host/CoreSupport/CharacterClasses.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

constexpr char16_t kTextEnd = 0x1A;

}  // namespace

bool IsUsualMark(char16_t mark) noexcept {
  return mark > 0 && mark < 0x80 && mark != u'\r' && mark != u'\n' && mark != kTextEnd;
}

bool QuotedText::Takes(char16_t delimiter, char16_t quote) noexcept {
  return IsUsualMark(delimiter) && IsUsualMark(quote) && delimiter != quote &&
         !quenra::IsWhiteSpace(quote);
}

char* QuotedText::Finish(std::u16string_view text, std::size_t done, char* to) const noexcept {
  char* const start = to;
  const char quote = clean_.Quote();
  bool quoted = false;
  bool anyQuote = false;
  std::size_t i = done;
  to += done;
  while (i < text.size()) {
    const char16_t unit = text[i];
    if (clean_.IsClean(unit)) {
      const std::size_t clean = clean_.Write(text.data() + i, text.size() - i, to);
      i += clean;
      to += clean;
      continue;
    }
    if (unit >= 0x80) {
      to = WriteCharacter(text, i, to);
      continue;
    }
    if (unit == 0 || unit == kTextEnd) return nullptr;
    const char character = static_cast<char>(unit);
    if (character == quote) {
      quoted = quoted || (!anyQuote && quenra::IsBlank(text.substr(0, i)));
      anyQuote = true;
      *to++ = quote;
    } else if (character == clean_.Delimiter() || character == '\r' || character == '\n') {
      quoted = true;
    }
    *to++ = character;
    ++i;
  }
  if (!quoted) return to;
  std::memmove(start + 1, start, static_cast<std::size_t>(to - start));
  *start = quote;
  to[1] = quote;
  return to + 2;
}

}  // namespace TextFile
