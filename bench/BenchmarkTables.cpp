#include "BenchmarkTables.h"

#include <boost/filesystem.hpp>
#include <charconv>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace {

namespace fs = boost::filesystem;

// Written into the data folder last; another version makes everything anew.
constexpr std::string_view kDataVersion = "1";

constexpr std::int64_t kRows = 100000;
constexpr std::int64_t kWideRows = 2000;
constexpr std::size_t kWideColumns = 500;

// SplitMix64: the same sequence everywhere, which the standard library's distributions are not.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Bits() {
    std::uint64_t bits = state_ += 0x9E3779B97F4A7C15;
    bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ bits >> 27) * 0x94D049BB133111EB;
    return bits ^ bits >> 31;
  }
  std::int64_t Below(std::int64_t limit) {
    return static_cast<std::int64_t>(Bits() % static_cast<std::uint64_t>(limit));
  }
  template <std::size_t kSize>
  std::string_view Pick(const std::string_view (&choices)[kSize]) {
    return choices[Bits() % kSize];
  }

 private:
  std::uint64_t state_;
};

constexpr std::string_view kWords[] = {"anchor",  "basalt", "cellar", "dune",   "ember",  "fjord",
                                       "granite", "hollow", "inlet",  "jetty",  "kelp",   "lagoon",
                                       "marsh",   "needle", "oxbow",  "pebble", "quarry", "ravine",
                                       "slate",   "tarn",   "upland", "vale",   "wharf",  "yard"};
constexpr std::string_view kForeignWords[] = {"Å",     "Göteborg", "Łódź", "Besançon", "Žilina",
                                              "Αθήνα", "Київ",     "東京", "São Tomé", "Reykjavík"};
constexpr std::string_view kClasses[] = {"field", "forest", "road", "river", "house", "coast"};
constexpr std::string_view kCodes[] = {"AX", "BK", "DM", "GW", "HZ", "KR", "PX"};

void AppendNumber(std::string& out, std::int64_t value) { out += std::to_string(value); }

void AppendPadded(std::string& out, std::int64_t value, std::size_t digits) {
  const std::string text = std::to_string(value);
  if (text.size() < digits) out.append(digits - text.size(), '0');
  out += text;
}

// The value divided by ten to the power of `decimals`.
void AppendDecimal(std::string& out, std::int64_t value, std::size_t decimals) {
  if (value < 0) out += '-';
  std::string digits = std::to_string(value < 0 ? -value : value);
  if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
  out.append(digits, 0, digits.size() - decimals);
  out += '.';
  out.append(digits, digits.size() - decimals);
}

void AppendReal(std::string& out, double value, std::chars_format format) {
  char buffer[64];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof(buffer), value, format);
  if (error != std::errc()) throw std::runtime_error("a number does not fit its buffer");
  out.append(buffer, end);
}

// Between 0 and 1, with all its digits.
double Fraction(Random& random) {
  constexpr double kTwoTo53 = 9007199254740992.0;
  return static_cast<double>(random.Bits() >> 11) / kTwoTo53;
}

void AppendDay(std::string& out, Random& random) {
  AppendNumber(out, 1950 + random.Below(80));
  out += '-';
  AppendPadded(out, 1 + random.Below(12), 2);
  out += '-';
  AppendPadded(out, 1 + random.Below(28), 2);
}

void AppendTime(std::string& out, Random& random) {
  AppendPadded(out, random.Below(24), 2);
  out += ':';
  AppendPadded(out, random.Below(60), 2);
  out += ':';
  AppendPadded(out, random.Below(60), 2);
}

// Degrees, minutes and seconds; the seconds' mark is doubled, since it stands in quotes.
void AppendAngle(std::string& out, Random& random, std::int64_t limit, const char* letters) {
  const std::int64_t seconds = random.Below(limit * 3600);
  AppendNumber(out, seconds / 3600);
  out += "°";
  AppendPadded(out, seconds / 60 % 60, 2);
  out += '\'';
  AppendPadded(out, seconds % 60, 2);
  out += "\"\"";
  out += letters[random.Below(2)];
}

