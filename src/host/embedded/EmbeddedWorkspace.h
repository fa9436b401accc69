// The embedded host's workspace: the path of an open folder.
#pragma once

#include <string>

#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostWorkspace.h"

namespace quenra {

class EmbeddedWorkspace final : public Implements<HostWorkspace, HostWorkspaceEdit> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedWorkspace"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostWorkspace; }

  // HostWorkspace
  HRESULT STDMETHODCALLTYPE WorkspacePath(BSTR* path) override;

  // HostWorkspaceEdit
  HRESULT STDMETHODCALLTYPE SetWorkspacePath(BSTR path) override;

 private:
  std::u16string path_;
};

}  // namespace quenra
