// The rows of the table of arrays and variants that are about arguments, ownership and references.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "CComBSTR.h"
#include "CComSafeArray.h"
#include "CComVariant.h"

namespace {

using nlohmann::json;

const std::map<std::string, HRESULT> kCodes = {{"S_OK", S_OK},
                                               {"E_INVALIDARG", E_INVALIDARG},
                                               {"E_NOINTERFACE", E_NOINTERFACE},
                                               {"E_UNEXPECTED", E_UNEXPECTED},
                                               {"DISP_E_BADINDEX", DISP_E_BADINDEX},
                                               {"DISP_E_BADVARTYPE", DISP_E_BADVARTYPE},
                                               {"DISP_E_TYPEMISMATCH", DISP_E_TYPEMISMATCH}};
const std::map<std::string, VARTYPE> kTags = {
    {"I4", VT_I4},           {"R8", VT_R8},       {"BSTR", VT_BSTR},
    {"BOOL", VT_BOOL},       {"EMPTY", VT_EMPTY}, {"NULL", VT_NULL},
    {"VARIANT", VT_VARIANT}, {"ERROR", VT_ERROR}, {"DISPATCH", VT_DISPATCH},
    {"UNKNOWN", VT_UNKNOWN}};

HRESULT Code(const json& row, const char* key) { return kCodes.at(row.at(key)); }

std::vector<json> Rows(const std::string& name) {
  std::ifstream file(CVARS_SOURCE_DIR "/tests/golden/safearray.jsonl");
  std::vector<json> rows;
  for (std::string line; std::getline(file, line);) {
    json row = json::parse(line);
    if (row.at("case") == name) rows.push_back(std::move(row));
  }
  EXPECT_FALSE(rows.empty()) << name;
  return rows;
}
json Row(const std::string& name) { return Rows(name).at(0); }

// An object on the stack that counts its references and gives 12 as its value.
class ValueObject final : public IDispatch {
 public:
  explicit ValueObject(bool offersDispatch) : m_offersDispatch(offersDispatch) {}
  HRESULT QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && !(m_offersDispatch && iid == IID_IDispatch)) return E_NOINTERFACE;
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override { return --references; }
  HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT GetIDsOfNames(REFIID, wchar_t**, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT Invoke(DISPID id, REFIID, LCID lcid, WORD flags, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                 UINT*) override {
    ++invokes;
    lastId = id;
    lastLocale = lcid;
    lastFlags = flags;
    if (SUCCEEDED(answer)) *result = CComVariant(12);
    return answer;
  }

  ULONG references = 1;
  int invokes = 0;
  DISPID lastId = -999;
  LCID lastLocale = 0;
  WORD lastFlags = 0;
  HRESULT answer = S_OK;

 private:
  const bool m_offersDispatch;
};

TEST(ValueTable, NullArguments) {
  const json row = Row("null_args");
  SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 0}};
  CComSafeArray<VARIANT> array;
  ASSERT_EQ(array.Create(bounds, 2), S_OK);
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
  EXPECT_EQ(copy, nullptr);
  EXPECT_EQ(SafeArrayCopy(array, nullptr), Code(row, "copy_null_out_arg"));
  EXPECT_EQ(SafeArrayAccessData(nullptr, &data), Code(row, "access_null"));
  EXPECT_EQ(SafeArrayUnaccessData(nullptr), Code(row, "unaccess_null"));
  EXPECT_EQ(SafeArrayLock(nullptr), Code(row, "lock_null"));
  EXPECT_EQ(SafeArrayUnlock(nullptr), Code(row, "unlock_null"));
  EXPECT_EQ(SafeArrayUnlock(array), Code(row, "unlock_unlocked"));
  EXPECT_EQ(SafeArrayRedim(nullptr, bounds), Code(row, "redim_null"));
}

