// The floor: the least work that makes typed values of a table, or a table of typed values. What
// the data source costs is told as a multiple of it (scripts/bench --compare).
//
//   floor rows FILE            a delimited table: UTF-8, commas, a header
//   floor fixed FILE           floating-point numbers in columns of --width characters, no header
//   floor write FILE           FILE's first rows (100,000 cells at most), written over and over
//                              until there are as many bytes as FILE has; prints the CPU seconds of
//                              the writing alone
//     --numbers library|digits16    fast_float and from_chars, or 16 digits at once (rows, fixed)
//     --texts malloc|pool|system    where strings come from; system: BSTRs, on Windows only
//     --columns N                   converts the first N columns only
//     --width W                     of a fixed column, 24
//     --out PATH                    what is written, /dev/null
//
// rows opens the file, infers the types of its columns from the first 100 rows, and for every row
// makes every cell a 24-byte variant: a whole number, a double, a date (days since 1899-12-30), or
// a length-prefixed UTF-16 string of its own allocation, freed when the next row comes. It knows
// one dialect and reports no errors. Needs an x86-64 with AVX2 and carry-less multiplication.
#include <sys/stat.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "FloorTable.h"

namespace Floor {
namespace {

struct Options {
  Numbers numbers = Numbers::kLibrary;
  Texts texts = Texts::kMalloc;
  std::size_t columns = SIZE_MAX;
  std::size_t width = 24;
  const char* out = "/dev/null";
};

template <Numbers kNumbers, Texts kTexts>
class Scan {
 public:
  explicit Scan(const Options& options) : options_(options) {}

  Sums Rows(const char* path) {
    Input input(path);
    input.More(0);
    Columns columns = InferColumns(input.data, input.size);
    std::size_t from = columns.headerBytes;
    Start(std::move(columns.types));
    std::vector<std::uint32_t> ends;
    do {
      std::size_t count = 0;
      if (FindFields(input.data + from, input.size - from, ends, count))
        from = FoundRecords(input, from, ends, count);
      else
        from = SingleRecords(input, from);
    } while (MoreAfter(input, from));
    return Finish();
  }

  Sums FixedRows(const char* path) {
    Input input(path);
    std::size_t from = 0;
    while (input.More(from)) {
      const Byte *p = input.data, *const end = input.data + input.size;
      from = 0;
      while (const auto lineEnd = static_cast<const Byte*>(
                 std::memchr(p, '\n', static_cast<std::size_t>(end - p)))) {
        if (row_.empty())
          Start(std::vector<Type>(static_cast<std::size_t>(lineEnd - p) / options_.width,
                                  Type::kDouble));
        CutFixed(p, lineEnd);
        DeliverValues(types_.size());
        p = lineEnd + 1;
        from = static_cast<std::size_t>(p - input.data);
      }
    }
    return Finish();
  }

 private:
  void Start(std::vector<Type> types) {
    types_ = std::move(types);
    begin_.resize(types_.size());
    end_.resize(types_.size());
    row_.resize(types_.size());
    used_ = std::min(types_.size(), options_.columns);
  }

  static bool MoreAfter(Input& input, std::size_t& from) {
    const bool more = input.More(from);
    from = 0;
    return more;
  }

  // Both deliver the whole records behind `from` and return where these end.
  std::size_t FoundRecords(const Input& input, std::size_t from,
                           const std::vector<std::uint32_t>& ends, std::size_t count) {
    const Byte *const base = input.data + from, *p = base;
    std::size_t column = 0;
    for (std::size_t k = 0; k < count; ++k) {
      const Byte* const field = base + ends[k];
      if (TakeField(p, field, column)) from = static_cast<std::size_t>(field + 1 - input.data);
      p = field + 1;
    }
    return from;
  }
  std::size_t SingleRecords(const Input& input, std::size_t from) {
    const Byte *p = input.data + from, *const end = input.data + input.size;
    std::size_t column = 0;
    while (p < end) {
      const Byte* const field = FieldEnd(p, end);
      if (field >= end) break;
      if (TakeField(p, field, column)) from = static_cast<std::size_t>(field + 1 - input.data);
      p = field + 1;
    }
    return from;
  }
  // Whether the field was the record's last.
  bool TakeField(const Byte* p, const Byte* field, std::size_t& column) {
    if (column < types_.size()) {
      begin_[column] = p;
      end_[column] = field;
    }
    ++column;
    if (*field != '\n') return false;
    if (column <= types_.size() && end_[column - 1] > begin_[column - 1] && field[-1] == '\r')
      --end_[column - 1];
    Deliver(column);
    column = 0;
    return true;
  }

