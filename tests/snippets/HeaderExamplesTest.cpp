// The examples of the public headers. Each header quotes the lines between "snippet" and "end of
// snippet" that bear its name; QuotedSnippetsTest compares them.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/CharacterWidth.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/EventLogTimer.h"
#include "host/CoreSupport/MessageText.h"
#include "host/CoreSupport/OleDays.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "host/DataCore/DataAccessUtil.h"
#include "host/DataCore/DataCoreUtil.h"
#include "host/DataCore/LatLongFormat.h"
#include "host/com/ComCatch.h"
#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/com/LiveObjects.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostErrors.h"
#include "module/ModuleTest.h"
#include "platform/CodePages.h"
#include "platform/FileNames.h"
#include "platform/LastError.h"
#include "platform/LocaleInfo.h"
#include "platform/Registry.h"
#include "platform/SingleThread.h"
#include "platform/Threads.h"

namespace quenra::test {
namespace {

struct IWidget : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Turn(LONG degrees) = 0;
};

constexpr CLSID CLSID_Widget = {
    0x0a8d3c51, 0x7f10, 0x4c1e, {0x9d, 0x2b, 0x11, 0x4e, 0x73, 0x5a, 0x90, 0x01}};
constexpr IID IID_IWidget = {
    0x0a8d3c52, 0x7f10, 0x4c1e, {0x9d, 0x2b, 0x11, 0x4e, 0x73, 0x5a, 0x90, 0x01}};

}  // namespace
}  // namespace quenra::test

template <>
inline constexpr const IID& quenra::kInterfaceId<quenra::test::IWidget> = quenra::test::IID_IWidget;

namespace quenra::test {
namespace {

std::vector<LONG> turns;

// snippet: host/com/Unknown.h
class Widget : public Implements<IWidget> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"Widget"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_Widget; }
  HRESULT STDMETHODCALLTYPE Turn(LONG degrees) override;
};
// end of snippet

// snippet: host/com/ComCatch.h
HRESULT STDMETHODCALLTYPE Widget::Turn(LONG degrees) try {
  turns.push_back(degrees);  // may throw
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}
// end of snippet

// snippet: host/com/Implements.h
class Counter : public Implements<IPlugInRowCount> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"Counter"; }
  HRESULT STDMETHODCALLTYPE CountRows(LONG classIndex, LONG* count) override;
};
// end of snippet

HRESULT STDMETHODCALLTYPE Counter::CountRows(LONG, LONG* count) {
  *count = 7;
  return S_OK;
}

class Plain : public IUnknown {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** result) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override { return --references_; }

 private:
  ULONG references_ = 1;
};

// snippet: platform/ComTypes.h
STDMETHODIMP Plain::QueryInterface(REFIID iid, void** result) {
  if (result == nullptr) return E_POINTER;
  *result = IsEqualIID(iid, IID_IUnknown) ? static_cast<IUnknown*>(this) : nullptr;
  if (*result == nullptr) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}
// end of snippet

using HeaderExamplesTest = ModuleTest;

TEST_F(HeaderExamplesTest, ComBase) {
  // snippet: host/com/Unknown.h
  const ComPtr<Widget> widget = MakeObject<Widget>();
  // end of snippet
  EXPECT_EQ(widget->Turn(90), S_OK);
  EXPECT_EQ(turns, std::vector<LONG>{90});
  EXPECT_TRUE(widget.As<IWidget>());

  LONG count = 0;
  EXPECT_EQ(MakeObject<Counter>()->CountRows(0, &count), S_OK);
  EXPECT_EQ(count, 7);

  Plain plain;
  void* result = nullptr;
  EXPECT_EQ(plain.QueryInterface(IID_IUnknown, &result), S_OK);
  EXPECT_EQ(result, &plain);
  EXPECT_EQ(plain.QueryInterface(IID_IClassFactory, &result), E_NOINTERFACE);
  EXPECT_EQ(result, nullptr);
  EXPECT_EQ(plain.Release(), 1u);
}

TEST_F(HeaderExamplesTest, Pointers) {
  folder_.Write(u"a.csv", "Id\n1\n");
  const auto workspace = OpenWorkspace();
  // snippet: host/com/ComPtr.h
  ComPtr<HostArray> tables;
  const HRESULT result = workspace->EnumerateDatasets(kDatasetTypeAny, tables.Receive());
  const auto creation = workspace.As<IPlugInCreateDataset>();  // empty when it does not answer
  // end of snippet
  EXPECT_EQ(result, S_OK);
  EXPECT_TRUE(tables);
  EXPECT_TRUE(creation);

  const auto table = OpenTable(u"a.csv");
  // snippet: host/interfaces/InterfaceId.h
  ComPtr<IPlugInRowCount> counter;
  table->QueryInterface(kInterfaceId<IPlugInRowCount>, counter.ReceiveVoid());
  // end of snippet
  LONG count = 0;
  EXPECT_EQ(counter->CountRows(0, &count), S_OK);
  EXPECT_EQ(count, 1);
}

