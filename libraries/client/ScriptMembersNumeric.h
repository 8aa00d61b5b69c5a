#pragma once

#include "IVorCvarDouble.h"
#include "IVorCvarDoubleLockstep.h"
#include "IVorCvarInt.h"
#include "IVorCvarLongInt.h"
#include "ScriptMembers.h"

namespace cvars {
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarDouble>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarDoubleLockstep>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarInt>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarLongInt>() noexcept;
}  // namespace cvars
