#pragma once

#include <mutex>
#include <set>
#include <utility>

#include "NumericCvar.h"
#include "ValueSet.h"

namespace cvars {

/// What the cvars share whose value is a member of a set, whatever the type of the members.
///
/// The object lock guards what describes the set. With fine grain enabled the cvar adapts, steps
/// and describes itself as its base does.
///
/// @tparam Base  CCvarDouble, CCvarInt or CCvarLongInt.
template <class Base>
class CVARS_API ValueSetCvar : public Base {
 public:
  using Number = typename Base::Value_t;

  /// Switches between the members and the base's adaptation; does not adapt the value again. Sets
  /// NOTIFY_RANGE on a change.
  HRESULT EnableFineGrain(bool enabled, Number minimumGrain) {
    bool changed = false;
    {
      const std::lock_guard guard(this->m_lock);
      changed = Store(m_fineGrainEnabled, enabled);
      changed |= Store(m_minimumGrain, minimumGrain);
    }
    return NotifySet(changed);
  }

  /// Fits the request to the members as the policy says; an empty set keeps the request.
  bool UpdateAdaptedValue() override {
    if (FineGrainEnabled()) return Base::UpdateAdaptedValue();
    Number adapted;
    {
      const std::lock_guard guard(this->m_lock);
      adapted = AdaptToSet(m_values, m_policy, this->m_requested.Get());
    }
    return this->SetAdapted(adapted);
  }

  /// Moves by members and stops at the ends of the set; CVARFLAG_REVERSEINCREMENT turns the
  /// direction. A value that is no member is requested as it is.
  HRESULT Increment(int steps) override {
    if (FineGrainEnabled()) return Base::Increment(steps);
    Number request;
    {
      const std::lock_guard guard(this->m_lock);
      request = StepInSet(m_values, this->GetAdaptedValue(), this->DirectedSteps(steps));
    }
    return this->SetRequestedValue(request);
  }

  /// The members in ascending order, "1,2,5".
  HRESULT get_Range(BSTR* text) override {
    if (text == nullptr || FineGrainEnabled()) return Base::get_Range(text);
    return CopyOut(Members(), text);
  }

  HRESULT get_Signature(BSTR* text) override {
    if (text == nullptr || FineGrainEnabled()) return Base::get_Signature(text);
    return this->EndSignature(this->BeginSignature()
                                  .Add(L"AdaptPolicy", AdaptPolicyName(Policy()))
                                  .Add(L"Values", L"(" + Members() + L")"),
                              text);
  }

 protected:
  ValueSetCvar() = default;
  ~ValueSetCvar() = default;

  bool FineGrainEnabled() const {
    const std::lock_guard guard(this->m_lock);
    return m_fineGrainEnabled;
  }
  Number MinimumGrain() const {
    const std::lock_guard guard(this->m_lock);
    return m_minimumGrain;
  }
  AdaptPolicy Policy() const {
    const std::lock_guard guard(this->m_lock);
    return m_policy;
  }
  std::wstring Members() const {
    const std::lock_guard guard(this->m_lock);
    return MembersText(m_values);
  }

  /// Replaces what describes the set; tells nobody and adapts nothing. @return whether it differs
  bool StoreSet(const std::set<Number>& values, AdaptPolicy policy, bool fineGrainEnabled,
                Number minimumGrain) {
    const std::lock_guard guard(this->m_lock);
    bool changed = Store(m_values, values);
    changed |= Store(m_policy, policy);
    changed |= Store(m_fineGrainEnabled, fineGrainEnabled);
    changed |= Store(m_minimumGrain, minimumGrain);
    return changed;
  }

  /// Tells the listeners of a change of the set, and what else is pending.
  HRESULT NotifySet(bool changed) {
    if (changed) this->AddPending(NOTIFY_RANGE);
    return this->NotifyClients(NOTIFY_ALL_CLIENTS, false);
  }

  HRESULT FillCvarPropertiesMap(PropertiesMap& map) override {
    const HRESULT filled = Base::FillCvarPropertiesMap(map);
    if (FAILED(filled)) return filled;
    map.SetText(L"AdaptPolicy", AdaptPolicyName(Policy()));
    map.SetText(L"Values", Members());
    return S_OK;
  }

  template <class Field>
  static bool Store(Field& field, const Field& value) {
    return std::exchange(field, value) != value;
  }

 private:
  std::set<Number> m_values;
  AdaptPolicy m_policy = ADAPT_CLOSEST_DOWN;
  bool m_fineGrainEnabled = false;
  Number m_minimumGrain{};
};

}  // namespace cvars
