// Variants: the types of columns, and a field's characters as a value.
#pragma once

#ifdef _WIN32
#include <windows.h>
// After windows.h, which it needs.
#include <oleauto.h>
#endif

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "FloorNumbers.h"
#include "FloorText.h"

namespace Floor {

enum Kind : std::uint16_t { kNull = 1, kReal = 5, kDay = 7, kText = 8, kInteger = 20 };

// As large as the real thing, whose union is two pointers wide.
struct Variant {
  std::uint16_t kind = kNull, reserved[3]{};
  union {
    std::int64_t integer;
    double real;
    char16_t* text;
  };
  void* second = nullptr;
};
static_assert(sizeof(Variant) == 24);

enum class Type : Byte { kInteger, kDouble, kDate, kStamp, kText };

// Days since 1899-12-30.
inline double Days(int year, int month, int day) {
  year -= month <= 2;
  const int era = year / 400, ofEra = year - era * 400;
  const int ofYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear - 719468 + 25569;
}
inline int TwoDigits(const Byte* p) { return (p[0] - '0') * 10 + (p[1] - '0'); }
inline bool IsDigit(Byte c) { return static_cast<Byte>(c - '0') < 10; }
inline bool IsDate(const Byte* p, std::size_t size) {
  return size >= 10 && IsDigit(p[0]) && IsDigit(p[1]) && IsDigit(p[2]) && IsDigit(p[3]) &&
         p[4] == '-' && IsDigit(p[5]) && IsDigit(p[6]) && p[7] == '-' && IsDigit(p[8]) &&
         IsDigit(p[9]);
}
inline bool IsStamp(const Byte* p, std::size_t size) {
  return size == 19 && IsDate(p, 10) && (p[10] == 'T' || p[10] == ' ') && p[13] == ':' &&
         p[16] == ':';
}
inline double ReadDate(const Byte* p) {
  return Days(TwoDigits(p) * 100 + TwoDigits(p + 2), TwoDigits(p + 5), TwoDigits(p + 8));
}

// What all rows came to: whoever makes the same values has the same sums.
struct Sums {
  std::uint64_t rows = 0, nulls = 0, units = 0, texts = 0;
  double numbers = 0, days = 0;

  void Add(const Variant& value) {
    switch (value.kind) {
      case kNull:
        ++nulls;
        break;
      case kInteger:
        numbers += static_cast<double>(value.integer);
        break;
      case kReal:
        numbers += value.real;
        break;
      case kDay:
        days += value.real;
        break;
      case kText:
        ++texts;
        units += LengthOf(value.text);
        break;
    }
  }
  void Print() const {
    std::printf("rows %llu nulls %llu texts %llu utf16_units %llu numbers %.6e days %.1f\n",
                static_cast<unsigned long long>(rows), static_cast<unsigned long long>(nulls),
                static_cast<unsigned long long>(texts), static_cast<unsigned long long>(units),
                numbers, days);
  }
};

template <Numbers kNumbers, Texts kTexts>
class Converter {
 public:
  void Clear(Variant& value) {
    if (value.kind == kText) {
#ifdef _WIN32
      if constexpr (kTexts == Texts::kSystem)
        SysFreeString(reinterpret_cast<BSTR>(value.text));
      else
#endif
        strings_.Release(value.text);
    }
    value.kind = kNull;
  }

  // begin..end: the field as it stands in the file, quotes included.
  FLOOR_CALL void Convert(Type type, const Byte* begin, const Byte* end, Variant& value) {
    if (begin == end) {
      value.kind = kNull;
      return;
    }
    switch (type) {
      case Type::kInteger: {
        std::int64_t integer;
        if (ReadInteger<kNumbers>(begin, end, integer)) {
          value.kind = kInteger;
          value.integer = integer;
        } else {
          value.kind = kNull;
        }
        return;
      }
      case Type::kDouble:
        value.kind = ReadDouble<kNumbers>(begin, end, value.real) ? kReal : kNull;
        return;
      case Type::kDate:
        if (end - begin == 10 && IsDate(begin, 10)) {
          value.kind = kDay;
          value.real = ReadDate(begin);
        } else {
          value.kind = kNull;
        }
        return;
      case Type::kStamp:
        if (IsStamp(begin, static_cast<std::size_t>(end - begin))) {
          value.kind = kDay;
          value.real = ReadDate(begin) + (TwoDigits(begin + 11) * 3600 +
                                          TwoDigits(begin + 14) * 60 + TwoDigits(begin + 17)) /
                                             86400.0;
        } else {
          value.kind = kNull;
        }
        return;
      case Type::kText:
        ConvertText(begin, end, value);
        return;
    }
  }

 private:
  void ConvertText(const Byte* begin, const Byte* end, Variant& value) {
    if (*begin == '"' && end - begin >= 2) {
      ++begin;
      --end;
      const auto size = static_cast<std::size_t>(end - begin);
      if (const auto quote = static_cast<const Byte*>(std::memchr(begin, '"', size))) {
        ConvertPieces(begin, end, quote, value);
        return;
      }
    }
    const auto size = static_cast<std::size_t>(end - begin);
    char16_t* const text = Room(size);
    Finish(value, text, Widen(begin, size, text));
  }

  // A text with doubled quotes, the first of them at `quote`.
  FLOOR_CALL void ConvertPieces(const Byte* begin, const Byte* end, const Byte* quote,
                                Variant& value) {
    const auto rest = [&] { return static_cast<std::size_t>(end - begin); };
    char16_t* const text = Room(rest());
    std::size_t units = 0;
    while (quote && quote < end) {
      units += Widen(begin, static_cast<std::size_t>(quote - begin + 1), text + units);
      begin = quote + 2;
      quote = begin < end ? static_cast<const Byte*>(std::memchr(begin, '"', rest())) : nullptr;
    }
    if (begin < end) units += Widen(begin, rest(), text + units);
    Finish(value, text, units);
  }

  char16_t* Room(std::size_t units) {
    if constexpr (kTexts == Texts::kSystem) {
      if (scratch_.size() < units + 64) scratch_.resize(units + 64);
      return scratch_.data();
    }
    return strings_.Allocate(units);
  }
  void Finish(Variant& value, char16_t* text, std::size_t units) {
    value.kind = kText;
#ifdef _WIN32
    if constexpr (kTexts == Texts::kSystem) {
      value.text = reinterpret_cast<char16_t*>(
          SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text), static_cast<UINT>(units)));
      return;
    }
#endif
    SetLength(text, units);
    value.text = text;
  }

  Strings<kTexts == Texts::kPool> strings_;
  std::vector<char16_t> scratch_;
};

}  // namespace Floor
