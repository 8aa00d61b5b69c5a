// The cases of the table that are about arrays.

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "CComBSTR.h"
#include "CComSafeArray.h"
#include "ValueTable.h"

namespace cvars::test {
namespace {

struct Shape {
  VARTYPE type;
  std::vector<SAFEARRAYBOUND> bounds;
};

// The first dimension stands first.
const std::map<std::string, Shape> kShapes = {
    {"1D VARIANT 5 lb 0", {VT_VARIANT, {{5, 0}}}},
    {"1D VARIANT 0 elements lb 0", {VT_VARIANT, {{0, 0}}}},
    {"1D VARIANT 3 lb 1", {VT_VARIANT, {{3, 1}}}},
    {"1D VARIANT 3 lb -1", {VT_VARIANT, {{3, -1}}}},
    {"2D VARIANT dim1=2 lb0 dim2=3 lb0", {VT_VARIANT, {{2, 0}, {3, 0}}}},
    {"2D VARIANT dim1=2 lb1 dim2=3 lb10", {VT_VARIANT, {{2, 1}, {3, 10}}}},
    {"2D VARIANT dim1=2 dim2=0", {VT_VARIANT, {{2, 0}, {0, 0}}}},
    {"2D VARIANT dim1=0 dim2=3", {VT_VARIANT, {{0, 0}, {3, 0}}}},
    {"3D VARIANT 2x3x4", {VT_VARIANT, {{2, 0}, {3, 0}, {4, 0}}}},
    {"1D R8 4", {VT_R8, {{4, 0}}}},
    {"1D BSTR 2", {VT_BSTR, {{2, 0}}}},
    {"1D UI1 4", {VT_UI1, {{4, 0}}}},
    {"1D UNKNOWN 2", {VT_UNKNOWN, {{2, 0}}}},
    {"1D DISPATCH 2", {VT_DISPATCH, {{2, 0}}}},
    {"1D BOOL 2", {VT_BOOL, {{2, 0}}}},
    {"1D DECIMAL 2", {VT_DECIMAL, {{2, 0}}}},
    {"1D I8 2", {VT_I8, {{2, 0}}}},
    {"1D EMPTY(bad)", {VT_EMPTY, {{2, 0}}}},
    {"1D NULL(bad)", {VT_NULL, {{2, 0}}}},
    {"1D VARIANT|BYREF(bad)", {VT_VARIANT | VT_BYREF, {{2, 0}}}},
    {"1D VARIANT|ARRAY(bad)", {VT_VARIANT | VT_ARRAY, {{2, 0}}}},
    {"0 dims(bad)", {VT_VARIANT, {}}},
};

CComSafeArray<VARIANT> TwoByThree() {
  const SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 0}};
  CComSafeArray<VARIANT> array;
  EXPECT_EQ(array.Create(bounds, 2), S_OK);
  return array;
}

std::wstring TextOf(const VARIANT& value) {
  EXPECT_EQ(value.vt, VT_BSTR);
  return value.vt == VT_BSTR ? std::wstring(value.bstrVal) : std::wstring();
}

std::wstring Text(const json& row, const char* key) {
  const std::string text = row.at(key);
  return {text.begin(), text.end()};  // the texts of these rows are ASCII
}

bool IsYes(const json& row, const char* key) { return row.at(key) == "yes"; }
bool IsNull(const json& row, const char* key) { return row.at(key) == "null"; }

/// What creating an array leaves in its description.
void ExpectDescription(SAFEARRAY* array, const json& row) {
  EXPECT_EQ(array->cDims, row.at("dims").get<USHORT>());
  EXPECT_EQ(array->cbElements, row.at("elemsize").get<ULONG>());
  EXPECT_EQ(SafeArrayGetElemsize(array), row.at("elemsize").get<ULONG>());
  EXPECT_EQ(array->fFeatures, row.at("features").get<USHORT>());
  EXPECT_EQ(array->cLocks, row.at("locks").get<ULONG>());
  VARTYPE type = VT_EMPTY;
  EXPECT_EQ(SafeArrayGetVartype(array, &type), Code(row, "getvartype"));
  EXPECT_EQ(type, row.at("vartype").get<VARTYPE>());
  for (UINT dimension = 1; dimension <= SafeArrayGetDim(array); ++dimension) {
    const json& expected = row.at("bounds_lb_ub_by_dim_1based").at(dimension - 1);
    LONG bound = 99;
    EXPECT_EQ(SafeArrayGetLBound(array, dimension, &bound), CodeOf(expected.at(0)));
    EXPECT_EQ(bound, expected.at(1).get<LONG>());
    EXPECT_EQ(SafeArrayGetUBound(array, dimension, &bound), CodeOf(expected.at(2)));
    EXPECT_EQ(bound, expected.at(3).get<LONG>());
    const json& stored = row.at("struct_rgsabound_elements_lb").at(dimension - 1);
    EXPECT_EQ(array->rgsabound[dimension - 1].cElements, stored.at(0).get<ULONG>());
    EXPECT_EQ(array->rgsabound[dimension - 1].lLbound, stored.at(1).get<LONG>());
  }
}

