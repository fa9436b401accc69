#include "host/com/ErrorInfoImpl.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE ErrorInfoImpl::InterfaceSupportsErrorInfo(REFIID) { return S_OK; }

}  // namespace quenra
