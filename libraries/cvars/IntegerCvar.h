#pragma once

#include "IntegerLattice.h"
#include "NumericCvar.h"

namespace cvars {

/// What the integer cvars of both widths share: requests rounded to a grain counted from the
/// minimum.
///
/// A new one has the range -999 to 999. Every operation is exact up to the ends of the width.
///
/// @tparam T          CCvarInt or CCvarLongInt.
/// @tparam Interface  IVorCvarInt or IVorCvarLongInt.
/// @tparam Integer    int or std::int64_t.
template <class T, class Interface, class Integer>
class CVARS_API IntegerCvar : public NumericCvar<T, Interface, Interface, Integer> {
  using Base = NumericCvar<T, Interface, Interface, Integer>;

 public:
  using Base::GetAdaptedValueNorm;
  using Base::SetRequestedValue;

  /// Names and configures the cvar and requests its default; tells nobody.
  ///
  /// @param name          copied; "name" or "name|remote name"; null reads as empty.
  /// @param defaultValue  in base units of `unit`, as min, max and grain.
  /// @param grain         below 1 reads as 1.
  /// @param unit          copied; remote spelling ("SWEEP"); null keeps the unit, one that is not
  ///                      valid too.
  /// @param guiHints      copied; null keeps the hints.
  void Initialize(const wchar_t* name, Integer defaultValue, Integer min, Integer max,
                  Integer grain, const wchar_t* unit, CVARFLAGS flags, const wchar_t* guiHints,
                  unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags);

  /// Changes several attributes at once. Sets NOTIFY_UNIT, NOTIFY_GUIHINTS, NOTIFY_ATTRIBUTES,
  /// NOTIFY_RANGE and NOTIFY_VALUE for what changed.
  ///
  /// A maximum below the minimum lowers the minimum; a grain below 1 reads as 1.
  HRESULT SetRange(Integer defaultValue, Integer min, Integer max, Integer grain,
                   const wchar_t* unit, const wchar_t* guiHints, unsigned int helpStringID,
                   bool setDefault);

  /// (max - min) / grain, with its fraction. @retval E_FAIL  the grain is not above 0
  HRESULT get_NumberOfIncrement(double* count) override;
  HRESULT GetAdaptedValueNorm(double* position) override;
  /// Requests the integer nearest to a position of the range; on a tie the even one.
  /// @retval E_INVALIDARG  not finite
  HRESULT SetRequestedValueNorm(double position) override;
  /// Requests adapted + steps x grain, inside the range; CVARFLAG_REVERSEINCREMENT turns the
  /// direction.
  HRESULT Increment(int steps) override;
  /// A real number rounds as variants do. @retval E_INVALIDARG  a real number that is not finite
  HRESULT put_Value(VARIANT value) override;

  HRESULT SetRequestedValue(Integer value, bool force) override;
  bool UpdateAdaptedValue() override;

  /// Sets NOTIFY_RANGE, and NOTIFY_VALUE when the adapted value moves; the same for the next two.
  /// Below 1 reads as 1.
  virtual void SetGrain(Integer grain);
  /// Lowers the minimum with it when that lies above; the lattice keeps its origin even then, and
  /// that is meant.
  virtual void SetMax(Integer max);
  /// Raises the maximum with it when that lies below.
  virtual void SetMin(Integer min);

 protected:
  using Base::m_grain;
  using Base::m_max;
  using Base::m_min;

  IntegerCvar() : Base(-999, 999) {}
  ~IntegerCvar() = default;

  bool SetAdapted(Integer value) {
    const bool changed = value != this->m_adapted;
    this->m_adapted = value;
    return changed;
  }

  /// Cuts the number to an integer, towards zero; a whole number beyond the exact doubles is read
  /// from the text itself.
  HRESULT RequestRead(const wchar_t* text, double value) override;
  HRESULT FormatAdapted(std::wstring_view unit, NumberStyle style, BSTR* text) override;
  void CopyRange(Interface& source) override;

 private:
  HRESULT RequestCut(double value);
  IntegerLattice<Integer> Lattice() const noexcept { return {m_min, m_max, m_grain, m_origin}; }
  void RecomputeOrigin() noexcept { m_origin = IntegerLattice<Integer>::Origin(m_min, m_grain); }

  Relaxed<std::int64_t> m_origin{0};
};

}  // namespace cvars
