#include "TextEncoding.h"

#include <algorithm>

#include "platform/FileNames.h"

namespace TextTables {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// The greatest number of code units encoded between two looks at the buffer's free space.
constexpr std::size_t kUnitsAtOnce = 8192;

char32_t Spellable(char32_t value) { return IsSurrogate(value) ? kReplacement : value; }

}  // namespace

char* WriteUtf8(char* place, char32_t value) noexcept {
  const auto put = [&place](char32_t byte) { *place++ = static_cast<char>(byte); };
  if (value < 0x80) {
    put(value);
  } else if (value < 0x800) {
    put(0xC0 | (value >> 6));
    put(0x80 | (value & 0x3F));
  } else if (value < 0x10000) {
    put(0xE0 | (value >> 12));
    put(0x80 | ((value >> 6) & 0x3F));
    put(0x80 | (value & 0x3F));
  } else {
    put(0xF0 | (value >> 18));
    put(0x80 | ((value >> 12) & 0x3F));
    put(0x80 | ((value >> 6) & 0x3F));
    put(0x80 | (value & 0x3F));
  }
  return place;
}

void AppendUtf8(Output& output, std::u16string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const std::size_t end = std::min(text.size(), i + kUnitsAtOnce);
    // A pair that starts at the last unit is two units for four bytes: still three bytes a unit.
    char* place = output.Reserve((end - i) * 3 + 4);
    while (i < end) {
      if (text[i] < 0x80) {
        *place++ = static_cast<char>(text[i++]);
        continue;
      }
      const CodePoint point = CodePointAt(text, i);
      place = WriteUtf8(place, Spellable(point.value));
      i += point.units;
    }
    output.Commit(place);
  }
}

std::string Utf8(std::u16string_view text) {
  StringOutput bytes;
  AppendUtf8(bytes, text);
  return bytes.Take();
}

#ifdef _WIN32

std::string FileNameBytes(std::u16string_view name) { return Utf8(name); }

#else

std::string FileNameBytes(std::u16string_view name) { return NativeFromFileName(name); }

#endif

std::string MessageBytes(std::u16string_view text) {
  std::u16string spellable;
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint point = CodePointAt(text, i);
    // U+DC80 to U+DCFF are the bytes of a file's name.
    const bool isByte = point.value >= 0xDC80 && point.value <= 0xDCFF;
    if (IsSurrogate(point.value) && !isByte)
      spellable += static_cast<char16_t>(kReplacement);
    else
      spellable += text.substr(i, point.units);
    i += point.units;
  }
  return FileNameBytes(spellable);
}

}  // namespace TextTables
