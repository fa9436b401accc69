#include "server/ClassTable.h"

#include "host/interfaces/DataSourceClasses.h"
#include "plugin/TextFileNativeType.h"
#include "plugin/TextFileWorkspaceFactory.h"
#include "server/SingletonClassFactory.h"

namespace quenra {
namespace {

template <class Factory>
ComPtr<IClassFactory> NewFactory() {
  ComPtr<IClassFactory> factory;
  factory.Attach(new Factory());
  return factory;
}

std::vector<ClassEntry> MakeTable() {
  std::vector<ClassEntry> table;
  table.push_back({CLSID_TextFileWorkspaceFactory,
                   u"TextFileWorkspaceFactory",
                   u"Text File Workspace Factory",
                   NewFactory<SingletonClassFactory<TextFileWorkspaceFactory>>(),
                   {CATID_PlugInWorkspaceFactories},
                   ThreadingModel::kApartment,
                   nullptr});
  table.push_back({CLSID_TextFileNativeType,
                   u"TextFileNativeType",
                   u"Text File Native Type",
                   NewFactory<ClassFactory<TextFileNativeType>>(),
                   {CATID_NativeTypes},
                   ThreadingModel::kApartment,
                   nullptr});
  return table;
}

}  // namespace

std::u16string ProgId(const ClassEntry& entry) {
  std::u16string text(kProgIdPrefix);
  text += u'.';
  text += entry.name;
  return text;
}

std::u16string VersionedProgId(const ClassEntry& entry) {
  std::u16string text = ProgId(entry);
  text += u'.';
  for (const char digit : std::to_string(kProgIdVersion)) text += static_cast<char16_t>(digit);
  return text;
}

std::span<const ClassEntry> CreatableClasses() {
  static const std::vector<ClassEntry> table = MakeTable();
  return table;
}

}  // namespace quenra
