// Tables of every locale that ICU knows: dates come back as they were.
#ifndef _WIN32

#include <gtest/gtest.h>
#include <unicode/uloc.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "reading/ReaderFactory.h"
#include "schema/LocaleDefaults.h"
#include "schema/RowWriter.h"
#include "schema/TableFiles.h"
#include "support/ConverterWithSlots.h"
#include "support/OpenedTable.h"
#include "support/TestText.h"
#include "support/UserLocale.h"

namespace TextFile {
namespace {

using quenra::test::ToUtf8;

std::string Tag(const char* locale) {
  char tag[ULOC_FULLNAME_CAPACITY] = {};
  UErrorCode status = U_ZERO_ERROR;
  uloc_toLanguageTag(locale, tag, sizeof tag, 0, &status);
  return U_SUCCESS(status) ? tag : "";
}

// The patterns of all locales, each with the first locale that has it.
std::map<std::u16string, std::u16string> PatternsOfAllLocales() {
  std::map<std::u16string, std::u16string> patterns;
  for (int32_t i = 0; i < uloc_countAvailable(); ++i) {
    const std::string tag = Tag(uloc_getAvailable(i));
    const std::u16string name(tag.begin(), tag.end());
    if (!quenra::QUENRALocale::SetLocale(name)) continue;
    SchemaOptions options;
    CompleteFromLocale(options);
    patterns.emplace(options.dateTimeFormat, name);
  }
  quenra::QUENRALocale::ResetLocale();
  return patterns;
}

// Days since 1899-12-30: 2 January 2020, 23 November 1987, 9 October 1850, 31 December 2099, the
// 5th of May 2005.
constexpr double kDays[] = {43832, 32104, -17979, 73050, 38477};
// 03:04:05, 13:45:56, midnight, 00:00:01, 23:59:00.
constexpr double kTimes[] = {11045 / 86400.0, 49556 / 86400.0, 0, 1 / 86400.0, 86340 / 86400.0};

// A day and a time as an OLE date: before 1899-12-30 the time counts away from zero.
double DateOf(double day, double time) { return day < 0 ? day - time : day + time; }

quenra::Variant DateValue(double date) {
  quenra::Variant value;
  VARIANT* const raw = value.Receive();
  raw->vt = VT_DATE;
  raw->date = date;
  return value;
}

FieldDefinition Field(std::u16string_view name, FieldType type) {
  FieldDefinition field;
  field.name = name;
  field.type = type;
  field.dateFormat.type = type;
  return field;
}

class LocaleDatesTest : public testing::Test {
 protected:
  OpenedTable Open() const {
    OpenOptions options;
    options.inferTimeOnlyFields = true;
    return OpenedTable(folder_, u"t.csv", options);
  }

  void Create() const {
    CreateTableFiles({folder_.Path(), u"t.csv"},
                     {Field(u"T", FieldType::kDate), Field(u"D", FieldType::kDateOnly),
                      Field(u"H", FieldType::kTimeOnly)});
  }

  // Adds rows of a date with time, a day and a time.
  void Load() const {
    OpenedTable opened = Open();
    ASSERT_TRUE(opened.opened());
    RowWriter writer(opened.table());
    ASSERT_TRUE(writer.Open());
    for (std::size_t i = 0; i < std::size(kDays); ++i) {
      const quenra::Variant values[] = {DateValue(DateOf(kDays[i], kTimes[i])), DateValue(kDays[i]),
                                        DateValue(kTimes[i])};
      const VARIANT row[] = {values[0].Get(), values[1].Get(), values[2].Get()};
      ASSERT_TRUE(writer.Write(row));
    }
    ASSERT_TRUE(writer.Close());
  }

