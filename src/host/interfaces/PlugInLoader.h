// Appending rows to a table.
#pragma once

#include "host/interfaces/HostRowBuffer.h"
#include "host/interfaces/InterfaceId.h"

namespace quenra {

// Rows are written in the order of the calls; the file is complete at the last release.
struct IPlugInDatasetLoader : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE LoadRow(HostRowBuffer* row) = 0;
};

inline constexpr IID IID_IPlugInDatasetLoader = {
    0x84b2618a, 0xa80b, 0x4cf6, {0xbc, 0xbc, 0x05, 0x12, 0xa1, 0xd2, 0x45, 0x44}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInDatasetLoader> = IID_IPlugInDatasetLoader;

}  // namespace quenra