void Create(const json& row) {
  Shape shape = kShapes.at(row.at("what"));
  SAFEARRAY* const array =
      SafeArrayCreate(shape.type, static_cast<UINT>(shape.bounds.size()), shape.bounds.data());
  ASSERT_EQ(array == nullptr, IsNull(row, "array"));
  if (array == nullptr) return;
  ExpectDescription(array, row);
  void* data = nullptr;
  EXPECT_EQ(SafeArrayAccessData(array, &data), Code(row, "access"));
  EXPECT_EQ(data == nullptr, IsNull(row, "data"));
  EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
  EXPECT_EQ(SafeArrayDestroy(array), Code(row, "destroy"));
}

void CreateVector(const json& row) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_VARIANT, 2, 4);
  ASSERT_NE(array, nullptr);
  ExpectDescription(array, row);
  EXPECT_EQ(SafeArrayDestroy(array), Code(row, "destroy"));
}

void ZeroFilled(const json& row) {
  const CComSafeArray<VARIANT> array(3);
  EXPECT_EQ(array.GetAt(0).vt, row.at("vt0").get<int>());
  EXPECT_EQ(array.GetAt(2).vt, row.at("vt2").get<int>());
}

void MemoryOrderOfAPlane(const json& row) {
  const CComSafeArray<VARIANT> array = TwoByThree();
  const LONG index[] = {row.at("i").get<LONG>(), row.at("j").get<LONG>()};
  const std::ptrdiff_t position = row.at("memory_index").get<int>();
  void* element = nullptr;
  EXPECT_EQ(SafeArrayPtrOfIndex(array, index, &element), Code(row, "ptr_of_index"));
  auto* const data = static_cast<VARIANT*>(static_cast<SAFEARRAY*>(array)->pvData);
  EXPECT_EQ(static_cast<VARIANT*>(element) - data, position);
  CComVariant value(static_cast<int>(100 * index[0] + index[1]));
  EXPECT_EQ(SafeArrayPutElement(array, index, &value), Code(row, "put"));
  EXPECT_EQ(data[position].lVal, row.at("value_at_memory_index").get<LONG>());
}

void MemoryOrderOfASpace(const json& row) {
  const SAFEARRAYBOUND bounds[] = {{2, 1}, {3, -1}, {4, 5}};
  CComSafeArray<double> array;
  ASSERT_EQ(array.Create(bounds, 3), S_OK);
  const LONG index[] = {row.at("i").get<LONG>(), row.at("j").get<LONG>(), row.at("k").get<LONG>()};
  void* element = nullptr;
  ASSERT_EQ(SafeArrayPtrOfIndex(array, index, &element), S_OK);
  EXPECT_EQ(
      static_cast<double*>(element) - static_cast<double*>(static_cast<SAFEARRAY*>(array)->pvData),
      row.at("memory_index").get<int>());
}

void Index(const json& row) {
  CComSafeArray<VARIANT> array = TwoByThree();
  const LONG index[] = {row.at("i").get<LONG>(), row.at("j").get<LONG>()};
  EXPECT_EQ(array.MultiDimSetAt(index, CComVariant(1)), Code(row, "put"));
  CComVariant element;
  EXPECT_EQ(array.MultiDimGetAt(index, element), Code(row, "get"));
  EXPECT_EQ(element.vt, Tag(row, "out"));
  void* data = nullptr;
  EXPECT_EQ(SafeArrayPtrOfIndex(array, index, &data), Code(row, "ptr"));
}

