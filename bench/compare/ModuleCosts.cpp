// What single steps of the built module cost, told in one line each for scripts/bench --compare.
//
//   module_costs open TABLE [--no-lat-long-fields]
//       wall microseconds of opening the table, and bytes read by the last opening
//   module_costs scan TABLE...
//       CPU nanoseconds of walking all rows of all tables with all values, one table after the
//       other, from opening its cursor to releasing it
//   module_costs write TABLE NEWTABLE ROWS [--copied]
//       CPU seconds of loading so many rows into a new table with the fields of the first one;
//       they are its first ones (100,000 cells at most), over and over; the host's row buffers lend
//       their texts, or make a copy of each for the loader
//   module_costs cursors TABLE COUNT
//       peak of resident memory with so many cursors in the table at the same time
//   module_costs run PROGRAM [ARGUMENT...]
//       peak of resident memory of another program
//
// The coordinate fields are left out everywhere but in open.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/DataSourceClasses.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"
#include "platform/FileNames.h"
#include "platform/Modules.h"
#include "platform/OleText.h"

namespace {

using quenra::BString;
using quenra::ComPtr;

void Require(HRESULT result, const char* step) {
  if (FAILED(result)) throw std::runtime_error(step);
}

double Seconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// A number of the system's files about this process, such as "VmHWM:" of "status".
long long FromProc(const std::string& file, const std::string& name) {
  std::ifstream lines("/proc/self/" + file);
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with(name)) return std::strtoll(line.c_str() + name.size(), nullptr, 10);
  throw std::runtime_error("cannot read " + file);
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Runs `step`, which returns its own cost, until the figure is steady: a dozen times at least.
template <class Step>
double MedianOf(Step step) {
  constexpr std::size_t kFewest = 12, kMost = 400;
  constexpr double kSeconds = 0.4;
  std::vector<double> costs;
  const double start = Seconds(CLOCK_MONOTONIC);
  while (costs.size() < kFewest ||
         (costs.size() < kMost && Seconds(CLOCK_MONOTONIC) - start < kSeconds))
    costs.push_back(step());
  return Median(costs);
}

BString FileName(std::string_view native) {
  return BString(FileNameFromNative(NativeFileName(native)));
}

struct TablePath {
  BString folder;
  BString name;
};
TablePath Split(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return {FileName("."), FileName(path)};
  return {FileName(path.substr(0, slash)), FileName(path.substr(slash + 1))};
}

using GetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

// The module, which stays loaded until the end.
class Module {
 public:
  Module() {
    const HMODULE module = ::LoadLibraryW(FileName(MODULE_FILE).Get());
    if (module == nullptr) throw std::runtime_error("cannot load the module");
    const auto getClassObject = reinterpret_cast<GetClassObjectFunction>(
        reinterpret_cast<void*>(::GetProcAddress(module, "DllGetClassObject")));
    if (getClassObject == nullptr) throw std::runtime_error("the module is no data source");
    ComPtr<IClassFactory> classFactory;
    Require(getClassObject(quenra::CLSID_TextFileWorkspaceFactory, IID_IClassFactory,
                           classFactory.ReceiveVoid()),
            "class factory");
    Require(classFactory->CreateInstance(nullptr, quenra::IID_IPlugInWorkspaceFactoryHelper,
                                         factory_.ReceiveVoid()),
            "workspace factory");
  }

  void LeaveOutCoordinates() const {
    const BString option(u"DoNotAutoGenerateLatLongFields");
    Require(factory_.As<quenra::IWorkspaceFactoryOpenOptions>()->SetOption(option.Get(), nullptr),
            "option");
  }
  ComPtr<quenra::IPlugInWorkspaceHelper> OpenFolder(const BString& folder) const {
    ComPtr<quenra::IPlugInWorkspaceHelper> workspace;
    Require(factory_->OpenFolderWorkspace(folder.Get(), workspace.Receive()), "workspace");
    return workspace;
  }
  ComPtr<quenra::IPlugInDatasetHelper> OpenTable(std::string_view path) const {
    const TablePath table = Split(path);
    ComPtr<quenra::IPlugInDatasetHelper> dataset;
    Require(OpenFolder(table.folder)->OpenDatasetByName(table.name.Get(), dataset.Receive()),
            "dataset");
    return dataset;
  }

