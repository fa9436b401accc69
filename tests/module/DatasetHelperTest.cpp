// One table: what it is, its fields, its row count, its file.
#include "host/CoreSupport/Components.h"
#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "module/ModuleTest.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;

// A collection of an application's own that holds all its fields.
class PlainCollection final : public Implements<HostFieldCollection, HostFieldCollectionEdit> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"PlainCollection"; }
  HRESULT STDMETHODCALLTYPE GetFieldCount(LONG* count) override {
    *count = static_cast<LONG>(fields_.size());
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetField(LONG index, HostField** field) override {
    *field = ComPtr<HostField>(fields_.at(static_cast<std::size_t>(index))).Detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE FindField(BSTR, LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE AddField(HostField* field) override {
    fields_.emplace_back(field);
    return S_OK;
  }

 private:
  std::vector<ComPtr<HostField>> fields_;
};

HRESULT CreatePlainCollection(IUnknown*, const IID& interfaceId, void** object) {
  return MakeObject<PlainCollection>()->QueryInterface(interfaceId, object);
}

class DatasetHelperTest : public ModuleTest {
 protected:
  static LONG Count(const ComPtr<IPlugInDatasetHelper>& table) {
    LONG count = -7;
    EXPECT_EQ(table.As<IPlugInRowCount>()->CountRows(0, &count), S_OK);
    return count;
  }
};

TEST_F(DatasetHelperTest, IsAPlainTableWhateverItsColumns) {
  for (const std::string_view bytes : {"Id\n1\n", "", "Shape,Lat,Lon\n1,2.5,3.5\n"}) {
    const auto info = Table(u"a.csv", bytes).As<IPlugInDatasetInfo>();
    BString text;
    EXPECT_EQ(info->DatasetFileTitle(text.Receive()), S_OK);
    EXPECT_EQ(ToUtf8(text.View()), "a.csv");
    LONG kind = -1;
    EXPECT_EQ(info->DatasetKind(&kind), S_OK);
    EXPECT_EQ(kind, 10);
    EXPECT_EQ(info->ShapeKind(&kind), S_OK);
    EXPECT_EQ(kind, 0);
    BSTR shape = text.Get();
    EXPECT_EQ(info->ShapeColumnName(&shape), S_OK);
    EXPECT_EQ(shape, nullptr);
  }
}

TEST_F(DatasetHelperTest, TellsItsDelimiter) {
  const auto delimiterOf = [](const ComPtr<IPlugInDatasetHelper>& table) {
    OLECHAR delimiter = 1;
    EXPECT_EQ(table.As<ITextFileDataset>()->TableDelimiter(&delimiter), S_OK);
    return static_cast<char16_t>(delimiter);
  };
  EXPECT_EQ(delimiterOf(Table(u"a.csv", "A;B\n1;2\n")), u';');
  folder_.Write(u"schema.ini",
                "[f.txt]\nFormat=FixedLength\nCol1=A Text Width 1\n"
                "[w.txt]\nFormat=Delimited(\xE2\x82\xAC)\n");
  EXPECT_EQ(delimiterOf(Table(u"f.txt", "x\n")), u'\0');
  const auto wide = Table(u"w.txt",
                          "A\xE2\x82\xAC"
                          "B\n");
  EXPECT_EQ(delimiterOf(wide), u'\u20AC');
  EXPECT_EQ(wide.As<ITextFileDataset>()->TableDelimiter(nullptr), E_POINTER);
}

TEST_F(DatasetHelperTest, LengthOfTextIsTheDeclaredWidthWhateverItIs) {
  folder_.Write(u"schema.ini", "[a.csv]\nCol1=A Text Width -5\nCol2=B Text Width 0\nCol3=C Text\n");
  const auto fields = Fields(Table(u"a.csv", "A,B,C\nx,y,z\n"));
  ASSERT_EQ(fields.size(), 3u);
  EXPECT_EQ(fields[0].length, -5);
  EXPECT_EQ(fields[1].length, 0);
  EXPECT_EQ(fields[2].length, 8000);
}

TEST_F(DatasetHelperTest, NullArgumentsAreRefused) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  const auto info = table.As<IPlugInDatasetInfo>();
  EXPECT_EQ(info->DatasetFileTitle(nullptr), E_POINTER);
  EXPECT_EQ(info->DatasetKind(nullptr), E_POINTER);
  EXPECT_EQ(info->ShapeKind(nullptr), E_POINTER);
  EXPECT_EQ(info->ShapeColumnName(nullptr), E_POINTER);
  EXPECT_EQ(table->SubclassCount(nullptr), E_POINTER);
  EXPECT_EQ(table->SubclassName(0, nullptr), E_POINTER);
  EXPECT_EQ(table->Extent(nullptr), E_POINTER);
  EXPECT_EQ(table->DescribeFields(0, nullptr), E_POINTER);
  EXPECT_EQ(table->RowIdColumnIndex(0, nullptr), E_POINTER);
  EXPECT_EQ(table->ShapeColumnIndex(0, nullptr), E_POINTER);
  const FieldMapArray map({0});
  EXPECT_EQ(table->FetchRowById(0, 1, map.AsVariant(), nullptr), E_POINTER);
  EXPECT_EQ(table->FetchAllRows(0, nullptr, map.AsVariant(), nullptr), E_POINTER);
  EXPECT_EQ(table->FetchRowsInExtent(0, nullptr, VARIANT_TRUE, nullptr, map.AsVariant(), nullptr),
            E_POINTER);
  const auto operations = table.As<IPlugInFileOperations>();
  EXPECT_EQ(operations->AllowsCopy(nullptr), E_POINTER);
  EXPECT_EQ(operations->AllowsDelete(nullptr), E_POINTER);
  EXPECT_EQ(operations->AllowsRename(nullptr), E_POINTER);
  EXPECT_EQ(operations->RenameDataset(BString(u"b.csv").Get(), nullptr), E_POINTER);
  EXPECT_EQ(table.As<IPlugInDatasetLoad>()->CreateLoader(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(table.As<IPlugInRowCount>()->CountRows(0, nullptr), E_POINTER);
  const auto stat = table.As<IDatasetFileStat2>();
  EXPECT_EQ(stat->FileTime(0, nullptr), E_POINTER);
  EXPECT_EQ(stat->FileSize(nullptr), E_POINTER);
  EXPECT_EQ(stat->FileMode(nullptr), E_POINTER);
  EXPECT_EQ(stat->FileSize64(nullptr), E_POINTER);
  EXPECT_TRUE(folder_.Exists(u"a.csv"));
}

TEST_F(DatasetHelperTest, ClassesAndShapesAreNotSupported) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  LONG number = 7;
  EXPECT_EQ(table->SubclassCount(&number), E_FAIL);
  EXPECT_EQ(number, 0);
  number = 7;
  EXPECT_EQ(table->SubclassIndex(nullptr, &number), E_FAIL);
  EXPECT_EQ(number, 0);
  const BString before(u"before");
  BSTR name = before.Get();
  EXPECT_EQ(table->SubclassName(0, &name), E_FAIL);
  EXPECT_EQ(name, nullptr);
  IUnknown* envelope = table.Get();
  EXPECT_EQ(table->Extent(&envelope), E_FAIL);
  EXPECT_EQ(envelope, nullptr);
  for (const LONG classIndex : {0, 1, -1}) {
    number = 7;
    EXPECT_EQ(table->RowIdColumnIndex(classIndex, &number), S_OK);
    EXPECT_EQ(number, -1);
    number = 7;
    EXPECT_EQ(table->ShapeColumnIndex(classIndex, &number), S_OK);
    EXPECT_EQ(number, -1);
  }
}

TEST_F(DatasetHelperTest, FetchesByIdAndExtentAreNotSupportedAndWriteNothing) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  const FieldMapArray map({0});
  auto* const before = reinterpret_cast<IPlugInCursorHelper*>(this);
  IPlugInCursorHelper* cursor = before;
  EXPECT_EQ(table->FetchRowById(0, 1, map.AsVariant(), &cursor), E_FAIL);
  EXPECT_EQ(cursor, before);
  EXPECT_EQ(
      table->FetchRowsInExtent(0, table.Get(), VARIANT_TRUE, nullptr, map.AsVariant(), &cursor),
      E_FAIL);
  EXPECT_EQ(cursor, before);
}

TEST_F(DatasetHelperTest, FileOperationsAreAllowed) {
  const auto operations = Table(u"a.csv", "Id\n1\n").As<IPlugInFileOperations>();
  VARIANT_BOOL allowed = VARIANT_FALSE;
  EXPECT_EQ(operations->AllowsCopy(&allowed), S_OK);
  EXPECT_EQ(allowed, VARIANT_TRUE);
  allowed = VARIANT_FALSE;
  EXPECT_EQ(operations->AllowsDelete(&allowed), S_OK);
  EXPECT_EQ(allowed, VARIANT_TRUE);
  allowed = VARIANT_FALSE;
  EXPECT_EQ(operations->AllowsRename(&allowed), S_OK);
  EXPECT_EQ(allowed, VARIANT_TRUE);
}

TEST_F(DatasetHelperTest, FieldsAreTheSameCollectionAtEveryCall) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  ComPtr<HostFieldCollection> first;
  ComPtr<HostFieldCollection> second;
  EXPECT_EQ(table->DescribeFields(0, first.Receive()), S_OK);
  EXPECT_EQ(table->DescribeFields(99, second.Receive()), S_OK);
  EXPECT_EQ(first, second);
}

