#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "DateText.h"
#include "Decimal.h"
#include "NumberText.h"
#include "SafeArray.h"
#include "VariantTags.h"

namespace cvars::platform {

namespace {

constexpr USHORT kAlphabeticBooleans =
    VARIANT_ALPHABOOL | VARIANT_NOUSEROVERRIDE | VARIANT_LOCALBOOL;
constexpr int kDoubleDigits = 15;
constexpr int kFloatDigits = 7;

struct IntegerRange {
  WideInteger lowest = 0;
  WideInteger highest = 0;
  int bytes = 0;  ///< 0: no integer type.
};

template <class Integer>
constexpr IntegerRange RangeOf() {
  return {std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max(),
          sizeof(Integer)};
}

IntegerRange RangeOf(VARTYPE type) {
  switch (type) {
    case VT_I1:
      return RangeOf<std::int8_t>();
    case VT_UI1:
      return RangeOf<BYTE>();
    case VT_I2:
      return RangeOf<SHORT>();
    case VT_UI2:
      return RangeOf<USHORT>();
    case VT_I4:
    case VT_INT:
      return RangeOf<LONG>();
    case VT_UI4:
    case VT_UINT:
      return RangeOf<ULONG>();
    case VT_I8:
      return RangeOf<LONGLONG>();
    case VT_UI8:
      return RangeOf<ULONGLONG>();
    default:
      return {};
  }
}

WideInteger IntegerOf(const VARIANT& value) {
  switch (value.vt) {
    case VT_I1:
      return static_cast<std::int8_t>(value.bVal);
    case VT_UI1:
      return value.bVal;
    case VT_I2:
    case VT_BOOL:
      return value.iVal;
    case VT_UI2:
      return value.uiVal;
    case VT_I4:
    case VT_INT:
      return value.lVal;
    case VT_UI4:
    case VT_UINT:
      return value.ulVal;
    case VT_I8:
      return value.llVal;
    case VT_UI8:
      return value.ullVal;
    default:
      return 0;
  }
}

// Stores the low bits that the type has room for.
void StoreInteger(VARIANT& result, VARTYPE type, WideInteger value) {
  result.vt = type;
  switch (RangeOf(type).bytes) {
    case 1:
      result.bVal = static_cast<BYTE>(value);
      break;
    case 2:
      result.uiVal = static_cast<USHORT>(value);
      break;
    case 4:
      result.ulVal = static_cast<ULONG>(value);
      break;
    default:
      result.ullVal = static_cast<ULONGLONG>(value);
      break;
  }
}

HRESULT StoreInRange(VARIANT& result, VARTYPE type, WideInteger value) {
  const IntegerRange range = RangeOf(type);
  if (value < range.lowest || value > range.highest) return DISP_E_OVERFLOW;
  StoreInteger(result, type, value);
  return S_OK;
}

HRESULT StoreText(VARIANT& result, std::wstring_view text) {
  if (text.size() > std::numeric_limits<UINT>::max()) return E_OUTOFMEMORY;
  result.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (result.bstrVal == nullptr) return E_OUTOFMEMORY;
  result.vt = VT_BSTR;
  return S_OK;
}

void StoreBool(VARIANT& result, bool value) {
  result.vt = VT_BOOL;
  result.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

HRESULT StoreFloat(VARIANT& result, double value) {
  if (std::abs(value) > std::numeric_limits<float>::max()) return DISP_E_OVERFLOW;
  result.vt = VT_R4;
  result.fltVal = static_cast<float>(value);
  return S_OK;
}

HRESULT StoreDate(VARIANT& result, double value) {
  if (!IsValidDate(value)) return DISP_E_OVERFLOW;
  result.vt = VT_DATE;
  result.date = value;
  return S_OK;
}

HRESULT StoreExact(VARIANT& result, VARTYPE type, const DecimalDigits& value) {
  if (type == VT_CY) {
    CY amount{};
    const HRESULT answer = ToCurrency(value, amount);
    if (FAILED(answer)) return answer;
    result.vt = VT_CY;
    result.cyVal = amount;
    return S_OK;
  }
  DECIMAL decimal{};
  const HRESULT answer = ToDecimal(value, decimal);
  if (SUCCEEDED(answer)) SetDecimal(result, decimal);
  return answer;
}

DecimalDigits DigitsOfText(const std::wstring& text) {
  TextNumber number;
  (void)ParseNumber(text, number);  // printed by this file, so it is a number
  return number.decimal;
}

HRESULT FromInteger(VARIANT& result, VARTYPE type, const VARIANT& source) {
  const WideInteger value = IntegerOf(source);
  const IntegerRange target = RangeOf(type);
  if (target.bytes != 0) {
    // A boolean is cut to size like a machine word, and a number of the same size keeps its bits.
    if (source.vt == VT_BOOL || RangeOf(source.vt).bytes == target.bytes) {
      StoreInteger(result, type, value);
      return S_OK;
    }
    return StoreInRange(result, type, value);
  }
  switch (type) {
    case VT_BOOL:
      StoreBool(result, value != 0);
      return S_OK;
    case VT_R4:
      result.vt = VT_R4;
      result.fltVal = static_cast<float>(value);
      return S_OK;
    case VT_R8:
      result.vt = VT_R8;
      result.dblVal = static_cast<double>(value);
      return S_OK;
    case VT_DATE:
      return StoreDate(result, static_cast<double>(value));
    case VT_BSTR:
      return StoreText(result, FormatInteger(value));
    case VT_CY:
    case VT_DECIMAL:
      return StoreExact(result, type, DigitsOfText(FormatInteger(value)));
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

HRESULT FromBool(VARIANT& result, VARTYPE type, const VARIANT& source, USHORT flags) {
  if (type == VT_BSTR && (flags & kAlphabeticBooleans) != 0) {
    return StoreText(result, source.boolVal != VARIANT_FALSE ? L"True" : L"False");
  }
  return FromInteger(result, type, source);
}

HRESULT FromReal(VARIANT& result, VARTYPE type, double value, int digits) {
  if (RangeOf(type).bytes != 0) {
    const double rounded = std::nearbyint(value);
    // Beyond 2^70 nothing fits, and the integer below can hold what is left.
    if (!(std::abs(rounded) < 0x1p70)) return DISP_E_OVERFLOW;
    return StoreInRange(result, type, static_cast<WideInteger>(rounded));
  }
  switch (type) {
    case VT_BOOL:
      StoreBool(result, value != 0);
      return S_OK;
    case VT_R4:
      return StoreFloat(result, value);
    case VT_R8:
      result.vt = VT_R8;
      result.dblVal = value;
      return S_OK;
    case VT_DATE:
      return StoreDate(result, value);
    case VT_BSTR:
      return StoreText(result, FormatReal(value, digits));
    case VT_CY:
    case VT_DECIMAL:
      if (!std::isfinite(value)) return DISP_E_OVERFLOW;
      return StoreExact(result, type, DigitsOfText(FormatReal(value, digits)));
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

HRESULT FromDate(VARIANT& result, VARTYPE type, const VARIANT& source) {
  if (type != VT_BSTR) return FromReal(result, type, source.date, kDoubleDigits);
  std::wstring text;
  const HRESULT answer = FormatDate(source.date, text);
  return FAILED(answer) ? answer : StoreText(result, text);
}

HRESULT FromDigits(VARIANT& result, VARTYPE type, const DecimalDigits& value) {
  if (RangeOf(type).bytes != 0) {
    WideInteger rounded = 0;
    if (!RoundScaled(value, 0, rounded)) return DISP_E_OVERFLOW;
    return StoreInRange(result, type, rounded);
  }
  switch (type) {
    case VT_CY:
    case VT_DECIMAL:
      return StoreExact(result, type, value);
    case VT_BSTR:
      return StoreText(result, FormatDecimal(value));
    case VT_BOOL:
    case VT_R4:
    case VT_R8:
    case VT_DATE: {
      double real = 0;
      const HRESULT answer = ToDouble(value, real);
      return FAILED(answer) ? answer : FromReal(result, type, real, kDoubleDigits);
    }
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

// A number written in another base is a pattern of bits: one that has the width of a signed target
// gives a negative number, 32 bits being the width that reals read.
HRESULT FromBits(VARIANT& result, VARTYPE type, ULONGLONG bits) {
  if (bits > ULONGLONG{std::numeric_limits<LONGLONG>::max()}) {
    return FromReal(result, type, static_cast<double>(bits), kDoubleDigits);
  }
  VARIANT pattern{};
  const IntegerRange target = RangeOf(type);
  const bool narrow = target.bytes != 0 && target.bytes < 8;
  const int width = target.bytes == 0 ? 32 : target.bytes * 8;
  if (narrow && bits >> width == 0) {
    StoreInteger(result, type, bits);
    return S_OK;
  }
  if (target.bytes == 0 && bits >> width == 0) {
    StoreInteger(pattern, VT_I4, bits);
  } else {
    StoreInteger(pattern, VT_I8, bits);
  }
  return FromInteger(result, type, pattern);
}

bool SameLetters(std::wstring_view text, std::wstring_view upper) {
  if (text.size() != upper.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (UpperCase(text[i]) != upper[i]) return false;
  }
  return true;
}

HRESULT FromText(VARIANT& result, VARTYPE type, const VARIANT& source) {
  const std::wstring_view text(source.bstrVal, SysStringLen(source.bstrVal));
  if (type == VT_UNKNOWN || type == VT_DISPATCH || type == VT_ERROR) return DISP_E_TYPEMISMATCH;
  if (type == VT_BOOL) {
    const bool yes = SameLetters(text, L"TRUE") || text == L"#TRUE#";
    if (yes || SameLetters(text, L"FALSE") || text == L"#FALSE#") {
      StoreBool(result, yes);
      return S_OK;
    }
  }
  if (type == VT_DATE) {
    DATE date = 0;
    if (SUCCEEDED(ParseDate(text, date))) return StoreDate(result, date);
  }
  TextNumber number;
  const HRESULT answer = ParseNumber(text, number);
  if (FAILED(answer)) return answer;
  if (number.based) return FromBits(result, type, number.bits);
  return FromDigits(result, type, number.decimal);
}

HRESULT FromArray(VARIANT& result, VARTYPE type, const VARIANT& source) {
  if (type == source.vt) return VariantCopy(&result, &source);
  if (type != VT_BSTR || source.vt != (VT_ARRAY | VT_UI1) || source.parray == nullptr ||
      source.parray->cDims != 1) {
    return DISP_E_TYPEMISMATCH;
  }
  void* data = nullptr;
  HRESULT answer = SafeArrayAccessData(source.parray, &data);
  if (FAILED(answer)) return answer;
  const auto* bytes = static_cast<const BYTE*>(data);
  const std::size_t units = source.parray->rgsabound[0].cElements / 2;
  std::wstring text;
  text.reserve(units);
  const auto unitAt = [bytes](std::size_t i) {
    return static_cast<std::uint32_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
  };
  for (std::size_t i = 0; i < units; ++i) {
    std::uint32_t code = unitAt(i);
    if (code >> 10 == 0x36 && i + 1 < units && unitAt(i + 1) >> 10 == 0x37) {
      code = 0x10000 + ((code & 0x3FF) << 10 | (unitAt(++i) & 0x3FF));
    }
    text.push_back(static_cast<wchar_t>(code));
  }
  (void)SafeArrayUnaccessData(source.parray);  // locked just above
  return StoreText(result, text);
}

HRESULT Convert(VARIANT& result, VARTYPE type, const VARIANT& source, LCID locale, USHORT flags);

HRESULT FromObject(VARIANT& result, VARTYPE type, const VARIANT& source, LCID locale,
                   USHORT flags) {
  if (type == VT_UNKNOWN || type == VT_DISPATCH) {
    void* found = nullptr;
    if (source.punkVal != nullptr) {
      const HRESULT answer =
          source.punkVal->QueryInterface(type == VT_UNKNOWN ? IID_IUnknown : IID_IDispatch, &found);
      if (FAILED(answer)) return answer;
    }
    result.vt = type;
    if (type == VT_UNKNOWN) {
      result.punkVal = static_cast<IUnknown*>(found);
    } else {
      result.pdispVal = static_cast<IDispatch*>(found);
    }
    return S_OK;
  }
  if (source.vt == VT_UNKNOWN || type == VT_ERROR || type == VT_VARIANT) return DISP_E_TYPEMISMATCH;
  if (source.pdispVal == nullptr) return DISP_E_BADVARTYPE;
  if ((flags & VARIANT_NOVALUEPROP) != 0) return DISP_E_TYPEMISMATCH;
  // The object's value stands for the object; one that is an object again is not asked further.
  IDispatch* object = source.pdispVal;
  object->AddRef();
  VARIANT value{};
  DISPPARAMS none{};
  HRESULT answer = object->Invoke(DISPID_VALUE, IID_NULL, locale, DISPATCH_PROPERTYGET, &none,
                                  &value, nullptr, nullptr);
  object->Release();
  if (FAILED(answer)) {
    answer = DISP_E_TYPEMISMATCH;
  } else {
    answer = Convert(result, type, value, locale, flags | VARIANT_NOVALUEPROP);
  }
  (void)VariantClear(&value);  // what the object gave is not ours to judge
  return answer;
}

bool IsRealTarget(VARTYPE type) {
  return type != VT_RECORD && (type & VT_BYREF) == 0 && IsValidTag(type);
}

HRESULT Convert(VARIANT& result, VARTYPE type, const VARIANT& given, LCID locale, USHORT flags) {
  if (!IsValidTag(given.vt)) return DISP_E_BADVARTYPE;
  VARIANT source{};
  const HRESULT answer = Dereference(source, given);
  if (FAILED(answer)) return answer;
  if (!IsValidTag(source.vt)) return DISP_E_BADVARTYPE;
  if ((type & VT_BYREF) != 0 || !IsValidTag(type)) return DISP_E_BADVARTYPE;
  if (type == VT_VARIANT || source.vt == VT_VARIANT) return DISP_E_TYPEMISMATCH;
  if ((source.vt & VT_ARRAY) != 0) return FromArray(result, type, source);
  if (type == VT_EMPTY || type == VT_NULL) {
    result.vt = type;
    return S_OK;
  }
  if (source.vt == VT_BSTR && type == VT_BSTR) {
    return StoreText(result, {source.bstrVal, SysStringLen(source.bstrVal)});
  }
  if (source.vt == VT_UNKNOWN || source.vt == VT_DISPATCH) {
    return FromObject(result, type, source, locale, flags);
  }
  if (source.vt == type) return VariantCopy(&result, &source);
  if (!IsRealTarget(type) || (type & VT_ARRAY) != 0) return DISP_E_TYPEMISMATCH;
  switch (source.vt) {
    case VT_EMPTY: {
      if (type == VT_BSTR) return StoreText(result, L"");
      VARIANT zero{};
      zero.vt = VT_I4;
      return FromInteger(result, type, zero);
    }
    case VT_BOOL:
      return FromBool(result, type, source, flags);
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
      return FromInteger(result, type, source);
    case VT_R4:
      return FromReal(result, type, source.fltVal, kFloatDigits);
    case VT_R8:
      return FromReal(result, type, source.dblVal, kDoubleDigits);
    case VT_DATE:
      return FromDate(result, type, source);
    case VT_BSTR:
      return FromText(result, type, source);
    case VT_CY:
      return FromDigits(result, type, DigitsOf(source.cyVal));
    case VT_DECIMAL: {
      const DECIMAL decimal = GetDecimal(source);
      if (!IsValidDecimal(decimal)) return E_INVALIDARG;
      return FromDigits(result, type, DigitsOf(decimal));
    }
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

}  // namespace

}  // namespace cvars::platform

HRESULT VariantChangeTypeEx(VARIANT* destination, const VARIANT* source, LCID locale, USHORT flags,
                            VARTYPE type) {
  if (destination == nullptr || source == nullptr) return E_INVALIDARG;
  if (!cvars::platform::IsValidTag(destination->vt)) return DISP_E_BADVARTYPE;
  VARIANT converted{};
  HRESULT result = cvars::platform::Convert(converted, type, *source, locale, flags);
  if (FAILED(result)) return result;
  result = VariantClear(destination);
  if (FAILED(result)) {
    (void)VariantClear(&converted);  // just made, so neither unknown nor locked
    return result;
  }
  *destination = converted;
  return S_OK;
}

HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT flags, VARTYPE type) {
  return VariantChangeTypeEx(destination, source, LOCALE_USER_DEFAULT, flags, type);
}
