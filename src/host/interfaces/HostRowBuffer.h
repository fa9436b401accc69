// The host's buffer of one row, handed to a loader.
#pragma once

#include "host/interfaces/HostFields.h"
#include "host/interfaces/InterfaceId.h"

namespace quenra {

// One value a field, in the order of the fields; indexes from 0. Values are copied in and out.
struct HostRowBuffer : public IUnknown {
  // The caller releases the collection; it has no field before SetFields.
  virtual HRESULT STDMETHODCALLTYPE GetFields(HostFieldCollection** fields) = 0;
  // E_INVALIDARG and VT_EMPTY when `index` is outside the fields; the caller clears `value`, whose
  // former contents are not looked at.
  virtual HRESULT STDMETHODCALLTYPE GetValue(LONG index, VARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetValue(LONG index, const VARIANT* value) = 0;
};

inline constexpr IID IID_HostRowBuffer = {
    0xca8137a4, 0xea28, 0x4654, {0xa3, 0x64, 0xba, 0x96, 0x10, 0x13, 0xda, 0x3d}};
template <>
inline constexpr const IID& kInterfaceId<HostRowBuffer> = IID_HostRowBuffer;

// Making a row buffer for a table.
struct HostRowBufferEdit : public IUnknown {
  // Takes a reference to the collection, and one VT_EMPTY value for each of its present fields.
  virtual HRESULT STDMETHODCALLTYPE SetFields(HostFieldCollection* fields) = 0;
};

inline constexpr IID IID_HostRowBufferEdit = {
    0xb0b38ccf, 0x72f9, 0x4930, {0x98, 0x39, 0x39, 0x5c, 0x94, 0x5e, 0x45, 0x3d}};
template <>
inline constexpr const IID& kInterfaceId<HostRowBufferEdit> = IID_HostRowBufferEdit;

// Looking at the values where they are, for those who only read them, as a loader does.
struct HostRowBufferLending : public IUnknown {
  // The values of all fields, which stay the buffer's and are there until one is set anew. E_FAIL
  // when the fields have become more or fewer since SetFields: GetValue tells what is there.
  virtual HRESULT STDMETHODCALLTYPE LendValues(const VARIANT** values, LONG* count) = 0;
};

inline constexpr IID IID_HostRowBufferLending = {
    0x5b8d1f46, 0x93c2, 0x4e07, {0x8a, 0x6e, 0x2d, 0x41, 0xf7, 0x0c, 0xb9, 0x58}};
template <>
inline constexpr const IID& kInterfaceId<HostRowBufferLending> = IID_HostRowBufferLending;

}  // namespace quenra
