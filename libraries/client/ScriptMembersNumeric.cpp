#include "ScriptMembersNumeric.h"

#include <array>

namespace cvars {
namespace {

/// The members of every number, and those that the type has beside them.
template <class Interface, class... Further>
constexpr auto NumericMembers(Further... further) {
  return std::array{
      ScriptGet<&Interface::GetDefaultValue>(L"Default"),
      ScriptGet<&Interface::GetMinValue>(L"Min"),
      ScriptGet<&Interface::GetMaxValue>(L"Max"),
      ScriptGet<&Interface::GetGrainValue>(L"Grain"),
      ScriptGet<&Interface::GetUnitRemoteString>(L"Unit"),
      ScriptGet<&Interface::get_CoarseGrain>(L"CoarseGrain"),
      ScriptPut<&Interface::put_CoarseGrain>(L"CoarseGrain"),
      ScriptGet<&Interface::get_NumberOfIncrement>(L"NumberOfIncrement"),
      further...,
  };
}

constexpr auto kDoubleMembers = NumericMembers<IVorCvarDouble>();
constexpr auto kIntMembers = NumericMembers<IVorCvarInt>();
constexpr auto kLongIntMembers = NumericMembers<IVorCvarLongInt>();
constexpr auto kLockstepMembers = NumericMembers<IVorCvarDoubleLockstep>(
    ScriptGet<&IVorCvarDoubleLockstep::get_Lockstep>(L"Lockstep"),
    ScriptPut<&IVorCvarDoubleLockstep::put_Lockstep>(L"Lockstep"),
    ScriptMethod<&IVorCvarDoubleLockstep::IncrementFine>(L"IncrementFine"),
    ScriptGet<&IVorCvarDoubleLockstep::get_FineGrainAllowed>(L"FineGrainAllowed"),
    ScriptPut<&IVorCvarDoubleLockstep::put_FineGrainAllowed>(L"FineGrainAllowed"),
    ScriptGet<&IVorCvarDoubleLockstep::get_FineGrainOn>(L"FineGrainOn"),
    ScriptPut<&IVorCvarDoubleLockstep::put_FineGrainOn>(L"FineGrainOn"));

}  // namespace

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarDouble>() noexcept {
  return kDoubleMembers;
}
template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarDoubleLockstep>() noexcept {
  return kLockstepMembers;
}
template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarInt>() noexcept {
  return kIntMembers;
}
template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarLongInt>() noexcept {
  return kLongIntMembers;
}

}  // namespace cvars
