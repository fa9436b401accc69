// The workspace, and the workspace factory as part of a data source's factory.
#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostWorkspace.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

constexpr HRESULT kRefused = static_cast<HRESULT>(0x80040258u);

// A data source that opens every folder whose name does not begin with "bad".
class SampleFactory final : public Implements<IPlugInWorkspaceFactoryHelper2> {
 public:
  SampleFactory() {
    EXPECT_EQ(CreateComponentInstance(CLSID_HostWorkspaceFactory, ControllingUnknown(),
                                      IID_IUnknown, aggregated_.ReceiveVoid()),
              S_OK);
  }
  std::u16string_view ClassName() const noexcept override { return u"SampleFactory"; }

  HRESULT STDMETHODCALLTYPE SourceName(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DatasetKindText(LONG, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE WorkspaceKindText(VARIANT_BOOL, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE FactoryKindId(HostClassIdentifier**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE WorkspaceKind(LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SupportsQueryLanguage(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE IsTextWorkspace(BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE FindWorkspaceFiles(BSTR, HostFileNames*, VARIANT_BOOL*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ClaimWorkspaceFiles(BSTR, HostFileNames*, BSTR*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE OpenFolderWorkspace(BSTR workspace,
                                                IPlugInWorkspaceHelper** helper) override {
    *helper = nullptr;
    return ViewOf(workspace).starts_with(u"bad") ? kRefused : S_OK;
  }
  HRESULT STDMETHODCALLTYPE OpenFolderWorkspace(BSTR, HostPropertySet*,
                                                IPlugInWorkspaceHelper**) override {
    return E_NOTIMPL;
  }

 private:
  HRESULT QueryOther(REFIID iid, void** result) noexcept override {
    return aggregated_->QueryInterface(iid, result);
  }

  ComPtr<IUnknown> aggregated_;
};

using EmbeddedWorkspaceTest = HostTest;

TEST_F(EmbeddedWorkspaceTest, KeepsItsPath) {
  ComPtr<HostWorkspace> workspace;
  ASSERT_EQ(CreateComponentInstance(CLSID_HostWorkspace, workspace.Receive()), S_OK);
  BString path;
  EXPECT_EQ(workspace->WorkspacePath(path.Receive()), S_OK);
  EXPECT_EQ(path.View(), u"");
  EXPECT_EQ(workspace.As<HostWorkspaceEdit>()->SetWorkspacePath(BString(u"/data").Get()), S_OK);
  EXPECT_EQ(workspace->WorkspacePath(path.Receive()), S_OK);
  EXPECT_EQ(path.View(), u"/data");
  EXPECT_EQ(workspace.As<HostWorkspaceEdit>()->SetWorkspacePath(nullptr), S_OK);
  EXPECT_EQ(workspace->WorkspacePath(path.Receive()), S_OK);
  EXPECT_EQ(path.View(), u"");
  EXPECT_EQ(workspace->WorkspacePath(nullptr), E_POINTER);
}

TEST_F(EmbeddedWorkspaceTest, FactoryAppearsOnTheDataSourcesFactory) {
  const ComPtr<SampleFactory> source = MakeObject<SampleFactory>();
  const auto factory = source.As<HostWorkspaceFactory>();
  ASSERT_TRUE(factory);
  EXPECT_EQ(factory.As<IUnknown>().Get(), source.As<IUnknown>().Get());
  EXPECT_TRUE(factory.As<IPlugInWorkspaceFactoryHelper>());
  EXPECT_EQ(source->ReferenceCount(), 2u);
}

TEST_F(EmbeddedWorkspaceTest, FactoryOpensThroughTheDataSource) {
  const ComPtr<SampleFactory> source = MakeObject<SampleFactory>();
  const auto factory = source.As<HostWorkspaceFactory>();
  ComPtr<HostWorkspace> workspace;
  ASSERT_EQ(factory->OpenWorkspace(BString(u"/data").Get(), workspace.Receive()), S_OK);
  BString path;
  EXPECT_EQ(workspace->WorkspacePath(path.Receive()), S_OK);
  EXPECT_EQ(path.View(), u"/data");
  EXPECT_EQ(factory->OpenWorkspace(BString(u"bad").Get(), workspace.Receive()), kRefused);
  EXPECT_FALSE(workspace);
  EXPECT_EQ(factory->OpenWorkspace(nullptr, workspace.Receive()), E_INVALIDARG);
  EXPECT_EQ(factory->OpenWorkspace(BString(u"/data").Get(), nullptr), E_POINTER);
  EXPECT_EQ(source->ReferenceCount(), 2u) << "no reference is left behind";
}

TEST_F(EmbeddedWorkspaceTest, FactoryAloneHasNobodyToAsk) {
  ComPtr<HostWorkspaceFactory> factory;
  ASSERT_EQ(CreateComponentInstance(CLSID_HostWorkspaceFactory, factory.Receive()), S_OK);
  ComPtr<HostWorkspace> workspace;
  EXPECT_EQ(factory->OpenWorkspace(BString(u"/data").Get(), workspace.Receive()), E_NOINTERFACE);
  EXPECT_FALSE(workspace);
}

}  // namespace
}  // namespace quenra
