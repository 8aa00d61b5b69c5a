#pragma once

#include "Variant.h"

namespace cvars::platform {

/// Tells whether a variant may carry this tag.
bool IsValidTag(VARTYPE type) noexcept;

/// Follows VT_BYREF to the value, through one variant in between.
/// @param value  receives what is held, borrowed: it is never cleared.
/// @retval DISP_E_BADVARTYPE    unknown tag
/// @retval DISP_E_TYPEMISMATCH  a null reference
/// @retval E_INVALIDARG         a reference to a variant that refers to a variant
HRESULT Dereference(VARIANT& value, const VARIANT& source) noexcept;

}  // namespace cvars::platform
