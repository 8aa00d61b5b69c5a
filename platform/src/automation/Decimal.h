#pragma once

#include "NumberText.h"

namespace cvars::platform {

/// The digits of a decimal, or of a currency amount.
DecimalDigits DigitsOf(const DECIMAL& value);
DecimalDigits DigitsOf(const CY& value);

/// Rounds to 28 decimals, or as many as 96 bits leave room for; ties to even.
/// @retval DISP_E_OVERFLOW  more than 96 bits before the point
HRESULT ToDecimal(const DecimalDigits& value, DECIMAL& result);
/// Rounds to four decimals, ties to even.
HRESULT ToCurrency(const DecimalDigits& value, CY& result);

/// Prints every digit, without trailing zeros.
std::wstring FormatDecimal(const DecimalDigits& value);

/// Tells whether the scale and the sign are ones a decimal can have.
bool IsValidDecimal(const DECIMAL& value) noexcept;

}  // namespace cvars::platform
