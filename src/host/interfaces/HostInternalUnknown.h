// Interfaces that every object of the shared COM base answers.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// The object's own unknown, whoever aggregates it: its three IUnknown slots never delegate to
// an outer object.
struct IQUENRAInternalUnknown : public IUnknown {};

inline constexpr IID IID_IQUENRAInternalUnknown = {
    0xc4636238, 0x6a58, 0x4787, {0x9b, 0x0f, 0x40, 0xb1, 0x06, 0xbe, 0xe1, 0xbc}};
template <>
inline constexpr const IID& kInterfaceId<IQUENRAInternalUnknown> = IID_IQUENRAInternalUnknown;

// Asks an object for the class it belongs to.
struct IHostClassId : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) = 0;
  // The ProgID of that class as a new BSTR; E_FAIL when the class cannot be had.
  virtual HRESULT STDMETHODCALLTYPE GetProgID(BSTR* progId) = 0;
};

inline constexpr IID IID_IHostClassId = {
    0x47f6c44f, 0xcea7, 0x4b9b, {0x82, 0xd9, 0x84, 0xe7, 0x42, 0x62, 0x5c, 0x8a}};
template <>
inline constexpr const IID& kInterfaceId<IHostClassId> = IID_IHostClassId;

// Answered by class factories that keep one instance a thread.
struct ISingleton : public IUnknown {
  // Lets go of the calling thread's instance when nobody but the factory holds it.
  virtual HRESULT STDMETHODCALLTYPE DropUnusedInstance() = 0;
};

inline constexpr IID IID_ISingleton = {
    0xed2681e6, 0x6505, 0x411d, {0x8d, 0x6e, 0x99, 0xdc, 0x02, 0xc0, 0xe7, 0xdb}};
template <>
inline constexpr const IID& kInterfaceId<ISingleton> = IID_ISingleton;

}  // namespace quenra
