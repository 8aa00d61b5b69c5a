#pragma once

#include <string_view>

#include "BasicTypes.h"
#include "Export.h"

namespace cvars::platform {

/// Says in English what a result code means.
///
/// @return one sentence ended by "\r\n", the same one for all codes that are not known; it lives as
/// long as the process.
CVARS_API std::wstring_view ResultMessage(HRESULT result) noexcept;

}  // namespace cvars::platform
