// The table of the embedded host's classes, and what an application puts in their place.
#include "host/CoreSupport/Components.h"

#include <utility>
#include <vector>

#include "host/CoreSupport/CriticalSection.h"
#include "host/com/ComCatch.h"
#include "host/com/ComPtr.h"
#include "host/com/LiveObjects.h"
#include "host/embedded/EmbeddedArray.h"
#include "host/embedded/EmbeddedClassIdentifier.h"
#include "host/embedded/EmbeddedField.h"
#include "host/embedded/EmbeddedFieldCollection.h"
#include "host/embedded/EmbeddedFileNames.h"
#include "host/embedded/EmbeddedPropertySet.h"
#include "host/embedded/EmbeddedRowBuffer.h"
#include "host/embedded/EmbeddedTimestampOffset.h"
#include "host/embedded/EmbeddedWorkspace.h"
#include "host/embedded/EmbeddedWorkspaceFactory.h"

namespace quenra {
namespace {

template <class Class>
HRESULT CreatePlain(IUnknown* outer, const IID& interfaceId, void** object) {
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  return MakeObject<Class>()->QueryInterface(interfaceId, object);
}

template <class Class>
HRESULT CreateAggregatable(IUnknown* outer, const IID& interfaceId, void** object) {
  auto* const created = new Class(outer);
  // Not through a face: with an outer object the faces count on that.
  IUnknown* const own = created->InternalUnknown();
  const HRESULT result = own->QueryInterface(interfaceId, object);
  own->Release();
  return result;
}

struct ComponentEntry {
  const CLSID& classId;
  ComponentCreator creator;
};

constexpr ComponentEntry kEmbedded[] = {
    {CLSID_HostFieldCollection, CreatePlain<EmbeddedFieldCollection>},
    {CLSID_HostField, CreatePlain<EmbeddedField>},
    {CLSID_HostArray, CreatePlain<EmbeddedArray>},
    {CLSID_HostPropertySet, CreatePlain<EmbeddedPropertySet>},
    {CLSID_HostClassIdentifier, CreatePlain<EmbeddedClassIdentifier>},
    {CLSID_HostFileNames, CreatePlain<EmbeddedFileNames>},
    {CLSID_HostRowBuffer, CreatePlain<EmbeddedRowBuffer>},
    {CLSID_HostWorkspace, CreatePlain<EmbeddedWorkspace>},
    {CLSID_HostWorkspaceFactory, CreateAggregatable<EmbeddedWorkspaceFactory>},
    {CLSID_HostTimestampOffset, CreatePlain<EmbeddedTimestampOffset>},
};

struct CreatorTable {
  CriticalSection section;
  std::vector<std::pair<CLSID, ComponentCreator>> creators;
};

// Never destroyed: a module may create objects while the process ends.
CreatorTable& ApplicationCreators() {
  static auto* const table = new CreatorTable;
  return *table;
}

// The application's creator before the embedded one; null when there is neither.
ComponentCreator FindCreator(const CLSID& classId) {
  {
    CreatorTable& table = ApplicationCreators();
    const AutoLock lock(table.section);
    for (const auto& [known, creator] : table.creators)
      if (IsEqualCLSID(known, classId)) return creator;
  }
  for (const ComponentEntry& entry : kEmbedded)
    if (IsEqualCLSID(entry.classId, classId)) return entry.creator;
  return nullptr;
}

}  // namespace

HRESULT CreateComponentInstance(const CLSID& classId, IUnknown* outer, const IID& interfaceId,
                                void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  // Any other interface would hand a face that counts on the outer object to its own maker.
  if (outer != nullptr && !IsEqualIID(interfaceId, IID_IUnknown)) return CLASS_E_NOAGGREGATION;
  HRESULT result = E_FAIL;
  try {
    const ComponentCreator creator = FindCreator(classId);
    result = creator != nullptr ? creator(outer, interfaceId, object) : REGDB_E_CLASSNOTREG;
  } catch (...) {
    result = HResultFromCurrentException();
  }
  if (FAILED(result)) *object = nullptr;
  return result;
}

void SetComponentCreator(const CLSID& classId, ComponentCreator creator) {
  CreatorTable& table = ApplicationCreators();
  const AutoLock lock(table.section);
  std::erase_if(table.creators,
                [&](const auto& entry) { return IsEqualCLSID(entry.first, classId); });
  if (creator != nullptr) table.creators.emplace_back(classId, creator);
}

LONG LiveComponentCount() noexcept { return LiveObjectCount(); }

}  // namespace quenra
