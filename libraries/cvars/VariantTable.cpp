#include "VariantTable.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "CvarImpl.h"
#include "VariantEquality.h"

namespace cvars {
namespace {

// First dimension first.
std::vector<SAFEARRAYBOUND> BoundsOf(const SAFEARRAY* array) {
  std::vector<SAFEARRAYBOUND> bounds(array->rgsabound, array->rgsabound + array->cDims);
  std::reverse(bounds.begin(), bounds.end());
  return bounds;
}

std::size_t CountOf(const SAFEARRAY* array) {
  std::size_t count = 1;
  for (const SAFEARRAYBOUND& bound : BoundsOf(array)) count *= bound.cElements;
  return count;
}

VariantTable TableOf(const std::vector<SAFEARRAYBOUND>& bounds) {
  VariantTable table;
  if (FAILED(table.Create(bounds.data(), static_cast<UINT>(bounds.size())))) throw std::bad_alloc();
  return table;
}

// Copies one element of an array that is not of variants.
HRESULT CopyElement(VARTYPE type, void* element, VARIANT* copy) {
  VARIANT reference;
  VariantInit(&reference);
  reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
  reference.byref = element;
  return VariantCopyInd(copy, &reference);
}

}  // namespace

VariantTable EmptyTable() { return VariantTable(ULONG{0}); }

HRESULT CopyToTable(const SAFEARRAY* array, VariantTable* table) {
  if (array == nullptr) {
    *table = EmptyTable();
    return S_OK;
  }
  auto* const source = const_cast<SAFEARRAY*>(array);  // read only; the platform's calls take it so
  VARTYPE type = VT_EMPTY;
  HRESULT result = SafeArrayGetVartype(source, &type);
  if (FAILED(result)) return E_INVALIDARG;
  VariantTable copy = TableOf(BoundsOf(array));
  void* data = nullptr;
  result = SafeArrayAccessData(source, &data);
  if (FAILED(result)) return result;
  {
    const TableElements elements(copy);
    auto* next = static_cast<char*>(data);
    for (VARIANT& element : elements.All()) {
      result = type == VT_VARIANT
                   ? VariantCopyInd(&element, static_cast<VARIANT*>(static_cast<void*>(next)))
                   : CopyElement(type, next, &element);
      if (FAILED(result)) break;
      next += source->cbElements;
    }
  }
  (void)SafeArrayUnaccessData(source);  // was accessed above
  if (SUCCEEDED(result)) table->Swap(copy);
  return result == E_OUTOFMEMORY || SUCCEEDED(result) ? result : E_INVALIDARG;
}

TableElements::TableElements(const VariantTable& table) : m_array(table) {
  void* data = nullptr;
  if (m_array == nullptr || FAILED(SafeArrayAccessData(m_array, &data))) {
    m_array = nullptr;
    return;
  }
  m_data = static_cast<VARIANT*>(data);
  m_count = CountOf(m_array);
  m_columns = m_array->rgsabound[m_array->cDims - 1].cElements;
}

TableElements::~TableElements() {
  if (m_array != nullptr) (void)SafeArrayUnaccessData(m_array);  // was accessed by the constructor
}

bool SameShape(const VariantTable& a, const VariantTable& b) {
  const SAFEARRAY* const left = a;
  const SAFEARRAY* const right = b;
  if (left == nullptr || right == nullptr) return left == right;
  const auto same = [](const SAFEARRAYBOUND& x, const SAFEARRAYBOUND& y) {
    return x.cElements == y.cElements && x.lLbound == y.lLbound;
  };
  return std::equal(left->rgsabound, left->rgsabound + left->cDims, right->rgsabound,
                    right->rgsabound + right->cDims, same);
}

VariantTable TableLike(const VariantTable& model) {
  return TableOf(BoundsOf(static_cast<SAFEARRAY*>(model)));
}

CComVariant ToVariant(const CComSafeArray<VARIANT>& value) {
  CComVariant variant;
  if (FAILED(value.CopyTo(&variant.parray))) throw std::bad_alloc();
  variant.vt = VT_ARRAY | VT_VARIANT;
  return variant;
}

bool SameValue(const CComSafeArray<VARIANT>& a, const CComSafeArray<VARIANT>& b) {
  const SAFEARRAY* const left = a;
  const SAFEARRAY* const right = b;
  if (left == nullptr || right == nullptr) return left == right;
  const auto sameExtent = [](const SAFEARRAYBOUND& x, const SAFEARRAYBOUND& y) {
    return x.cElements == y.cElements;
  };
  if (!std::equal(left->rgsabound, left->rgsabound + left->cDims, right->rgsabound,
                  right->rgsabound + right->cDims, sameExtent)) {
    return false;
  }
  const TableElements leftElements(a);
  const TableElements rightElements(b);
  return std::equal(leftElements.All().begin(), leftElements.All().end(),
                    rightElements.All().begin(), SameVariant);
}

}  // namespace cvars
