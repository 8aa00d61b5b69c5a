// The cases of the table that are about variants.

#include <cstring>
#include <string>

#include "CComSafeArray.h"
#include "CComVariant.h"
#include "PlainLocale.h"
#include "ValueTable.h"

namespace cvars::test {
namespace {

/// A variant that refers to what belongs to somebody else.
template <class Member, class Value>
VARIANT ReferenceTo(VARTYPE type, Member VARIANT::*member, Value* value) {
  VARIANT reference{};
  reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
  reference.*member = value;
  return reference;
}

bool IsDispatch(const json& row, const char* key) { return row.at(key) == "DISPATCH"; }

void Sizes(const json& row) {
  EXPECT_EQ(sizeof(VARIANT), row.at("sizeof_VARIANT").get<std::size_t>());
  EXPECT_EQ(sizeof(SAFEARRAY), row.at("sizeof_SAFEARRAY").get<std::size_t>());
  EXPECT_EQ(sizeof(SAFEARRAYBOUND), row.at("sizeof_SAFEARRAYBOUND").get<std::size_t>());
  EXPECT_EQ(sizeof(LONG), row.at("sizeof_LONG").get<std::size_t>());
  EXPECT_EQ(VARIANT_TRUE, row.at("VARIANT_TRUE").get<int>());
  // A character is a whole code point here, not a half of a surrogate pair.
  EXPECT_EQ(sizeof(wchar_t), 2 * row.at("sizeof_wchar_t").get<std::size_t>());
}

void Init(const json& row) {
  VARIANT value;
  std::memset(static_cast<void*>(&value), 0xCD, sizeof(value));
  VariantInit(&value);
  EXPECT_EQ(value.vt, row.at("vt").get<int>());
}

void Clear(const json& row) {
  CComVariant text(L"text");
  EXPECT_EQ(VariantClear(&text), Code(row, "clear"));
  EXPECT_EQ(text.vt, row.at("vt").get<int>());
  EXPECT_EQ(VariantClear(&text), Code(row, "clear_again"));
  VARIANT value{};
  value.vt = VT_VARIANT;
  EXPECT_EQ(VariantClear(&value), Code(row, "clear_vt_variant"));
  value.vt = 255;
  EXPECT_EQ(VariantClear(&value), Code(row, "clear_bad_255"));
}

/// Expects what the table writes as "I4 9".
void ExpectNumber(const VARIANT& value, const std::string& written) {
  const std::size_t blank = written.find(' ');
  EXPECT_EQ(value.vt, TagOf(written.substr(0, blank)));
  EXPECT_EQ(value.lVal, std::stoi(written.substr(blank)));
}

void CopyToSelf(const json& row) {
  CComVariant text(L"same");
  const BSTR before = text.bstrVal;
  EXPECT_EQ(VariantCopy(&text, &text), Code(row, "copy"));
  EXPECT_EQ(text.bstrVal == before, row.at("same_pointer") == "yes");
}

void CopyBadSource(const json& row) {
  VARIANT bad{};
  bad.vt = 255;
  CComVariant value(4);
  EXPECT_EQ(VariantCopy(&value, &bad), Code(row, "copy"));
  ExpectNumber(value, row.at("dest"));
}

void CopyFreesDestination(const json& row) {
  ValueObject object(true);
  CComVariant value(static_cast<IDispatch*>(&object));
  const CComVariant nine(9);
  EXPECT_EQ(VariantCopy(&value, &nine), Code(row, "copy"));
  ExpectNumber(value, row.at("dest"));
  EXPECT_EQ(object.references, 1u);
}

void CopyOverBadDestination(const json& row) {
  VARIANT bad{};
  bad.vt = 255;
  const CComVariant nine(9);
  EXPECT_EQ(VariantCopy(&bad, &nine), Code(row, "copy"));
  EXPECT_EQ(bad.vt, row.at("dest_vt").get<int>());
}

void CopyOfAnArray(const json& row) {
  ValueObject object(true);
  SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 1}};
  VARIANT original{};
  original.vt = VT_ARRAY | VT_VARIANT;
  original.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  ASSERT_NE(original.parray, nullptr);
  const LONG objectAt[] = {0, 1};
  const LONG textAt[] = {1, 2};
  VARIANT borrowed = object.Borrowed();
  CComVariant element(L"el");
  EXPECT_EQ(SafeArrayPutElement(original.parray, objectAt, &borrowed), S_OK);
  EXPECT_EQ(SafeArrayPutElement(original.parray, textAt, &element), S_OK);
  EXPECT_EQ(object.references, References(row, "object_after_put"));

