// Inference over random tables, against the rules written down one after the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "inference/DateParsing.h"
#include "inference/NumberParsing.h"
#include "support/OpenedTable.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

using Row = std::vector<std::u16string>;

// One whole inference of a file without declared columns, in plain numbers as types.
class Reference {
 public:
  Reference(const NumberFormat::Settings& number, CurrencySettings currency,
            const OpenOptions& options, bool decimalGiven, int maxScanRows)
      : number_(number),
        currency_(std::move(currency)),
        options_(options),
        decimalGiven_(decimalGiven),
        maxScanRows_(maxScanRows) {}

  // False when a row is rejected. `rows` are those behind the header.
  bool Scan(const std::vector<Row>& rows, std::size_t headerColumns, bool header) {
    columns_.resize(header ? headerColumns : 0);
    const std::size_t lower = columns_.empty() ? 1 : 10;
    bool more = true;
    std::size_t read = 0;
    const auto belowUpper = [&] {
      if (options_.readAsManyRowsAsNeeded || maxScanRows_ == 0) return true;
      return read < static_cast<std::size_t>(maxScanRows_ > 0 ? maxScanRows_ : 100);
    };
    while (read < rows.size() && ((more && belowUpper()) || read < lower)) {
      more = false;
      if (!ClassifyRow(rows[read++], header)) return false;
      for (const Column& column : columns_) {
        if (column.type == -1 || Integer(column.type)) more = true;
        if (Dated(column.type) && column.orders.size() >= 2) more = true;
      }
    }
    Decide();
    return true;
  }

  // As OpenedTable::Fields, without the names.
  std::string Types() const {
    std::string shown;
    for (const Column& column : columns_) {
      const int type = column.type == -1 ? 4 : column.type;
      shown += ' ' + std::to_string(type);
      if (!Dated(type)) continue;
      // The locale of the test puts the month first.
      shown += '/' + std::to_string(column.orders.size() == 1 ? *column.orders.begin() : 1);
      if (column.fraction) shown += '.';
    }
    return shown;
  }

  char16_t decimal() const { return number_.decimalSymbol; }

 private:
  struct Column {
    int type = -1;
    int alternative = -1;
    bool hasValue = false;
    std::set<int> orders;
    bool fraction = false;
  };

  static bool Integer(int type) { return type == 0 || type == 1 || type == 13; }
  static bool Numeric(int type) { return Integer(type) || type == 2 || type == 3; }
  static bool Dated(int type) { return type == 5 || type == 14 || type == 16; }

  int ClassifyValue(const std::u16string& text, DateClass& date) const {
    if (ClassifyDate(text, options_.fieldTypeVersion, options_.inferTimeOnlyFields, date))
      return static_cast<int>(date.type);
    double amount = 0;
    const bool mayBeAmount =
        currency_.symbol.empty() || text.find(currency_.symbol) != std::u16string::npos;
    if (mayBeAmount && ParseCurrency(currency_, text, amount)) return 3;
    return ClassifyNumber(number_, text);
  }

  int ClassifyNumber(const NumberFormat::Settings& number, const std::u16string& text) const {
    const FieldType type = NumberFormat::Classify(number, text, options_.fieldTypeVersion);
    return type == FieldType::kUndetermined ? 4 : static_cast<int>(type);
  }

  static int Merged(int t, int n) {
    if (t == -1) return n;
    if (t == n) return t;
    if (!Numeric(t) || !Numeric(n)) return 4;
    for (const int wider : {3, 2, 13, 1})
      if (t == wider || n == wider) return wider;
    return 0;
  }

  bool ClassifyRow(const Row& row, bool header) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i >= columns_.size()) {
        if (header && !row[i].empty()) return false;
        if (header) continue;
        columns_.emplace_back();
      }
      if (row[i].empty()) continue;
      columns_[i].hasValue = true;
      if (columns_[i].type != 4) ClassifyField(columns_[i], row[i]);
    }
    return true;
  }

  void ClassifyField(Column& column, const std::u16string& text) {
    DateClass date;
    column.type = Merged(column.type, ClassifyValue(text, date));
    if (column.alternative == -1 && column.type != 4 && !Integer(column.type))
      column.alternative = column.type;
    if (Dated(column.type)) {
      std::set<int> found;
      for (const DateOrder order :
           {DateOrder::kMonthDayYear, DateOrder::kDayMonthYear, DateOrder::kYearMonthDay})
        if (date.orders.Contains(order)) found.insert(static_cast<int>(order));
      std::set<int> both;
      std::set_intersection(column.orders.begin(), column.orders.end(), found.begin(), found.end(),
                            std::inserter(both, both.end()));
      column.orders = column.orders.empty() ? found : both;
      column.fraction = column.fraction || date.fractionalSeconds;
    }
    if (column.type == 3) doubleSeen_ = true;
    if (!doubleSeen_ && !decimalGiven_ && column.alternative == -1) {
      NumberFormat::Settings swapped = number_;
      swapped.decimalSymbol = number_.decimalSymbol == u',' ? u'.' : u',';
      column.alternative = ClassifyNumber(swapped, text);
    }
  }

  void Decide() {
    if (doubleSeen_ || decimalGiven_) return;
    bool gains = false;
    for (const Column& column : columns_) {
      if (column.type == 4 && column.alternative == 3 && column.hasValue) gains = true;
      if (Integer(column.type) && column.alternative == 4) return;
    }
    if (!gains) return;
    for (Column& column : columns_)
      if (column.alternative == 3 && column.hasValue) column.type = 3;
    number_.decimalSymbol = number_.decimalSymbol == u',' ? u'.' : u',';
  }

  NumberFormat::Settings number_;
  const CurrencySettings currency_;
  const OpenOptions options_;
  const bool decimalGiven_;
  const int maxScanRows_;  // -1: not given
  std::vector<Column> columns_;
  bool doubleSeen_ = false;
};