  void CutFixed(const Byte* line, const Byte* lineEnd) {
    for (std::size_t column = 0; column < types_.size(); ++column) {
      const Byte *begin = line + column * options_.width, *end = begin + options_.width;
      if (end > lineEnd) end = lineEnd;
      // The blanks in front, compared in one go: 32 of them at most.
      const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(begin));
      const auto other = ~static_cast<unsigned>(
          _mm256_movemask_epi8(_mm256_cmpeq_epi8(text, _mm256_set1_epi8(' '))));
      const auto size = static_cast<unsigned>(end - begin);
      begin += other ? std::min(static_cast<unsigned>(__builtin_ctz(other)), size) : size;
      while (end > begin && end[-1] == ' ') --end;
      begin_[column] = begin;
      end_[column] = end;
    }
  }

  FLOOR_CALL void Deliver(std::size_t found) { DeliverValues(found); }
  void DeliverValues(std::size_t found) {
    ++sums_.rows;
    for (; found < types_.size(); ++found) begin_[found] = end_[found] = nullptr;
    for (std::size_t column = 0; column < used_; ++column) {
      converter_.Clear(row_[column]);
      converter_.Convert(types_[column], begin_[column], end_[column], row_[column]);
    }
    for (std::size_t column = 0; column < used_; ++column) sums_.Add(row_[column]);
  }

  Sums Finish() {
    for (Variant& value : row_) converter_.Clear(value);
    return sums_;
  }

  const Options options_;
  Converter<kNumbers, kTexts> converter_;
  std::vector<Type> types_;
  std::vector<const Byte*> begin_, end_;  // of the record's fields
  std::vector<Variant> row_;
  std::size_t used_ = 0;
  Sums sums_;
};

template <Numbers kNumbers>
Sums ScanFile(const char* path, bool fixed, const Options& options) {
  const auto scan = [&]<Texts kTexts>() {
    Scan<kNumbers, kTexts> rows(options);
    return fixed ? rows.FixedRows(path) : rows.Rows(path);
  };
#ifdef _WIN32
  if (options.texts == Texts::kSystem) return scan.template operator()<Texts::kSystem>();
#endif
  if (options.texts == Texts::kPool) return scan.template operator()<Texts::kPool>();
  return scan.template operator()<Texts::kMalloc>();
}

// ---------------------------------------------------------------------------------------------

// Rows that stay in the cache.
struct Cells {
  std::vector<Type> types;
  std::vector<Variant> values;
  Converter<Numbers::kLibrary, Texts::kMalloc> converter;

