// A table's bytes: read in blocks, cut into fields, the types of its columns guessed.
#pragma once

#include <fcntl.h>
#include <immintrin.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#define O_BINARY 0
#endif

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "FloorValues.h"

namespace Floor {

inline constexpr std::size_t kBlockBytes = 256 << 10;
inline constexpr std::size_t kPadding = 128;  // bytes readable past the end of a buffer
inline constexpr int kSampleRows = 100;

[[noreturn]] inline void Die(const char* what) {
  std::perror(what);
  std::exit(1);
}

struct Input {
  static constexpr std::size_t kFront = 64;  // bytes readable in front
  int file;
  Byte* data;
  std::size_t capacity = kBlockBytes, size = 0;
  bool ended = false;

  explicit Input(const char* path) : file(open(path, O_RDONLY | O_BINARY)) {
    if (file < 0) Die(path);
#ifndef _WIN32
    posix_fadvise(file, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
    data = Room(capacity);
  }
  ~Input() {
    close(file);
    std::free(data - kFront);
  }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  static Byte* Room(std::size_t bytes) {
    return static_cast<Byte*>(std::malloc(kFront + bytes + kPadding)) + kFront;
  }
  // Keeps data[from..size) at the front and reads more behind it.
  bool More(std::size_t from) {
    if (ended) return false;
    std::memmove(data, data + from, size - from);
    size -= from;
    if (size == capacity) {  // a record longer than the buffer
      Byte* const larger = Room(capacity * 2);
      std::memcpy(larger, data, size);
      std::free(data - kFront);
      data = larger;
      capacity *= 2;
    }
    const auto got = read(file, data + size, static_cast<unsigned>(capacity - size));
    if (got < 0) Die("read");
    if (got == 0) {
      ended = true;
      return false;
    }
    size += static_cast<std::size_t>(got);
    return true;
  }
};

struct Marks {
  std::uint64_t quotes, commas, lineFeeds;
};
inline Marks MarksOf(const Byte* p) {
  const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
  const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32));
  const auto equal = [&](char wanted) {
    const __m256i all = _mm256_set1_epi8(wanted);
    const auto bits = [&](__m256i bytes) {
      return static_cast<std::uint64_t>(
          static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, all))));
    };
    return bits(low) | bits(high) << 32;
  };
  return {equal('"'), equal(','), equal('\n')};
}
// Each bit: whether the number of quotes up to it is odd.
inline std::uint64_t InsideQuotes(std::uint64_t quotes) {
  return static_cast<std::uint64_t>(
      _mm_cvtsi128_si64(_mm_clmulepi64_si128(_mm_set_epi64x(0, static_cast<std::int64_t>(quotes)),
                                             _mm_set1_epi8(static_cast<char>(0xFF)), 0)));
}

// Appends the positions of the bits, four at a time.
inline std::uint32_t* PutPositions(std::uint32_t* out, std::uint64_t bits, std::uint32_t base) {
  std::uint32_t* const end = out + __builtin_popcountll(bits);
  while (bits) {
    for (int k = 0; k < 4; ++k) {
      *out++ = base + static_cast<std::uint32_t>(__builtin_ctzll(bits));
      bits &= bits - 1;
    }
  }
  return end;
}

// `ends` gets the position of every separator and line feed outside quotes. False when a quote
// opens anywhere but at a field's start: then the fields have to be found one by one.
inline bool FindFields(Byte* data, std::size_t size, std::vector<std::uint32_t>& ends,
                       std::size_t& count) {
  if (ends.size() < size + kPadding) ends.resize(size + kPadding);
  std::memset(data + size, 0, 64);
  std::uint32_t* out = ends.data();
  std::uint64_t carry = 0, before = 1, stray = 0;  // `before`: the byte in front may open a field
  for (std::size_t i = 0; i < size; i += 64) {
    const Marks marks = MarksOf(data + i);
    std::uint64_t separators = marks.commas | marks.lineFeeds, inside = carry;
    if (marks.quotes | carry) {
      inside = InsideQuotes(marks.quotes) ^ carry;
      const std::uint64_t mayOpen = (separators | marks.quotes) << 1 | before;
      stray |= marks.quotes & inside & ~mayOpen;
      separators &= ~inside;
      carry = static_cast<std::uint64_t>(static_cast<std::int64_t>(inside) >> 63);
    }
    before = ((marks.commas | marks.lineFeeds | marks.quotes) >> 63) & 1;
    out = PutPositions(out, separators, static_cast<std::uint32_t>(i));
  }
  count = static_cast<std::size_t>(out - ends.data());
  return stray == 0;
}

// The end of one field: a separator, a line feed or `end`. A quote counts at the start only.
inline const Byte* FieldEnd(const Byte* p, const Byte* end) {
  if (p < end && *p == '"') {
    for (;;) {
      const auto quote =
          static_cast<const Byte*>(std::memchr(p + 1, '"', static_cast<std::size_t>(end - p - 1)));
      if (!quote) return end;
      p = quote + 1;
      if (p >= end || *p != '"') break;
    }
  }
  while (p < end && *p != ',' && *p != '\n') ++p;
  return p;
}

inline Type TypeOf(const Byte* begin, const Byte* end) {
  const auto first = reinterpret_cast<const char*>(begin);
  const auto last = reinterpret_cast<const char*>(end);
  std::int64_t integer;
  const auto whole = std::from_chars(first, last, integer);
  if (whole.ec == std::errc() && whole.ptr == last) return Type::kInteger;
  double number;
  const auto real = std::from_chars(first, last, number);
  if (real.ec == std::errc() && real.ptr == last) return Type::kDouble;
  if (end - begin == 10 && IsDate(begin, 10)) return Type::kDate;
  if (IsStamp(begin, static_cast<std::size_t>(end - begin))) return Type::kStamp;
  return Type::kText;
}
inline Type Join(Type a, Type b) {
  if (a == b) return a;
  if (a <= Type::kDouble && b <= Type::kDouble) return Type::kDouble;
  if ((a == Type::kDate && b == Type::kStamp) || (a == Type::kStamp && b == Type::kDate))
    return Type::kStamp;
  return Type::kText;
}

struct Columns {
  std::vector<Type> types;
  std::size_t headerBytes = 0;
};
// From the first records behind the header.
inline Columns InferColumns(const Byte* data, std::size_t size) {
  const Byte *const end = data + size, *p = data;
  std::size_t count = 0;
  for (bool last = false; !last;) {
    const Byte* const field = FieldEnd(p, end);
    ++count;
    last = field >= end || *field == '\n';
    p = field + 1;
  }
  Columns columns{std::vector<Type>(count, Type::kText), static_cast<std::size_t>(p - data)};
  std::vector<int> seen(count, 0);
  for (int row = 0; row < kSampleRows && p < end; ++row) {
    if (!std::memchr(p, '\n', static_cast<std::size_t>(end - p))) break;
    std::size_t column = 0;
    for (bool last = false; !last; ++column) {
      const Byte* const field = FieldEnd(p, end);
      if (column < count && field > p) {
        const Type type = TypeOf(p, field);
        columns.types[column] = seen[column]++ ? Join(columns.types[column], type) : type;
      }
      last = field >= end || *field == '\n';
      p = field + 1;
    }
  }
  return columns;
}

}  // namespace Floor