void NullArguments(const json& row) {
  CComSafeArray<VARIANT> array = TwoByThree();
  SAFEARRAYBOUND newLast = {3, 0};
  CComVariant element;
  const LONG index[2] = {0, 0};
  LONG bound = 0;
  void* data = nullptr;
  EXPECT_EQ(SafeArrayPutElement(nullptr, index, &element), Code(row, "put_null_array"));
  EXPECT_EQ(SafeArrayPutElement(array, nullptr, &element), Code(row, "put_null_indices"));
  EXPECT_EQ(SafeArrayGetElement(nullptr, index, &element), Code(row, "get_null_array"));
  EXPECT_EQ(SafeArrayGetElement(array, nullptr, &element), Code(row, "get_null_indices"));
  EXPECT_EQ(SafeArrayGetElement(array, index, nullptr), Code(row, "get_null_out"));
  EXPECT_EQ(SafeArrayPtrOfIndex(nullptr, index, &data), Code(row, "ptr_null_array"));
  EXPECT_EQ(SafeArrayPtrOfIndex(array, index, nullptr), Code(row, "ptr_null_out"));
  EXPECT_EQ(SafeArrayGetLBound(array, 0, &bound), Code(row, "lbound_dim0"));
  EXPECT_EQ(SafeArrayGetLBound(array, 3, &bound), Code(row, "lbound_dim3"));
  EXPECT_EQ(SafeArrayGetUBound(array, 0, &bound), Code(row, "ubound_dim0"));
  EXPECT_EQ(SafeArrayGetUBound(array, 3, &bound), Code(row, "ubound_dim3"));
  EXPECT_EQ(SafeArrayGetLBound(array, 1, nullptr), Code(row, "lbound_null"));
  EXPECT_EQ(SafeArrayGetDim(nullptr), row.at("getdim_null").get<UINT>());
  EXPECT_EQ(SafeArrayGetElemsize(nullptr), row.at("elemsize_null").get<UINT>());
  EXPECT_EQ(SafeArrayDestroy(nullptr), Code(row, "destroy_null"));
  SAFEARRAY* copy = array;
  EXPECT_EQ(SafeArrayCopy(nullptr, &copy), Code(row, "copy_null"));
  EXPECT_EQ(copy == nullptr, IsNull(row, "copy_null_out"));
  EXPECT_EQ(SafeArrayCopy(array, nullptr), Code(row, "copy_null_out_arg"));
  EXPECT_EQ(SafeArrayAccessData(nullptr, &data), Code(row, "access_null"));
  EXPECT_EQ(SafeArrayUnaccessData(nullptr), Code(row, "unaccess_null"));
  EXPECT_EQ(SafeArrayLock(nullptr), Code(row, "lock_null"));
  EXPECT_EQ(SafeArrayUnlock(nullptr), Code(row, "unlock_null"));
  EXPECT_EQ(SafeArrayUnlock(array), Code(row, "unlock_unlocked"));
  EXPECT_EQ(SafeArrayRedim(nullptr, &newLast), Code(row, "redim_null"));
}

void EmptyArray(const json& row) {
  CComSafeArray<VARIANT> array(0u);
  const LONG index = 0;
  CComVariant element;
  EXPECT_EQ(SafeArrayGetElement(array, &index, &element), Code(row, "get"));
  EXPECT_EQ(SafeArrayPutElement(array, &index, &element), Code(row, "put"));
  LONG bound = 99;
  EXPECT_EQ(SafeArrayGetLBound(array, 1, &bound), S_OK);
  EXPECT_EQ(bound, row.at("lb").get<LONG>());
  EXPECT_EQ(SafeArrayGetUBound(array, 1, &bound), S_OK);
  EXPECT_EQ(bound, row.at("ub").get<LONG>());
  SAFEARRAY* copy = nullptr;
  EXPECT_EQ(SafeArrayCopy(array, &copy), Code(row, "copy"));
  ASSERT_EQ(copy == nullptr, IsNull(row, "copy_ptr"));
  EXPECT_EQ(copy->pvData == nullptr, IsNull(row, "copy_data"));
  EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
  EXPECT_EQ(array.Destroy(), Code(row, "destroy"));
}

void PutCopiesString(const json& row) {
  CComSafeArray<VARIANT> array(1);
  const CComVariant one(L"one");
  EXPECT_EQ(array.SetAt(0, one), S_OK);
  EXPECT_EQ(array.GetAt(0).bstrVal == one.bstrVal, IsYes(row, "same_pointer"));
  EXPECT_EQ(array.SetAt(0, CComVariant(L"two")), S_OK);
  EXPECT_EQ(TextOf(array.GetAt(0)), Text(row, "after_second_put"));
  const LONG index = 0;
  CComVariant got;
  EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
  EXPECT_EQ(got.bstrVal == array.GetAt(0).bstrVal, IsYes(row, "get_same_pointer"));
}

// What the out-variant held before is overwritten, not released.
void GetIntoFilledVariant(const json& row) {
  CComSafeArray<VARIANT> array(1);
  EXPECT_EQ(array.SetAt(0, CComVariant(L"two")), S_OK);
  ValueObject object(true);
  VARIANT value{};
  const VARIANT borrowed = object.Borrowed();
  EXPECT_EQ(VariantCopy(&value, &borrowed), S_OK);
  EXPECT_EQ(object.references, References(row, "object_before"));
  const LONG index = 0;
  EXPECT_EQ(SafeArrayGetElement(array, &index, &value), Code(row, "get"));
  EXPECT_EQ(TextOf(value), Text(row, "value"));
  EXPECT_EQ(object.references, References(row, "object_after"));
  EXPECT_EQ(VariantClear(&value), S_OK);
}

