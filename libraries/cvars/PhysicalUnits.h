#pragma once

#include <string>

#include "CComPtr.h"
#include "Export.h"
#include "IVorPhysicalUnit.h"

namespace cvars {

/// Gives the physical-unit service of the process.
///
/// It is created by the first use and kept for the life of the process; when that fails the next
/// use tries again. Thread-safe.
/// @return null when it cannot be created.
CVARS_API CComPtr<IVorPhysicalUnit> PhysicalUnitService();

/// Asks the service whether a unit can be used.
///
/// @param unit  borrowed; null reads as empty.
/// @retval E_INVALIDARG  there is no service, or it does not know the unit
/// @return the failure of the service, or S_OK
[[nodiscard]] CVARS_API HRESULT ValidateUnit(const wchar_t* unit);

/// Gives the screen spelling of a unit; empty when there is no service or it fails.
///
/// @param remoteUnit  borrowed; null reads as empty.
CVARS_API std::wstring ScreenUnit(const wchar_t* remoteUnit);

}  // namespace cvars
