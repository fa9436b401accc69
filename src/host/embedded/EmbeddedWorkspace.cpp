#include "host/embedded/EmbeddedWorkspace.h"

#include "host/CoreSupport/BString.h"
#include "host/embedded/MemberAccess.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE EmbeddedWorkspace::WorkspacePath(BSTR* path) {
  return CopyToBstr(path_, path);
}

HRESULT STDMETHODCALLTYPE EmbeddedWorkspace::SetWorkspacePath(BSTR path) {
  return CopyIn(path, path_);
}

}  // namespace quenra