 private:
  ComPtr<quenra::IPlugInWorkspaceFactoryHelper> factory_;
};

// A cursor over every field, with the slots of the host's that it fills.
class AllValues {
 public:
  explicit AllValues(quenra::IPlugInDatasetHelper& dataset) {
    Require(dataset.DescribeFields(0, fields_.Receive()), "fields");
    LONG count = 0;
    Require(fields_->GetFieldCount(&count), "field count");
    slots_.resize(static_cast<std::size_t>(count));
    for (quenra::HostFieldValue& slot : slots_) ::VariantInit(&slot.value);

    quenra::Variant map;
    SAFEARRAY* const array = ::SafeArrayCreateVector(VT_I4, 0, static_cast<ULONG>(count));
    if (array == nullptr) throw std::bad_alloc();
    VARIANT& raw = *map.Receive();
    raw.vt = VT_ARRAY | VT_I4;
    raw.parray = array;
    void* data = nullptr;
    Require(::SafeArrayAccessData(array, &data), "field map");
    for (LONG i = 0; i < count; ++i) static_cast<LONG*>(data)[i] = i;
    ::SafeArrayUnaccessData(array);
    Require(dataset.FetchAllRows(0, nullptr, map.Get(), cursor_.Receive()), "cursor");
    values_ = cursor_.As<quenra::IPlugInFastQueryValues>();
    if (!values_) throw std::runtime_error("cursor values");
  }
  ~AllValues() { Clear(); }
  AllValues(const AllValues&) = delete;
  AllValues& operator=(const AllValues&) = delete;

  // Fills the slots from the next record, the first one at first; false behind the last one.
  bool Read() {
    if (started_) {
      const HRESULT result = cursor_->AdvanceRecord();
      Require(result, "row");
      if (result != S_OK) return false;
    } else {
      VARIANT_BOOL finished = VARIANT_FALSE;
      Require(cursor_->AtLastRecord(&finished), "cursor");
      if (finished != VARIANT_FALSE) return false;
      started_ = true;
    }
    Clear();
    Require(values_->ReadRecordValuesFast(slots_.data()), "row");
    return true;
  }

  const ComPtr<quenra::HostFieldCollection>& Fields() const noexcept { return fields_; }
  const std::vector<quenra::HostFieldValue>& Slots() const noexcept { return slots_; }

 private:
  void Clear() noexcept {
    for (quenra::HostFieldValue& slot : slots_) quenra::ClearVariant(slot.value);
  }

  ComPtr<quenra::HostFieldCollection> fields_;
  std::vector<quenra::HostFieldValue> slots_;
  ComPtr<quenra::IPlugInCursorHelper> cursor_;
  ComPtr<quenra::IPlugInFastQueryValues> values_;
  bool started_ = false;
};

void Open(const Module& module, const char* path) {
  const TablePath table = Split(path);
  const auto workspace = module.OpenFolder(table.folder);
  long long read = 0;
  const double seconds = MedianOf([&] {
    const long long before = FromProc("io", "rchar:");
    const double start = Seconds(CLOCK_MONOTONIC);
    ComPtr<quenra::IPlugInDatasetHelper> dataset;
    Require(workspace->OpenDatasetByName(table.name.Get(), dataset.Receive()), "dataset");
    const double end = Seconds(CLOCK_MONOTONIC);
    read = FromProc("io", "rchar:") - before;
    return end - start;
  });
  // What it takes to ask.
  const long long before = FromProc("io", "rchar:");
  read -= FromProc("io", "rchar:") - before;
  std::printf("open_us %.1f read %lld\n", seconds * 1e6, read);
}

void Scan(const Module& module, char** paths) {
  std::vector<ComPtr<quenra::IPlugInDatasetHelper>> tables;
  for (; *paths != nullptr; ++paths) tables.push_back(module.OpenTable(*paths));
  long long rows = 0, columns = 0;
  const double seconds = MedianOf([&] {
    rows = 0;
    const double start = Seconds(CLOCK_PROCESS_CPUTIME_ID);
    for (const auto& table : tables) {
      AllValues values(*table);
      while (values.Read()) ++rows;
      columns = static_cast<long long>(values.Slots().size());
    }
    return Seconds(CLOCK_PROCESS_CPUTIME_ID) - start;
  });
  std::printf("scan_ns %.0f rows %lld columns %lld\n", seconds * 1e9, rows, columns);
}

// A row buffer that hands out copies alone.
class CopyingRow final : public quenra::Implements<quenra::HostRowBuffer> {
 public:
  explicit CopyingRow(ComPtr<quenra::HostRowBuffer> row) : row_(std::move(row)) {}

