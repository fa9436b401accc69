#include "platform/CodePages.h"

#include <cstring>
#include <string>

#include "platform/posix/CodePageTable.h"
#include "platform/posix/Utf8Conversion.h"

namespace {

int Fail(DWORD error) {
  SetLastError(error);
  return 0;
}

int Finish(const ConversionResult& result) {
  switch (result.outcome) {
    case ConversionOutcome::kBufferTooSmall:
      return Fail(ERROR_INSUFFICIENT_BUFFER);
    case ConversionOutcome::kIllFormed:
      return Fail(ERROR_NO_UNICODE_TRANSLATION);
    case ConversionOutcome::kDone:
      break;
  }
  // Three bytes for each unit are more than an int counts when the text is that long.
  if (result.written > 0x7FFFFFFFu) return Fail(ERROR_INVALID_PARAMETER);
  return static_cast<int>(result.written);
}

UINT Resolve(UINT codePage) {
  if (codePage == CP_ACP || codePage == CP_THREAD_ACP) return GetACP();
  if (codePage == CP_OEMCP) return GetOEMCP();
  return codePage;
}

ConversionResult DecodeByTable(const CodePageTable& table, const char* bytes, std::size_t length,
                               bool strict, char16_t* text, std::size_t size) {
  std::size_t written = 0;
  std::size_t i = 0;
  while (i < length) {
    const auto byte = static_cast<unsigned char>(bytes[i++]);
    char16_t c = 0;
    if (!table.IsLead(byte)) {
      c = table.Single(byte);
    } else if (i < length) {
      // A byte that is no trail byte is used up too, as Windows does.
      c = table.Pair(byte, static_cast<unsigned char>(bytes[i++]));
    } else {
      c = CodePageTable::kUndefined;
    }
    if (c == CodePageTable::kUndefined) {
      if (strict) return {ConversionOutcome::kIllFormed, written};
      c = table.DefaultCharacter();
    }
    if (text != nullptr) {
      if (written == size) return {ConversionOutcome::kBufferTooSmall, written};
      text[written] = c;
    }
    ++written;
  }
  return {ConversionOutcome::kDone, written};
}

struct Substitution {
  std::string bytes;      // what stands for a character that the code page lacks
  bool bestFit = true;    // whether a similar character may stand for it
  bool happened = false;  // set by the conversion
};

bool IsPair(const char16_t* text, std::size_t i, std::size_t length) {
  return (text[i] & 0xFC00) == 0xD800 && i + 1 < length && (text[i + 1] & 0xFC00) == 0xDC00;
}

ConversionResult EncodeByTable(const CodePageTable& table, const char16_t* text, std::size_t length,
                               Substitution* substitution, char* bytes, std::size_t size) {
  std::size_t written = 0;
  for (std::size_t i = 0; i < length; ++i) {
    std::uint16_t code = table.Encode(text[i]);
    if (!substitution->bestFit && code != CodePageTable::kUndefined &&
        table.IsBestFit(text[i], code)) {
      code = CodePageTable::kUndefined;
    }
    char pair[2] = {static_cast<char>(code >> 8), static_cast<char>(code)};
    const char* unit = code < 0x100 ? pair + 1 : pair;
    std::size_t count = code < 0x100 ? 1 : 2;
    if (code == CodePageTable::kUndefined) {
      substitution->happened = true;
      unit = substitution->bytes.data();
      count = substitution->bytes.size();
      if (IsPair(text, i, length)) ++i;
    }
    if (bytes != nullptr) {
      if (size - written < count) return {ConversionOutcome::kBufferTooSmall, written};
      std::memcpy(bytes + written, unit, count);
    }
    written += count;
  }
  return {ConversionOutcome::kDone, written};
}

bool AreSizesBad(const void* input, int length, const void* output, int size) {
  return input == nullptr || length == 0 || size < 0 || (size > 0 && output == nullptr) ||
         input == output;
}

}  // namespace

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int length, LPWSTR text,
                        int size) {
  if (AreSizesBad(bytes, length, text, size)) return Fail(ERROR_INVALID_PARAMETER);
  const std::size_t count = length < 0 ? std::strlen(bytes) + 1 : static_cast<std::size_t>(length);
  char16_t* const target = size == 0 ? nullptr : text;
  const auto room = static_cast<std::size_t>(size);
  const bool strict = (flags & MB_ERR_INVALID_CHARS) != 0;
  codePage = Resolve(codePage);
  if (codePage == CP_UTF8) {
    if ((flags & ~MB_ERR_INVALID_CHARS) != 0) return Fail(ERROR_INVALID_FLAGS);
    return Finish(Utf16FromUtf8(bytes, count, strict, target, room));
  }
  const CodePageTable* const table = CodePageTable::Find(codePage);
  if (table == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if ((flags & ~(MB_ERR_INVALID_CHARS | MB_PRECOMPOSED)) != 0) return Fail(ERROR_INVALID_FLAGS);
  return Finish(DecodeByTable(*table, bytes, count, strict, target, room));
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int length, LPSTR bytes, int size,
                        LPCSTR defaultChar, LPBOOL usedDefaultChar) {
  if (AreSizesBad(text, length, bytes, size)) return Fail(ERROR_INVALID_PARAMETER);
  const std::size_t count =
      length < 0 ? std::char_traits<char16_t>::length(text) + 1 : static_cast<std::size_t>(length);
  char* const target = size == 0 ? nullptr : bytes;
  const auto room = static_cast<std::size_t>(size);
  codePage = Resolve(codePage);
  if (codePage == CP_UTF8) {
    if (defaultChar != nullptr || usedDefaultChar != nullptr) return Fail(ERROR_INVALID_PARAMETER);
    if ((flags & ~WC_ERR_INVALID_CHARS) != 0) return Fail(ERROR_INVALID_FLAGS);
    return Finish(Utf8FromUtf16(text, count, flags != 0, target, room));
  }
  const CodePageTable* const table = CodePageTable::Find(codePage);
  if (table == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if ((flags & ~WC_NO_BEST_FIT_CHARS) != 0) return Fail(ERROR_INVALID_FLAGS);
  Substitution substitution;
  substitution.bestFit = flags == 0;
  substitution.bytes.assign(1, CodePageTable::kDefaultByte);
  if (defaultChar != nullptr) {
    const bool isPair = table->IsLead(static_cast<unsigned char>(defaultChar[0]));
    substitution.bytes.assign(defaultChar, isPair ? 2 : 1);
  }
  const ConversionResult result = EncodeByTable(*table, text, count, &substitution, target, room);
  if (usedDefaultChar != nullptr) *usedDefaultChar = substitution.happened ? TRUE : FALSE;
  return Finish(result);
}

BOOL IsValidCodePage(UINT codePage) {
  return codePage == CP_UTF8 || CodePageTable::Find(codePage) != nullptr ? TRUE : FALSE;
}
