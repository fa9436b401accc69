// Questions about variant types, shared by the variant calls.
#pragma once

#include <cstddef>

#include "platform/OleAutomation.h"

inline bool IsByRef(VARTYPE vt) { return (vt & VT_BYREF) != 0; }
inline bool IsArray(VARTYPE vt) { return (vt & VT_ARRAY) != 0; }

// Whether a variant may have this type. Decimals and records are not supported here.
bool IsValidVariantType(VARTYPE vt);

// Bytes of a plain value, 0 for a type that has none.
std::size_t VariantValueSize(VARTYPE vt);

// Copies the bits of *source, or of what it points at, without owning them. E_INVALIDARG for a
// reference to nothing.
HRESULT FollowVariant(const VARIANT& source, VARIANT* value);
