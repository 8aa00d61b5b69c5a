#include "VariantEquality.h"

#include <cstring>

#include "SafeArray.h"

namespace cvars {
namespace {

bool SameText(BSTR left, BSTR right) {
  return VarBstrCmp(left, right, LOCALE_USER_DEFAULT, 0) == VARCMP_EQ;
}

// Number of elements; differing bounds are told apart by the caller.
bool SameShape(SAFEARRAY* left, SAFEARRAY* right, std::size_t* elements) {
  const UINT dimensions = SafeArrayGetDim(left);
  if (dimensions != SafeArrayGetDim(right)) return false;
  *elements = 1;
  for (UINT dimension = 1; dimension <= dimensions; ++dimension) {
    LONG lower[2] = {0, 0};
    LONG upper[2] = {0, 0};
    (void)SafeArrayGetLBound(left, dimension, &lower[0]);
    (void)SafeArrayGetLBound(right, dimension, &lower[1]);
    (void)SafeArrayGetUBound(left, dimension, &upper[0]);
    (void)SafeArrayGetUBound(right, dimension, &upper[1]);
    if (lower[0] != lower[1] || upper[0] != upper[1]) return false;
    *elements *= static_cast<std::size_t>(std::int64_t{upper[0]} - lower[0] + 1);
  }
  return true;
}

bool SameElements(VARTYPE type, const void* left, const void* right, std::size_t count,
                  std::size_t elementBytes) {
  for (std::size_t i = 0; i < count; ++i) {
    if (type == VT_BSTR) {
      if (!SameText(static_cast<const BSTR*>(left)[i], static_cast<const BSTR*>(right)[i])) {
        return false;
      }
    } else if (type == VT_VARIANT) {
      if (!SameVariant(static_cast<const VARIANT*>(left)[i],
                       static_cast<const VARIANT*>(right)[i])) {
        return false;
      }
    } else {
      return std::memcmp(left, right, count * elementBytes) == 0;
    }
  }
  return true;
}

bool SameArray(SAFEARRAY* left, SAFEARRAY* right) {
  if (left == nullptr || right == nullptr || left == right) return left == right;
  VARTYPE types[2] = {VT_EMPTY, VT_EMPTY};
  std::size_t count = 0;
  if (FAILED(SafeArrayGetVartype(left, &types[0])) ||
      FAILED(SafeArrayGetVartype(right, &types[1])) || types[0] != types[1] ||
      SafeArrayGetElemsize(left) != SafeArrayGetElemsize(right) ||
      !SameShape(left, right, &count)) {
    return false;
  }
  void* leftData = nullptr;
  void* rightData = nullptr;
  if (FAILED(SafeArrayAccessData(left, &leftData))) return false;
  bool same = false;
  if (SUCCEEDED(SafeArrayAccessData(right, &rightData))) {
    same = SameElements(types[0], leftData, rightData, count, SafeArrayGetElemsize(left));
    (void)SafeArrayUnaccessData(right);
  }
  (void)SafeArrayUnaccessData(left);
  return same;
}

}  // namespace

bool SameVariant(const VARIANT& left, const VARIANT& right) {
  if (left.vt != right.vt) return false;
  if ((left.vt & VT_BYREF) != 0) return left.byref == right.byref;
  if ((left.vt & VT_ARRAY) != 0) return SameArray(left.parray, right.parray);
  switch (left.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return true;
    case VT_BSTR:
      return SameText(left.bstrVal, right.bstrVal);
    case VT_I1:
    case VT_UI1:
      return left.bVal == right.bVal;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return left.iVal == right.iVal;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return left.lVal == right.lVal;
    case VT_DECIMAL: {
      const DECIMAL a = GetDecimal(left);
      const DECIMAL b = GetDecimal(right);
      return a.scale == b.scale && a.sign == b.sign && a.Hi32 == b.Hi32 && a.Lo64 == b.Lo64;
    }
    default:  // eight bytes: 64-bit integers, doubles, currency, dates and addresses
      return left.llVal == right.llVal;
  }
}

}  // namespace cvars