TEST_F(DatasetHelperTest, FieldsOutliveTheTable) {
  ComPtr<HostFieldCollection> fields;
  EXPECT_EQ(Table(u"a.csv", "Id,Name\n1,a\n")->DescribeFields(0, fields.Receive()), S_OK);
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
  LONG count = 0;
  EXPECT_EQ(fields->GetFieldCount(&count), S_OK);
  EXPECT_EQ(count, 2);
}

TEST_F(DatasetHelperTest, ManyFieldsAreMadeWhenAskedFor) {
  folder_.Write(u"schema.ini", "[a.csv]\nCol100000=Last Short\n");
  const auto table = Table(u"a.csv", "Id,Name\n1,a\n");
  const LONG before = LiveComponentCount();
  ComPtr<HostFieldCollection> fields;
  ASSERT_EQ(table->DescribeFields(0, fields.Receive()), S_OK);
  EXPECT_LT(LiveComponentCount(), before + 10);
  LONG index = -1;
  EXPECT_EQ(fields->FindField(BString(u"LAST").Get(), &index), S_OK);
  EXPECT_EQ(index, 99999);
  const auto seen = Fields(table);
  ASSERT_EQ(seen.size(), 100000u);
  EXPECT_EQ(seen[1], (FieldSeen{"Name", 4, 8000, 0, ""}));
  EXPECT_EQ(seen[2], (FieldSeen{"Field3", 4, 8000, 0, ""}));
  EXPECT_EQ(seen[99999], (FieldSeen{"Last", 0, 2, 0, ""}));
}