  explicit Cells(const char* path) {
    constexpr std::size_t kMost = 100000;
    Input input(path);
    input.capacity = 8 << 20;
    std::free(input.data - Input::kFront);
    input.data = Input::Room(input.capacity);
    while (input.size < input.capacity && input.More(0)) continue;
    Columns columns = InferColumns(input.data, input.size);
    types = std::move(columns.types);
    const Byte *p = input.data + columns.headerBytes, *end = input.data + input.size;
    while (end[-1] != '\n') --end;
    while (p < end && values.size() < kMost) {
      std::size_t column = 0;
      for (bool last = false; !last; ++column) {
        const Byte* const field = FieldEnd(p, end);
        if (column < types.size()) {
          values.emplace_back();
          converter.Convert(types[column], p, field, values.back());
        }
        last = *field == '\n';
        p = field + 1;
      }
      for (; column < types.size(); ++column) values.emplace_back();
    }
  }
};

char* PutDate(char* out, double date, bool withTime) {
  const auto put = [&](int number) {
    *out++ = static_cast<char>('0' + number / 10);
    *out++ = static_cast<char>('0' + number % 10);
  };
  const double whole = std::floor(date);
  const int number = static_cast<int>(whole) - 25569 + 719468;
  const int era = number / 146097, ofEra = number - era * 146097;
  const int yearOfEra = (ofEra - ofEra / 1460 + ofEra / 36524 - ofEra / 146096) / 365;
  const int ofYear = ofEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int shifted = (5 * ofYear + 2) / 153;  // the months from March on
  const int month = shifted < 10 ? shifted + 3 : shifted - 9;
  const int year = yearOfEra + era * 400 + (month <= 2);
  put(year / 100);
  put(year % 100);
  *out++ = '-';
  put(month);
  *out++ = '-';
  put(ofYear - (153 * shifted + 2) / 5 + 1);
  if (withTime) {
    const int seconds = static_cast<int>(std::lround((date - whole) * 86400.0));
    *out++ = 'T';
    put(seconds / 3600);
    *out++ = ':';
    put(seconds / 60 % 60);
    *out++ = ':';
    put(seconds % 60);
  }
  return out;
}

char* PutCell(char* out, const Variant& value, Type type, Byte& decimals) {
  switch (value.kind) {
    case kInteger: {
      const auto number = static_cast<std::uint64_t>(value.integer);
      if (value.integer < 0) *out++ = '-';
      return PutUnsigned(out, value.integer < 0 ? 0 - number : number);
    }
    case kReal:
      return PutDouble(out, value.real, decimals);
    case kDay:
      return PutDate(out, value.real, type == Type::kStamp);
    case kText:
      return PutText(out, value.text, LengthOf(value.text));
    default:
      return out;
  }
}

double CpuSeconds() {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void Write(const char* path, const Options& options) {
  const Cells cells(path);
  struct stat status;
  if (stat(path, &status) != 0) Die(path);
  const auto wanted = static_cast<std::size_t>(status.st_size);
  const std::size_t columns = cells.types.size();
  const int file = open(options.out, O_WRONLY | O_CREAT | O_TRUNC | O_BINARY, 0644);
  if (file < 0) Die(options.out);
  std::vector<char> buffer(kBlockBytes + (1 << 20));
  std::vector<Byte> decimals(columns, 0);
  char* out = buffer.data();
  const auto flush = [&] {
    if (write(file, buffer.data(), static_cast<unsigned>(out - buffer.data())) < 0) Die("write");
    out = buffer.data();
  };

  const double start = CpuSeconds();
  std::size_t written = 0, rows = 0;
  const Variant* value = cells.values.data();
  const Variant* const last = value + cells.values.size();
  while (written < wanted) {
    const char* const row = out;
    for (std::size_t column = 0; column < columns; ++column, ++value) {
      if (column) *out++ = ',';
      out = PutCell(out, *value, cells.types[column], decimals[column]);
    }
    *out++ = '\n';
    ++rows;
    written += static_cast<std::size_t>(out - row);
    if (value == last) value = cells.values.data();
    if (static_cast<std::size_t>(out - buffer.data()) >= kBlockBytes) flush();
  }
  flush();
  close(file);
  std::printf("write_s %.4f bytes %zu rows %zu\n", CpuSeconds() - start, written, rows);
}

int Main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: floor rows|fixed|write FILE [options]  (see the head of floor.cpp)\n",
               stderr);
    return 2;
  }
  const std::string_view mode = argv[1];
  const char* const path = argv[2];
  Options options;
  for (int i = 3; i + 1 < argc; i += 2) {
    const std::string_view name = argv[i], value = argv[i + 1];
    if (name == "--numbers") {
      options.numbers = value == "digits16" ? Numbers::kDigits16 : Numbers::kLibrary;
    } else if (name == "--texts") {
      options.texts = value == "pool"     ? Texts::kPool
                      : value == "system" ? Texts::kSystem
                                          : Texts::kMalloc;
    } else if (name == "--columns") {
      options.columns = std::strtoull(argv[i + 1], nullptr, 10);
    } else if (name == "--width") {
      options.width = std::strtoull(argv[i + 1], nullptr, 10);
    } else if (name == "--out") {
      options.out = argv[i + 1];
    } else {
      std::fprintf(stderr, "floor: unknown option %s\n", argv[i]);
      return 2;
    }
  }
  if (mode == "rows" || mode == "fixed") {
    const bool fixed = mode == "fixed";
    (options.numbers == Numbers::kDigits16 ? ScanFile<Numbers::kDigits16>(path, fixed, options)
                                           : ScanFile<Numbers::kLibrary>(path, fixed, options))
        .Print();
  } else if (mode == "write") {
    Write(path, options);
  } else {
    std::fprintf(stderr, "floor: unknown mode %s\n", argv[1]);
    return 2;
  }
  return 0;
}

}  // namespace
}  // namespace Floor

int main(int argc, char** argv) { return Floor::Main(argc, argv); }
