// The identifier of an interface, found from its type.
//
//   ComPtr<IPlugInRowCount> counter;
//   table->QueryInterface(kInterfaceId<IPlugInRowCount>, counter.ReceiveVoid());
//
// Every interface header defines IID_<name> and the specialisation of kInterfaceId beside the
// interface. The values are fixed for ever: hosts are compiled against them.
#pragma once

#include "platform/ComTypes.h"
#include "platform/OleAutomation.h"

namespace quenra {

template <class Interface>
inline constexpr const IID& kInterfaceId = Interface::kMissingInterfaceId;

// The interface that `Interface` extends. An interface that extends another than IUnknown
// specialises this beside itself; a query for the other is then answered on the same face.
template <class Interface>
struct BaseInterface {
  using Type = IUnknown;
};

template <>
inline constexpr const IID& kInterfaceId<IUnknown> = IID_IUnknown;
template <>
inline constexpr const IID& kInterfaceId<IClassFactory> = IID_IClassFactory;
template <>
inline constexpr const IID& kInterfaceId<ISupportErrorInfo> = IID_ISupportErrorInfo;
template <>
inline constexpr const IID& kInterfaceId<IErrorInfo> = IID_IErrorInfo;

}  // namespace quenra
