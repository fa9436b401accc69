#include <cstring>
#include <string>

#include "platform/OleAutomation.h"
#include "platform/posix/BstrBlocks.h"

namespace {

// A block holds the length, the text and its terminating zero.
constexpr std::size_t kPrefix = sizeof(UINT);
constexpr UINT kMaxBytes = 0x7FFFFFF0;

char* BlockOf(BSTR text) { return reinterpret_cast<char*>(text) - kPrefix; }

// In bytes.
UINT LengthOf(BSTR text) {
  UINT bytes = 0;
  std::memcpy(&bytes, BlockOf(text), kPrefix);
  return bytes;
}

std::size_t BlockSize(UINT bytes) { return kPrefix + bytes + sizeof(OLECHAR); }

// A text of `bytes` bytes with its length and terminating zero set, null when memory is exhausted.
BSTR Allocate(UINT bytes) {
  if (bytes > kMaxBytes) return nullptr;
  char* const block = TakeBstrBlock(BlockSize(bytes));
  if (block == nullptr) return nullptr;
  std::memcpy(block, &bytes, kPrefix);
  // Byte by byte: a text of an odd number of bytes ends between characters.
  block[kPrefix + bytes] = 0;
  block[kPrefix + bytes + 1] = 0;
  return reinterpret_cast<BSTR>(block + kPrefix);
}

}  // namespace

BSTR SysAllocString(const OLECHAR* text) {
  if (text == nullptr) return nullptr;
  const std::size_t length = std::char_traits<OLECHAR>::length(text);
  if (length > kMaxBytes / sizeof(OLECHAR)) return nullptr;
  return SysAllocStringLen(text, static_cast<UINT>(length));
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  if (length > kMaxBytes / sizeof(OLECHAR)) return nullptr;
  const auto bytes = static_cast<UINT>(length * sizeof(OLECHAR));
  const BSTR result = Allocate(bytes);
  if (result != nullptr && text != nullptr) std::memcpy(result, text, bytes);
  return result;
}

BSTR SysAllocStringByteLen(LPCSTR bytes, UINT length) {
  const BSTR result = Allocate(length);
  if (result != nullptr && bytes != nullptr) std::memcpy(result, bytes, length);
  return result;
}

INT SysReAllocString(BSTR* text, const OLECHAR* newText) {
  if (text == nullptr) return FALSE;
  const BSTR result = SysAllocString(newText);
  if (result == nullptr && newText != nullptr) return FALSE;
  SysFreeString(*text);
  *text = result;
  return TRUE;
}

INT SysReAllocStringLen(BSTR* text, const OLECHAR* newText, UINT length) {
  if (text == nullptr) return FALSE;
  const BSTR result = SysAllocStringLen(newText, length);
  if (result == nullptr) return FALSE;
  if (newText == nullptr && *text != nullptr) {
    // Without new text the characters stay, as far as both lengths reach.
    const UINT kept = SysStringByteLen(*text) < SysStringByteLen(result) ? SysStringByteLen(*text)
                                                                         : SysStringByteLen(result);
    std::memcpy(result, *text, kept);
  }
  SysFreeString(*text);
  *text = result;
  return TRUE;
}

void SysFreeString(BSTR text) {
  if (text != nullptr) GiveBstrBlock(BlockOf(text), BlockSize(LengthOf(text)));
}

UINT SysStringByteLen(BSTR text) { return text != nullptr ? LengthOf(text) : 0; }

UINT SysStringLen(BSTR text) { return SysStringByteLen(text) / static_cast<UINT>(sizeof(OLECHAR)); }