  std::u16string_view ClassName() const noexcept override { return u"CopyingRow"; }
  HRESULT STDMETHODCALLTYPE GetFields(quenra::HostFieldCollection** fields) override {
    return row_->GetFields(fields);
  }
  HRESULT STDMETHODCALLTYPE GetValue(LONG index, VARIANT* value) override {
    return row_->GetValue(index, value);
  }
  HRESULT STDMETHODCALLTYPE SetValue(LONG index, const VARIANT* value) override {
    return row_->SetValue(index, value);
  }

 private:
  const ComPtr<quenra::HostRowBuffer> row_;
};

ComPtr<quenra::HostRowBuffer> RowOf(const AllValues& values, bool lent) {
  ComPtr<quenra::HostRowBuffer> row;
  Require(quenra::CreateComponentInstance(quenra::CLSID_HostRowBuffer, row.Receive()), "row");
  Require(row.As<quenra::HostRowBufferEdit>()->SetFields(values.Fields().Get()), "row");
  LONG index = 0;
  for (const quenra::HostFieldValue& slot : values.Slots())
    Require(row->SetValue(index++, &slot.value), "row");
  if (lent) return row;
  return quenra::MakeObject<CopyingRow>(row).As<quenra::HostRowBuffer>();
}

void Write(const Module& module, const char* path, const char* newPath, long long count,
           bool lent) {
  constexpr std::size_t kMostCells = 100000;
  const auto source = module.OpenTable(path);
  AllValues values(*source);
  std::vector<ComPtr<quenra::HostRowBuffer>> rows;
  while (rows.size() * values.Slots().size() < kMostCells && values.Read())
    rows.push_back(RowOf(values, lent));

  const TablePath target = Split(newPath);
  ComPtr<quenra::IPlugInDatasetHelper> dataset;
  Require(module.OpenFolder(target.folder)
              .As<quenra::IPlugInCreateDataset>()
              ->CreateTable(target.name.Get(), values.Fields().Get(), dataset.Receive()),
          "new table");
  const double start = Seconds(CLOCK_PROCESS_CPUTIME_ID);
  ComPtr<quenra::IPlugInDatasetLoader> loader;
  Require(dataset.As<quenra::IPlugInDatasetLoad>()->CreateLoader(nullptr, loader.Receive()),
          "loader");
  std::size_t row = 0;
  for (long long written = 0; written < count; ++written) {
    Require(loader->LoadRow(rows[row].Get()), "row");
    row = row + 1 == rows.size() ? 0 : row + 1;
  }
  loader.Reset();
  std::printf("write_s %.4f rows %lld\n", Seconds(CLOCK_PROCESS_CPUTIME_ID) - start, count);
}

// Each of them stands in the middle of the table's first thousands of rows.
void Cursors(const Module& module, const char* path, long long count) {
  constexpr int kRows = 5000;
  const auto dataset = module.OpenTable(path);
  std::vector<std::unique_ptr<AllValues>> cursors;
  for (long long i = 0; i < count; ++i) {
    AllValues& values = *cursors.emplace_back(std::make_unique<AllValues>(*dataset));
    for (int row = 0; row < kRows && values.Read(); ++row) continue;
  }
  std::printf("peak_kib %lld\n", FromProc("status", "VmHWM:"));
}

// Through a fork of this small process: the peak of a program counts what its process was before.
int Run(char** command) {
  const pid_t child = fork();
  if (child == 0) {
    execvp(command[0], command);
    std::perror(command[0]);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) < 0) throw std::runtime_error("cannot run");
  std::printf("peak_kib %ld\n", usage.ru_maxrss);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

int Main(int argc, char** argv) {
  constexpr std::string_view kCopied = "--copied";
  const std::string_view mode = argc > 2 ? argv[1] : "";
  if (mode == "run") return Run(argv + 2);
  const Module module;
  if (mode == "open") {
    if (argc > 3 && std::string_view(argv[3]) == "--no-lat-long-fields")
      module.LeaveOutCoordinates();
    Open(module, argv[2]);
    return 0;
  }
  module.LeaveOutCoordinates();
  if (mode == "scan")
    Scan(module, argv + 2);
  else if (mode == "write" && (argc == 5 || (argc == 6 && argv[5] == kCopied)))
    Write(module, argv[2], argv[3], std::strtoll(argv[4], nullptr, 10), argc == 5);
  else if (mode == "cursors" && argc == 4)
    Cursors(module, argv[2], std::strtoll(argv[3], nullptr, 10));
  else
    throw std::runtime_error("the head of ModuleCosts.cpp says how to call this");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (!quenra::QUENRALocale::SetLocale(u"en-US")) return 1;
    return Main(argc, argv);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "module_costs: %s\n", failure.what());
    return 1;
  }
}
