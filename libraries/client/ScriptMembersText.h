#pragma once

#include "IVorCvarFileName.h"
#include "IVorCvarObjectName.h"
#include "IVorCvarString.h"
#include "ScriptMembers.h"

namespace cvars {
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarString>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarObjectName>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarFileName>() noexcept;
}  // namespace cvars