  VARIANT copy{};
  EXPECT_EQ(VariantCopy(&copy, &original), Code(row, "copy"));
  EXPECT_EQ(copy.vt, Tag(row, "vt"));
  EXPECT_EQ(copy.parray == original.parray, row.at("same_array_pointer") == "yes");
  EXPECT_EQ(object.references, References(row, "object_after_copy"));
  LONG bound = 99;
  EXPECT_EQ(SafeArrayGetLBound(copy.parray, 1, &bound), S_OK);
  EXPECT_EQ(bound, row.at("copy_lb1").get<LONG>());
  EXPECT_EQ(SafeArrayGetLBound(copy.parray, 2, &bound), S_OK);
  EXPECT_EQ(bound, row.at("copy_lb2").get<LONG>());
  for (SAFEARRAY* const array : {copy.parray, original.parray}) {
    CComVariant got;
    EXPECT_EQ(SafeArrayGetElement(array, textAt, &got), S_OK);
    ASSERT_EQ(got.vt, VT_BSTR);
    EXPECT_STREQ(got.bstrVal, L"el");
  }
  EXPECT_EQ(VariantClear(&copy), Code(row, "clear_copy"));
  EXPECT_EQ(copy.vt, Tag(row, "vt_after"));
  EXPECT_EQ(object.references, References(row, "object_after_clear_copy"));
  EXPECT_EQ(VariantClear(&original), Code(row, "clear_original"));
  EXPECT_EQ(object.references, References(row, "object_after_clear_original"));
}

void CopyOfANullArray(const json& row) {
  VARIANT empty{};
  empty.vt = VT_ARRAY | VT_VARIANT;
  VARIANT copy{};
  EXPECT_EQ(VariantCopy(&copy, &empty), Code(row, "copy"));
  EXPECT_EQ(copy.vt, Tag(row, "vt"));
  EXPECT_EQ(copy.parray == nullptr, row.at("array") == "null");
  EXPECT_EQ(VariantClear(&copy), Code(row, "clear"));
}

void ArrayByReference(const json& row) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 1);
  const VARIANT reference = ReferenceTo(VT_ARRAY | VT_VARIANT, &VARIANT::pparray, &array);
  VARIANT copy{};
  EXPECT_EQ(VariantCopy(&copy, &reference), Code(row, "variantcopy"));
  EXPECT_EQ(copy.vt, Tag(row, "vt"));
  EXPECT_EQ(copy.pparray == &array, row.at("same_ref") == "yes");
  EXPECT_EQ(VariantClear(&copy), Code(row, "clear_byref"));
  LONG bound = 99;
  EXPECT_EQ(SafeArrayGetUBound(array, 1, &bound), Code(row, "array_still_valid"));
  EXPECT_EQ(VariantCopyInd(&copy, &reference), Code(row, "copyind"));
  EXPECT_EQ(copy.vt, Tag(row, "vt_ind"));
  EXPECT_EQ(copy.parray != array, row.at("new_array") == "yes");
  EXPECT_EQ(VariantClear(&copy), S_OK);
  EXPECT_EQ(VariantChangeType(&copy, &reference, 0, VT_ARRAY | VT_VARIANT),
            Code(row, "changetype_to_ARRAY|VARIANT"));
  EXPECT_EQ(copy.vt, Tag(row, "vt_ct"));
  EXPECT_EQ(copy.parray != array, row.at("ct_new_array") == "yes");
  EXPECT_EQ(VariantClear(&copy), S_OK);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

void ReferencesOfObjects(const json& row) {
  ValueObject object(IsDispatch(row, "vt"));
  EXPECT_EQ(object.references, References(row, "start"));
  const VARIANT value = object.Borrowed();
  VARIANT copy{};
  EXPECT_EQ(VariantCopy(&copy, &value), Code(row, "copy"));
  EXPECT_EQ(object.references, References(row, "after_VariantCopy"));
  EXPECT_EQ(VariantClear(&copy), Code(row, "clear"));
  EXPECT_EQ(object.references, References(row, "after_VariantClear"));
  EXPECT_EQ(VariantChangeType(&copy, &value, 0, VT_UNKNOWN), Code(row, "to_unknown"));
  EXPECT_EQ(copy.vt, Tag(row, "vt_w"));
  EXPECT_EQ(object.references, References(row, "after_to_UNKNOWN"));
  EXPECT_EQ(VariantClear(&copy), S_OK);
  EXPECT_EQ(object.references, References(row, "cleared"));
  EXPECT_EQ(VariantChangeType(&copy, &value, 0, VT_DISPATCH), Code(row, "to_dispatch"));
  EXPECT_EQ(copy.vt, Tag(row, "vt_w2"));
  EXPECT_EQ(object.references, References(row, "after_to_DISPATCH"));
  EXPECT_EQ(VariantClear(&copy), S_OK);
  EXPECT_EQ(object.references, References(row, "cleared2"));
}