TEST(ValueTable, VectorsSayTheirTypeAndBounds) {
  const json row = Row("create_vector");
  SAFEARRAY* const array = SafeArrayCreateVector(VT_VARIANT, 2, 4);
  ASSERT_NE(array, nullptr);
  EXPECT_EQ(array->cDims, row.at("dims").get<USHORT>());
  EXPECT_EQ(array->cbElements, row.at("elemsize").get<ULONG>());
  EXPECT_EQ(array->fFeatures, row.at("features").get<USHORT>());
  EXPECT_EQ(array->cLocks, row.at("locks").get<ULONG>());
  LONG lower = 0;
  LONG upper = 0;
  EXPECT_EQ(SafeArrayGetLBound(array, 1, &lower), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
  EXPECT_EQ(lower, row.at("bounds_lb_ub_by_dim_1based").at(0).at(1).get<LONG>());
  EXPECT_EQ(upper, row.at("bounds_lb_ub_by_dim_1based").at(0).at(3).get<LONG>());
  EXPECT_EQ(SafeArrayDestroy(array), Code(row, "destroy"));
}

TEST(ValueTable, ObjectsAsValues) {
  for (const json& row : Rows("object_to_value")) {
    SCOPED_TRACE(row.dump());
    const bool dispatch = row.at("from") == "DISPATCH";
    ValueObject object(dispatch);
    {
      const CComVariant from = dispatch ? CComVariant(static_cast<IDispatch*>(&object))
                                        : CComVariant(static_cast<IUnknown*>(&object));
      CComVariant to;
      EXPECT_EQ(VariantChangeTypeEx(&to, &from, LOCALE_ENGLISH_US, 0, kTags.at(row.at("to"))),
                Code(row, "result"));
      EXPECT_EQ(to.vt, row.at("value").is_null() ? VARTYPE{VT_EMPTY} : kTags.at(row.at("value")));
      EXPECT_EQ(object.invokes, row.at("invokes").get<int>());
      if (object.invokes != 0) {
        EXPECT_EQ(object.lastId, row.at("dispid").get<DISPID>());
        EXPECT_EQ(object.lastFlags, row.at("flags").get<WORD>());
        EXPECT_EQ(object.lastLocale, row.at("lcid").get<LCID>());
      }
    }
    EXPECT_EQ(object.references, row.at("state").at("refs").get<ULONG>());
  }
}

TEST(ValueTable, AnObjectWhoseValueFailsIsATypeMismatch) {
  const json row = Row("object_invoke_fails");
  ValueObject object(true);
  object.answer = E_FAIL;
  const CComVariant from(static_cast<IDispatch*>(&object));
  CComVariant to;
  EXPECT_EQ(VariantChangeType(&to, &from, 0, VT_I4), Code(row, "to_I4"));
  EXPECT_EQ(VariantChangeType(&to, &from, 0, VT_BSTR), Code(row, "to_BSTR"));
  EXPECT_EQ(VariantChangeType(&to, &from, VARIANT_NOVALUEPROP, VT_I4),
            Code(row, "NOVALUEPROP_to_I4"));
}

TEST(ValueTable, ReferencesOfObjectsInVariants) {
  for (const json& row : Rows("refcount")) {
    const bool dispatch = row.at("vt") == "DISPATCH";
    SCOPED_TRACE(row.at("vt"));
    ValueObject object(dispatch);
    VARIANT value{};
    value.vt = dispatch ? VT_DISPATCH : VT_UNKNOWN;
    value.pdispVal = &object;  // borrowed
    const auto refs = [&](const char* key) { return row.at(key).at("refs").get<ULONG>(); };
    VARIANT copy{};
    EXPECT_EQ(VariantCopy(&copy, &value), Code(row, "copy"));
    EXPECT_EQ(object.references, refs("after_VariantCopy"));
    EXPECT_EQ(VariantClear(&copy), Code(row, "clear"));
    EXPECT_EQ(object.references, refs("after_VariantClear"));
    EXPECT_EQ(VariantChangeType(&copy, &value, 0, VT_UNKNOWN), Code(row, "to_unknown"));
    EXPECT_EQ(copy.vt, kTags.at(row.at("vt_w")));
    EXPECT_EQ(object.references, refs("after_to_UNKNOWN"));
    EXPECT_EQ(VariantClear(&copy), S_OK);
    EXPECT_EQ(VariantChangeType(&copy, &value, 0, VT_DISPATCH), Code(row, "to_dispatch"));
    EXPECT_EQ(copy.vt, kTags.at(row.at("vt_w2")));
    EXPECT_EQ(object.references, refs("after_to_DISPATCH"));
    EXPECT_EQ(VariantClear(&copy), S_OK);
    EXPECT_EQ(object.references, refs("cleared2"));
  }
}

TEST(ValueTable, ArraysInArraysAndByReference) {
  const json nested = Row("nested_array");
  CComSafeArray<VARIANT> outer(1);
  VARIANT inner{};
  inner.vt = VT_ARRAY | VT_R8;
  inner.parray = SafeArrayCreateVector(VT_R8, 0, 2);
  EXPECT_EQ(outer.SetAt(0, inner), Code(nested, "put"));
  EXPECT_NE(outer.GetAt(0).parray, inner.parray);
  EXPECT_EQ(VariantClear(&inner), Code(nested, "clear_inner"));
  EXPECT_EQ(outer.Destroy(), Code(nested, "destroy_outer"));

  const json byref = Row("byref_array");
  SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 1);
  VARIANT reference{};
  reference.vt = VT_ARRAY | VT_VARIANT | VT_BYREF;
  reference.pparray = &array;
  VARIANT copy{};
  EXPECT_EQ(VariantCopy(&copy, &reference), Code(byref, "variantcopy"));
  EXPECT_EQ(copy.vt, reference.vt);
  EXPECT_EQ(copy.pparray, &array);
  EXPECT_EQ(VariantClear(&copy), Code(byref, "clear_byref"));
  EXPECT_EQ(VariantCopyInd(&copy, &reference), Code(byref, "copyind"));
  EXPECT_EQ(copy.vt, VT_ARRAY | VT_VARIANT);
  EXPECT_NE(copy.parray, array);
  EXPECT_EQ(VariantClear(&copy), S_OK);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);

  const json none = Row("variantcopy_null_array");
  VARIANT empty{};
  empty.vt = VT_ARRAY | VT_VARIANT;
  EXPECT_EQ(VariantCopy(&copy, &empty), Code(none, "copy"));
  EXPECT_EQ(copy.vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(copy.parray, nullptr);
  EXPECT_EQ(VariantClear(&copy), Code(none, "clear"));
}

