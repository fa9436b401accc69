// Walking a table's rows.
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "module/ModuleTest.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;

class CursorHelperTest : public ModuleTest {
 protected:
  static HRESULT Fetch(const ComPtr<IPlugInDatasetHelper>& table, const VARIANT& map,
                       ComPtr<IPlugInCursorHelper>& cursor) {
    return table->FetchAllRows(0, nullptr, map, cursor.Receive());
  }

  // The slots after the first row was fetched through `map`.
  static std::vector<std::string> FirstRow(const ComPtr<IPlugInDatasetHelper>& table,
                                           const std::vector<LONG>& map, std::size_t slotCount) {
    const FieldMapArray array(map);
    ComPtr<IPlugInCursorHelper> cursor;
    EXPECT_EQ(Fetch(table, array.AsVariant(), cursor), S_OK);
    Slots slots(slotCount);
    EXPECT_EQ(cursor.As<IPlugInFastQueryValues>()->ReadRecordValuesFast(slots.Data()), S_OK);
    EXPECT_TRUE(slots.HostDataIsUntouched());
    return slots.Dump();
  }
};

TEST_F(CursorHelperTest, WalksFromTheFirstRowToTheEnd) {
  const auto table = Table(u"a.csv", "Id,Name\n1,a\n2,b\n");
  const FieldMapArray map({0, 1});
  ComPtr<IPlugInCursorHelper> cursor;
  ASSERT_EQ(Fetch(table, map.AsVariant(), cursor), S_OK);
  VARIANT_BOOL finished = VARIANT_TRUE;
  EXPECT_EQ(cursor->AtLastRecord(&finished), S_OK);
  EXPECT_EQ(finished, VARIANT_FALSE);
  EXPECT_EQ(cursor->AdvanceRecord(), S_OK);
  EXPECT_EQ(cursor->AtLastRecord(&finished), S_OK);
  EXPECT_EQ(finished, VARIANT_FALSE) << "the last row is still current";
  EXPECT_EQ(cursor->AdvanceRecord(), S_FALSE);
  EXPECT_EQ(cursor->AtLastRecord(&finished), S_OK);
  EXPECT_EQ(finished, VARIANT_TRUE);
  EXPECT_EQ(cursor->AdvanceRecord(), S_FALSE) << "there is no way back";
}

TEST_F(CursorHelperTest, EmptyFileIsFinishedAtOnce) {
  for (const std::string_view bytes : {"", "Id,Name\n"}) {
    const auto table = Table(u"a.csv", bytes);
    const FieldMapArray map({0});
    ComPtr<IPlugInCursorHelper> cursor;
    ASSERT_EQ(Fetch(table, map.AsVariant(), cursor), S_OK);
    VARIANT_BOOL finished = VARIANT_FALSE;
    EXPECT_EQ(cursor->AtLastRecord(&finished), S_OK);
    EXPECT_EQ(finished, VARIANT_TRUE);
    Slots slots(1);
    EXPECT_EQ(cursor.As<IPlugInFastQueryValues>()->ReadRecordValuesFast(slots.Data()), S_OK);
    EXPECT_THAT(slots.Dump(), ElementsAre("untouched"));
    EXPECT_EQ(cursor->AdvanceRecord(), S_FALSE);
  }
}

