#pragma once

#include "IVorCvarBool.h"
#include "IVorCvarColor.h"
#include "IVorCvarEnum.h"
#include "ScriptMembers.h"

namespace cvars {
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarEnum>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarBool>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarColor>() noexcept;
}  // namespace cvars
