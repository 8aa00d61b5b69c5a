#include "ColumnRange.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "CComVariant.h"
#include "GrainRounding.h"

namespace cvars {
namespace {

struct TypeRow {
  ULONG type;
  TypeBounds bounds;
};

constexpr TypeRow kFloatingPoint[] = {
    {VT_R4, {-3.4028234663852886e38, 3.4028234663852886e38}},
    {VT_R8, {-1.7976931348623157e308, 1.7976931348623157e308}},
};
constexpr TypeRow kSignedIntegers[] = {
    {VT_I1, {-128, 127}},
    {VT_I2, {-32768, 32767}},
    {VT_I4, {-2147483648.0, 2147483647}},
    {VT_INT, {-2147483648.0, 2147483647}},
};
constexpr TypeRow kUnsignedIntegers[] = {
    {VT_UI1, {0, 255}},
    {VT_UI2, {0, 65535}},
    {VT_UI4, {0, 4294967295}},
    {VT_UINT, {0, 4294967295}},
};

template <std::size_t N>
const TypeRow* Find(const TypeRow (&rows)[N], ULONG type) noexcept {
  const auto* const row =
      std::find_if(rows, rows + N, [type](const TypeRow& r) { return r.type == type; });
  return row == rows + N ? nullptr : row;
}

HRESULT Convert(double number, ULONG type, VARIANT* result) {
  const CComVariant value(number);
  return VariantChangeType(result, &value, 0, static_cast<VARTYPE>(type));
}

// Half away from zero.
double RoundedBound(double bound) noexcept {
  return std::trunc(bound < 0 ? bound - 0.5 : bound + 0.5);
}

}  // namespace

bool IsFloatingPointType(ULONG type) noexcept { return Find(kFloatingPoint, type) != nullptr; }
bool IsSignedIntegerType(ULONG type) noexcept { return Find(kSignedIntegers, type) != nullptr; }
bool IsUnsignedIntegerType(ULONG type) noexcept { return Find(kUnsignedIntegers, type) != nullptr; }

TypeBounds BoundsOfType(ULONG type) noexcept {
  const TypeRow* row = Find(kFloatingPoint, type);
  if (row == nullptr) row = Find(kSignedIntegers, type);
  if (row == nullptr) row = Find(kUnsignedIntegers, type);
  return row == nullptr ? TypeBounds{} : row->bounds;
}

HRESULT AdaptToType(const VARIANT& value, ULONG type, VARIANT* result) {
  if (!IsFloatingPointType(type) && !IsSignedIntegerType(type) && !IsUnsignedIntegerType(type)) {
    return VariantChangeType(result, &value, 0, static_cast<VARTYPE>(type));
  }
  CComVariant number;
  const HRESULT converted = VariantChangeType(&number, &value, 0, VT_R8);
  if (FAILED(converted)) return converted;
  const TypeBounds bounds = BoundsOfType(type);
  if (std::isnan(number.dblVal)) return Convert(number.dblVal, type, result);
  return Convert(std::clamp(number.dblVal, bounds.min, bounds.max), type, result);
}

HRESULT AdaptToColumn(const VARIANT& value, const SColRangeDesc& range, VARIANT* result) {
  CComVariant typed;
  HRESULT adapted = AdaptToType(value, range.elementType, &typed);
  if (FAILED(adapted)) return adapted;
  CComVariant number;
  adapted =
      VariantChangeType(&number, &typed, 0, VT_R8);  // exact for every type of at most 32 bits
  if (FAILED(adapted)) return adapted;

  if (IsFloatingPointType(range.elementType)) {
    const double clamped = std::isnan(number.dblVal)
                               ? number.dblVal  // neither below the minimum nor above the maximum
                               : ClampToRange(number.dblVal, range.minimum, range.maximum);
    const double rounded = RoundToStep(clamped, EffectiveStep(clamped, range.grain));
    const CComVariant wide(rounded);
    return AdaptToType(wide, range.elementType, result);
  }
  if (IsSignedIntegerType(range.elementType) || IsUnsignedIntegerType(range.elementType)) {
    // Bounds that the type does not reach are those of the type.
    const TypeBounds type = BoundsOfType(range.elementType);
    const auto bound = [&type](double limit) {
      return std::clamp(std::isnan(limit) ? type.min : RoundedBound(limit), type.min, type.max);
    };
    const double min = bound(range.minimum);
    const double max = bound(range.maximum);
    return Convert(ClampToRange(number.dblVal, min, max), range.elementType, result);
  }
  return VariantCopy(result, &typed);
}

}  // namespace cvars
