#include "platform/ComTypes.h"

#include <string_view>

namespace {

constexpr char16_t kHexDigits[] = u"0123456789ABCDEF";

// Where each byte of a GUID stands in its text, most significant byte of each number first.
constexpr std::u16string_view kShape = u"{________-____-____-____-____________}";

int HexValue(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return -1;
}

// The sixteen bytes in the order in which the text shows them.
void ToTextOrder(REFGUID guid, std::uint8_t* bytes) {
  for (unsigned i = 0; i < 4; ++i) {
    bytes[i] = static_cast<std::uint8_t>(guid.Data1 >> (24 - 8 * i));
  }
  bytes[4] = static_cast<std::uint8_t>(guid.Data2 >> 8);
  bytes[5] = static_cast<std::uint8_t>(guid.Data2);
  bytes[6] = static_cast<std::uint8_t>(guid.Data3 >> 8);
  bytes[7] = static_cast<std::uint8_t>(guid.Data3);
  std::memcpy(bytes + 8, guid.Data4, 8);
}

GUID FromTextOrder(const std::uint8_t* bytes) {
  GUID guid{};
  guid.Data1 = 0;
  for (unsigned i = 0; i < 4; ++i) guid.Data1 = (guid.Data1 << 8) | bytes[i];
  guid.Data2 = static_cast<std::uint16_t>((bytes[4] << 8) | bytes[5]);
  guid.Data3 = static_cast<std::uint16_t>((bytes[6] << 8) | bytes[7]);
  std::memcpy(guid.Data4, bytes + 8, 8);
  return guid;
}

}  // namespace

extern "C" {

const GUID GUID_NULL = {};

// COM's own identifiers share their last eight bytes.
const IID IID_IUnknown = {0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
const IID IID_IClassFactory = {0x00000001, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
const IID IID_IDispatch = {0x00020400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
const IID IID_IErrorInfo = {
    0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
const IID IID_ICreateErrorInfo = {
    0x22F03340, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
const IID IID_ISupportErrorInfo = {
    0xDF0B3D60, 0x548F, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};

int StringFromGUID2(REFGUID guid, OLECHAR* buffer, int size) {
  const int needed = static_cast<int>(kShape.size()) + 1;
  if (buffer == nullptr || size < needed) return 0;
  std::uint8_t bytes[16];
  ToTextOrder(guid, bytes);
  const std::uint8_t* next = bytes;
  std::size_t i = 0;
  while (i < kShape.size()) {
    if (kShape[i] != u'_') {
      buffer[i] = kShape[i];
      ++i;
      continue;
    }
    buffer[i] = kHexDigits[*next >> 4];
    buffer[i + 1] = kHexDigits[*next & 0xF];
    ++next;
    i += 2;
  }
  buffer[kShape.size()] = 0;
  return needed;
}

HRESULT CLSIDFromString(LPCOLESTR text, LPCLSID result) {
  if (result == nullptr) return E_INVALIDARG;
  *result = GUID_NULL;
  if (text == nullptr) return S_OK;
  std::uint8_t bytes[16];
  std::uint8_t* next = bytes;
  std::size_t i = 0;
  // Each character is judged before the one behind it is touched, so a short text ends the walk.
  while (i < kShape.size()) {
    if (kShape[i] != u'_') {
      if (text[i] != kShape[i]) return CO_E_CLASSSTRING;
      ++i;
      continue;
    }
    const int high = HexValue(text[i]);
    if (high < 0) return CO_E_CLASSSTRING;
    const int low = HexValue(text[i + 1]);
    if (low < 0) return CO_E_CLASSSTRING;
    *next++ = static_cast<std::uint8_t>(high * 16 + low);
    i += 2;
  }
  if (text[kShape.size()] != 0) return CO_E_CLASSSTRING;
  *result = FromTextOrder(bytes);
  return S_OK;
}

HRESULT IIDFromString(LPCOLESTR text, IID* result) { return CLSIDFromString(text, result); }

}  // extern "C"