void GetIntoGarbageVariant(const json& row) {
  CComSafeArray<VARIANT> array(1);
  EXPECT_EQ(array.SetAt(0, CComVariant(L"two")), S_OK);
  VARIANT value;
  std::memset(static_cast<void*>(&value), 0xCD, sizeof(value));
  const LONG index = 0;
  EXPECT_EQ(SafeArrayGetElement(array, &index, &value), Code(row, "get"));
  EXPECT_EQ(TextOf(value), Text(row, "value"));
  EXPECT_EQ(VariantClear(&value), S_OK);
}

void PutByRefVariant(const json& row) {
  CComSafeArray<VARIANT> array(1);
  LONG number = 5;
  VARIANT reference{};
  reference.vt = VT_BYREF | VT_I4;
  reference.plVal = &number;
  EXPECT_EQ(array.SetAt(0, reference), Code(row, "put"));
  EXPECT_EQ(array.GetAt(0).vt, Tag(row, "stored_vt"));
  EXPECT_EQ(array.GetAt(0).plVal, &number);
}

void PutBadVariant(const json& row) {
  CComSafeArray<VARIANT> array(1);
  VARIANT bad{};
  bad.vt = 255;
  EXPECT_EQ(array.SetAt(0, bad), Code(row, "put"));
  EXPECT_EQ(array.GetAt(0).vt, Tag(row, "stored_vt"));
}

// A copy of a locked array is not locked itself.
void CopyIndependent(const json& row) {
  CComSafeArray<VARIANT> array(1);
  EXPECT_EQ(array.SetAt(0, CComVariant(L"two")), S_OK);
  void* data = nullptr;
  ASSERT_EQ(SafeArrayAccessData(array, &data), S_OK);
  SAFEARRAY* copy = nullptr;
  ASSERT_EQ(SafeArrayCopy(array, &copy), Code(row, "copy"));
  const LONG index = 0;
  CComVariant changed(L"changed");
  EXPECT_EQ(SafeArrayPutElement(copy, &index, &changed), S_OK);
  void* copiedData = nullptr;
  ASSERT_EQ(SafeArrayAccessData(copy, &copiedData), S_OK);
  EXPECT_EQ(TextOf(*static_cast<VARIANT*>(data)), Text(row, "original"));
  EXPECT_EQ(TextOf(*static_cast<VARIANT*>(copiedData)), Text(row, "copy_value"));
  EXPECT_EQ(copy->cLocks, row.at("copy_locks").get<ULONG>());
  EXPECT_EQ(static_cast<SAFEARRAY*>(array)->cLocks, row.at("original_locks").get<ULONG>());
  EXPECT_EQ(SafeArrayUnaccessData(copy), S_OK);
  EXPECT_EQ(SafeArrayDestroy(copy), Code(row, "destroy_copy"));
  EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
}

void TextArray(const json& row) {
  CComSafeArray<BSTR> array(2);
  const CComBSTR text(L"two");
  EXPECT_EQ(array.SetAt(0, text.m_str), Code(row, "put"));
  EXPECT_EQ(array.GetAt(0) == text.m_str, IsYes(row, "same_pointer"));
  EXPECT_EQ(array.SetAt(0, nullptr), Code(row, "put_null"));
  EXPECT_EQ(array.GetAt(0) == nullptr, IsNull(row, "after_put_null"));
  const LONG index = 1;
  BSTR unset = text.m_str;
  EXPECT_EQ(array.MultiDimGetAt(&index, unset), Code(row, "get_unset"));
  EXPECT_EQ(unset == nullptr, IsNull(row, "unset"));
}

void NestedArray(const json& row) {
  CComSafeArray<VARIANT> outer(1);
  VARIANT inner{};
  inner.vt = VT_ARRAY | VT_R8;
  inner.parray = SafeArrayCreateVector(VT_R8, 0, 2);
  EXPECT_EQ(outer.SetAt(0, inner), Code(row, "put"));
  EXPECT_EQ(outer.GetAt(0).parray == inner.parray, IsYes(row, "inner_same_pointer"));
  EXPECT_EQ(VariantClear(&inner), Code(row, "clear_inner"));
  EXPECT_EQ(outer.Destroy(), Code(row, "destroy_outer"));
}

