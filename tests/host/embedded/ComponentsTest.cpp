// The table of the host's classes, and what every object of it has in common.
#include <stdexcept>
#include <vector>

#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostArray.h"
#include "host/interfaces/HostClassIdentifier.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFields.h"
#include "host/interfaces/HostFileNames.h"
#include "host/interfaces/HostInternalUnknown.h"
#include "host/interfaces/HostPropertySet.h"
#include "host/interfaces/HostRowBuffer.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "host/interfaces/HostWorkspace.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

struct ComponentCase {
  const char* name;
  CLSID classId;
  std::vector<IID> interfaces;
  bool aggregatable;
};

const ComponentCase kComponents[] = {
    {"field collection",
     CLSID_HostFieldCollection,
     {IID_HostFieldCollection, IID_HostFieldCollectionEdit},
     false},
    {"field", CLSID_HostField, {IID_HostField, IID_HostFieldEdit, IID_HostFieldTag}, false},
    {"array", CLSID_HostArray, {IID_HostArray}, false},
    {"property set", CLSID_HostPropertySet, {IID_HostPropertySet}, false},
    {"class identifier", CLSID_HostClassIdentifier, {IID_HostClassIdentifier}, false},
    {"file names", CLSID_HostFileNames, {IID_HostFileNames}, false},
    {"row buffer", CLSID_HostRowBuffer, {IID_HostRowBuffer, IID_HostRowBufferEdit}, false},
    {"workspace", CLSID_HostWorkspace, {IID_HostWorkspace, IID_HostWorkspaceEdit}, false},
    {"workspace factory", CLSID_HostWorkspaceFactory, {IID_HostWorkspaceFactory}, true},
    {"timestamp", CLSID_HostTimestampOffset, {IID_HostTimestampOffset}, false},
};

constexpr CLSID kNoClass = {0x7d3a1b00, 0x1111, 0x4222, {0x83, 0x33, 1, 2, 3, 4, 5, 6}};

// An unknown that nobody is meant to call: it stands for an outer object.
class SilentOuter final : public IUnknown {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }

  ULONG references = 1;
};

using ComponentsTest = HostTest;

TEST_F(ComponentsTest, EveryClassAnswersItsInterfacesWithOneIdentity) {
  for (const ComponentCase& component : kComponents) {
    SCOPED_TRACE(component.name);
    ComPtr<IUnknown> object;
    ASSERT_EQ(
        CreateComponentInstance(component.classId, nullptr, IID_IUnknown, object.ReceiveVoid()),
        S_OK);
    EXPECT_EQ(References(object.Get()), 1u);
    for (const IID& iid : component.interfaces) {
      ComPtr<IUnknown> face;
      ASSERT_EQ(object->QueryInterface(iid, face.ReceiveVoid()), S_OK);
      EXPECT_EQ(face.As<IUnknown>().Get(), object.Get());
      ComPtr<IUnknown> again;
      EXPECT_EQ(face->QueryInterface(iid, again.ReceiveVoid()), S_OK);
      EXPECT_EQ(again.Get(), face.Get());
      EXPECT_EQ(face->QueryInterface(iid, nullptr), E_POINTER);
      void* refused = &refused;
      EXPECT_EQ(face->QueryInterface(kNoClass, &refused), E_NOINTERFACE);
      EXPECT_EQ(refused, nullptr);
    }
    CLSID classId = {};
    EXPECT_EQ(object.As<IHostClassId>()->GetClassID(&classId), S_OK);
    EXPECT_TRUE(IsEqualCLSID(classId, component.classId));
    EXPECT_EQ(References(object.Get()), 1u);
  }
}

TEST_F(ComponentsTest, OnlyTheWorkspaceFactoryCanBeAggregated) {
  for (const ComponentCase& component : kComponents) {
    SCOPED_TRACE(component.name);
    SilentOuter outer;
    ComPtr<IUnknown> object;
    EXPECT_EQ(
        CreateComponentInstance(component.classId, &outer, IID_IUnknown, object.ReceiveVoid()),
        component.aggregatable ? S_OK : CLASS_E_NOAGGREGATION);
    EXPECT_EQ(static_cast<bool>(object), component.aggregatable);
    void* face = &face;
    EXPECT_EQ(CreateComponentInstance(component.classId, &outer, component.interfaces[0], &face),
              CLASS_E_NOAGGREGATION)
        << "another interface than IUnknown";
    EXPECT_EQ(face, nullptr);
    EXPECT_EQ(outer.references, 1u) << "an inner object holds no reference to its outer object";
  }
}

TEST_F(ComponentsTest, RefusesUnknownClassesInterfacesAndNullResults) {
  void* object = &object;
  EXPECT_EQ(CreateComponentInstance(kNoClass, nullptr, IID_IUnknown, &object), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(object, nullptr);
  object = &object;
  EXPECT_EQ(CreateComponentInstance(CLSID_HostArray, nullptr, IID_HostField, &object),
            E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(CreateComponentInstance(CLSID_HostArray, nullptr, IID_HostArray, nullptr), E_POINTER);
}

HRESULT RefuseCreation(IUnknown*, const IID&, void** object) {
  *object = object;  // careless: leaves a value behind
  return E_ACCESSDENIED;
}

HRESULT ThrowOnCreation(IUnknown*, const IID&, void**) { throw std::runtime_error("broken"); }

HRESULT CreateFieldInstead(IUnknown*, const IID&, void** object) {
  return CreateComponentInstance(CLSID_HostField, nullptr, IID_HostField, object);
}

TEST_F(ComponentsTest, ApplicationSuppliesItsOwnClass) {
  SetComponentCreator(CLSID_HostArray, CreateFieldInstead);
  ComPtr<IUnknown> object;
  EXPECT_EQ(CreateComponentInstance(CLSID_HostArray, nullptr, IID_IUnknown, object.ReceiveVoid()),
            S_OK);
  EXPECT_TRUE(object.As<HostField>());

  void* refused = nullptr;
  SetComponentCreator(CLSID_HostArray, RefuseCreation);
  EXPECT_EQ(CreateComponentInstance(CLSID_HostArray, nullptr, IID_IUnknown, &refused),
            E_ACCESSDENIED);
  EXPECT_EQ(refused, nullptr);
  SetComponentCreator(CLSID_HostArray, ThrowOnCreation);
  EXPECT_EQ(CreateComponentInstance(CLSID_HostArray, nullptr, IID_IUnknown, &refused), E_FAIL);

  SetComponentCreator(CLSID_HostArray, nullptr);
  EXPECT_EQ(CreateComponentInstance(CLSID_HostArray, nullptr, IID_IUnknown, object.ReceiveVoid()),
            S_OK);
  EXPECT_TRUE(object.As<HostArray>()) << "the embedded class is back";
}

TEST_F(ComponentsTest, ApplicationMayAddAClass) {
  SetComponentCreator(kNoClass, CreateFieldInstead);
  ComPtr<IUnknown> object;
  EXPECT_EQ(CreateComponentInstance(kNoClass, nullptr, IID_IUnknown, object.ReceiveVoid()), S_OK);
  SetComponentCreator(kNoClass, nullptr);
  EXPECT_EQ(CreateComponentInstance(kNoClass, nullptr, IID_IUnknown, object.ReceiveVoid()),
            REGDB_E_CLASSNOTREG);
}

}  // namespace
}  // namespace quenra
