#pragma once

#include <string>
#include <vector>

#include "ColumnRange.h"
#include "CvarImpl.h"
#include "VariantTable.h"

/// A table of variants of one or two dimensions, such as a list of frequencies or of points.
///
/// In a table of two dimensions the first index is the column and the second the row; an array of
/// one dimension is one row. Each column may have a range to which its elements are adapted;
/// columns beyond the ranges are taken as they are. Arrays are copied in and copied out. Values and
/// ranges are kept under the object lock.
class CVARS_API CCvarSafeArray
    : public IVorCvarImpl<CCvarSafeArray, IVorCvar, CComSafeArray<VARIANT>> {
 public:
  static constexpr const wchar_t* kTypeName = L"SafeArray";

  using IVorCvarImpl::GetAdaptedValue;
  using IVorCvarImpl::GetAdaptedValueNorm;

  static bool IsFloatingPointVarType(ULONG type);
  static bool IsSignedIntegerVarType(ULONG type);
  static bool IsUnsignedIntegerVarType(ULONG type);
  static bool IsNumericVarType(ULONG type);
  /// Gives the bounds of VT_R4 or VT_R8.
  /// @retval E_INVALIDARG  in every case, also when the bounds were given; that is meant
  static HRESULT GetMinMaxForFloatingPointVarType(ULONG type, double* min, double* max);
  /// @retval E_INVALIDARG  not a signed integer type; the bounds are 0
  static HRESULT GetMinMaxForSignedIntegerVarType(ULONG type, double* min, double* max);
  /// @retval E_INVALIDARG  not an unsigned integer type; the bounds are 0
  static HRESULT GetMinMaxForUnsignedIntegerVarType(ULONG type, double* min, double* max);
  /// Converts a value into a type and clamps it to the bounds of the type.
  /// @param[out] result  cleared, then caller frees; untouched on failure.
  static HRESULT AdaptToMinMaxForVarType(const VARIANT& value, ULONG type, VARIANT* result);
  /// Fits a value into the range of a column.
  /// @param[out] result  cleared, then caller frees; untouched on failure.
  static HRESULT AdaptToRange(const VARIANT& value, const SColRangeDesc& range, VARIANT* result);
  /// Compares dimensions, extents and elements; lower bounds do not count.
  static bool AreCComSafeArraysEqual(const CComSafeArray<VARIANT>& a,
                                     const CComSafeArray<VARIANT>& b);
  static HRESULT ConvertStrToSafeArray(const wchar_t* text, CComSafeArray<VARIANT>* array);
  static HRESULT ConvertSafeArrayToStr(const CComSafeArray<VARIANT>& array,
                                       const std::vector<SColRangeDesc>& ranges, BSTR* text);
  static HRESULT ConvertRangeStrToRangeDescVector(const wchar_t* text,
                                                  std::vector<SColRangeDesc>* ranges);
  static HRESULT ConvertRangeDescVectorToRangeStr(const std::vector<SColRangeDesc>& ranges,
                                                  BSTR* text);

  /// Names and configures the cvar and requests its default; tells nobody.
  void Initialize(const wchar_t* name, const SAFEARRAY* defaultValue,
                  const std::vector<SColRangeDesc>& ranges, CVARFLAGS flags);
  void Initialize(const wchar_t* name, const SAFEARRAY* defaultValue, const wchar_t* ranges,
                  CVARFLAGS flags);
  void Initialize(const wchar_t* name, const wchar_t* defaultValue, const wchar_t* ranges,
                  CVARFLAGS flags);

  /// Replaces the ranges. Sets NOTIFY_RANGE, and NOTIFY_VALUE when an adapted element changes.
  /// @retval S_FALSE  no change
  HRESULT SetRange(const std::vector<SColRangeDesc>& ranges);
  HRESULT SetRange(const wchar_t* ranges);
  /// Sets NOTIFY_ATTRIBUTES. @param value  copied; null is an empty array.  @retval S_FALSE no
  /// change
  HRESULT SetDefault(const SAFEARRAY* value);
  HRESULT SetDefault(const wchar_t* value);
  /// @param[out] array  caller destroys.
  HRESULT GetDefault(SAFEARRAY** array);
  HRESULT GetAdaptedValue(SAFEARRAY** array);

  /// VT_ARRAY | VT_VARIANT.
  HRESULT get_Value(VARIANT* value) override;
  HRESULT put_Value(VARIANT value) override { return put_Value(value, false); }
  /// Requests an array (of any element type, by reference too), no array for VT_EMPTY, or what a
  /// text says. Sets NOTIFY_REQUESTED, and NOTIFY_VALUE when the adapted array changes.
  ///
  /// @param force  writes a read-only cvar too.
  /// @retval E_ACCESSDENIED  read-only and not forced
  /// @retval E_INVALIDARG    any other variant
  /// @retval S_OK            also for the array that is requested already, which tells nobody
  /// @return otherwise what the listeners answered
  HRESULT put_Value(VARIANT value, bool force);
  HRESULT SetRequestedValueFromString(const wchar_t* text) override;
  HRESULT SetToDefault() override;
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override;
  HRESULT GetAdaptedValueStringAutomation(BSTR* text) override;
  HRESULT get_Range(BSTR* text) override;
  HRESULT get_Signature(BSTR* text) override;
  HRESULT Increment(int) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueNorm(double*) override;
  HRESULT SetRequestedValueNorm(double) override { return E_NOTIMPL; }

  HRESULT UpdateAdaptedValueAndNotify() override;

 protected:
  CCvarSafeArray();
  ~CCvarSafeArray() = default;

  /// Fits the request to the ranges. @return whether the adapted array changed
  virtual bool UpdateAdaptedValue();
  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

 private:
  HRESULT Request(CComSafeArray<VARIANT> array);
  std::wstring TextOf(const CComSafeArray<VARIANT>& array) const;

  std::vector<SColRangeDesc> m_ranges CVARS_GUARDED_BY(m_lock);
};

extern template class IVorCvarImpl<CCvarSafeArray, IVorCvar, CComSafeArray<VARIANT>>;
