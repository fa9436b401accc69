#include <atomic>
#include <new>
#include <utility>

#include "platform/OleAutomation.h"

namespace {

// The thread's reference. Asked for after every row, so it is kept where one instruction finds it.
thread_local constinit IErrorInfo* threadErrorInfo [[gnu::tls_model("initial-exec")]] = nullptr;

// Puts another object into its place; takes over the caller's reference.
void Replace(IErrorInfo* info) {
  IErrorInfo* const old = std::exchange(threadErrorInfo, info);
  if (old != nullptr) old->Release();
}

// Gives the reference back when the thread ends.
class ThreadEnd {
 public:
  void Watch() noexcept { watching_ = true; }
  ~ThreadEnd() {
    if (watching_) Replace(nullptr);
  }

 private:
  bool watching_ = false;
};

thread_local ThreadEnd threadEnd;

class ErrorInfo final : public ICreateErrorInfo, public IErrorInfo {
 public:
  ErrorInfo() = default;
  ErrorInfo(const ErrorInfo&) = delete;
  ErrorInfo& operator=(const ErrorInfo&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** result) override {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (iid == IID_IUnknown || iid == IID_ICreateErrorInfo) {
      *result = static_cast<ICreateErrorInfo*>(this);
    } else if (iid == IID_IErrorInfo) {
      *result = static_cast<IErrorInfo*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }

  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }

  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  STDMETHODIMP SetGUID(REFGUID guid) override {
    guid_ = guid;
    return S_OK;
  }
  STDMETHODIMP SetSource(LPOLESTR source) override { return Set(source, &source_); }
  STDMETHODIMP SetDescription(LPOLESTR description) override {
    return Set(description, &description_);
  }
  STDMETHODIMP SetHelpFile(LPOLESTR helpFile) override { return Set(helpFile, &helpFile_); }
  STDMETHODIMP SetHelpContext(DWORD helpContext) override {
    helpContext_ = helpContext;
    return S_OK;
  }

  STDMETHODIMP GetGUID(GUID* guid) override {
    if (guid == nullptr) return E_INVALIDARG;
    *guid = guid_;
    return S_OK;
  }
  STDMETHODIMP GetSource(BSTR* source) override { return Get(source_, source); }
  STDMETHODIMP GetDescription(BSTR* description) override { return Get(description_, description); }
  STDMETHODIMP GetHelpFile(BSTR* helpFile) override { return Get(helpFile_, helpFile); }
  STDMETHODIMP GetHelpContext(DWORD* helpContext) override {
    if (helpContext == nullptr) return E_INVALIDARG;
    *helpContext = helpContext_;
    return S_OK;
  }

 private:
  ~ErrorInfo() {
    SysFreeString(source_);
    SysFreeString(description_);
    SysFreeString(helpFile_);
  }

  static HRESULT Set(const OLECHAR* text, BSTR* member) {
    return SysReAllocString(member, text) != FALSE ? S_OK : E_OUTOFMEMORY;
  }

  static HRESULT Get(BSTR member, BSTR* result) {
    if (result == nullptr) return E_INVALIDARG;
    *result = SysAllocString(member);
    return *result != nullptr || member == nullptr ? S_OK : E_OUTOFMEMORY;
  }

  std::atomic<ULONG> references_{1};
  GUID guid_{};
  BSTR source_ = nullptr;
  BSTR description_ = nullptr;
  BSTR helpFile_ = nullptr;
  DWORD helpContext_ = 0;
};

}  // namespace

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) {
  if (reserved != 0) return E_INVALIDARG;
  if (info != nullptr) {
    info->AddRef();
    threadEnd.Watch();
  }
  Replace(info);
  return S_OK;
}

HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) {
  if (reserved != 0 || info == nullptr) return E_INVALIDARG;
  *info = std::exchange(threadErrorInfo, nullptr);
  return *info != nullptr ? S_OK : S_FALSE;
}

HRESULT CreateErrorInfo(ICreateErrorInfo** info) {
  if (info == nullptr) return E_INVALIDARG;
  *info = new (std::nothrow) ErrorInfo;
  return *info != nullptr ? S_OK : E_OUTOFMEMORY;
}
