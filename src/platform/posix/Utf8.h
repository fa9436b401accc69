// One character of UTF-8 at a time, for the conversions of this folder.
//
//   for (const unsigned char* p = begin; p != end;) {
//     const Utf8Character c = ReadUtf8Character(p, end);
//     p += c.length;
//   }
#pragma once

struct Utf8Character {
  char32_t code;    // kIllFormedUtf8 when the bytes mean nothing
  unsigned length;  // bytes, at least 1; of an ill-formed part its maximal length
};

inline constexpr char32_t kIllFormedUtf8 = 0xFFFFFFFF;

// Reads the character at `p`, which must be before `end`. A maximal ill-formed part is the longest
// start of a well-formed sequence that is present, else one byte. So E2 82 before a letter is one
// part, and ED A0 80, a surrogate, is three: no well-formed sequence starts with ED A0.
inline Utf8Character ReadUtf8Character(const unsigned char* p, const unsigned char* end) {
  const unsigned char lead = *p;
  if (lead < 0x80) return {lead, 1};
  if (lead < 0xC2 || lead > 0xF4) return {kIllFormedUtf8, 1};
  const unsigned needed = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // The second byte alone decides whether the sequence is overlong, a surrogate or out of range.
  const unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (end - p < 2 || p[1] < low || p[1] > high) return {kIllFormedUtf8, 1};
  char32_t code = (static_cast<char32_t>(lead) & (0x7Fu >> needed)) << 6 | (p[1] & 0x3Fu);
  for (unsigned i = 2; i < needed; ++i) {
    if (end - p <= static_cast<long>(i) || (p[i] & 0xC0) != 0x80) return {kIllFormedUtf8, i};
    code = code << 6 | (p[i] & 0x3Fu);
  }
  return {code, needed};
}
