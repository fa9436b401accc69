// register and unregister: what the system knows of the module.
#include "Commands.h"
#include "Failures.h"
#include "ModuleFile.h"
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
    {ERROR_SHARING_VIOLATION, "another process has kept the registry file for ten seconds"},
    {ERROR_DISK_FULL, "there is no room for the registry file"},
    {ERROR_BAD_FILE_TYPE, "the registry file is not a regular file"},
    {ERROR_FILE_TOO_LARGE, "the registry file is too large"},
    {ERROR_REGISTRY_CORRUPT, "the registry file cannot be understood"},
    {ERROR_REGISTRY_IO_FAILED, "the registry file cannot be read or written"},
};

// The module answers that it could not change the registry, and no more; what the registry said is
// the thread's last error. Null when that says nothing.
const char* FaultOfRegistry(DWORD error) {
  for (const RegistryFault& fault : kRegistryFaults)
    if (error == fault.code) return fault.text;
  return nullptr;
}

// Not the registered module, which may be another one than the user wants to register.
void CallModule(const GlobalOptions& options, const char* name) {
  const HMODULE module = LoadModule(options.moduleFile);
  const auto entry = EntryOf<RegistrationFunction>(module, name);
  ::SetLastError(ERROR_SUCCESS);
  const HRESULT result = entry != nullptr ? entry() : E_NOTIMPL;
  const DWORD error = ::GetLastError();
  ::FreeLibrary(module);
  if (entry == nullptr) throw UsageError("the module is no data source", kGeneralHelp);
  const char* const fault = result == SELFREG_E_CLASS ? FaultOfRegistry(error) : nullptr;
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
