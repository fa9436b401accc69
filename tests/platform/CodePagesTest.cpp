#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "platform/CodePages.h"
#include "platform/OleText.h"

namespace {

std::u16string Decode(UINT codePage, std::string_view bytes, DWORD flags = 0) {
  const int length = static_cast<int>(bytes.size());
  const int needed = ::MultiByteToWideChar(codePage, flags, bytes.data(), length, nullptr, 0);
  std::u16string text(static_cast<std::size_t>(needed), u'#');
  if (needed == 0) return text;
  EXPECT_EQ(
      ::MultiByteToWideChar(codePage, flags, bytes.data(), length, AsOle(text.data()), needed),
      needed);
  return text;
}

std::string Encode(UINT codePage, std::u16string_view text, DWORD flags = 0) {
  const int length = static_cast<int>(text.size());
  const int needed = ::WideCharToMultiByte(codePage, flags, AsOle(text.data()), length, nullptr, 0,
                                           nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(needed), '#');
  if (needed == 0) return bytes;
  EXPECT_EQ(::WideCharToMultiByte(codePage, flags, AsOle(text.data()), length, bytes.data(), needed,
                                  nullptr, nullptr),
            needed);
  return bytes;
}

// Decodes by the definition: at each place the longest well-formed sequence, else the longest start
// of one as U+FFFD, else one byte. Sequences are recognised by encoding every candidate's range.
bool IsStartOfWellFormed(std::string_view part) {
  const auto byte = [part](std::size_t i) { return static_cast<unsigned char>(part[i]); };
  const auto in = [](unsigned char b, int low, int high) { return b >= low && b <= high; };
  struct Row {
    int low[4];
    int high[4];
    std::size_t length;
  };
  // The table of well-formed byte sequences in the Unicode Standard, chapter 3.
  static constexpr Row kRows[] = {
      {{0x00}, {0x7F}, 1},
      {{0xC2, 0x80}, {0xDF, 0xBF}, 2},
      {{0xE0, 0xA0, 0x80}, {0xE0, 0xBF, 0xBF}, 3},
      {{0xE1, 0x80, 0x80}, {0xEC, 0xBF, 0xBF}, 3},
      {{0xED, 0x80, 0x80}, {0xED, 0x9F, 0xBF}, 3},
      {{0xEE, 0x80, 0x80}, {0xEF, 0xBF, 0xBF}, 3},
      {{0xF0, 0x90, 0x80, 0x80}, {0xF0, 0xBF, 0xBF, 0xBF}, 4},
      {{0xF1, 0x80, 0x80, 0x80}, {0xF3, 0xBF, 0xBF, 0xBF}, 4},
      {{0xF4, 0x80, 0x80, 0x80}, {0xF4, 0x8F, 0xBF, 0xBF}, 4},
  };
  for (const Row& row : kRows) {
    if (part.size() > row.length) continue;
    bool fits = true;
    for (std::size_t i = 0; i < part.size(); ++i) fits &= in(byte(i), row.low[i], row.high[i]);
    if (fits) return true;
  }
  return false;
}

std::size_t SequenceLength(unsigned char lead) {
  return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

std::u16string ReferenceDecode(std::string_view bytes, bool* wellFormed) {
  std::u16string text;
  *wellFormed = true;
  while (!bytes.empty()) {
    std::size_t length = 0;
    while (length < bytes.size() && IsStartOfWellFormed(bytes.substr(0, length + 1))) ++length;
    const auto lead = static_cast<unsigned char>(bytes[0]);
    if (length == 0 || length < SequenceLength(lead)) {
      *wellFormed = false;
      text += u'\uFFFD';
      bytes.remove_prefix(length == 0 ? 1 : length);
      continue;
    }
    char32_t code = length == 1 ? lead : static_cast<char32_t>(lead & (0xFF >> (length + 1)));
    for (std::size_t i = 1; i < length; ++i) {
      code = code * 64 + (static_cast<unsigned char>(bytes[i]) & 0x3F);
    }
    if (code < 0x10000) {
      text += static_cast<char16_t>(code);
    } else {
      text += static_cast<char16_t>(0xD800 + (code - 0x10000) / 0x400);
      text += static_cast<char16_t>(0xDC00 + (code - 0x10000) % 0x400);
    }
    bytes.remove_prefix(length);
  }
  return text;
}

struct Utf8Case {
  std::string_view bytes;
  std::u16string_view text;
  bool wellFormed;
  const char* why;
};

const Utf8Case kUtf8Cases[] = {
    {"plain", u"plain", true, "ASCII"},
    {"\x7F", u"\x7F", true, "last of one byte"},
    {"\xC2\x80", u"\u0080", true, "first of two bytes"},
    {"\xDF\xBF", u"\u07FF", true, "last of two bytes"},
    {"\xE0\xA0\x80", u"\u0800", true, "first of three bytes"},
    {"\xED\x9F\xBF", u"\uD7FF", true, "last before the surrogates"},
    {"\xEE\x80\x80", u"\uE000", true, "first after the surrogates"},
    {"\xEF\xBF\xBF", u"\uFFFF", true, "a noncharacter is well-formed"},
    {"\xF0\x90\x80\x80", u"\U00010000", true, "first of four bytes"},
    {"\xF4\x8F\xBF\xBF", u"\U0010FFFF", true, "last of all"},
    {"\x80", u"\uFFFD", false, "a lone trail byte"},
    {"\xC0\xAF", u"\uFFFD\uFFFD", false, "overlong by two bytes: C0 starts nothing"},
    {"\xC1\xBF", u"\uFFFD\uFFFD", false, "C1 starts nothing either"},
    {"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD", false, "overlong by three bytes"},
    {"\xF0\x80\x80\xAF", u"\uFFFD\uFFFD\uFFFD\uFFFD", false, "overlong by four bytes"},
    {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD", false, "a surrogate"},
    {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD", false, "beyond U+10FFFF"},
    {"\xF5", u"\uFFFD", false, "starts nothing"},
    {"\xE2\x82"
     "a",
     u"\uFFFDa", false, "a cut sequence is one part"},
    {"\xF0\x9F\x92", u"\uFFFD", false, "three of four bytes at the end are one part"},
    {"\xF0\x9F"
     "a",
     u"\uFFFDa", false, "two of four"},
    {"\xF1\x80\x80\xE1\x80\xC2", u"\uFFFD\uFFFD\uFFFD", false, "three cut sequences in a row"},
    {"\xC3\xC3\xA9", u"\uFFFD\u00E9", false, "the next character is whole"},
};

TEST(CodePagesTest, Utf8FollowsTableInBothModes) {
  for (const Utf8Case& c : kUtf8Cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Decode(CP_UTF8, c.bytes), c.text);
    if (c.wellFormed) {
      EXPECT_EQ(Decode(CP_UTF8, c.bytes, MB_ERR_INVALID_CHARS), c.text);
      EXPECT_EQ(Encode(CP_UTF8, c.text, WC_ERR_INVALID_CHARS), c.bytes);
      continue;
    }
    ::SetLastError(ERROR_SUCCESS);
    char16_t text[16];
    EXPECT_EQ(::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, c.bytes.data(),
                                    static_cast<int>(c.bytes.size()), AsOle(text), 16),
              0);
    EXPECT_EQ(::GetLastError(), ERROR_NO_UNICODE_TRANSLATION);
  }
}

TEST(CodePagesTest, IllFormedPartsAreFoundAtEveryOffsetOfARun) {
  for (std::size_t before = 0; before < 40; ++before) {
    const std::string bytes = std::string(before, 'x') + "\xE2\x82" + std::string(40, 'y');
    const std::u16string text = std::u16string(before, u'x') + u"\uFFFD" + std::u16string(40, u'y');
    EXPECT_EQ(Decode(CP_UTF8, bytes), text) << before;
  }
}

TEST(CodePagesTest, RandomBytesDecodeAsTheReferenceSays) {
  std::mt19937 random(20240229);
  // Pieces that make well-formed, cut and mixed sequences likely, with runs of ASCII between.
  const std::string_view pieces[] = {"abcdefghijklmnopqrstuvwxyz",
                                     "1;2",
                                     "\xC3\xA9",
                                     "\xE2\x82\xAC",
                                     "\xF0\x9F\x92\xA9",
                                     "\xED",
                                     "\xA0",
                                     "\x80",
                                     "\xBF",
                                     "\xE0",
                                     "\xF0",
                                     "\x9F",
                                     "\xF4",
                                     "\x8F",
                                     "\x90",
                                     "\xC0",
                                     "\xFF",
                                     "\n"};
  for (int round = 0; round < 20000; ++round) {
    std::string bytes;
    const std::size_t count = 1 + random() % 8;
    for (std::size_t i = 0; i < count; ++i) {
      if (random() % 4 == 0) {
        bytes += static_cast<char>(random() % 256);
      } else {
        bytes += pieces[random() % std::size(pieces)];
      }
    }
    bool wellFormed = false;
    const std::u16string expected = ReferenceDecode(bytes, &wellFormed);
    ASSERT_EQ(Decode(CP_UTF8, bytes), expected);
    ASSERT_EQ(!Decode(CP_UTF8, bytes, MB_ERR_INVALID_CHARS).empty(), wellFormed);
    if (wellFormed) {
      ASSERT_EQ(Encode(CP_UTF8, expected), bytes);
    }
  }
}

TEST(CodePagesTest, LoneSurrogatesBecomeReplacementCharactersOrFail) {
  const std::u16string lone = {u'a', char16_t{0xD800}, u'b', char16_t{0xDC00}};
  EXPECT_EQ(Encode(CP_UTF8, lone),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
  EXPECT_EQ(Encode(CP_UTF8, lone, WC_ERR_INVALID_CHARS), "");
  EXPECT_EQ(::GetLastError(), ERROR_NO_UNICODE_TRANSLATION);
}

TEST(CodePagesTest, LengthMinusOneTakesTheTerminatingZeroAlong) {
  char16_t text[8];
  EXPECT_EQ(::MultiByteToWideChar(CP_UTF8, 0, "ab", -1, AsOle(text), 8), 3);
  EXPECT_EQ(std::u16string_view(text, 3), std::u16string_view(u"ab\0", 3));
  char bytes[8];
  EXPECT_EQ(::WideCharToMultiByte(1252, 0, AsOle(u"ab"), -1, bytes, 8, nullptr, nullptr), 3);
}

TEST(CodePagesTest, ZerosInsideAreOrdinaryCharacters) {
  EXPECT_EQ(Decode(CP_UTF8, std::string_view("a\0b", 3)), std::u16string_view(u"a\0b", 3));
  EXPECT_EQ(Decode(1252, std::string_view("a\0b", 3)), std::u16string_view(u"a\0b", 3));
}

TEST(CodePagesTest, BadArgumentsFail) {
  char16_t text[4];
  const auto fails = [](int result, DWORD error) {
    EXPECT_EQ(result, 0);
    EXPECT_EQ(::GetLastError(), error);
  };
  fails(::MultiByteToWideChar(CP_UTF8, 0, nullptr, 1, AsOle(text), 4), ERROR_INVALID_PARAMETER);
  fails(::MultiByteToWideChar(CP_UTF8, 0, "a", 0, AsOle(text), 4), ERROR_INVALID_PARAMETER);
  fails(::MultiByteToWideChar(CP_UTF8, 0, "a", 1, nullptr, 4), ERROR_INVALID_PARAMETER);
  fails(::MultiByteToWideChar(CP_UTF8, 0, "a", 1, AsOle(text), -1), ERROR_INVALID_PARAMETER);
  fails(::MultiByteToWideChar(12345, 0, "a", 1, AsOle(text), 4), ERROR_INVALID_PARAMETER);
  fails(::MultiByteToWideChar(CP_UTF8, 0, "abcde", 5, AsOle(text), 4), ERROR_INSUFFICIENT_BUFFER);
  fails(::MultiByteToWideChar(1252, 0, "abcde", 5, AsOle(text), 4), ERROR_INSUFFICIENT_BUFFER);
  fails(::MultiByteToWideChar(CP_UTF8, 0, "abc\xF0\x9F\x92\xA9", 7, AsOle(text), 4),
        ERROR_INSUFFICIENT_BUFFER);
  BOOL used = FALSE;
  char bytes[4];
  fails(::WideCharToMultiByte(CP_UTF8, 0, AsOle(u"a"), 1, bytes, 4, "?", nullptr),
        ERROR_INVALID_PARAMETER);
  fails(::WideCharToMultiByte(CP_UTF8, 0, AsOle(u"a"), 1, bytes, 4, nullptr, &used),
        ERROR_INVALID_PARAMETER);
  fails(::WideCharToMultiByte(CP_UTF8, 0, AsOle(u"\u20AC\u20AC"), 2, bytes, 4, nullptr, nullptr),
        ERROR_INSUFFICIENT_BUFFER);
}

struct CodePageCase {
  UINT codePage;
  std::string_view bytes;
  std::u16string_view text;
};

const CodePageCase kCodePageCases[] = {
    {1252, "\x80 caf\xE9", u"\u20AC caf\u00E9"},
    {1250, "\xA3\xF3\x64\x9F", u"\u0141\u00F3d\u017A"},
    {1251, "\xCC\xEE\xF1\xEA\xE2\xE0", u"\u041C\u043E\u0441\u043A\u0432\u0430"},
    {1253, "\xC1\xE8\xDE\xED\xE1", u"\u0391\u03B8\u03AE\u03BD\u03B1"},
    {1254, "\xDDstanbul", u"\u0130stanbul"},
    {1255, "\xF9\xEC\xE5\xED", u"\u05E9\u05DC\u05D5\u05DD"},
    {1256, "\xE3\xD5\xD1", u"\u0645\u0635\u0631"},
    {1257, "R\xEEga", u"R\u012Bga"},
    {1258, "\xD0\xF5", u"\u0110\u01A1"},
    {874, "\xE4\xB7\xC2", u"\u0E44\u0E17\u0E22"},
    {932, "\x93\x8C\x8B\x9E,\xB1", u"\u6771\u4EAC,\uFF71"},
    {932, "\x81\x60\x5C", u"\uFF5E\\"},
    {936, "\xB1\xB1\xBE\xA9\x80", u"\u5317\u4EAC\u20AC"},
    {949, "\xBC\xAD\xBF\xEF", u"\uC11C\uC6B8"},
    {950, "\xA5\x78\xA5\x5F", u"\u53F0\u5317"},
    {437, "\x81\x1A", u"\u00FC\x1A"},
    {850, "\x9B", u"\u00F8"},
    {28591, "\xE9\x85", u"\u00E9\u0085"},
};

TEST(CodePagesTest, CodePagesDecodeAndEncode) {
  for (const CodePageCase& c : kCodePageCases) {
    SCOPED_TRACE(c.codePage);
    EXPECT_TRUE(::IsValidCodePage(c.codePage));
    EXPECT_EQ(Decode(c.codePage, c.bytes), c.text);
    EXPECT_EQ(Encode(c.codePage, c.text), c.bytes);
  }
  EXPECT_TRUE(::IsValidCodePage(CP_UTF8));
  EXPECT_FALSE(::IsValidCodePage(12345));
}

TEST(CodePagesTest, UndefinedBytesOf1252AreControlCharacters) {
  EXPECT_EQ(Decode(1252, "\x81\x8D\x8F\x90\x9D"), u"\u0081\u008D\u008F\u0090\u009D");
  EXPECT_EQ(Decode(1252, "\x81", MB_ERR_INVALID_CHARS), u"\u0081");
}

TEST(CodePagesTest, EveryByteOfASingleByteCodePageComesBack) {
  for (const UINT codePage :
       {1250u, 1251u, 1252u, 1253u, 1254u, 1255u, 1256u, 1257u, 1258u, 874u}) {
    for (int byte = 1; byte < 256; ++byte) {
      const std::string bytes(1, static_cast<char>(byte));
      EXPECT_EQ(Encode(codePage, Decode(codePage, bytes)), bytes) << codePage << ' ' << byte;
    }
  }
}

TEST(CodePagesTest, BadPairsBecomeTheDefaultCharacterOrFail) {
  EXPECT_EQ(Decode(932,
                   "\x81\x20"
                   "a"),
            u"\u30FB"
            u"a");
  EXPECT_EQ(Decode(936,
                   "\x81\x20"
                   "a"),
            u"?a");
  EXPECT_EQ(Decode(932, "a\x81"), u"a\u30FB");
  EXPECT_EQ(Decode(932, "a\x81", MB_ERR_INVALID_CHARS), u"");
  EXPECT_EQ(::GetLastError(), ERROR_NO_UNICODE_TRANSLATION);
}

TEST(CodePagesTest, MissingCharactersAreReported) {
  char bytes[8];
  BOOL used = FALSE;
  EXPECT_EQ(
      ::WideCharToMultiByte(1252, 0, AsOle(u"a\u6771\U0001F4A9"), 4, bytes, 8, nullptr, &used), 3);
  EXPECT_EQ(std::string_view(bytes, 3), "a??");
  EXPECT_EQ(used, TRUE);
  EXPECT_EQ(::WideCharToMultiByte(1252, 0, AsOle(u"a\u6771"), 2, bytes, 8, "_", &used), 2);
  EXPECT_EQ(std::string_view(bytes, 2), "a_");
  EXPECT_EQ(::WideCharToMultiByte(1252, 0, AsOle(u"abc"), 3, bytes, 8, nullptr, &used), 3);
  EXPECT_EQ(used, FALSE);
}

TEST(CodePagesTest, LettersWithMissingMarksFitTheirBaseUnlessForbidden) {
  EXPECT_EQ(Encode(1252, u"\u0100\u010D"), "Ac");
  EXPECT_EQ(Encode(1252, u"\u0100\u010D", WC_NO_BEST_FIT_CHARS), "??");
}

}  // namespace