  // The rows that Load has added behind the header and `skipped` rows.
  void ExpectRows(std::size_t skipped) const {
    OpenedTable opened = Open();
    ASSERT_TRUE(opened.opened());
    ConverterWithSlots converter(opened.shared(), [](UINT) { return std::u16string(); });
    const ReaderPtr reader = MakeReader(opened.table());
    ASSERT_NE(reader, nullptr);
    for (std::size_t i = 0; i < 1 + skipped; ++i) ASSERT_TRUE(reader->ReadRecord());
    for (std::size_t i = 0; i < std::size(kDays); ++i) {
      ASSERT_TRUE(reader->ReadRecord());
      converter.Convert(reader->record());
      ExpectDate(converter, 0, DateOf(kDays[i], kTimes[i]));
      ExpectDate(converter, 1, kDays[i]);
      ExpectDate(converter, 2, kTimes[i]);
    }
  }

  static void ExpectDate(ConverterWithSlots& converter, std::size_t field, double date) {
    quenra::Variant value;
    converter.MoveValue(field, *value.Receive());
    ASSERT_EQ(value.Get().vt, VT_DATE) << "field " << field << ", " << date;
    // To the millisecond.
    EXPECT_NEAR(value.Get().date, date, 0.5 / 86400000) << "field " << field;
  }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(LocaleDatesTest, CreatedTablesReadTheirOwnDates) {
  const std::map<std::u16string, std::u16string> patterns = PatternsOfAllLocales();
  EXPECT_GT(patterns.size(), 30u);
  for (const auto& [pattern, locale] : patterns) {
    SCOPED_TRACE(ToUtf8(locale + u": " + pattern));
    const UserLocale user(locale);
    Create();
    SCOPED_TRACE(folder_.Read(u"schema.ini"));
    Load();
    ExpectRows(0);
    if (HasFailure()) return;
    folder_.Remove(u"t.csv");
    folder_.Remove(u"schema.ini");
  }
}

TEST_F(LocaleDatesTest, PatternsOfTheLocaleThatDoNotReadBackAreReplaced) {
  struct {
    std::u16string_view locale;
    std::string_view time;   // of the column with date and time
    std::string_view day;    // of the column of days
    std::string_view clock;  // of the column of times
  } const cases[] = {
      // A point in the time.
      {u"fi-FI", "yyyy-MM-dd HH:mm:ss", "d.M.yyyy", "HH:mm:ss"},
      {u"id-ID", "yyyy-MM-dd HH:mm:ss", "dd/MM/yyyy", "HH:mm:ss"},
      // Words behind the numbers.
      {u"bg-BG", "yyyy-MM-dd HH:mm:ss", "yyyy-MM-dd", "HH:mm:ss"},
      {u"fr-CA", "yyyy-MM-dd HH:mm:ss", "yyyy-MM-dd", "HH:mm:ss"},
      {u"de-DE", "dd.MM.yyyy HH:mm:ss", "dd.MM.yyyy", "HH:mm:ss"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(ToUtf8(c.locale));
    const UserLocale user(c.locale);
    Create();
    EXPECT_EQ(folder_.Read(u"schema.ini"),
              "[t.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=T Date " +
                  std::string(c.time) + "\nCol2=D Date " + std::string(c.day) + "\nCol3=H Date " +
                  std::string(c.clock) + "\n");
    folder_.Remove(u"schema.ini");
  }
  // What the section says stays, whatever it is.
  folder_.Write(u"schema.ini", "[t.csv]\nDateTimeFormat=d.M.yyyy H.mm.ss\n");
  Create();
  EXPECT_NE(folder_.Read(u"schema.ini").find("Col1=T Date d.M.yyyy H.mm.ss\n"), std::string::npos);
}

TEST_F(LocaleDatesTest, RowsAddedToTablesWithoutASectionReadBack) {
  for (const auto& [pattern, locale] : PatternsOfAllLocales()) {
    SCOPED_TRACE(ToUtf8(locale + u": " + pattern));
    const UserLocale user(locale);
    // Tabs, so that no decimal comma decides about the delimiter.
    folder_.Write(u"t.csv", "T\tD\tH\n2020-01-05 10:30:00\t05.13.2020\t10:30:00\n");
    Load();
    ExpectRows(1);
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace TextFile

#endif
