#pragma once

#include "ValueSetCvar.h"

namespace cvars {

/// What the integer cvars of both widths share that take one of a set of values.
///
/// @tparam Base  CCvarInt or CCvarLongInt.
template <class Base>
class CVARS_API IntegerSetCvar : public ValueSetCvar<Base> {
 public:
  using Number = typename Base::Value_t;

  /// Names and configures the cvar and requests its default; tells nobody.
  ///
  /// The range stays as it is; it bounds the value while fine grain is enabled.
  /// @param values            copied; in base units of `unit`.
  /// @param fineGrainEnabled  adapts as a plain integer does, whatever the members.
  /// @param minimumGrain      kept for the cvar's owner; nothing is derived from it.
  void Initialize(const wchar_t* name, Number defaultValue, const std::set<Number>& values,
                  AdaptPolicy policy, bool fineGrainEnabled, Number minimumGrain,
                  const wchar_t* unit, CVARFLAGS flags, const wchar_t* guiHints,
                  unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags) {
    SetRangeNoNotify(values, policy, fineGrainEnabled, minimumGrain);
    Base::Initialize(name, defaultValue, this->GetMin(), this->GetMax(), this->GetGrain(), unit,
                     flags, guiHints, helpStringID, replicationFlags);
  }

  /// Replaces what describes the set; tells nobody and does not adapt the value again.
  void SetRangeNoNotify(const std::set<Number>& values, AdaptPolicy policy, bool fineGrainEnabled,
                        Number minimumGrain) {
    (void)this->StoreSet(values, policy, fineGrainEnabled, minimumGrain);
  }
  /// Replaces what describes the set; does not adapt the value again. Sets NOTIFY_RANGE on a
  /// change.
  HRESULT SetRange(const std::set<Number>& values, AdaptPolicy policy, bool fineGrainEnabled,
                   Number minimumGrain) {
    return this->NotifySet(this->StoreSet(values, policy, fineGrainEnabled, minimumGrain));
  }
  /// The same, with the attributes that the plain integer's SetRange has.
  HRESULT SetRange(Number defaultValue, const std::set<Number>& values, AdaptPolicy policy,
                   bool fineGrainEnabled, Number minimumGrain, const wchar_t* unit,
                   const wchar_t* guiHints, unsigned int helpStringID, bool setDefault) {
    this->SetRangeAttributes(defaultValue, unit, guiHints, helpStringID, setDefault);
    return SetRange(values, policy, fineGrainEnabled, minimumGrain);
  }

 protected:
  IntegerSetCvar() = default;
  ~IntegerSetCvar() = default;
};

}  // namespace cvars