void AppendWords(std::string& out, Random& random, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i) {
    if (i > 0) out += ' ';
    out += random.Pick(kWords);
  }
}

void AppendRemark(std::string& out, Random& random) {
  const std::int64_t form = random.Below(4);
  out += '"';
  out += random.Pick(kWords);
  if (form < 2) out += ", ";
  if (form == 0) out += "\"\"north\"\" ";
  if (form == 2) out += " \"\"old\"\"";
  if (form > 1) out += ' ';
  out += random.Pick(kWords);
  out += '"';
}

void AppendMixedRow(std::string& out, Random& random, std::int64_t row) {
  AppendNumber(out, row + 1);
  out += ',';
  // One of twenty is missing.
  if (random.Below(20) != 0) AppendNumber(out, random.Below(5000) - 500);
  out += ',';
  AppendDecimal(out, random.Below(360000000) - 180000000, 6);
  out += ',';
  AppendDecimal(out, random.Below(1000000000), 2);
  out += ',';
  AppendDay(out, random);
  out += ',';
  AppendDay(out, random);
  out += 'T';
  AppendTime(out, random);
  out += ',';
  out += random.Pick(kClasses);
  out += ',';
  AppendWords(out, random, 2);
  if (random.Below(10) < 3) {
    out += ' ';
    out += random.Pick(kForeignWords);
  }
  out += ',';
  AppendRemark(out, random);
  out += ",\"";
  AppendAngle(out, random, 90, "NS");
  out += ' ';
  AppendAngle(out, random, 180, "EW");
  out += "\"\n";
}

// The numbers of one row of the numeric and of the fixed-width table.
std::vector<std::string> Reals(Random& random) {
  std::vector<std::string> texts(10);
  for (std::size_t i = 0; i < 4; ++i)
    AppendDecimal(texts[i], random.Below(536870912) - 268000000, 6);
  for (std::size_t i = 4; i < 7; ++i)
    AppendDecimal(texts[i], random.Below(1000000000) - 500000000, 2);
  for (std::size_t i = 7; i < 9; ++i)
    AppendReal(texts[i], Fraction(random) * 1000.0, std::chars_format::fixed);
  AppendReal(texts[9], (Fraction(random) + 0.1) * 1e-9, std::chars_format::scientific);
  return texts;
}

void AppendNumericRow(std::string& out, Random& random, std::int64_t) {
  for (const std::string& text : Reals(random)) {
    out += text;
    out += ',';
  }
  out.back() = '\n';
}

void AppendFixedRow(std::string& out, Random& random, std::int64_t) {
  for (const std::string& text : Reals(random)) {
    if (text.size() > kFixedColumnWidth)
      throw std::runtime_error("a number does not fit its column");
    out.append(kFixedColumnWidth - text.size(), ' ');
    out += text;
  }
  out += '\n';
}

void AppendTextRow(std::string& out, Random& random, std::int64_t) {
  for (std::size_t column = 0; column < 9; ++column) {
    if (column % 3 == 0) {
      out += random.Pick(kCodes);
      out += '-';
      out += random.Pick(kWords);
    } else {
      AppendWords(out, random, 1 + random.Below(3));
    }
    out += ',';
  }
  out += random.Pick(kClasses);
  out += '\n';
}

void AppendWideRow(std::string& out, Random& random, std::int64_t) {
  for (std::size_t column = 0; column < kWideColumns; ++column) {
    const std::uint64_t bits = random.Bits();
    // From one digit to seven.
    AppendNumber(out, (static_cast<std::int64_t>(bits & 0xFFFFFF) - 8000000) >> (bits >> 60));
    out += ',';
  }
  out.back() = '\n';
}

std::string NumberedNames(std::string_view prefix, std::size_t count) {
  std::string names;
  for (std::size_t i = 1; i <= count; ++i) names += std::string(prefix) + std::to_string(i) + ',';
  names.back() = '\n';
  return names;
}

