#include "resources/ResourceStrings.h"

#include "host/CoreSupport/QUENRALocale.h"

namespace quenra {
namespace {

HMODULE ownModule = nullptr;
HMODULE resourceModule = nullptr;

std::u16string TextOf(HMODULE module, std::uint32_t id) {
  // With a size of 0 the call hands out where the text stands, so that none is too long.
  const char16_t* text = nullptr;
  const int length = ::LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0);
  if (length <= 0 || text == nullptr) return {};
  return std::u16string(text, static_cast<std::size_t>(length));
}

}  // namespace

void AttachResources(HMODULE module) noexcept {
  ownModule = module;
  resourceModule = QUENRALocale::LoadLocalizedRes(module);
}

void DetachResources() noexcept {
  if (resourceModule != ownModule && resourceModule != nullptr) ::FreeLibrary(resourceModule);
  resourceModule = nullptr;
  ownModule = nullptr;
}

HMODULE OwnModule() noexcept { return ownModule; }

std::u16string LoadResourceString(std::uint32_t id) {
  // A null module would be the program.
  if (ownModule == nullptr) return {};
  std::u16string text;
  if (resourceModule != nullptr) text = TextOf(resourceModule, id);
  if (text.empty() && resourceModule != ownModule) text = TextOf(ownModule, id);
  return text;
}

}  // namespace quenra