TEST_F(HeaderExamplesTest, Cursor) {
  folder_.Write(u"a.csv", "Id\n1\n2\n");
  const auto table = OpenTable(u"a.csv");
  const FieldMapArray map({0});
  ComPtr<IPlugInCursorHelper> cursor;
  ASSERT_EQ(table->FetchAllRows(0, nullptr, map.AsVariant(), cursor.Receive()), S_OK);
  const auto fast = cursor.As<IPlugInFastQueryValues>();
  Slots values(1);
  HostFieldValue* const slots = values.Data();
  // snippet: host/interfaces/PlugInCursor.h
  VARIANT_BOOL finished = VARIANT_FALSE;
  while (cursor->AtLastRecord(&finished) == S_OK && finished == VARIANT_FALSE) {
    fast->ReadRecordValuesFast(slots);
    cursor->AdvanceRecord();
  }
  // end of snippet
  EXPECT_EQ(Dump(slots[0].value), "I4:2");
}

TEST_F(HeaderExamplesTest, Texts) {
  ComPtr<HostFieldEdit> edit;
  ASSERT_EQ(CreateComponentInstance(CLSID_HostField, edit.Receive()), S_OK);
  const auto field = edit.As<HostField>();
  // snippet: host/CoreSupport/BString.h
  BString name(u"Id");
  edit->SetName(name.Get());
  field->GetName(name.Receive());
  const std::u16string_view text = name.View();
  // end of snippet
  EXPECT_EQ(text, u"Id");

  // snippet: host/CoreSupport/CharacterClasses.h
  const char16_t upper = ToUpper(u'\u00E9');                             // U+00C9
  const std::u16string_view trimmed = TrimWhiteSpace(u"\t a b \u00A0");  // u"a b"
  // end of snippet
  EXPECT_EQ(upper, u'\u00C9');
  EXPECT_EQ(trimmed, u"a b");

  // snippet: host/CoreSupport/CharacterWidth.h
  const int columns = ColumnsOf(U'\u6771');  // 2
  // end of snippet
  EXPECT_EQ(columns, 2);

  const std::u16string_view tableName = u"a.csv";
  // snippet: host/CoreSupport/MessageText.h
  MessageText message;
  message.Insert(tableName).Add(u": there is no such column");
  // end of snippet
  EXPECT_EQ(message.text, u"a.csv: there is no such column");
  ASSERT_EQ(message.inserts.size(), 1u);
  EXPECT_EQ(message.inserts[0].length, 5u);
}

TEST_F(HeaderExamplesTest, Values) {
  ComPtr<HostPropertySet> properties;
  ASSERT_EQ(CreateComponentInstance(CLSID_HostPropertySet, properties.Receive()), S_OK);
  const BString name(u"Version");
  std::u16string version;
  // snippet: host/CoreSupport/Variant.h
  Variant value(u"13.1");
  properties->SetProperty(name.Get(), value.Address());
  properties->GetProperty(name.Get(), value.Receive());
  if (value.Type() == VT_BSTR) version = value.Text();
  // end of snippet
  EXPECT_EQ(version, u"13.1");

  // snippet: host/CoreSupport/OleDays.h
  DATE date = 0;
  OleDateOf({2024, 2, 29}, 0, date);  // 45351
  // end of snippet
  EXPECT_EQ(date, 45351);
}

TEST_F(HeaderExamplesTest, HostObjects) {
  // snippet: host/CoreSupport/Components.h
  ComPtr<HostFieldCollectionEdit> fields;
  const HRESULT result = CreateComponentInstance(CLSID_HostFieldCollection, fields.Receive());
  // end of snippet
  EXPECT_EQ(result, S_OK);
  EXPECT_TRUE(fields);
}