TEST_F(DatasetHelperTest, ManyFieldsAreAddedToACollectionThatHoldsThem) {
  folder_.Write(u"schema.ini", "[a.csv]\nCol5000=Last Short\n");
  const auto table = Table(u"a.csv", "Id,Name\n1,a\n");
  SetComponentCreator(CLSID_HostFieldCollection, &CreatePlainCollection);
  const auto seen = Fields(table);
  SetComponentCreator(CLSID_HostFieldCollection, nullptr);
  ASSERT_EQ(seen.size(), 5000u);
  EXPECT_EQ(seen[4998], (FieldSeen{"Field4999", 4, 8000, 0, ""}));
  EXPECT_EQ(seen[4999], (FieldSeen{"Last", 0, 2, 0, ""}));
}

TEST_F(DatasetHelperTest, FieldsFollowTheInferredTypes) {
  const auto table = Table(u"a.csv",
                           "Id,Big,Area,Name,Seen,Day\n"
                           "1,12345678901,2.5,a,2020-01-05T10:30:00,2020-01-05\n");
  EXPECT_THAT(Fields(table),
              ElementsAre(FieldSeen{"Id", 1, 4, 0, ""}, FieldSeen{"Big", 13, 8, 0, ""},
                          FieldSeen{"Area", 3, 8, 0, ""}, FieldSeen{"Name", 4, 8000, 0, ""},
                          FieldSeen{"Seen", 5, 8, 0, ""}, FieldSeen{"Day", 14, 8, 0, ""}));
}

