// Whole tables through the built module, the way a host walks them.

#ifdef MODULE_FILE

#include <stdexcept>
#include <string>
#include <vector>

#include "Throughput.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/DataSourceClasses.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"
#include "platform/FileNames.h"
#include "platform/Modules.h"
#include "platform/OleText.h"

namespace {

using quenra::ComPtr;

void Require(HRESULT result, const char* step) {
  if (FAILED(result)) throw std::runtime_error(step);
}

class Bstr {
 public:
  explicit Bstr(const std::string& fileName) {
    const std::u16string text =
        FileNameFromNative(NativeFileName(fileName.begin(), fileName.end()));
    text_ = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
  }
  ~Bstr() { ::SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  BSTR Get() const noexcept { return text_; }

 private:
  BSTR text_;
};

using GetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

// Loaded once and never unloaded, as in a host that keeps its data sources.
ComPtr<IClassFactory> ClassFactory() {
  const Bstr file(MODULE_FILE);
  const HMODULE module = ::LoadLibraryW(file.Get());
  if (module == nullptr) throw std::runtime_error("cannot load the module");
  const auto getClassObject = reinterpret_cast<GetClassObjectFunction>(
      reinterpret_cast<void*>(::GetProcAddress(module, "DllGetClassObject")));
  if (getClassObject == nullptr) throw std::runtime_error("the module is no data source");
  ComPtr<IClassFactory> factory;
  Require(getClassObject(quenra::CLSID_TextFileWorkspaceFactory, IID_IClassFactory,
                         factory.ReceiveVoid()),
          "class factory");
  return factory;
}

ComPtr<quenra::IPlugInWorkspaceHelper> OpenWorkspace() {
  static const ComPtr<IClassFactory> classFactory = ClassFactory();
  ComPtr<quenra::IPlugInWorkspaceFactoryHelper> factory;
  Require(classFactory->CreateInstance(nullptr, quenra::IID_IPlugInWorkspaceFactoryHelper,
                                       factory.ReceiveVoid()),
          "workspace factory");
  const Bstr folder(BENCHMARK_DATA_DIR);
  ComPtr<quenra::IPlugInWorkspaceHelper> workspace;
  Require(factory->OpenFolderWorkspace(folder.Get(), workspace.Receive()), "workspace");
  return workspace;
}

ComPtr<quenra::IPlugInDatasetHelper> OpenDataset(const BenchmarkTable& table) {
  const Bstr name(table.fileName);
  ComPtr<quenra::IPlugInDatasetHelper> dataset;
  Require(OpenWorkspace()->OpenDatasetByName(name.Get(), dataset.Receive()), "dataset");
  return dataset;
}

// Opens the table again and again; the workspace stays.
void Open(benchmark::State& state, const BenchmarkTable& table) {
  const auto workspace = OpenWorkspace();
  const Bstr name(table.fileName);
  for (auto iteration : state) {
    ComPtr<quenra::IPlugInDatasetHelper> dataset;
    if (FAILED(workspace->OpenDatasetByName(name.Get(), dataset.Receive())))
      return state.SkipWithError("the table does not open");
  }
}

// The slots of a host that wants every field, and the map that says so.
class AllColumns {
 public:
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  explicit AllColumns(quenra::IPlugInDatasetHelper& dataset) {
    ComPtr<quenra::HostFieldCollection> fields;
    Require(dataset.DescribeFields(0, fields.Receive()), "fields");
    LONG count = 0;
    Require(fields->GetFieldCount(&count), "field count");
    slots_.resize(static_cast<std::size_t>(count));
    for (quenra::HostFieldValue& slot : slots_) ::VariantInit(&slot.value);

    ::VariantInit(&map_);
    map_.parray = ::SafeArrayCreateVector(VT_I4, 0, static_cast<ULONG>(count));
    if (map_.parray == nullptr) throw std::runtime_error("field map");
    map_.vt = VT_ARRAY | VT_I4;
    void* data = nullptr;
    Require(::SafeArrayAccessData(map_.parray, &data), "field map");
    for (LONG i = 0; i < count; ++i) static_cast<LONG*>(data)[i] = i;
    ::SafeArrayUnaccessData(map_.parray);
  }
  ~AllColumns() {
    for (quenra::HostFieldValue& slot : slots_) ::VariantClear(&slot.value);
    ::VariantClear(&map_);
  }
  AllColumns(const AllColumns&) = delete;
  AllColumns& operator=(const AllColumns&) = delete;

  const VARIANT& map() const noexcept { return map_; }
  quenra::HostFieldValue* slots() noexcept { return slots_.data(); }

 private:
  std::vector<quenra::HostFieldValue> slots_;
  VARIANT map_;
};

std::int64_t FetchRows(quenra::IPlugInDatasetHelper& dataset, AllColumns& columns) {
  ComPtr<quenra::IPlugInCursorHelper> cursor;
  Require(dataset.FetchAllRows(0, nullptr, columns.map(), cursor.Receive()), "cursor");
  const auto values = cursor.As<quenra::IPlugInFastQueryValues>();
  if (!values) throw std::runtime_error("cursor values");
  std::int64_t rows = 0;
  VARIANT_BOOL finished = VARIANT_FALSE;
  Require(cursor->AtLastRecord(&finished), "cursor");
  while (finished == VARIANT_FALSE) {
    Require(values->ReadRecordValuesFast(columns.slots()), "row");
    ++rows;
    Require(cursor->AdvanceRecord(), "row");
    Require(cursor->AtLastRecord(&finished), "row");
  }
  return rows;
}

void Cursor(benchmark::State& state, const BenchmarkTable& table) {
  const auto dataset = OpenDataset(table);
  AllColumns columns(*dataset);
  for (auto iteration : state)
    if (FetchRows(*dataset, columns) != table.rows) return state.SkipWithError("rows are missing");
  ReportTable(state, table);
}

void CountRows(benchmark::State& state, const BenchmarkTable& table) {
  const auto dataset = OpenDataset(table);
  const auto counter = dataset.As<quenra::IPlugInRowCount>();
  for (auto iteration : state) {
    LONG rows = 0;
    if (!counter || FAILED(counter->CountRows(0, &rows)) || rows != table.rows)
      return state.SkipWithError("rows are missing");
  }
  ReportTable(state, table);
}

const int kRegistered[] = {ForEveryTable("Open", &Open), ForEveryTable("Cursor", &Cursor),
                           ForEveryTable("CountRows", &CountRows)};

}  // namespace

#endif  // MODULE_FILE
