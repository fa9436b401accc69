// What the machine can do at most: reading the bytes alone, and the least work that makes values
// of them. The other benchmarks are read beside these.

#include <charconv>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "Throughput.h"

namespace {

constexpr std::size_t kBlockBytes = 256 * 1024;

// Hands out the file in blocks that end with a line.
class LineBlocks {
 public:
  explicit LineBlocks(const std::string& path) {
    file_.pubsetbuf(nullptr, 0);
    if (file_.open(path, std::ios::in | std::ios::binary) == nullptr)
      throw std::runtime_error("cannot read " + path);
    block_.resize(kBlockBytes);
  }

  bool Next(std::string_view& lines) {
    std::memmove(block_.data(), block_.data() + kept_.data, kept_.size);
    const std::size_t read = ReadInto(kept_.size);
    const std::string_view filled(block_.data(), kept_.size + read);
    const std::size_t end = filled.rfind('\n') + 1;
    kept_ = {end, filled.size() - end};
    lines = filled.substr(0, end);
    return !lines.empty();
  }

 private:
  struct Kept {
    std::size_t data = 0;
    std::size_t size = 0;
  };

  std::size_t ReadInto(std::size_t offset) {
    return static_cast<std::size_t>(
        file_.sgetn(block_.data() + offset, static_cast<std::streamsize>(block_.size() - offset)));
  }

  std::filebuf file_;
  std::string block_;
  Kept kept_;
};

// One value of each kind of column.
class Values {
 public:
  void Take(char kind, std::string_view field) {
    const char* const end = field.data() + field.size();
    switch (kind) {
      case 'i':
        TakeNumber<std::int64_t>(field.data(), end);
        break;
      case 'd':
        TakeNumber<double>(field.data(), end);
        break;
      case 's':
        for (const char* part = field.data(); part < end;)
          part = TakeNumber<std::uint32_t>(part, end) + 1;
        break;
      default:
        TakeText(field);
    }
  }

 private:
  template <class Number>
  const char* TakeNumber(const char* begin, const char* end) {
    Number number{};
    const char* const last = std::from_chars(begin, end, number).ptr;
    benchmark::DoNotOptimize(number);
    return last;
  }

  static void TakeText(std::string_view field) {
    const auto text = std::make_unique_for_overwrite<char16_t[]>(field.size() + 1);
    for (std::size_t i = 0; i < field.size(); ++i) text[i] = static_cast<unsigned char>(field[i]);
    benchmark::DoNotOptimize(text.get());
  }
};

void TakeDelimited(std::string_view line, const std::string& columns, Values& values) {
  for (const char kind : columns) {
    // Quotes are looked at no further than it takes to find the end of the field.
    const bool quoted = line.starts_with('"');
    const std::size_t end = std::min(line.find(',', quoted ? line.find("\",") : 0), line.size());
    values.Take(kind, line.substr(0, end));
    line.remove_prefix(std::min(end + 1, line.size()));
  }
}

void TakeFixed(std::string_view line, const std::string& columns, Values& values) {
  for (const char kind : columns) {
    std::string_view field = line.substr(0, kFixedColumnWidth);
    field.remove_prefix(std::min(field.find_first_not_of(' '), field.size()));
    values.Take(kind, field);
    line.remove_prefix(std::min(kFixedColumnWidth, line.size()));
  }
}

void ReadBytes(benchmark::State& state, const BenchmarkTable& table) {
  const auto block = std::make_unique_for_overwrite<char[]>(kBlockBytes);
  for (auto iteration : state) {
    std::filebuf file;
    file.pubsetbuf(nullptr, 0);
    if (file.open(table.path, std::ios::in | std::ios::binary) == nullptr)
      return state.SkipWithError("cannot read the table");
    std::int64_t bytes = 0;
    while (const std::streamsize read = file.sgetn(block.get(), kBlockBytes)) {
      benchmark::DoNotOptimize(block.get());
      bytes += read;
    }
    if (bytes != table.bytes) return state.SkipWithError("bytes are missing");
  }
  ReportTable(state, table);
}

void SplitAndConvert(benchmark::State& state, const BenchmarkTable& table) {
  const bool fixed = table.name == "fixed";
  Values values;
  for (auto iteration : state) {
    LineBlocks blocks(table.path);
    std::string_view lines;
    while (blocks.Next(lines)) {
      while (!lines.empty()) {
        const std::size_t end = lines.find('\n');
        const std::string_view line = lines.substr(0, end);
        (fixed ? TakeFixed : TakeDelimited)(line, table.columns, values);
        lines.remove_prefix(end + 1);
      }
    }
  }
  ReportTable(state, table);
}

const int kRegistered[] = {ForEveryTable("Floor/ReadBytes", &ReadBytes),
                           ForEveryTable("Floor/SplitAndConvert", &SplitAndConvert)};

}  // namespace
