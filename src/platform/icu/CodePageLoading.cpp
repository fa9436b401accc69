#include <unicode/ucnv.h>
#include <unicode/unorm2.h>

#include "platform/posix/CodePageTable.h"

namespace {

struct ConverterCloser {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

struct NamedCodePage {
  UINT number;
  const char* name;  // ICU's
};

// Names of tables that agree with Windows' where ICU has several of one code page.
constexpr NamedCodePage kNames[] = {
    {437, "ibm-437"},           {737, "ibm-737"},          {775, "ibm-775"},
    {850, "ibm-850"},           {852, "ibm-852"},          {855, "ibm-855"},
    {857, "ibm-857"},           {858, "ibm-858"},          {860, "ibm-860"},
    {861, "ibm-861"},           {862, "ibm-862"},          {863, "ibm-863"},
    {864, "ibm-864"},           {865, "ibm-865"},          {866, "ibm-866"},
    {869, "ibm-869"},           {720, "ibm-720"},          {874, "windows-874-2000"},
    {932, "ibm-943_P15A-2003"}, {936, "windows-936-2000"}, {949, "windows-949-2000"},
    {950, "windows-950-2000"},  {1250, "windows-1250"},    {1251, "windows-1251"},
    {1252, "windows-1252"},     {1253, "windows-1253"},    {1254, "windows-1254"},
    {1255, "windows-1255"},     {1256, "windows-1256"},    {1257, "windows-1257"},
    {1258, "windows-1258"},     {10000, "macintosh"},      {20127, "US-ASCII"},
    {20866, "KOI8-R"},          {21866, "KOI8-U"},         {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"},      {28593, "ISO-8859-3"},     {28594, "ISO-8859-4"},
    {28595, "ISO-8859-5"},      {28596, "ISO-8859-6"},     {28597, "ISO-8859-7"},
    {28598, "ISO-8859-8"},      {28599, "ISO-8859-9"},     {28603, "ISO-8859-13"},
    {28605, "ISO-8859-15"},
};

struct BytePatch {
  UINT codePage;
  unsigned char first;
  unsigned char last;
  char16_t character;  // of `first`; the others follow
};

// Bytes that ICU leaves undefined or reads otherwise than Windows, whose tables give each of them a
// character, the private-use ones among them, so that no byte of these code pages is lost.
constexpr BytePatch kBytePatches[] = {
    {932, 0x80, 0x80, 0x0080},  {932, 0xA0, 0xA0, 0x00A0},  {932, 0xFD, 0xFF, 0xF8F1},
    {936, 0xFF, 0xFF, 0xF8F5},  {949, 0x80, 0x80, 0x0080},  {949, 0xFF, 0xFF, 0xF8F7},
    {950, 0x80, 0x80, 0x0080},  {950, 0xFF, 0xFF, 0xF8F8},  {1253, 0xAA, 0xAA, 0xF8F9},
    {1253, 0xD2, 0xD2, 0xF8FA}, {1253, 0xFF, 0xFF, 0xF8FB}, {1255, 0xCA, 0xCA, 0x05BA},
    {1255, 0xD9, 0xDF, 0xF88D}, {1255, 0xFB, 0xFC, 0xF894}, {1255, 0xFF, 0xFF, 0xF896},
    {1257, 0xA1, 0xA1, 0xF8FC}, {1257, 0xA5, 0xA5, 0xF8FD},
};

const char* NameOf(UINT codePage) {
  for (const NamedCodePage& page : kNames) {
    if (page.number == codePage) return page.name;
  }
  return nullptr;
}

Converter Open(const char* name) {
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(ucnv_open(name, &status));
  if (U_FAILURE(status)) return nullptr;
  ucnv_setFallback(converter.get(), true);
  ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
  ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
  return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

char16_t Decode(UConverter* converter, const char* bytes, int length) {
  UChar text[8];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t count = ucnv_toUChars(converter, text, 8, bytes, length, &status);
  // A table that decodes to two units, or to the replacement character, has no character here.
  if (U_FAILURE(status) || count != 1 || text[0] == 0xFFFD) return CodePageTable::kUndefined;
  return text[0];
}

std::uint16_t EncodeOne(UConverter* converter, char16_t c) {
  char bytes[8];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t count = ucnv_fromUChars(converter, bytes, 8, &c, 1, &status);
  if (U_FAILURE(status) || count < 1 || count > 2) return CodePageTable::kUndefined;
  const auto first = static_cast<unsigned char>(bytes[0]);
  if (count == 1) return first;
  return static_cast<std::uint16_t>(first * 256 + static_cast<unsigned char>(bytes[1]));
}

// The ASCII letter that `c` is with a mark upon it, else kUndefined. Windows' tables of single-byte
// code pages let it stand for the letter that they lack (A with macron is A in 1252).
std::uint16_t BaseLetter(const UNormalizer2* normalizer, char16_t c) {
  UChar parts[16];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t count = unorm2_normalize(normalizer, &c, 1, parts, 16, &status);
  if (U_FAILURE(status) || count < 2) return CodePageTable::kUndefined;
  const char16_t base = parts[0];
  const bool isLetter = (base >= u'A' && base <= u'Z') || (base >= u'a' && base <= u'z');
  const bool isMark = parts[1] >= 0x0300 && parts[1] <= 0x036F;
  return isLetter && isMark ? base : CodePageTable::kUndefined;
}

bool IsSurrogate(std::uint32_t c) { return (c & 0xF800u) == 0xD800u; }

}  // namespace

std::unique_ptr<CodePageTable> CodePageTable::Load(UINT codePage) {
  const char* const name = NameOf(codePage);
  if (name == nullptr) return nullptr;
  const Converter converter = Open(name);
  if (converter == nullptr) return nullptr;
  std::unique_ptr<CodePageTable> table(new CodePageTable);

  bool starters[256] = {};
  UErrorCode status = U_ZERO_ERROR;
  if (ucnv_getType(converter.get()) == UCNV_MBCS) {
    ucnv_getStarters(converter.get(), reinterpret_cast<UBool*>(starters), &status);
  }
  for (unsigned byte = 0; byte < 256; ++byte) {
    const auto c = static_cast<char>(byte);
    // Some IBM tables swap control characters about; Windows' code pages are ASCII below 80.
    char16_t decoded = byte < 0x80 ? static_cast<char16_t>(byte) : Decode(converter.get(), &c, 1);
    if (decoded == kUndefined && byte < 0xA0) decoded = static_cast<char16_t>(byte);
    table->single_[byte] = decoded;
  }
  for (const BytePatch& patch : kBytePatches) {
    if (patch.codePage != codePage) continue;
    for (unsigned byte = patch.first; byte <= patch.last; ++byte) {
      table->single_[byte] = static_cast<char16_t>(patch.character + (byte - patch.first));
      starters[byte] = false;
    }
  }

  std::uint8_t rows = 0;
  for (unsigned lead = 0x80; lead < 256; ++lead) {
    if (!starters[lead]) continue;
    table->pairIndex_[lead] = ++rows;
    for (unsigned trail = 0; trail < 256; ++trail) {
      const char pair[2] = {static_cast<char>(lead), static_cast<char>(trail)};
      table->pairs_.push_back(Decode(converter.get(), pair, 2));
    }
  }
  if (codePage == 932) table->defaultCharacter_ = 0x30FB;

  const UNormalizer2* const normalizer = unorm2_getNFDInstance(&status);
  const bool fitLetters = rows == 0 && normalizer != nullptr;
  table->encode_.resize(0x10000, kUndefined);
  for (std::uint32_t c = 0; c < 0x10000; ++c) {
    const auto unit = static_cast<char16_t>(c);
    if (c < 0x80) {
      table->encode_[c] = static_cast<std::uint16_t>(c);
    } else if (!IsSurrogate(c)) {
      table->encode_[c] = EncodeOne(converter.get(), unit);
      if (table->encode_[c] == kUndefined && fitLetters) {
        table->encode_[c] = BaseLetter(normalizer, unit);
      }
    }
  }
  // What a single byte decodes to always encodes to it again, patched bytes included.
  for (unsigned byte = 255; byte >= 0x80; --byte) {
    const char16_t c = table->single_[byte];
    if (c != kUndefined && !table->IsLead(static_cast<unsigned char>(byte))) {
      table->encode_[c] = static_cast<std::uint16_t>(byte);
    }
  }
  return table;
}
