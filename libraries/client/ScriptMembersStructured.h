#pragma once

#include "IVorCvarAction.h"
#include "IVorCvarBitPattern.h"
#include "IVorCvarImage.h"
#include "IVorCvarRegister.h"
#include "ScriptMembers.h"

namespace cvars {
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarAction>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarBitPattern>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarImage>() noexcept;
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarRegister>() noexcept;
}  // namespace cvars
