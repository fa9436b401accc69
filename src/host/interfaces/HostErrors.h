// What a chained error adds to the system's error object.
//
// The error object of the calling thread (GetErrorInfo) answers this interface when the error was
// chained by a data source.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// One error of a chain, the newest first.
struct HostChainedError : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetCode(HRESULT* code) = 0;
  // Identifies the class that reported the error.
  virtual HRESULT STDMETHODCALLTYPE GetSourceId(GUID* source) = 0;
  // The error chained before this one; null and S_FALSE at the end. The caller releases it.
  virtual HRESULT STDMETHODCALLTYPE GetNext(HostChainedError** next) = 0;
  // The text as a new BSTR.
  virtual HRESULT STDMETHODCALLTYPE GetText(BSTR* text) = 0;
};

// Which parts of a chained error's text are names and values from files and from the user, so that
// a host can escape or shorten them for people. Positions and lengths count code units of GetText.
// Answered by the error object beside HostChainedError.
struct HostErrorInserts : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetInsertCount(LONG* count) = 0;
  // From left to right; the parts do not overlap. E_INVALIDARG for an index out of range.
  virtual HRESULT STDMETHODCALLTYPE GetInsert(LONG index, LONG* begin, LONG* length) = 0;
};

inline constexpr IID IID_HostChainedError = {
    0x88c996bf, 0x7396, 0x4d29, {0xad, 0xbd, 0xcc, 0x19, 0x75, 0x82, 0x40, 0xa5}};
template <>
inline constexpr const IID& kInterfaceId<HostChainedError> = IID_HostChainedError;

inline constexpr IID IID_HostErrorInserts = {
    0x5d0a7c3e, 0x41b8, 0x4f6d, {0x9b, 0x27, 0xe6, 0x13, 0x8a, 0xf4, 0x52, 0xc9}};
template <>
inline constexpr const IID& kInterfaceId<HostErrorInserts> = IID_HostErrorInserts;

}  // namespace quenra
