// register and unregister: what the system knows of the module.
#include "Commands.h"
#include "Failures.h"
#include "ModuleFile.h"
#include "platform/OleText.h"
#include "platform/Registry.h"

namespace TextTables {

namespace {

using RegistrationFunction = HRESULT(STDAPICALLTYPE*)();

struct RegistryFault {
  DWORD code;
  const char* text;
};

constexpr RegistryFault kRegistryFaults[] = {
    {ERROR_ACCESS_DENIED, "access to the registry is denied"},
    {ERROR_PATH_NOT_FOUND, "the registry file has no folder"},
    {ERROR_BAD_FILE_TYPE, "the registry file is not a regular file"},
    {ERROR_FILE_TOO_LARGE, "the registry file is too large"},
    {ERROR_REGISTRY_CORRUPT, "the registry file cannot be understood"},
    {ERROR_REGISTRY_IO_FAILED, "the registry file cannot be read"},
};

// The module says that it could not change the registry, and no more. Null when the registry looks
// right.
const char* FaultOfRegistry() {
  HKEY key = nullptr;
  const LSTATUS status =
      ::RegOpenKeyExW(HKEY_CLASSES_ROOT, AsOle(u"CLSID"), 0, KEY_READ | KEY_WRITE, &key);
  if (key != nullptr) ::RegCloseKey(key);
  for (const RegistryFault& fault : kRegistryFaults)
    if (status == static_cast<LSTATUS>(fault.code)) return fault.text;
  return nullptr;
}

// Not the registered module, which may be another one than the user wants to register.
void CallModule(const GlobalOptions& options, const char* name) {
  const HMODULE module = LoadModule(options.moduleFile);
  const auto entry = EntryOf<RegistrationFunction>(module, name);
  const HRESULT result = entry != nullptr ? entry() : E_NOTIMPL;
  ::FreeLibrary(module);
  if (entry == nullptr) throw UsageError("the module is no data source", kGeneralHelp);
  const char* const fault = result == SELFREG_E_CLASS ? FaultOfRegistry() : nullptr;
  if (fault != nullptr) throw Refusal(result, MeaningOf(result) + ": " + fault);
  Check(result, {});
}

}  // namespace

void RunRegister(const CommandLine& line, Output&) {
  CallModule(line.global, "quenraDllRegisterServer");
}

void RunUnregister(const CommandLine& line, Output&) {
  CallModule(line.global, "quenraDllUnregisterServer");
}

}  // namespace TextTables
