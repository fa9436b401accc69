#include <memory>
#include <thread>
#include <vector>

#include "host/CoreSupport/GuidText.h"
#include "host/com/Implements.h"
#include "host/com/Unknown.h"
#include "host/interfaces/PlugInDataset.h"
#include "support/TestRegistry.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

constexpr CLSID kGaugeClass = {0x0c1f2a60, 0x5a3e, 0x4e57, {0x91, 0x22, 1, 2, 3, 4, 5, 6}};
constexpr CLSID kUntoldClass = {0x0c1f2a61, 0x5a3e, 0x4e57, {0x91, 0x22, 1, 2, 3, 4, 5, 6}};
constexpr IID kUnknownInterface = {0x0c1f2a62, 0x5a3e, 0x4e57, {0x91, 0x22, 1, 2, 3, 4, 5, 6}};

struct GaugeOptions {
  const CLSID* classId = nullptr;
  std::u16string_view errorSource;
  IUnknown* outer = nullptr;
  bool* destroyed = nullptr;
};

// Two faces, one of which extends another interface.
class Gauge final : public Implements<IPlugInRowCount, IDatasetFileStat2> {
 public:
  explicit Gauge(GaugeOptions options = {}) : Implements(options.outer), options_(options) {}

  std::u16string_view ClassName() const noexcept override { return u"Gauge"; }
  const CLSID* ClassId() const noexcept override { return options_.classId; }
  std::u16string_view ErrorSource() const noexcept override { return options_.errorSource; }

