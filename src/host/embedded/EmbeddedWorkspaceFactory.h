// The embedded host's generic workspace factory, made to be part of a data source's factory.
#pragma once

#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostWorkspace.h"

namespace quenra {

class EmbeddedWorkspaceFactory final : public Implements<HostWorkspaceFactory> {
 public:
  // `outer` is the data source's factory. Without one the object answers E_NOINTERFACE to
  // OpenWorkspace, having nobody to ask.
  explicit EmbeddedWorkspaceFactory(IUnknown* outer) noexcept : Implements(outer) {}

  std::u16string_view ClassName() const noexcept override { return u"EmbeddedWorkspaceFactory"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostWorkspaceFactory; }

  // E_INVALIDARG for a null path.
  HRESULT STDMETHODCALLTYPE OpenWorkspace(BSTR path, HostWorkspace** workspace) override;
};

}  // namespace quenra
