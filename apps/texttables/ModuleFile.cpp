#include "ModuleFile.h"

#include <filesystem>

#include "Failures.h"
#include "ShownText.h"
#include "platform/FileNames.h"
#include "platform/Modules.h"
#include "platform/OleText.h"

namespace TextTables {

namespace {

std::filesystem::path ProgramFolder() {
  std::u16string name(512, u'\0');
  for (;;) {
    const auto size = static_cast<DWORD>(name.size());
    const DWORD length = ::GetModuleFileNameW(nullptr, AsOle(name.data()), size);
    if (length < size) {
      name.resize(length);
      break;
    }
    name.resize(name.size() * 2);
  }
  return std::filesystem::path(NativeFromFileName(name)).parent_path();
}

}  // namespace

std::u16string InstalledModule() {
  const std::filesystem::path folder = ProgramFolder();
  for (const char* place : {"", MODULE_FOLDER}) {
    const std::filesystem::path file = folder / place / MODULE_NAME;
    std::error_code error;
    if (std::filesystem::is_regular_file(file, error)) return FileNameFromNative(file.native());
  }
  throw Refusal(HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND),
                "the module " MODULE_NAME " is neither beside the program nor in " MODULE_FOLDER
                "; --module names another");
}

std::u16string FullPath(const std::u16string& fileName) {
  std::error_code error;
  const auto path =
      std::filesystem::absolute(std::filesystem::path(NativeFromFileName(fileName)), error);
  return error ? fileName : FileNameFromNative(path.native());
}

HMODULE LoadModule(const std::optional<std::u16string>& named) {
  const std::u16string file = named ? FullPath(*named) : InstalledModule();
  const HMODULE module = ::LoadLibraryW(AsOle(file.c_str()));
  if (module != nullptr) return module;
  const DWORD error = ::GetLastError();
  const std::string text = "the module cannot be loaded: " + Shown(file);
  if (named) throw UsageError(text, kGeneralHelp);
  throw Refusal(HRESULT_FROM_WIN32(error), text);
}

}  // namespace TextTables
