#include "host/embedded/EmbeddedWorkspaceFactory.h"

#include "host/com/ComCatch.h"
#include "host/com/ComPtr.h"
#include "host/embedded/EmbeddedWorkspace.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE EmbeddedWorkspaceFactory::OpenWorkspace(BSTR path,
                                                                  HostWorkspace** workspace) {
  if (workspace == nullptr) return E_POINTER;
  *workspace = nullptr;
  if (path == nullptr) return E_INVALIDARG;

  ComPtr<IPlugInWorkspaceFactoryHelper> factory;
  HRESULT result =
      ControllingQueryInterface(kInterfaceId<IPlugInWorkspaceFactoryHelper>, factory.ReceiveVoid());
  if (FAILED(result)) return result;
  // Opened for the verdict alone: the workspace object is a view of the folder.
  ComPtr<IPlugInWorkspaceHelper> helper;
  result = factory->OpenFolderWorkspace(path, helper.Receive());
  if (FAILED(result)) return result;
  try {
    const ComPtr<EmbeddedWorkspace> opened = MakeObject<EmbeddedWorkspace>();
    result = opened->SetWorkspacePath(path);
    return FAILED(result) ? result : opened.QueryInterface(workspace);
  } catch (...) {
    return HResultFromCurrentException();
  }
}

}  // namespace quenra