TEST_F(HeaderExamplesTest, Log) {
  std::vector<std::u16string> texts;
  {
    // snippet: host/AppEventLog/EventLog.h
    EventLog::SetSink([&](const EventLogRecord& record) { texts.emplace_back(record.text); });
    EventLog::Write(u"In file a.csv, a value does not fit.");
    // end of snippet
    // snippet: host/CoreSupport/EventLogTimer.h
    const EventLogTimer timer(2, u"Workshop.Table.Open", u"start", u"end", u"/data/a.csv", 0);
    // end of snippet
  }
  EventLog::SetSink({});
  EXPECT_EQ(texts, (std::vector<std::u16string>{u"In file a.csv, a value does not fit.", u"start",
                                                u"end"}));
}

TEST_F(HeaderExamplesTest, Locale) {
  // snippet: host/CoreSupport/QUENRALocale.h
  QUENRALocale::SetLocale(u"de-DE");
  const std::u16string decimal = QUENRALocale::Value(LOCALE_SDECIMAL, 4);  // u","
  // end of snippet
  EXPECT_EQ(decimal, u",");

  char16_t unit = 0;
  {
    // snippet: platform/LocaleInfo.h
    WCHAR symbol[4];
    const int count = ::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, symbol, 4);
    if (count == 2) unit = symbol[0];  // one character and the terminating zero
    // end of snippet
  }
  EXPECT_TRUE(unit == u'.' || unit == u',');

  DWORD reason = ERROR_SUCCESS;
  WCHAR symbol[1];
  // snippet: platform/LastError.h
  if (::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, symbol, 1) == 0)
    reason = ::GetLastError();  // ERROR_INSUFFICIENT_BUFFER
  // end of snippet
  EXPECT_EQ(reason, static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

TEST_F(HeaderExamplesTest, Coordinates) {
  // snippet: host/DataCore/LatLongFormat.h
  const LatLongFormat latLong;
  const std::u16string_view text = u"40\u00B026'46\"N 79\u00B058'56\"W";
  std::int32_t format = 0;
  double x = 0;
  double y = 0;
  if (latLong.IsLatLong(text, format)) latLong.ParseLatLong(text, format, x, y);
  // x is -79.98..., y is 40.44...
  // end of snippet
  EXPECT_NEAR(x, -79.98222, 1e-5);
  EXPECT_NEAR(y, 40.44611, 1e-5);
}

TEST_F(HeaderExamplesTest, PlatformTexts) {
  const char* const bytes = "Z\xC3\xBCrich";
  const int count = 7;
  // snippet: platform/CodePages.h
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, bytes, count, nullptr, 0);  // asks the size
  std::u16string text(static_cast<std::size_t>(size), u'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, bytes, count, AsOle(text.data()), size);
  // end of snippet
  EXPECT_EQ(text, u"Z\u00FCrich");
  {
    // snippet: platform/OleText.h
    const BSTR name = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
    const std::u16string copy(ViewOf(name));
    ::SysFreeString(name);
    // end of snippet
    EXPECT_EQ(copy, text);
  }
  // snippet: platform/OleAutomation.h
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_BSTR;
  value.bstrVal = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
  ::VariantClear(&value);  // frees the text
  // end of snippet
  EXPECT_EQ(value.vt, VT_EMPTY);
}

TEST_F(HeaderExamplesTest, FileNames) {
  folder_.Write(u"a.csv", "Id\n");
  const std::filesystem::path folder(NativeFromFileName(folder_.Path()));
  std::string line;
  for (const std::filesystem::directory_entry& entry :
       std::filesystem::directory_iterator(folder)) {
    // snippet: platform/FileNames.h
    const std::u16string name = FileNameFromNative(entry.path().filename().native());
    std::ifstream stream(folder / NativeFromFileName(name));
    // end of snippet
    EXPECT_EQ(name, u"a.csv");
    std::getline(stream, line);
  }
  EXPECT_EQ(line, "Id");
}

TEST_F(HeaderExamplesTest, Threads) {
  // snippet: platform/Threads.h
  CRITICAL_SECTION lock = {};
  ::InitializeCriticalSection(&lock);
  ::EnterCriticalSection(&lock);  // the owner may enter again
  ::LeaveCriticalSection(&lock);
  ::DeleteCriticalSection(&lock);
  // end of snippet
  int references = 1;
  // snippet: platform/SingleThread.h
  if (IsOnlyThread()) ++references;  // nobody else looks
  // end of snippet
  EXPECT_GE(references, 1);
}

TEST_F(HeaderExamplesTest, Registry) {
  LSTATUS closed = -1;
  // snippet: platform/Registry.h
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, AsOle(u"CLSID"), 0, KEY_READ, &key) == ERROR_SUCCESS)
    closed = ::RegCloseKey(key);
  // end of snippet
  EXPECT_EQ(closed == 0, key != nullptr);
}

}  // namespace
}  // namespace quenra::test