TEST(ValueTable, CopiesAndClears) {
  VARIANT bad{};
  bad.vt = 255;
  CComVariant value(4);
  EXPECT_EQ(VariantCopy(&value, &bad), Code(Row("copy_bad_source"), "copy"));
  EXPECT_EQ(value.lVal, 4);
  const CComVariant nine(9);
  EXPECT_EQ(VariantCopy(&bad, &nine), Code(Row("copy_over_bad_dest"), "copy"));
  EXPECT_EQ(bad.vt, 255);
  EXPECT_EQ(VariantClear(&bad), Code(Row("clear_basic"), "clear_bad_255"));
  CComVariant text(L"old");
  EXPECT_EQ(VariantCopy(&text, &nine), Code(Row("copy_frees_dest"), "copy"));
  EXPECT_EQ(text.lVal, 9);
  text = L"same";
  const BSTR before = text.bstrVal;
  EXPECT_EQ(VariantCopy(&text, &text), Code(Row("copy_to_self"), "copy"));
  EXPECT_EQ(text.bstrVal, before);
}

struct CreateCase {
  const char* what;
  VARTYPE type;
  std::vector<SAFEARRAYBOUND> bounds;
};

TEST(ValueTable, CreatedArrays) {
  const CreateCase cases[] = {
      {"1D VARIANT 5 lb 0", VT_VARIANT, {{5, 0}}},
      {"1D VARIANT 0 elements lb 0", VT_VARIANT, {{0, 0}}},
      {"1D VARIANT 3 lb 1", VT_VARIANT, {{3, 1}}},
      {"1D VARIANT 3 lb -1", VT_VARIANT, {{3, -1}}},
      {"2D VARIANT dim1=2 lb0 dim2=3 lb0", VT_VARIANT, {{2, 0}, {3, 0}}},
      {"2D VARIANT dim1=2 lb1 dim2=3 lb10", VT_VARIANT, {{2, 1}, {3, 10}}},
      {"2D VARIANT dim1=2 dim2=0", VT_VARIANT, {{2, 0}, {0, 0}}},
      {"2D VARIANT dim1=0 dim2=3", VT_VARIANT, {{0, 0}, {3, 0}}},
      {"3D VARIANT 2x3x4", VT_VARIANT, {{2, 0}, {3, 0}, {4, 0}}},
      {"1D R8 4", VT_R8, {{4, 0}}},
      {"1D BSTR 2", VT_BSTR, {{2, 0}}},
      {"1D UI1 4", VT_UI1, {{4, 0}}},
      {"1D UNKNOWN 2", VT_UNKNOWN, {{2, 0}}},
      {"1D DISPATCH 2", VT_DISPATCH, {{2, 0}}},
      {"1D BOOL 2", VT_BOOL, {{2, 0}}},
      {"1D DECIMAL 2", VT_DECIMAL, {{2, 0}}},
      {"1D I8 2", VT_I8, {{2, 0}}},
      {"1D EMPTY(bad)", VT_EMPTY, {{2, 0}}},
      {"1D NULL(bad)", VT_NULL, {{2, 0}}},
      {"1D VARIANT|BYREF(bad)", VT_VARIANT | VT_BYREF, {{2, 0}}},
      {"1D VARIANT|ARRAY(bad)", VT_VARIANT | VT_ARRAY, {{2, 0}}},
      {"0 dims(bad)", VT_VARIANT, {}},
  };
  const std::vector<json> rows = Rows("create");
  ASSERT_EQ(rows.size(), std::size(cases));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const json& row = rows[i];
    SCOPED_TRACE(cases[i].what);
    ASSERT_EQ(row.at("what"), cases[i].what);
    auto bounds = cases[i].bounds;
    SAFEARRAY* const array =
        SafeArrayCreate(cases[i].type, static_cast<UINT>(bounds.size()), bounds.data());
    ASSERT_EQ(array == nullptr, row.at("array") == "null");
    if (array == nullptr) continue;
    EXPECT_EQ(array->cDims, row.at("dims").get<USHORT>());
    EXPECT_EQ(array->cbElements, row.at("elemsize").get<ULONG>());
    EXPECT_EQ(array->fFeatures, row.at("features").get<USHORT>());
    EXPECT_EQ(array->cLocks, row.at("locks").get<ULONG>());
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(SafeArrayGetVartype(array, &type), Code(row, "getvartype"));
    EXPECT_EQ(type, row.at("vartype").get<VARTYPE>());
    for (UINT dimension = 1; dimension <= bounds.size(); ++dimension) {
      const json& expected = row.at("bounds_lb_ub_by_dim_1based").at(dimension - 1);
      LONG bound = 99;
      EXPECT_EQ(SafeArrayGetLBound(array, dimension, &bound), kCodes.at(expected.at(0)));
      EXPECT_EQ(bound, expected.at(1).get<LONG>());
      EXPECT_EQ(SafeArrayGetUBound(array, dimension, &bound), kCodes.at(expected.at(2)));
      EXPECT_EQ(bound, expected.at(3).get<LONG>());
      const json& stored = row.at("struct_rgsabound_elements_lb").at(dimension - 1);
      EXPECT_EQ(array->rgsabound[dimension - 1].cElements, stored.at(0).get<ULONG>());
      EXPECT_EQ(array->rgsabound[dimension - 1].lLbound, stored.at(1).get<LONG>());
    }
    void* data = nullptr;
    EXPECT_EQ(SafeArrayAccessData(array, &data), Code(row, "access"));
    EXPECT_NE(data, nullptr);
    EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), Code(row, "destroy"));
  }
}