void Redim(const json& row) {
  CComSafeArray<VARIANT> line(3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(line.SetAt(i, CComVariant(10 + i)), S_OK);
  SAFEARRAYBOUND bound = {5, 0};
  EXPECT_EQ(SafeArrayRedim(line, &bound), Code(row, "grow"));
  EXPECT_EQ(line.GetAt(2).lVal, row.at("v2").get<LONG>());
  EXPECT_EQ(line.GetAt(4).vt, row.at("vt4").get<int>());
  bound = {2, 7};
  EXPECT_EQ(SafeArrayRedim(line, &bound), Code(row, "shrink"));
  EXPECT_EQ(line.GetLowerBound(), row.at("lb").get<LONG>());
  EXPECT_EQ(line.GetUpperBound(), row.at("ub").get<LONG>());
  bound = {0, 0};
  EXPECT_EQ(SafeArrayRedim(line, &bound), Code(row, "to_zero"));

  // Only the last dimension changes, which is the slowest one in memory.
  const SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 0}};
  CComSafeArray<double> plane;
  ASSERT_EQ(plane.Create(bounds, 2), S_OK);
  SAFEARRAY* const array = plane;
  for (int i = 0; i < 6; ++i) static_cast<double*>(array->pvData)[i] = i;
  bound = {4, 0};
  EXPECT_EQ(SafeArrayRedim(array, &bound), Code(row, "redim2d"));
  EXPECT_EQ(plane.GetUpperBound(0), row.at("ub1").get<LONG>());
  EXPECT_EQ(plane.GetUpperBound(1), row.at("ub2").get<LONG>());
  EXPECT_EQ(static_cast<double*>(array->pvData)[5], row.at("q5").get<double>());
}

void ObjectsInArrays(const json& row) {
  ValueObject object(true);
  EXPECT_EQ(object.references, References(row, "before"));
  CComSafeArray<VARIANT> array(1);
  const VARIANT value = object.Borrowed();
  EXPECT_EQ(array.SetAt(0, value), S_OK);
  EXPECT_EQ(object.references, References(row, "after_put"));
  EXPECT_EQ(array.SetAt(0, value), S_OK);
  EXPECT_EQ(object.references, References(row, "after_second_put_same_slot"));
  {
    CComVariant got;
    const LONG index = 0;
    EXPECT_EQ(array.MultiDimGetAt(&index, got), S_OK);
    EXPECT_EQ(object.references, References(row, "after_get"));
  }
  {
    const CComSafeArray<VARIANT> copy = array;
    EXPECT_EQ(object.references, References(row, "after_array_copy"));
  }
  EXPECT_EQ(array.Destroy(), S_OK);
  EXPECT_EQ(object.references, References(row, "after_destroy"));
}

void ArrayOfObjects(const json& row) {
  ValueObject object(true);
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UNKNOWN, 0, 2);
  ASSERT_NE(array, nullptr);
  const LONG index = 0;
  EXPECT_EQ(SafeArrayPutElement(array, &index, static_cast<IUnknown*>(&object)), Code(row, "put"));
  EXPECT_EQ(object.references, References(row, "after_put"));
  IUnknown* got = nullptr;
  EXPECT_EQ(SafeArrayGetElement(array, &index, &got), Code(row, "get"));
  EXPECT_EQ(got, &object);
  EXPECT_EQ(object.references, References(row, "after_get"));
  EXPECT_EQ(SafeArrayPutElement(array, &index, nullptr), Code(row, "put_null"));
  EXPECT_EQ(object.references, References(row, "after_put_null"));
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
  EXPECT_EQ(object.references, References(row, "after_destroy"));
}

}  // namespace

ValueTableChecks ArrayChecks() {
  return {
      {"create", Create},
      {"create_vector", CreateVector},
      {"zero_filled", ZeroFilled},
      {"memory_order", MemoryOrderOfAPlane},
      {"memory_order3", MemoryOrderOfASpace},
      {"index_2x3_lb0", Index},
      {"null_args", NullArguments},
      {"get_from_empty_1D", EmptyArray},
      {"put_copies_string", PutCopiesString},
      {"get_into_filled_variant", GetIntoFilledVariant},
      {"get_into_garbage_variant", GetIntoGarbageVariant},
      {"put_byref_variant", PutByRefVariant},
      {"put_bad_variant", PutBadVariant},
      {"copy_independent", CopyIndependent},
      {"bstr_array", TextArray},
      {"nested_array", NestedArray},
      {"redim", Redim},
      {"put_into_arrays", ObjectsInArrays},
      {"unknown_array", ArrayOfObjects},
  };
}

}  // namespace cvars::test