TEST_F(DatasetHelperTest, FieldsFollowTheDeclaredTypes) {
  folder_.Write(u"schema.ini",
                "[a.csv]\nColNameHeader=False\n"
                "Col1=S Short\nCol2=L Long\nCol3=F Single\nCol4=D Double\n"
                "Col5=T Text Width 12\nCol6=B LongLong\nCol7=W Date HH:mm\n");
  EXPECT_THAT(Fields(Table(u"a.csv", "1,2,3,4,x,5,10:15\n")),
              ElementsAre(FieldSeen{"S", 0, 2, 0, ""}, FieldSeen{"L", 1, 4, 0, ""},
                          FieldSeen{"F", 2, 4, 0, ""}, FieldSeen{"D", 3, 8, 0, ""},
                          FieldSeen{"T", 4, 12, 0, ""}, FieldSeen{"B", 13, 8, 0, ""},
                          FieldSeen{"W", 15, 8, 0, ""}));
}

TEST_F(DatasetHelperTest, CoordinateFieldsAreTagged) {
  EXPECT_THAT(Fields(Table(u"a.csv", "Id,Place\n1,40.123N 74.456W\n2,41.5N 75.25W\n")),
              ElementsAre(FieldSeen{"Id", 1, 4, 0, ""}, FieldSeen{"Place", 4, 8000, 0, ""},
                          FieldSeen{"Place_X", 3, 8, 0, "virtual coordinate field"},
                          FieldSeen{"Place_Y", 3, 8, 0, "virtual coordinate field"}));
}

TEST_F(DatasetHelperTest, CoordinatePairsAreTagged) {
  EXPECT_THAT(Fields(Table(u"a.csv", "N,E\n40.123N,74.456W\n41.5N,75.25W\n")),
              ElementsAre(FieldSeen{"N", 4, 8000, 0, ""}, FieldSeen{"E", 4, 8000, 0, ""},
                          FieldSeen{"N_D", 3, 8, 0, "virtual coordinate field"},
                          FieldSeen{"E_D", 3, 8, 0, "virtual coordinate field"}));
}

TEST_F(DatasetHelperTest, CoordinateFieldsCanBeSwitchedOff) {
  SetOption(u"DoNotAutoGenerateLatLongFields");
  EXPECT_EQ(Fields(Table(u"a.csv", "Id,Place\n1,40.123N 74.456W\n")).size(), 2u);
}

TEST_F(DatasetHelperTest, RowCounts) {
  struct CountCase {
    std::string_view bytes;
    LONG count;
    const char* why;
  };
  const CountCase cases[] = {
      {"", 0, "empty file"},
      {"Id,Name\n", 0, "header alone"},
      {"Id,Name\n1,a\n2,b\n3,c\n", 3, "header and rows"},
      {"Id,Name\n1,a\n2,b", 2, "last line not ended"},
      {"1,2\n3,4\n", 2, "no header"},
      {"7", 1, "one number and nothing else"},
      {"Id,Name\n1,\"a\nb\"\n2,c\n", 2, "a line break inside quotes"},
      {"Id,Name\n\n1,a\n\n\n2,b\n\n", 2, "blank lines are no records"},
  };
  for (const CountCase& c : cases) {
    SCOPED_TRACE(c.why);
    const auto table = Table(u"a.csv", c.bytes);
    EXPECT_EQ(Count(table), c.count);
    EXPECT_EQ(Rows(table).size(), static_cast<std::size_t>(c.count));
  }
}

TEST_F(DatasetHelperTest, DeclaredHeaderAloneHasNoRows) {
  folder_.Write(u"schema.ini", "[a.csv]\nColNameHeader=True\n");
  EXPECT_EQ(Count(Table(u"a.csv", "1,2\n")), 0);
}

