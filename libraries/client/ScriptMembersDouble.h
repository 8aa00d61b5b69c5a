#pragma once

#include "IVorCvarDouble.h"
#include "ScriptMembers.h"

namespace cvars {
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarDouble>() noexcept;
}  // namespace cvars