struct Recipe {
  BenchmarkTable table;
  std::string header;
  void (*appendRow)(std::string& out, Random& random, std::int64_t row);
  std::uint64_t seed;
};

// Whole numbers keep inference at its limit of 100 rows; it is content with ten when every column
// has settled, and with one when all are declared.
std::vector<Recipe> Recipes() {
  std::vector<Recipe> recipes;
  recipes.push_back({{"mixed", "mixed.csv", {}, "iiddsstttt", kRows, 100, 0},
                     "id,count,measure,amount,day,stamp,class,label,remark,position\n",
                     &AppendMixedRow,
                     1});
  recipes.push_back({{"numeric", "numeric.csv", {}, std::string(10, 'd'), kRows, 10, 0},
                     NumberedNames("v", 10),
                     &AppendNumericRow,
                     2});
  recipes.push_back({{"text", "text.csv", {}, std::string(10, 't'), kRows, 10, 0},
                     NumberedNames("word", 10),
                     &AppendTextRow,
                     3});
  recipes.push_back({{"wide", "wide.csv", {}, std::string(kWideColumns, 'i'), kWideRows, 100, 0},
                     NumberedNames("c", kWideColumns),
                     &AppendWideRow,
                     4});
  // The seed of the numeric table, so that both hold the same values.
  recipes.push_back(
      {{"fixed", "fixed.txt", {}, std::string(10, 'd'), kRows, 1, 0}, {}, &AppendFixedRow, 2});
  return recipes;
}

void WriteFile(const fs::path& path, std::string_view bytes, std::ios::openmode mode) {
  std::ofstream file(path.c_str(), std::ios::binary | mode);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (file.fail()) throw std::runtime_error("cannot write " + path.string());
}

void Generate(const Recipe& recipe, const fs::path& path) {
  constexpr std::size_t kPiece = 1 << 20;
  WriteFile(path, recipe.header, std::ios::trunc);
  Random random(recipe.seed);
  std::string piece;
  for (std::int64_t row = 0; row < recipe.table.rows; ++row) {
    recipe.appendRow(piece, random, row);
    if (piece.size() < kPiece && row + 1 < recipe.table.rows) continue;
    WriteFile(path, piece, std::ios::app);
    piece.clear();
  }
}

std::string FixedWidthSection() {
  std::string section = "[fixed.txt]\nFormat=FixedLength\nColNameHeader=False\n";
  for (int i = 1; i <= 10; ++i) {
    const std::string number = std::to_string(i);
    section += "Col" + number + "=v" + number + " Double Width " +
               std::to_string(kFixedColumnWidth) + '\n';
  }
  return section;
}

bool IsUpToDate(const fs::path& marker) {
  std::ifstream file(marker.c_str());
  std::string version;
  return std::getline(file, version) && version == kDataVersion;
}

std::vector<BenchmarkTable> MakeTables() {
  const fs::path folder(BENCHMARK_DATA_DIR);
  const fs::path marker = folder / "version";
  const std::vector<Recipe> recipes = Recipes();
  fs::create_directories(folder);
  if (!IsUpToDate(marker)) {
    for (const Recipe& recipe : recipes) Generate(recipe, folder / recipe.table.fileName);
    WriteFile(marker, kDataVersion, std::ios::trunc);
  }
  // Always written: a benchmark that met a value of another type would have added to it.
  WriteFile(folder / "schema.ini", FixedWidthSection(), std::ios::trunc);

  std::vector<BenchmarkTable> tables;
  for (const Recipe& recipe : recipes) {
    BenchmarkTable table = recipe.table;
    const fs::path path = folder / table.fileName;
    table.path = path.string();
    table.bytes = static_cast<std::int64_t>(fs::file_size(path));
    tables.push_back(std::move(table));
  }
  return tables;
}

}  // namespace

const BenchmarkTable& Table(TableKind kind) {
  static const std::vector<BenchmarkTable> tables = MakeTables();
  return tables[static_cast<std::size_t>(kind)];
}
