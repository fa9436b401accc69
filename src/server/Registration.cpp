#include "server/Registration.h"

#include "host/CoreSupport/GuidText.h"
#include "host/interfaces/DataSourceClasses.h"
#include "platform/ComponentCategories.h"
#include "platform/Modules.h"
#include "platform/OleText.h"
#include "resources/ResourceStrings.h"
#include "server/ClassTable.h"
#include "server/RegistryKeys.h"

namespace quenra {
namespace {

constexpr LSTATUS kDone = static_cast<LSTATUS>(ERROR_SUCCESS);

constexpr char16_t kErrorLookupName[] = u"Error Lookup Service";

std::u16string ClassKey(const ClassEntry& entry) { return u"CLSID\\" + GuidText(entry.classId); }

const char16_t* NameOf(ThreadingModel model) {
  switch (model) {
    case ThreadingModel::kFree:
      return u"Free";
    case ThreadingModel::kBoth:
      return u"Both";
    case ThreadingModel::kApartment:
      break;
  }
  return u"Apartment";
}

// Empty when the file has no name, or one that the registry's readers have no room for.
std::u16string ModuleFileName() {
  char16_t name[MAX_PATH + 1] = {};
  const DWORD length = ::GetModuleFileNameW(OwnModule(), AsOle(name), MAX_PATH + 1);
  return length <= MAX_PATH ? std::u16string(name, length) : std::u16string();
}

// Writes texts until one is refused; that first answer is kept.
class Writer {
 public:
  void Text(const std::u16string& path, const std::u16string& name, const std::u16string& text) {
    if (Done()) result_ = WriteRegistryText(path, name, text);
  }
  void Default(const std::u16string& path, const std::u16string& text) { Text(path, {}, text); }
  void Key(const std::u16string& path) {
    if (Done()) result_ = CreateRegistryKey(path);
  }
  bool Done() const { return result_ == kDone; }
  LSTATUS Result() const { return result_; }

 private:
  LSTATUS result_ = kDone;
};

void WriteServer(Writer& writer, const ClassEntry& entry, const std::u16string& moduleFile) {
  const std::u16string key = ClassKey(entry);
  writer.Default(key, std::u16string(entry.description));
  writer.Default(key + u"\\InprocServer32", moduleFile);
  writer.Text(key + u"\\InprocServer32", u"ThreadingModel", NameOf(entry.threadingModel));
}

void WriteProgIds(Writer& writer, const ClassEntry& entry) {
  const std::u16string key = ClassKey(entry);
  const std::u16string classId = GuidText(entry.classId);
  const std::u16string progId = ProgId(entry);
  const std::u16string versioned = VersionedProgId(entry);
  writer.Default(progId, progId);
  writer.Default(progId + u"\\CLSID", classId);
  writer.Default(progId + u"\\CurVer", versioned);
  writer.Default(versioned, versioned);
  writer.Default(versioned + u"\\CLSID", classId);
  writer.Default(key + u"\\VersionIndependentProgID", progId);
  writer.Default(key + u"\\ProgID", versioned);
  if (entry.typeLibrary != nullptr)
    writer.Default(key + u"\\TypeLib", GuidText(*entry.typeLibrary));
}

// What the registry said of a call that hands it on in an HRESULT.
LSTATUS StatusOf(HRESULT result) {
  if (SUCCEEDED(result)) return kDone;
  const bool isSystems = HRESULT_FACILITY(result) == FACILITY_WIN32;
  return isSystems ? static_cast<LSTATUS>(HRESULT_CODE(result)) : result;
}

LSTATUS WriteCategories(const ClassEntry& entry) {
  LSTATUS result = kDone;
  for (const GUID& category : entry.categories)
    if (result == kDone) result = StatusOf(RegisterImplementedCategory(entry.classId, category));
  return result;
}

void WriteExtendedErrors(Writer& writer, const ClassEntry& entry) {
  const std::u16string key = ClassKey(entry) + u"\\ExtendedErrors";
  writer.Key(key);
  writer.Default(key + u'\\' + GuidText(CLSID_ErrorLookupService), kErrorLookupName);
}

// Answers what the registry said first that was no success; so does RemoveClass.
LSTATUS WriteClass(const ClassEntry& entry, const std::u16string& moduleFile) {
  Writer writer;
  WriteServer(writer, entry, moduleFile);
  WriteProgIds(writer, entry);
  if (!writer.Done()) return writer.Result();
  if (const LSTATUS result = WriteCategories(entry); result != kDone) return result;
  WriteExtendedErrors(writer, entry);
  return writer.Result();
}

// Goes on after a failure: what can go does.
LSTATUS RemoveClass(const ClassEntry& entry) {
  LSTATUS first = kDone;
  const auto note = [&first](LSTATUS result) {
    if (first == kDone) first = result;
  };
  for (const GUID& category : entry.categories)
    note(StatusOf(UnregisterImplementedCategory(entry.classId, category)));
  for (const std::u16string& key : {ClassKey(entry), ProgId(entry), VersionedProgId(entry)})
    note(DeleteRegistryTree(key));
  return first;
}

// The answer of a self-registration has no room for a reason.
HRESULT AnswerOf(LSTATUS result) {
  if (result == kDone) return S_OK;
  ::SetLastError(static_cast<DWORD>(result));
  return SELFREG_E_CLASS;
}

}  // namespace

HRESULT RegisterClasses() {
  const std::u16string moduleFile = ModuleFileName();
  if (moduleFile.empty()) return E_FAIL;
  LSTATUS result = kDone;
  for (const ClassEntry& entry : CreatableClasses())
    if (result == kDone) result = WriteClass(entry, moduleFile);
  return AnswerOf(result);
}

HRESULT UnregisterClasses() {
  LSTATUS first = kDone;
  for (const ClassEntry& entry : CreatableClasses())
    if (const LSTATUS result = RemoveClass(entry); first == kDone) first = result;
  return AnswerOf(first);
}

}  // namespace quenra
