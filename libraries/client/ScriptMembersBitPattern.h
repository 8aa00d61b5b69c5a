#pragma once

#include "IVorCvarBitPattern.h"
#include "ScriptMembers.h"

namespace cvars {
template <>
CVARS_API std::span<const ScriptMember> TypedScriptMembers<IVorCvarBitPattern>() noexcept;
}  // namespace cvars
