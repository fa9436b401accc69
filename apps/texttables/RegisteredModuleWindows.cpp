#ifdef _WIN32

#include "Failures.h"
#include "RegisteredModule.h"

namespace TextTables {

namespace {

constexpr wchar_t kProgId[] = L"quenraDataSourcesFile.TextFileWorkspaceFactory";

}  // namespace

void Apartment::Enter() noexcept {
  entered_ = SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
}

Apartment::~Apartment() {
  if (entered_) ::CoUninitialize();
}

quenra::ComPtr<quenra::IPlugInWorkspaceFactoryHelper2> CreateRegisteredFactory(
    Apartment& apartment) {
  quenra::ComPtr<quenra::IPlugInWorkspaceFactoryHelper2> factory;
  CLSID classId = {};
  if (FAILED(::CLSIDFromProgID(kProgId, &classId))) return factory;
  apartment.Enter();
  Check(::CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER,
                           quenra::IID_IPlugInWorkspaceFactoryHelper2, factory.ReceiveVoid()),
        u"the registered module");
  return factory;
}

}  // namespace TextTables

#endif
