#include "ScriptMembersDouble.h"

namespace cvars {
namespace {

constexpr ScriptMember kMembers[] = {
    ScriptGet<&IVorCvarDouble::GetDefaultValue>(L"Default"),
    ScriptGet<&IVorCvarDouble::GetMinValue>(L"Min"),
    ScriptGet<&IVorCvarDouble::GetMaxValue>(L"Max"),
    ScriptGet<&IVorCvarDouble::GetGrainValue>(L"Grain"),
    ScriptGet<&IVorCvarDouble::GetUnitRemoteString>(L"Unit"),
    ScriptGet<&IVorCvarDouble::get_CoarseGrain>(L"CoarseGrain"),
    ScriptPut<&IVorCvarDouble::put_CoarseGrain>(L"CoarseGrain"),
    ScriptGet<&IVorCvarDouble::get_NumberOfIncrement>(L"NumberOfIncrement"),
};

}  // namespace

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarDouble>() noexcept {
  return kMembers;
}

}  // namespace cvars