void ReferencesOfObjectsInPlace(const json& row) {
  ValueObject object(IsDispatch(row, "vt"));
  const VARIANT borrowed = object.Borrowed();
  VARIANT value{};
  EXPECT_EQ(VariantCopy(&value, &borrowed), S_OK);
  EXPECT_EQ(object.references, References(row, "copied"));
  EXPECT_EQ(VariantChangeType(&value, &value, 0, VT_UNKNOWN), Code(row, "to_unknown_inplace"));
  EXPECT_EQ(value.vt, Tag(row, "vt_c"));
  EXPECT_EQ(object.references, References(row, "after"));
  EXPECT_EQ(VariantClear(&value), S_OK);
  EXPECT_EQ(object.references, References(row, "cleared"));
}

void ObjectToValue(const json& row) {
  ValueObject object(IsDispatch(row, "from"));
  const VARIANT from = object.Borrowed();
  {
    CComVariant to;
    EXPECT_EQ(
        VariantChangeTypeEx(&to, &from, LOCALE_ENGLISH_US, 0, static_cast<VARTYPE>(Tag(row, "to"))),
        Code(row, "result"));
    EXPECT_EQ(to.vt, row.at("value").is_null() ? int{VT_EMPTY} : Tag(row, "value"));
    EXPECT_EQ(object.invokes, row.at("invokes").get<int>());
    if (object.invokes != 0) {
      EXPECT_EQ(object.lastId, row.at("dispid").get<DISPID>());
      EXPECT_EQ(object.lastFlags, row.at("flags").get<WORD>());
      EXPECT_EQ(object.lastLocale, row.at("lcid").get<LCID>());
    }
  }
  EXPECT_EQ(object.references, References(row, "state"));
}

void ObjectWhoseValueFails(const json& row) {
  ValueObject object(true);
  const VARIANT from = object.Borrowed();
  CComVariant to;
  object.answer = E_FAIL;
  EXPECT_EQ(VariantChangeType(&to, &from, 0, VT_I4), Code(row, "to_I4"));
  EXPECT_EQ(VariantChangeType(&to, &from, 0, VT_BSTR), Code(row, "to_BSTR"));
  object.answer = S_OK;
  EXPECT_EQ(VariantChangeType(&to, &from, VARIANT_NOVALUEPROP, VT_I4),
            Code(row, "NOVALUEPROP_to_I4"));
  object.value = L"text";
  EXPECT_EQ(VariantChangeType(&to, &from, 0, VT_I4), Code(row, "value_text_to_I4"));
}

void IndirectObject(const json& row) {
  ValueObject object(true);
  IDispatch* pointer = &object;
  const VARIANT reference = ReferenceTo(VT_DISPATCH, &VARIANT::ppdispVal, &pointer);
  VARIANT copy{};
  EXPECT_EQ(VariantCopyInd(&copy, &reference), Code(row, "copyind"));
  EXPECT_EQ(copy.vt, Tag(row, "vt"));
  EXPECT_EQ(object.references, References(row, "state"));
  EXPECT_EQ(VariantClear(&copy), S_OK);
  EXPECT_EQ(object.references, References(row, "cleared"));
  EXPECT_EQ(VariantCopy(&copy, &reference), Code(row, "copy_keeps_byref"));
  EXPECT_EQ(copy.vt, Tag(row, "vt_copy"));
  EXPECT_EQ(object.references, References(row, "state2"));
  EXPECT_EQ(VariantClear(&copy), Code(row, "clear_byref"));
  EXPECT_EQ(object.references, References(row, "state3"));
}

void IndirectValue(const json& row) {
  LONG number = 5;
  double real = 2.5;
  CComBSTR text(L"ref");
  VARIANT_BOOL flag = VARIANT_TRUE;
  VARIANT reference{};
  const int type = Tag(row, "from");
  switch (type) {
    case VT_I4:
      reference = ReferenceTo(VT_I4, &VARIANT::plVal, &number);
      break;
    case VT_R8:
      reference = ReferenceTo(VT_R8, &VARIANT::pdblVal, &real);
      break;
    case VT_BSTR:
      reference = ReferenceTo(VT_BSTR, &VARIANT::pbstrVal, &text.m_str);
      break;
    default:
      reference = ReferenceTo(VT_BOOL, &VARIANT::pboolVal, &flag);
  }
  CComVariant copy;
  EXPECT_EQ(VariantCopyInd(&copy, &reference), Code(row, "result"));
  ASSERT_EQ(copy.vt, Tag(row, "vt"));
  const std::string value = row.at("value");
  switch (type) {
    case VT_I4:
      EXPECT_EQ(copy.lVal, std::stoi(value));
      break;
    case VT_R8: {
      const PlainLocale plain;
      EXPECT_EQ(copy.dblVal, std::stod(value.substr(value.find(':') + 1)));
      break;
    }
    case VT_BSTR:
      EXPECT_EQ(std::wstring(copy.bstrVal), std::wstring(value.begin(), value.end()));
      EXPECT_EQ(copy.bstrVal != text.m_str, row.at("new_string") == "yes");
      break;
    default:
      EXPECT_EQ(copy.boolVal, std::stoi(value));
  }
  EXPECT_EQ(VariantCopyInd(&reference, &reference), Code(row, "inplace"));
  EXPECT_EQ(reference.vt, Tag(row, "inplace_vt"));
  EXPECT_EQ(VariantClear(&reference), S_OK);
}

