#pragma once

#include <string>

#include "Export.h"
#include "IVorPhysicalUnit.h"

namespace cvars {

/// Gives the physical-unit service of the process.
///
/// It is created by the first use and kept for the life of the process; when that fails the next
/// use tries again. Thread-safe.
/// @return borrowed; null when it cannot be created.
CVARS_API IVorPhysicalUnit* PhysicalUnitService();

/// Asks the service whether a unit can be used.
///
/// @param unit  borrowed; null reads as empty.
/// @retval E_INVALIDARG  there is no service, or it does not know the unit
/// @return the failure of the service, or S_OK
[[nodiscard]] CVARS_API HRESULT ValidateUnit(const wchar_t* unit);

/// Asks the service for the screen spelling of a unit.
///
/// @param remoteUnit   borrowed; null reads as empty.
/// @param[out] screen  untouched on failure.
/// @retval E_INVALIDARG  there is no service
/// @return the failure of the service, or S_OK
[[nodiscard]] CVARS_API HRESULT ScreenUnit(const wchar_t* remoteUnit, std::wstring* screen);

}  // namespace cvars
