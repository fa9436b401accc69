// A host in C++: loads the module, creates a table, appends rows, lists and reads tables, and asks
// for errors. docs/host-interfaces.md quotes the parts between "snippet" and "end of snippet".
//
//   text_table_host FOLDER [MODULE]
//
// FOLDER holds no towns.csv yet. The program ends with 1 and a line on standard error at the first
// call that fails.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

// snippet: headers
#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "host/DataCore/DataCoreUtil.h"
#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/DataSourceClasses.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostErrors.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"
#include "platform/CodePages.h"
#include "platform/Modules.h"

using namespace quenra;
// end of snippet

namespace {

std::string Utf8(std::u16string_view text) {
  std::string bytes(text.size() * 3, '\0');
  const int size =
      ::WideCharToMultiByte(CP_UTF8, 0, AsOle(text.data()), static_cast<int>(text.size()),
                            bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
  bytes.resize(static_cast<std::size_t>(size));
  return bytes;
}

#ifdef _WIN32
constexpr UINT kArgumentCodePage = CP_ACP;
#else
constexpr UINT kArgumentCodePage = CP_UTF8;
#endif

std::u16string FromArgument(std::string_view bytes) {
  std::u16string text(bytes.size(), u'\0');
  const int size =
      ::MultiByteToWideChar(kArgumentCodePage, 0, bytes.data(), static_cast<int>(bytes.size()),
                            AsOle(text.data()), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(size));
  return text;
}

void Check(HRESULT result, const char* call) {
  if (SUCCEEDED(result)) return;
  std::fprintf(stderr, "%s: 0x%08X\n", call, static_cast<unsigned>(result));
  std::exit(1);
}

// snippet: settings
void ApplySettings() {
  QUENRALocale::SetLocale(u"en-US");
  const Variant older(LONG{1});
  DataCoreUtil::SetOption(u"Use31FieldTypeMapping", older.Address());
  DataCoreUtil::SetOption(u"Use31FieldTypeMapping", nullptr);  // and away again
  EventLog::SetSink([](const EventLogRecord& record) {
    if (record.kind == EventLogRecord::Kind::kMessage)
      std::printf("event: %s\n", Utf8(record.text).c_str());
  });
}
// end of snippet

// snippet: load
using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

template <class Function>
Function Entry(HMODULE module, const char* name) {
  // Through void*, since the two are functions of different types.
  return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
}

HRESULT NewFactory(HMODULE module, ComPtr<IPlugInWorkspaceFactoryHelper2>& factory) {
  const auto getClassObject = Entry<GetClassObject>(module, "DllGetClassObject");
  if (getClassObject == nullptr) return E_NOTIMPL;
  ComPtr<IClassFactory> classFactory;
  const HRESULT result =
      getClassObject(CLSID_TextFileWorkspaceFactory, IID_IClassFactory, classFactory.ReceiveVoid());
  if (FAILED(result)) return result;
  return classFactory->CreateInstance(nullptr, kInterfaceId<IPlugInWorkspaceFactoryHelper2>,
                                      factory.ReceiveVoid());
}
// end of snippet

// snippet: unload
bool Unload(HMODULE module) {
  using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();
  ::SetErrorInfo(0, nullptr);  // an error that nobody has read may be kept here
  if (Entry<CanUnloadNow>(module, "DllCanUnloadNow")() != S_OK) return false;
  return ::FreeLibrary(module) != 0;
}
// end of snippet

// snippet: create
HRESULT AddField(const ComPtr<HostFieldCollectionEdit>& fields, std::u16string_view name,
                 LONG type) {
  ComPtr<HostFieldEdit> edit;
  const HRESULT result = CreateComponentInstance(CLSID_HostField, edit.Receive());
  if (FAILED(result)) return result;
  const BString text(name);
  edit->SetName(text.Get());
  edit->SetType(type);
  return fields->AddField(edit.As<HostField>().Get());
}

HRESULT CreateTowns(const ComPtr<IPlugInWorkspaceHelper>& workspace,
                    ComPtr<IPlugInDatasetHelper>& table) {
  ComPtr<HostFieldCollectionEdit> fields;
  HRESULT result = CreateComponentInstance(CLSID_HostFieldCollection, fields.Receive());
  if (FAILED(result)) return result;
  AddField(fields, u"Id", 1);    // a whole number of 32 bits
  AddField(fields, u"Name", 4);  // text; without a length it may have 8000 characters
  const BString name(u"towns.csv");
  return workspace.As<IPlugInCreateDataset>()->CreateTable(
      name.Get(), fields.As<HostFieldCollection>().Get(), table.Receive());
}
// end of snippet

// snippet: append
HRESULT AppendTowns(const ComPtr<IPlugInDatasetHelper>& table) {
  ComPtr<HostFieldCollection> fields;
  HRESULT result = table->DescribeFields(0, fields.Receive());
  if (FAILED(result)) return result;
  ComPtr<HostRowBuffer> row;
  result = CreateComponentInstance(CLSID_HostRowBuffer, row.Receive());
  if (FAILED(result)) return result;
  row.As<HostRowBufferEdit>()->SetFields(fields.Get());

  ComPtr<IPlugInDatasetLoader> loader;
  result = table.As<IPlugInDatasetLoad>()->CreateLoader(nullptr, loader.Receive());
  if (FAILED(result)) return result;
  const Variant names[] = {Variant(u"Z\u00FCrich"), Variant(u"Basel, BS")};
  for (LONG i = 0; i < 2; ++i) {
    row->SetValue(0, Variant(i + 1).Address());
    row->SetValue(1, names[i].Address());
    result = loader->LoadRow(row.Get());
    if (FAILED(result)) return result;
  }
  return S_OK;  // the loader goes here: now all rows are in the file
}
// end of snippet

void PrintValue(const VARIANT& value) {
  if (value.vt == VT_I4) std::printf(" %d", static_cast<int>(value.lVal));
  if (value.vt == VT_BSTR) std::printf(" %s", Utf8(ViewOf(value.bstrVal)).c_str());
  if (value.vt == VT_NULL) std::printf(" null");
  if (value.vt != VT_UNKNOWN) return;
  SHORT minutes = 0;
  if (const auto stamp = QueryFor<HostTimestampOffset>(value.punkVal))
    stamp->GetOffsetMinutes(&minutes);
  std::printf(" a time %d minutes east", static_cast<int>(minutes));
}

// snippet: read
// A map that gives field i the slot i. The cursor keeps it locked, so it must live longer.
class FieldMap {
 public:
  explicit FieldMap(LONG count) {
    map_.vt = VT_ARRAY | VT_I4;
    map_.parray = ::SafeArrayCreateVector(VT_I4, 0, static_cast<ULONG>(count));
    for (LONG i = 0; i < count; ++i) ::SafeArrayPutElement(map_.parray, &i, &i);
  }
  ~FieldMap() { ::VariantClear(&map_); }
  FieldMap(const FieldMap&) = delete;
  FieldMap& operator=(const FieldMap&) = delete;
  const VARIANT& Get() const { return map_; }

 private:
  VARIANT map_ = {};
};

HRESULT PrintRows(const ComPtr<IPlugInDatasetHelper>& table) {
  ComPtr<HostFieldCollection> fields;
  HRESULT result = table->DescribeFields(0, fields.Receive());
  if (FAILED(result)) return result;
  LONG count = 0;
  fields->GetFieldCount(&count);

  const FieldMap map(count);
  ComPtr<IPlugInCursorHelper> cursor;  // goes before the map does
  result = table->FetchAllRows(0, nullptr, map.Get(), cursor.Receive());
  if (FAILED(result)) return result;
  const auto fast = cursor.As<IPlugInFastQueryValues>();
  std::vector<HostFieldValue> slots(static_cast<std::size_t>(count));
  for (HostFieldValue& slot : slots) ::VariantInit(&slot.value);

  VARIANT_BOOL finished = VARIANT_FALSE;
  while (cursor->AtLastRecord(&finished) == S_OK && finished == VARIANT_FALSE) {
    result = fast->ReadRecordValuesFast(slots.data());
    if (FAILED(result)) break;
    std::printf("row:");
    for (HostFieldValue& slot : slots) {
      PrintValue(slot.value);
      ::VariantClear(&slot.value);  // a shorter row leaves what it does not reach
    }
    std::printf("\n");
    result = cursor->AdvanceRecord();
    if (FAILED(result)) break;
  }
  for (HostFieldValue& slot : slots) ::VariantClear(&slot.value);
  return FAILED(result) ? result : S_OK;
}
// end of snippet

// snippet: list
HRESULT ListTables(const ComPtr<IPlugInWorkspaceHelper>& workspace) {
  ComPtr<HostArray> tables;
  const HRESULT result = workspace->EnumerateDatasets(kDatasetTypeTable, tables.Receive());
  if (FAILED(result)) return result;
  LONG count = 0;
  tables->GetCount(&count);
  for (LONG i = 0; i < count; ++i) {
    ComPtr<IUnknown> table;
    tables->GetElement(i, table.Receive());
    BString title;
    table.As<IPlugInDatasetInfo>()->DatasetFileTitle(title.Receive());
    std::printf("table: %s\n", Utf8(title.View()).c_str());
    PrintRows(table.As<IPlugInDatasetHelper>());
  }
  return S_OK;
}
// end of snippet

// snippet: errors
void PrintErrors() {
  ComPtr<IErrorInfo> info;
  if (::GetErrorInfo(0, info.Receive()) != S_OK) return;
  for (auto error = info.As<HostChainedError>(); error;) {  // newest first
    HRESULT code = S_OK;
    error->GetCode(&code);
    BString text;
    error->GetText(text.Receive());
    BString source;
    error.As<IErrorInfo>()->GetSource(source.Receive());
    std::printf("error: 0x%08X %s: %s\n", static_cast<unsigned>(code), Utf8(source.View()).c_str(),
                Utf8(text.View()).c_str());
    ComPtr<HostChainedError> next;
    error->GetNext(next.Receive());
    error = std::move(next);
  }
}
// end of snippet

// snippet: own
// Our own class of timestamps, in the place of the embedded one.
class MyTimestamp final : public Implements<HostTimestampOffset> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"MyTimestamp"; }
  HRESULT STDMETHODCALLTYPE SetValue(DATE date, SHORT offsetMinutes) override {
    date_ = date;
    offsetMinutes_ = offsetMinutes;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetDate(DATE* date) override {
    if (date == nullptr) return E_POINTER;
    *date = date_;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetOffsetMinutes(SHORT* offsetMinutes) override {
    if (offsetMinutes == nullptr) return E_POINTER;
    *offsetMinutes = offsetMinutes_;
    return S_OK;
  }

 private:
  DATE date_ = 0;
  SHORT offsetMinutes_ = 0;
};

HRESULT CreateMyTimestamp(IUnknown* outer, const IID& interfaceId, void** object) {
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  return MakeObject<MyTimestamp>()->QueryInterface(interfaceId, object);
}
// end of snippet

// Everything that is done with objects of the module; they are gone when this returns.
void UseModule(HMODULE module, std::u16string_view folder) {
  ComPtr<IPlugInWorkspaceFactoryHelper2> factory;
  Check(NewFactory(module, factory), "DllGetClassObject");

  // snippet: open
  const BString option(u"ReadAsManyRowsAsNeeded");
  factory.As<IWorkspaceFactoryOpenOptions>()->SetOption(option.Get(), nullptr);
  const BString path(folder);
  ComPtr<IPlugInWorkspaceHelper> workspace;
  const HRESULT opened = factory->OpenFolderWorkspace(path.Get(), workspace.Receive());
  // end of snippet
  Check(opened, "OpenFolderWorkspace");

  ComPtr<IPlugInDatasetHelper> table;
  Check(CreateTowns(workspace, table), "CreateTable");
  Check(AppendTowns(table), "LoadRow");
  Check(ListTables(workspace), "EnumerateDatasets");

  const BString missing(u"missing/");
  ComPtr<IPlugInWorkspaceHelper> none;
  if (SUCCEEDED(factory->OpenFolderWorkspace(missing.Get(), none.Receive()))) std::exit(1);
  ComPtr<IPlugInDatasetHelper> refused;
  ComPtr<HostFieldCollection> fields;
  Check(table->DescribeFields(0, fields.Receive()), "DescribeFields");
  const BString up(u"../up.csv");
  if (SUCCEEDED(workspace.As<IPlugInCreateDataset>()->CreateTable(up.Get(), fields.Get(),
                                                                  refused.Receive())))
    std::exit(1);
  PrintErrors();
}

}  // namespace

int main(int count, char** arguments) {
  const char* modulePath = count > 2 ? arguments[2] : MODULE_FILE;
  if (count < 2) return 1;
  ApplySettings();
  SetComponentCreator(CLSID_HostTimestampOffset, &CreateMyTimestamp);
  const HMODULE module = ::LoadLibraryW(AsOle(FromArgument(modulePath).c_str()));
  if (module == nullptr) return 1;
  UseModule(module, FromArgument(arguments[1]));
  if (!Unload(module)) return 1;
  EventLog::SetSink({});
  std::printf("objects left: %d\n", static_cast<int>(LiveComponentCount()));
}
