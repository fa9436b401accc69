// register and unregister: what the system knows of the module.
#include "Commands.h"
#include "Failures.h"
#include "ModuleFile.h"

namespace TextTables {

namespace {

using RegistrationFunction = HRESULT(STDAPICALLTYPE*)();

// Not the registered module, which may be another one than the user wants to register.
void CallModule(const GlobalOptions& options, const char* name) {
  const HMODULE module = LoadModule(options.moduleFile);
  const auto entry = EntryOf<RegistrationFunction>(module, name);
  const HRESULT result = entry != nullptr ? entry() : E_NOTIMPL;
  ::FreeLibrary(module);
  if (entry == nullptr) throw UsageError("the module is no data source", kGeneralHelp);
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