TEST_F(CursorHelperTest, NullAndUnsupportedArguments) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  const CursorOverAll rows(table);
  IPlugInCursorHelper& cursor = *rows.Cursor();
  EXPECT_EQ(cursor.AtLastRecord(nullptr), E_POINTER);
  LONG id = 7;
  EXPECT_EQ(cursor.ReadRecordValues(nullptr, &id), E_FAIL);
  EXPECT_EQ(cursor.ReadRecordValues(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(cursor.ReadRecordShape(table.Get()), E_FAIL);
  EXPECT_EQ(cursor.ReadRecordShape(nullptr), E_INVALIDARG);
  EXPECT_EQ(rows.Cursor().As<IPlugInFastQueryValues>()->ReadRecordValuesFast(nullptr), E_POINTER);
}

TEST_F(CursorHelperTest, MapSendsFieldsToSlots) {
  const auto table = Table(u"a.csv", "Id,Name,Area\n1,a,2.5\n");
  EXPECT_THAT(FirstRow(table, {2, 0, 1}, 3), ElementsAre("BSTR:a", "R8:2.5", "I4:1"));
  EXPECT_THAT(FirstRow(table, {5, 3, 0}, 6),
              ElementsAre("R8:2.5", "untouched", "untouched", "BSTR:a", "untouched", "I4:1"));
}

TEST_F(CursorHelperTest, UnwantedFieldsTouchNoSlot) {
  const auto table = Table(u"a.csv", "Id,Name,Area\n1,a,2.5\n");
  EXPECT_THAT(FirstRow(table, {-1, 0, -1}, 3), ElementsAre("BSTR:a", "untouched", "untouched"));
  EXPECT_THAT(FirstRow(table, {-1, -1, -1}, 1), ElementsAre("untouched"));
  EXPECT_THAT(FirstRow(table, {-2, -2147483647 - 1, 0}, 1), ElementsAre("R8:2.5"))
      << "no negative entry names a slot";
}

TEST_F(CursorHelperTest, MapMayBeShorterOrLongerThanTheTable) {
  const auto table = Table(u"a.csv", "Id,Name\n1,a\n");
  EXPECT_THAT(FirstRow(table, {0}, 2), ElementsAre("I4:1", "untouched"));
  EXPECT_THAT(FirstRow(table, {}, 1), ElementsAre("untouched"));
  EXPECT_THAT(FirstRow(table, {0, 1, 2, 3}, 4),
              ElementsAre("I4:1", "BSTR:a", "untouched", "untouched"));
}

TEST_F(CursorHelperTest, ShortRecordLeavesTheSurplusSlots) {
  const auto table = Table(u"a.csv", "A,B,C\n1,2,3\n4\n");
  CursorOverAll cursor(table);
  EXPECT_EQ(cursor.Row(), "I4:1|I4:2|I4:3");
  cursor.Advance();
  EXPECT_EQ(cursor.Row(), "I4:4|untouched|untouched");
}

TEST_F(CursorHelperTest, SlotsAreClearedBeforeTheyReceiveValues) {
  // A text left in the slot would leak; the sanitizers watch.
  const auto table = Table(u"a.csv", "Name\nfirst\nsecond\n");
  const FieldMapArray map({0});
  ComPtr<IPlugInCursorHelper> cursor;
  ASSERT_EQ(Fetch(table, map.AsVariant(), cursor), S_OK);
  Slots slots(1);
  const auto fast = cursor.As<IPlugInFastQueryValues>();
  EXPECT_EQ(fast->ReadRecordValuesFast(slots.Data()), S_OK);
  EXPECT_EQ(fast->ReadRecordValuesFast(slots.Data()), S_OK) << "the same record again";
  EXPECT_THAT(slots.Dump(), ElementsAre("BSTR:first"));
  cursor->AdvanceRecord();
  EXPECT_EQ(fast->ReadRecordValuesFast(slots.Data()), S_OK);
  EXPECT_THAT(slots.Dump(), ElementsAre("BSTR:second"));
}

TEST_F(CursorHelperTest, MapOfOtherElementsIsRefused) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  for (const VARTYPE type : {VT_I2, VT_UI4, VT_I8, VT_R4, VT_VARIANT, VT_BSTR}) {
    SAFEARRAY* const array = ::SafeArrayCreateVector(type, 0, 1);
    VARIANT map;
    ::VariantInit(&map);
    map.vt = static_cast<VARTYPE>(VT_ARRAY | type);
    map.parray = array;
    auto* cursor = reinterpret_cast<IPlugInCursorHelper*>(this);
    EXPECT_EQ(table->FetchAllRows(0, nullptr, map, &cursor), E_INVALIDARG) << type;
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(array->cLocks, 0u) << "a refused map is not kept locked";
    ::SafeArrayDestroy(array);
  }
}