TEST(ValueTable, ObjectsInArraysHoldOneReferenceEach) {
  ValueObject object(true);
  const json row = Row("put_into_arrays");
  const auto refs = [&](const char* key) { return row.at(key).at("refs").get<ULONG>(); };
  CComSafeArray<VARIANT> array(1);
  VARIANT value{};
  value.vt = VT_DISPATCH;
  value.pdispVal = &object;  // borrowed
  EXPECT_EQ(array.SetAt(0, value), S_OK);
  EXPECT_EQ(object.references, refs("after_put"));
  EXPECT_EQ(array.SetAt(0, value), S_OK);
  EXPECT_EQ(object.references, refs("after_second_put_same_slot"));
  {
    CComVariant got;
    const LONG index = 0;
    EXPECT_EQ(array.MultiDimGetAt(&index, got), S_OK);
    EXPECT_EQ(object.references, refs("after_get"));
  }
  {
    const CComSafeArray<VARIANT> copy = array;
    EXPECT_EQ(object.references, refs("after_array_copy"));
  }
  EXPECT_EQ(array.Destroy(), S_OK);
  EXPECT_EQ(object.references, refs("after_destroy"));
}

TEST(ValueTable, TextsInArraysAreCopied) {
  const json row = Row("bstr_array");
  CComSafeArray<BSTR> array(2);
  const CComBSTR text(L"two");
  EXPECT_EQ(array.SetAt(0, text.m_str), Code(row, "put"));
  EXPECT_NE(array.GetAt(0), text.m_str);
  EXPECT_EQ(array.SetAt(0, nullptr), Code(row, "put_null"));
  EXPECT_NE(array.GetAt(0), nullptr);
  const LONG index = 1;
  BSTR unset = text.m_str;
  EXPECT_EQ(array.MultiDimGetAt(&index, unset), Code(row, "get_unset"));
  EXPECT_EQ(unset, nullptr);
}

TEST(ValueTable, ReferencesToVariantsAreFollowedOnce) {
  const json row = Row("copyind_variantref");
  CComVariant inner(L"in");
  VARIANT reference{};
  reference.vt = VT_VARIANT | VT_BYREF;
  reference.pvarVal = &inner;
  CComVariant copy;
  EXPECT_EQ(VariantCopyInd(&copy, &reference), Code(row, "result"));
  EXPECT_STREQ(copy.bstrVal, L"in");
  EXPECT_NE(copy.bstrVal, inner.bstrVal);
  VARIANT twice{};
  twice.vt = VT_VARIANT | VT_BYREF;
  twice.pvarVal = &reference;
  EXPECT_EQ(VariantCopyInd(&copy, &twice), Code(row, "ref_to_ref_variant"));
  inner.Clear();
  EXPECT_EQ(VariantCopyInd(&copy, &reference), Code(row, "ref_to_empty_variant"));
  EXPECT_EQ(copy.vt, VT_EMPTY);
}

}  // namespace
