#include "platform/FileNames.h"

#include "platform/posix/Utf8.h"

namespace {

constexpr char32_t kEscape = 0xDC00;

bool IsHighSurrogate(char16_t c) { return (c & 0xFC00) == 0xD800; }
bool IsLowSurrogate(char16_t c) { return (c & 0xFC00) == 0xDC00; }

void AppendUtf8(char32_t code, std::string* bytes) {
  const auto tail = [code](unsigned shift) {
    return static_cast<char>(0x80u | ((code >> shift) & 0x3Fu));
  };
  if (code < 0x80) {
    *bytes += static_cast<char>(code);
  } else if (code < 0x800) {
    *bytes += static_cast<char>(0xC0u | (code >> 6));
    *bytes += tail(0);
  } else if (code < 0x10000) {
    *bytes += static_cast<char>(0xE0u | (code >> 12));
    *bytes += tail(6);
    *bytes += tail(0);
  } else {
    *bytes += static_cast<char>(0xF0u | (code >> 18));
    *bytes += tail(12);
    *bytes += tail(6);
    *bytes += tail(0);
  }
}

}  // namespace

std::u16string FileNameFromNative(std::string_view name) {
  std::u16string text;
  text.reserve(name.size());
  const auto* p = reinterpret_cast<const unsigned char*>(name.data());
  const auto* const end = p + name.size();
  while (p != end) {
    const Utf8Character c = ReadUtf8Character(p, end);
    if (c.code == kIllFormedUtf8) {
      for (unsigned i = 0; i < c.length; ++i) text += static_cast<char16_t>(kEscape + p[i]);
    } else if (c.code < 0x10000) {
      text += static_cast<char16_t>(c.code);
    } else {
      text += static_cast<char16_t>(0xD7C0u + (c.code >> 10));
      text += static_cast<char16_t>(0xDC00u + (c.code & 0x3FFu));
    }
    p += c.length;
  }
  return text;
}

std::string NativeFromFileName(std::u16string_view name) {
  std::string bytes;
  bytes.reserve(name.size());
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char16_t c = name[i];
    if (IsHighSurrogate(c) && i + 1 < name.size() && IsLowSurrogate(name[i + 1])) {
      ++i;
      AppendUtf8(0x10000u + ((c & 0x3FFu) << 10) + (name[i] & 0x3FFu), &bytes);
    } else if (c >= kEscape + 0x80 && c <= kEscape + 0xFF) {
      bytes += static_cast<char>(c - kEscape);
    } else {
      AppendUtf8(c, &bytes);
    }
  }
  return bytes;
}