TEST_F(CursorHelperTest, MapThatBeliesItsArrayIsRefused) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  VARIANT map;
  ::VariantInit(&map);
  map.vt = VT_ARRAY | VT_I4;
  map.parray = nullptr;
  ComPtr<IPlugInCursorHelper> cursor;
  EXPECT_EQ(Fetch(table, map, cursor), E_INVALIDARG);
  map.vt = VT_BYREF | VT_ARRAY | VT_I4;
  EXPECT_EQ(Fetch(table, map, cursor), E_INVALIDARG);
  SAFEARRAYBOUND bounds[2] = {{1, 0}, {1, 0}};
  SAFEARRAY* const square = ::SafeArrayCreate(VT_I4, 2, bounds);
  map.vt = VT_ARRAY | VT_I4;
  map.parray = square;
  EXPECT_EQ(Fetch(table, map, cursor), E_INVALIDARG);
  ::SafeArrayDestroy(square);
  SAFEARRAY* const shorts = ::SafeArrayCreateVector(VT_I2, 0, 1);
  map.parray = shorts;
  EXPECT_EQ(Fetch(table, map, cursor), E_INVALIDARG);
  ::SafeArrayDestroy(shorts);
}

TEST_F(CursorHelperTest, NoArrayMeansNoWantedField) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  VARIANT map;
  ::VariantInit(&map);
  ComPtr<IPlugInCursorHelper> cursor;
  ASSERT_EQ(Fetch(table, map, cursor), S_OK);
  Slots slots(1);
  EXPECT_EQ(cursor.As<IPlugInFastQueryValues>()->ReadRecordValuesFast(slots.Data()), S_OK);
  EXPECT_THAT(slots.Dump(), ElementsAre("untouched"));
  EXPECT_EQ(cursor->AdvanceRecord(), S_FALSE);
}

TEST_F(CursorHelperTest, MapIsLockedAsLongAsTheCursorLives) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  const FieldMapArray map({0});
  SAFEARRAY* array = map.Get();
  VARIANT byReference;
  ::VariantInit(&byReference);
  byReference.vt = VT_BYREF | VT_ARRAY | VT_I4;
  byReference.pparray = &array;
  for (const VARIANT& each : {map.AsVariant(), byReference}) {
    ComPtr<IPlugInCursorHelper> cursor;
    ASSERT_EQ(Fetch(table, each, cursor), S_OK);
    EXPECT_GT(map.Get()->cLocks, 0u);
    EXPECT_EQ(::SafeArrayDestroy(map.Get()), DISP_E_ARRAYISLOCKED);
    Slots slots(1);
    EXPECT_EQ(cursor.As<IPlugInFastQueryValues>()->ReadRecordValuesFast(slots.Data()), S_OK);
    EXPECT_THAT(slots.Dump(), ElementsAre("I4:1"));
    cursor.Reset();
    EXPECT_EQ(map.Get()->cLocks, 0u);
  }
}

TEST_F(CursorHelperTest, WhereClauseAndClassIndexAreIgnored) {
  const auto table = Table(u"a.csv", "Id\n1\n2\n");
  const FieldMapArray map({0});
  ComPtr<IPlugInCursorHelper> cursor;
  ASSERT_EQ(table->FetchAllRows(42, BString(u"Id = 2").Get(), map.AsVariant(), cursor.Receive()),
            S_OK);
  Slots slots(1);
  EXPECT_EQ(cursor.As<IPlugInFastQueryValues>()->ReadRecordValuesFast(slots.Data()), S_OK);
  EXPECT_THAT(slots.Dump(), ElementsAre("I4:1"));
}

