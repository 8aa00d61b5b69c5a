#pragma once

#include <string>
#include <string_view>

#include "Variant.h"

namespace cvars::platform {

/// Tells whether a date lies in the years 100 to 9999.
bool IsValidDate(DATE date) noexcept;

/// Prints month/day/year, hours to seconds, or both: a part that is zero is left out.
/// @retval E_INVALIDARG  outside the years 100 to 9999
HRESULT FormatDate(DATE date, std::wstring& text);

/// Reads month/day/year or year-month-day, a time of day ("h:mm[:ss] [AM|PM]"), or both.
/// @retval DISP_E_TYPEMISMATCH  no date
HRESULT ParseDate(std::wstring_view text, DATE& date);

}  // namespace cvars::platform