TEST_F(DatasetHelperTest, FixedWidthTablesAreCountedAndRead) {
  folder_.Write(u"schema.ini",
                "[a.txt]\nFormat=FixedLength\nColNameHeader=False\nCol1=Id Long Width 3\n"
                "Col2=Name Text Width 4\n");
  const auto table = Table(u"a.txt", "  1Anna\n 22Bert\n");
  EXPECT_EQ(Count(table), 2);
  EXPECT_THAT(Rows(table), ElementsAre("I4:1|BSTR:Anna", "I4:22|BSTR:Bert"));
}

TEST_F(DatasetHelperTest, CountIsMinusOneAfterAFailure) {
  folder_.Write(u"a.csv", "Id\n1\n");
  ComPtr<HostArray> array;
  ASSERT_EQ(OpenWorkspace()->EnumerateDatasets(10, array.Receive()), S_OK);
  ComPtr<IUnknown> element;
  ASSERT_EQ(array->GetElement(0, element.Receive()), S_OK);
  folder_.Remove(u"a.csv");
  LONG count = 7;
  EXPECT_EQ(element.As<IPlugInRowCount>()->CountRows(0, &count), static_cast<HRESULT>(0x80040211u));
  EXPECT_EQ(count, -1);
}

TEST_F(DatasetHelperTest, LayoutIsReadOnce) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  const std::size_t events = Events().size();
  Fields(table);
  Count(table);
  Rows(table);
  EXPECT_EQ(Events().size(), events);
}

TEST_F(DatasetHelperTest, OpeningIsOneTimedEvent) {
  Table(u"a.csv", "Id\n1\n");
  const auto events = Events();
  ASSERT_EQ(events.size(), 2u);
  for (const EventSeen& event : events) {
    EXPECT_EQ(event.name, "Korvanet.TextFile.OpenDataset");
    EXPECT_EQ(event.context, ToUtf8(folder_.Path(u"a.csv")));
  }
  EXPECT_EQ(events[0].text, "BeginOpenDataset");
  EXPECT_EQ(events[1].text, "EndOpenDataset");
}

TEST_F(DatasetHelperTest, FileStatistics) {
  const auto table = Table(u"a.csv", "Id\n1\n");
  const auto stat = table.As<IDatasetFileStat2>();
  LONG size = 0;
  EXPECT_EQ(stat->FileSize(&size), S_OK);
  EXPECT_EQ(size, 5);
  LONGLONG size64 = 0;
  EXPECT_EQ(stat->FileSize64(&size64), S_OK);
  EXPECT_EQ(size64, 5);
  LONG mode = 0;
  EXPECT_EQ(stat->FileMode(&mode), S_OK);
  EXPECT_EQ(mode, 6);
  for (const LONG kind : {0, 1, 2}) {
    LONG time = 0;
    EXPECT_EQ(stat->FileTime(kind, &time), S_OK);
    EXPECT_GT(time, 1'600'000'000) << kind;
  }
  for (const LONG kind : {3, -1, 99}) {
    LONG time = 7;
    EXPECT_EQ(stat->FileTime(kind, &time), S_OK);
    EXPECT_EQ(time, 0) << kind;
  }
  EXPECT_EQ(stat->Reserved1(), S_OK);
  EXPECT_EQ(stat->Reserved2(), S_OK);
  EXPECT_EQ(static_cast<void*>(table.As<IDatasetFileStat>().Get()), static_cast<void*>(stat.Get()));
}

TEST_F(DatasetHelperTest, StatisticsOfAVanishedFileAreZero) {
  const auto stat = Table(u"a.csv", "Id\n1\n").As<IDatasetFileStat2>();
  folder_.Remove(u"a.csv");
  LONG value = 7;
  EXPECT_EQ(stat->FileSize(&value), S_OK);
  EXPECT_EQ(value, 0);
  value = 7;
  EXPECT_EQ(stat->FileMode(&value), S_OK);
  EXPECT_EQ(value, 0);
  value = 7;
  EXPECT_EQ(stat->FileTime(2, &value), S_OK);
  EXPECT_EQ(value, 0);
}

}  // namespace
}  // namespace quenra::test