TEST_F(CursorHelperTest, OutlivesTableAndWorkspace) {
  folder_.Write(u"a.csv", "Id,Place\n1,40.123N 74.456W\n2,41.5N 75.25W\n");
  ComPtr<IPlugInDatasetHelper> table = OpenTable(u"a.csv");
  CursorOverAll cursor(table);
  table.Reset();
  std::vector<std::string> rows;
  for (; !cursor.AtEnd(); cursor.Advance()) rows.push_back(cursor.Row());
  EXPECT_THAT(rows, ElementsAre("I4:1|BSTR:40.123N 74.456W|R8:-74.456|R8:40.123",
                                "I4:2|BSTR:41.5N 75.25W|R8:-75.25|R8:41.5"));
}

TEST_F(CursorHelperTest, FileThatVanishesAfterOpeningHasNoRows) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  folder_.Remove(u"a.csv");
  EXPECT_THAT(Rows(table), ElementsAre());
}

TEST_F(CursorHelperTest, CursorsOfOneTableAreIndependent) {
  const auto table = Table(u"a.csv", "Id\n1\n2\n3\n");
  CursorOverAll first(table);
  CursorOverAll second(table);
  EXPECT_EQ(first.Row(), "I4:1");
  first.Advance();
  first.Advance();
  EXPECT_EQ(second.Row(), "I4:1");
  EXPECT_EQ(first.Row(), "I4:3");
  second.Advance();
  EXPECT_EQ(second.Row(), "I4:2");
}

TEST_F(CursorHelperTest, FinishedCursorStaysFinishedWhenTheFileGrows) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  CursorOverAll cursor(table);
  cursor.Advance();
  EXPECT_TRUE(cursor.AtEnd());
  folder_.Append(u"a.csv", "2\n");
  cursor.Advance();
  EXPECT_TRUE(cursor.AtEnd());
  EXPECT_THAT(Rows(table), ElementsAre("I4:1", "I4:2")) << "a new cursor sees the new row";
}

TEST_F(CursorHelperTest, AnotherProcessAppendsBetweenTheRows) {
  const auto table = Table(u"a.csv", "Id\n1\n2\n3\n");
  CursorOverAll first(table);
  CursorOverAll second(table);
  first.Advance();
  // Every system's shell knows this much.
  const std::string command = "echo 4 >> \"" + ToUtf8(folder_.Path(u"a.csv")) + "\"";
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(first.Row(), "I4:2");
  EXPECT_EQ(second.Row(), "I4:1");
  first.Advance();
  EXPECT_EQ(first.Row(), "I4:3");
  EXPECT_THAT(Rows(table), ElementsAre("I4:1", "I4:2", "I4:3", "I4:4"));
}

// Rows that were there when a cursor started are read unharmed while the file grows.
TEST_F(CursorHelperTest, SeveralCursorsReadWhileTheFileGrows) {
  constexpr int kRows = 2000;
  std::string bytes = "Id,Name\n";
  for (int i = 0; i < kRows; ++i) bytes += std::to_string(i) + ",n" + std::to_string(i) + "\n";
  const auto table = Table(u"a.csv", bytes);

  std::atomic<bool> done = false;
  std::thread writer([&] {
    // A handle of its own, as another program would have.
    std::ofstream stream(folder_.Native(u"a.csv").c_str(), std::ios::binary | std::ios::app);
    for (int i = 0; i < 3000 && !done; ++i) {
      stream << kRows + i << ",n" << kRows + i << "\n";
      stream.flush();
    }
  });
  CursorOverAll first(table);
  CursorOverAll second(table);
  for (int i = 0; i < kRows; ++i) {
    const std::string expected = "I4:" + std::to_string(i) + "|BSTR:n" + std::to_string(i);
    ASSERT_EQ(first.Row(), expected);
    ASSERT_EQ(second.Row(), expected);
    first.Advance();
    second.Advance();
  }
  done = true;
  writer.join();
  EXPECT_GE(Rows(table).size(), static_cast<std::size_t>(kRows));
  EXPECT_TRUE(Messages().empty());
}

}  // namespace
}  // namespace quenra::test