void IndirectVariant(const json& row) {
  CComVariant inner(L"in");
  VARIANT reference = ReferenceTo(VT_VARIANT, &VARIANT::pvarVal, &inner);
  CComVariant copy;
  EXPECT_EQ(VariantCopyInd(&copy, &reference), Code(row, "result"));
  ASSERT_EQ(copy.vt, Tag(row, "vt"));
  EXPECT_STREQ(copy.bstrVal, L"in");
  EXPECT_EQ(copy.bstrVal != inner.bstrVal, row.at("independent") == "yes");

  LONG number = 5;
  VARIANT numberReference = ReferenceTo(VT_I4, &VARIANT::plVal, &number);
  reference.pvarVal = &numberReference;
  EXPECT_EQ(VariantCopyInd(&copy, &reference), Code(row, "ref_to_byref_I4"));
  EXPECT_EQ(copy.vt, Tag(row, "vt2"));

  reference.pvarVal = &inner;
  const VARIANT twice = ReferenceTo(VT_VARIANT, &VARIANT::pvarVal, &reference);
  EXPECT_EQ(VariantCopyInd(&copy, &twice), Code(row, "ref_to_ref_variant"));

  EXPECT_EQ(inner.Clear(), S_OK);
  EXPECT_EQ(VariantCopyInd(&copy, &reference), Code(row, "ref_to_empty_variant"));
  EXPECT_EQ(copy.vt, Tag(row, "vt6"));
}

void NullReference(const json& row) {
  const VARIANT reference = ReferenceTo(VT_I4, &VARIANT::plVal, static_cast<LONG*>(nullptr));
  VARIANT copy{};
  EXPECT_EQ(VariantCopy(&copy, &reference), Code(row, "variantcopy"));
  EXPECT_EQ(copy.vt, Tag(row, "vt"));
}

// A true that another language made of 1 keeps its bits.
void BoolOfOne(const json& row) {
  VARIANT one{};
  one.vt = VT_BOOL;
  one.boolVal = 1;
  CComVariant to;
  EXPECT_EQ(VariantChangeType(&to, &one, 0, VT_I4), Code(row, "to_I4"));
  EXPECT_EQ(to.lVal, row.at("I4").get<LONG>());
  EXPECT_EQ(VariantChangeType(&to, &one, 0, VT_BOOL), Code(row, "to_BOOL"));
  EXPECT_EQ(to.boolVal, row.at("BOOL_kept").get<int>());
  EXPECT_EQ(VariantChangeTypeEx(&to, &one, LOCALE_ENGLISH_US, VARIANT_ALPHABOOL, VT_BSTR),
            Code(row, "to_BSTR_alpha"));
  EXPECT_STREQ(to.bstrVal, L"True");
  EXPECT_EQ(VariantChangeTypeEx(&to, &one, LOCALE_ENGLISH_US, 0, VT_BSTR), Code(row, "to_BSTR"));
  EXPECT_STREQ(to.bstrVal, L"1");
}

}  // namespace

ValueTableChecks VariantChecks() {
  return {
      {"sizes", Sizes},
      {"init", Init},
      {"clear_basic", Clear},
      {"copy_to_self", CopyToSelf},
      {"copy_bad_source", CopyBadSource},
      {"copy_frees_dest", CopyFreesDestination},
      {"copy_over_bad_dest", CopyOverBadDestination},
      {"variantcopy_array", CopyOfAnArray},
      {"variantcopy_null_array", CopyOfANullArray},
      {"byref_array", ArrayByReference},
      {"refcount", ReferencesOfObjects},
      {"refcount_inplace", ReferencesOfObjectsInPlace},
      {"object_to_value", ObjectToValue},
      {"object_invoke_fails", ObjectWhoseValueFails},
      {"copyind_dispatch", IndirectObject},
      {"copyind", IndirectValue},
      {"copyind_variantref", IndirectVariant},
      {"copyind_null_ref", NullReference},
      {"bool_one", BoolOfOne},
  };
}

}  // namespace cvars::test