  HRESULT STDMETHODCALLTYPE CountRows(LONG, LONG* count) override {
    *count = 7;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE FileTime(LONG, LONG*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE FileSize(LONG*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE FileMode(LONG*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE FileSize64(LONGLONG*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Reserved1() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Reserved2() override { return S_OK; }

 private:
  ~Gauge() override {
    if (options_.destroyed != nullptr) *options_.destroyed = true;
  }

  const GaugeOptions options_;
};

// An object that aggregates a Gauge, and takes and drops a reference to itself on its way out as
// aggregating objects do that hold a face of their inner object.
class Outer final : public Implements<HostWorkspace> {
 public:
  Outer() {
    GaugeOptions options;
    options.outer = ControllingUnknown();
    inner_.Attach((new Gauge(options))->InternalUnknown());
  }
  std::u16string_view ClassName() const noexcept override { return u"Outer"; }
  HRESULT STDMETHODCALLTYPE WorkspacePath(BSTR*) override { return E_NOTIMPL; }

  IUnknown* inner() const { return inner_.Get(); }

 private:
  ~Outer() override {
    AddRef();
    Release();
  }
  HRESULT QueryOther(REFIID iid, void** result) noexcept override {
    return inner_->QueryInterface(iid, result);
  }

  ComPtr<IUnknown> inner_;
};

class UnknownTest : public HostTest {};

TEST_F(UnknownTest, StartsWithOneReferenceAndEndsWithTheLast) {
  bool destroyed = false;
  GaugeOptions options;
  options.destroyed = &destroyed;
  const LONG before = LiveObjectCount();
  ComPtr<Gauge> gauge = MakeObject<Gauge>(options);
  EXPECT_EQ(LiveObjectCount(), before + 1);
  EXPECT_EQ(gauge->ReferenceCount(), 1u);
  EXPECT_EQ(gauge->AddRef(), 2u);
  EXPECT_EQ(gauge->Release(), 1u);
  EXPECT_FALSE(destroyed);
  gauge.Reset();
  EXPECT_TRUE(destroyed);
  EXPECT_EQ(LiveObjectCount(), before);
}

TEST_F(UnknownTest, EveryFaceLeadsToOneIdentity) {
  const ComPtr<Gauge> gauge = MakeObject<Gauge>();
  const ComPtr<IPlugInRowCount> rows = gauge.As<IPlugInRowCount>();
  const ComPtr<IDatasetFileStat2> stat2 = gauge.As<IDatasetFileStat2>();
  ASSERT_TRUE(rows);
  ASSERT_TRUE(stat2);
  const ComPtr<IUnknown> identity = gauge.As<IUnknown>();
  EXPECT_EQ(rows.As<IUnknown>().Get(), identity.Get());
  EXPECT_EQ(stat2.As<IUnknown>().Get(), identity.Get());
  EXPECT_EQ(identity.As<IPlugInRowCount>().Get(), rows.Get()) << "back to the same face";
  EXPECT_EQ(rows.As<IDatasetFileStat2>().Get(), stat2.Get()) << "across";
  EXPECT_EQ(gauge->ReferenceCount(), 4u);
}

TEST_F(UnknownTest, ExtendedInterfaceIsAnsweredOnTheSameFace) {
  const ComPtr<Gauge> gauge = MakeObject<Gauge>();
  const ComPtr<IDatasetFileStat> stat = gauge.As<IDatasetFileStat>();
  ASSERT_TRUE(stat);
  EXPECT_EQ(stat.Get(), static_cast<IDatasetFileStat*>(gauge.As<IDatasetFileStat2>().Get()));
}

TEST_F(UnknownTest, RefusesOtherInterfacesAndNullResults) {
  const ComPtr<Gauge> gauge = MakeObject<Gauge>();
  void* result = &result;
  EXPECT_EQ(gauge->QueryInterface(kUnknownInterface, &result), E_NOINTERFACE);
  EXPECT_EQ(result, nullptr);
  EXPECT_EQ(gauge->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(gauge->InternalUnknown()->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(gauge->ReferenceCount(), 1u);
}

TEST_F(UnknownTest, InternalUnknownIsTheIdentityWithoutAnOuterObject) {
  const ComPtr<Gauge> gauge = MakeObject<Gauge>();
  const auto internal = gauge.As<IQUENRAInternalUnknown>();
  ASSERT_TRUE(internal);
  EXPECT_EQ(static_cast<IUnknown*>(internal.Get()), gauge.As<IUnknown>().Get());
  EXPECT_EQ(gauge->ControllingUnknown(), static_cast<IUnknown*>(internal.Get()));
}

TEST_F(UnknownTest, ErrorInformationIsRefusedWithoutSource) {
  const ComPtr<Gauge> gauge = MakeObject<Gauge>();
  void* result = &result;
  EXPECT_EQ(gauge->QueryInterface(IID_ISupportErrorInfo, &result), E_NOINTERFACE);
  EXPECT_EQ(result, nullptr);
}

TEST_F(UnknownTest, ErrorInformationCoversEveryInterface) {
  GaugeOptions options;
  options.errorSource = u"\"workshop.Gauge\"";
  const ComPtr<Gauge> gauge = MakeObject<Gauge>(options);
  const auto support = gauge.As<ISupportErrorInfo>();
  ASSERT_TRUE(support);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IPlugInRowCount), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(kUnknownInterface), S_OK);
}

TEST_F(UnknownTest, TearOffKeepsTheObjectAliveAndItsIdentity) {
  bool destroyed = false;
  GaugeOptions options;
  options.errorSource = u"source";
  options.destroyed = &destroyed;
  ComPtr<Gauge> gauge = MakeObject<Gauge>(options);
  auto support = gauge.As<ISupportErrorInfo>();
  ASSERT_TRUE(support);
  EXPECT_EQ(gauge->ReferenceCount(), 2u);
  EXPECT_EQ(support.As<IUnknown>().Get(), gauge.As<IUnknown>().Get());
  EXPECT_EQ(support.As<IPlugInRowCount>().Get(), gauge.As<IPlugInRowCount>().Get());
  EXPECT_EQ(support.As<ISupportErrorInfo>().Get(), support.Get()) << "its own interface stays";
  EXPECT_EQ(support->QueryInterface(IID_ISupportErrorInfo, nullptr), E_POINTER);
  EXPECT_EQ(References(support.Get()), 1u);
  gauge.Reset();
  EXPECT_FALSE(destroyed);
  LONG count = 0;
  EXPECT_EQ(support.As<IPlugInRowCount>()->CountRows(0, &count), S_OK);
  EXPECT_EQ(count, 7);
  support.Reset();
  EXPECT_TRUE(destroyed);
}

TEST_F(UnknownTest, ClassIdTearOffNamesTheClass) {
  const test::TestRegistry registry;
  const std::u16string classKey = u"CLSID\\" + GuidText(kGaugeClass);
  registry.Write(classKey + u"\\ProgID", u"workshop.Gauge.1");
  GaugeOptions options;
  options.classId = &kGaugeClass;
  const ComPtr<Gauge> gauge = MakeObject<Gauge>(options);
  const auto identity = gauge.As<IHostClassId>();
  ASSERT_TRUE(identity);
  CLSID classId = {};
  EXPECT_EQ(identity->GetClassID(&classId), S_OK);
  EXPECT_TRUE(IsEqualCLSID(classId, kGaugeClass));
  BString progId;
  EXPECT_EQ(identity->GetProgID(progId.Receive()), S_OK);
  EXPECT_EQ(progId.View(), u"workshop.Gauge.1");
  EXPECT_EQ(identity->GetClassID(nullptr), E_POINTER);
  EXPECT_EQ(identity->GetProgID(nullptr), E_POINTER);
  ::RegDeleteKeyW(HKEY_CLASSES_ROOT, AsOle((classKey + u"\\ProgID").c_str()));
  ::RegDeleteKeyW(HKEY_CLASSES_ROOT, AsOle(classKey.c_str()));
  EXPECT_EQ(identity->GetProgID(progId.Receive()), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(progId.Get(), nullptr);
}

TEST_F(UnknownTest, ClassIdTearOffFailsWithoutClass) {
  const ComPtr<Gauge> gauge = MakeObject<Gauge>();
  const auto identity = gauge.As<IHostClassId>();
  ASSERT_TRUE(identity);
  CLSID classId = kGaugeClass;
  EXPECT_EQ(identity->GetClassID(&classId), E_FAIL);
  EXPECT_TRUE(IsEqualCLSID(classId, CLSID{}));
  BSTR progId = reinterpret_cast<BSTR>(&classId);
  EXPECT_EQ(identity->GetProgID(&progId), E_FAIL);
  EXPECT_EQ(progId, nullptr);
}

TEST_F(UnknownTest, UntoldClassHasNoProgId) {
  GaugeOptions options;
  options.classId = &kUntoldClass;
  const ComPtr<Gauge> gauge = MakeObject<Gauge>(options);
  BString progId;
  EXPECT_EQ(gauge.As<IHostClassId>()->GetProgID(progId.Receive()), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(progId.Get(), nullptr);
}

TEST_F(UnknownTest, AggregatedFacesBelongToTheOuterObject) {
  const ComPtr<Outer> outer = MakeObject<Outer>();
  const ComPtr<IPlugInRowCount> rows = outer.As<IPlugInRowCount>();
  ASSERT_TRUE(rows) << "handed on to the inner object";
  EXPECT_EQ(outer->ReferenceCount(), 2u) << "the face counts on the outer object";
  EXPECT_EQ(References(outer->inner()), 1u) << "and not on the inner one";
  EXPECT_EQ(rows.As<IUnknown>().Get(), outer.As<IUnknown>().Get());
  EXPECT_TRUE(rows.As<HostWorkspace>()) << "the outer object's interfaces are in reach";
}

TEST_F(UnknownTest, AggregatedObjectKeepsAnUnknownOfItsOwn) {
  const ComPtr<Outer> outer = MakeObject<Outer>();
  const ComPtr<IUnknown> inner = QueryFor<IUnknown>(outer->inner());
  EXPECT_NE(inner.Get(), outer.As<IUnknown>().Get());
  EXPECT_EQ(QueryFor<IQUENRAInternalUnknown>(outer->inner()).Get(), inner.Get());
  EXPECT_FALSE(inner.As<HostWorkspace>()) << "its own unknown does not delegate";
  EXPECT_EQ(outer->ReferenceCount(), 1u);
}

TEST_F(UnknownTest, CountsSurviveManyThreads) {
  const ComPtr<Gauge> gauge = MakeObject<Gauge>();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&gauge] {
      for (int i = 0; i < 2000; ++i) {
        const ComPtr<IPlugInRowCount> rows = gauge.As<IPlugInRowCount>();
        const ComPtr<Gauge> other = MakeObject<Gauge>();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(gauge->ReferenceCount(), 1u);
}

TEST_F(UnknownTest, ComPtrKeepsCount) {
  ComPtr<Gauge> gauge = MakeObject<Gauge>();
  {
    ComPtr<Gauge> copy = gauge;
    EXPECT_EQ(gauge->ReferenceCount(), 2u);
    ComPtr<Gauge> moved = std::move(copy);
    EXPECT_FALSE(copy);  // NOLINT(bugprone-use-after-move): moves leave the source empty
    EXPECT_EQ(gauge->ReferenceCount(), 2u);
    const ComPtr<Gauge>& itself = moved;
    moved = itself;
    EXPECT_EQ(gauge->ReferenceCount(), 2u);
    Gauge* const detached = moved.Detach();
    EXPECT_FALSE(moved);
    EXPECT_EQ(gauge->ReferenceCount(), 2u);
    moved.Attach(detached);
    EXPECT_EQ(*moved.Receive(), nullptr) << "the old reference goes first";
    EXPECT_EQ(gauge->ReferenceCount(), 1u);
  }
  ComPtr<IPlugInRowCount> rows;
  EXPECT_EQ(ComPtr<Gauge>().QueryInterface(rows.Receive()), E_POINTER);
  EXPECT_EQ(gauge.QueryInterface<IPlugInRowCount>(nullptr), E_POINTER);
  EXPECT_FALSE(QueryFor<IPlugInRowCount>(static_cast<IUnknown*>(nullptr)));
}

}  // namespace
}  // namespace quenra
