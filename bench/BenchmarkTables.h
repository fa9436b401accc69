// The files that the benchmarks read: generated once, the same bytes on every machine.
//
//   const BenchmarkTable& table = Table(TableKind::kMixed);
//   table.path;   // the file, written by the first call of any benchmark
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

enum class TableKind {
  kMixed,    // what most tables look like: numbers, dates, texts, quotes, a position
  kNumeric,  // floating-point numbers of every usual form
  kText,     // ASCII words, nothing quoted
  kWide,     // 500 columns of whole numbers
  kFixed,    // the numbers of kNumeric in columns of 24 characters, with a schema.ini section
};

inline constexpr std::array kTableKinds{TableKind::kMixed, TableKind::kNumeric, TableKind::kText,
                                        TableKind::kWide, TableKind::kFixed};

// Every column of a fixed-width table.
inline constexpr std::size_t kFixedColumnWidth = 24;

struct BenchmarkTable {
  std::string_view name;  // "mixed"
  std::string fileName;   // "mixed.csv"
  std::string path;
  // One letter a column: i whole number, d floating point, t text, s date or time.
  std::string columns;
  std::int64_t rows;         // the header not counted
  std::int64_t scannedRows;  // how many of them inference looks at by default
  std::int64_t bytes;        // of the file

  std::int64_t cells() const { return rows * static_cast<std::int64_t>(columns.size()); }
};

// Generates the tables that are not there yet. Throws std::runtime_error when they cannot be
// written.
const BenchmarkTable& Table(TableKind kind);