std::string TypesOf(const OpenedTable& table) {
  std::string shown;
  for (const FieldDefinition& field : table.shared()->fields) {
    shown += ' ' + std::to_string(static_cast<int>(field.type));
    if (!IsDateType(field.type)) continue;
    shown += '/' + std::to_string(static_cast<int>(field.dateFormat.order));
    if (field.dateFormat.fractionalSeconds) shown += '.';
  }
  return shown;
}

// Values of one kind, so that columns of one type are as likely as mixed ones.
constexpr std::u16string_view kPools[][6] = {
    {u"7", u"-12", u"40000", u"+3", u"0", u""},
    {u"7", u"3000000000", u"1,234", u"1,234,567", u"12,345", u""},
    {u"1.5", u"4e2", u"7", u"1,234.5", u"$5", u"-.5"},
    {u"1,5", u"2,25", u"7", u"1.234,5", u"12,34", u""},
    {u"01/02/2020", u"13/02/2020", u"02/13/2020", u"2020-01-05", u"01/02/03", u""},
    {u"01/02/2020 10:30", u"13/02/2020 10:30:15.5", u"2020-01-05T10:30", u"05.01.2020", u"", u"x"},
    {u"2020-01-05 10:30+02:00", u"2020-01-05 10:30", u"10:30", u"10:30:15", u"", u"24:00"},
    {u"x", u"New York", u"  ", u"inf", u"", u"$"},
    {u"", u"", u"", u"", u"", u"7"},
};

TEST(InferenceReferenceTest, RandomTablesAgreeWithTheRules) {
  const UserLocale locale(u"en-US");
  const TemporaryFolder folder;
  std::mt19937 random(20200105);
  int opened = 0;
  for (int n = 0; n < 2000; ++n) {
    // A table: some columns, each with a pool of its own that another may replace late.
    const std::size_t columns = 1 + random() % 4;
    const std::size_t rowCount = 1 + random() % (n % 8 == 0 ? 240 : 14);
    std::vector<std::size_t> pools;
    for (std::size_t i = 0; i < columns; ++i) pools.push_back(random() % std::size(kPools));
    std::vector<Row> rows(rowCount);
    for (Row& row : rows) {
      for (std::size_t i = 0; i < columns; ++i) {
        const std::size_t pool = random() % 40 == 0 ? random() % std::size(kPools) : pools[i];
        row.emplace_back(kPools[pool][random() % std::size(kPools[pool])]);
      }
      if (random() % 200 == 0) row.emplace_back(random() % 2 == 0 ? u"" : u"1");
    }
    const bool header = random() % 2 == 0;
    const bool decimalGiven = random() % 4 == 0;
    const int maxScanRows = random() % 2 == 0 ? -1 : static_cast<int>(random() % 30) * 5;
    OpenOptions options;
    options.readAsManyRowsAsNeeded = random() % 8 == 0;
    options.inferTimeOnlyFields = random() % 3 == 0;
    if (random() % 4 == 0) options.fieldTypeVersion = kOldFieldTypeVersion;

    std::string bytes;
    for (std::size_t i = 0; header && i < columns; ++i)
      bytes += (i == 0 ? "c" : "\tc") + std::to_string(i);
    if (header) bytes += '\n';
    for (const Row& row : rows) {
      for (std::size_t i = 0; i < row.size(); ++i)
        bytes += (i == 0 ? "" : "\t") + std::string(row[i].begin(), row[i].end());
      // A line without a character would be no record.
      if (row.size() == 1 && row[0].empty()) bytes += '\t';
      bytes += '\n';
    }
    for (Row& row : rows)
      if (row.size() == 1 && row[0].empty()) row.emplace_back();
    std::string section = "[t.csv]\nFormat=TabDelimited\nColNameHeader=";
    section += header ? "True\n" : "False\n";
    if (decimalGiven) section += "DecimalSymbol=.\n";
    if (maxScanRows >= 0) section += "MaxScanRows=" + std::to_string(maxScanRows) + "\n";
    folder.Write("schema.ini", section);
    folder.Write("t.csv", bytes);

    NumberFormat::Settings number;
    CurrencySettings currency;
    currency.symbol = u"$";
    Reference reference(number, currency, options, decimalGiven, maxScanRows);
    const bool expected = reference.Scan(rows, columns, header);
    const OpenedTable table(folder, u"t.csv", options);
    ASSERT_EQ(table.opened(), expected) << section << bytes;
    if (!expected) continue;
    ++opened;
    ASSERT_EQ(TypesOf(table), reference.Types()) << section << bytes;
    ASSERT_EQ(table.decimalSymbol(), reference.decimal()) << section << bytes;
  }
  EXPECT_GT(opened, 500);
}

}  // namespace
}  // namespace TextFile
