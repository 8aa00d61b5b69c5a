#pragma once

#include <cstddef>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "CComVariant.h"
#include "Export.h"
#include "IVorCvar.h"

namespace cvars {

/// One member of a cvar as scripts see it.
struct ScriptMember {
  const wchar_t* name;  ///< Any case matches.
  WORD kind;            ///< DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT or DISPATCH_METHOD.
  unsigned arguments;   ///< How many the script gives.
  /// @param arguments  borrowed; first argument first.
  /// @param result     cleared; receives what the member gives back.
  HRESULT (*call)(IVorCvar* cvar, VARIANT* arguments, VARIANT* result);
};

namespace script {

/// Reads an argument of a script as the type that an operation takes.
template <class T>
struct In;

template <class T>
requires(std::is_integral_v<T> || std::is_enum_v<T>) struct In<T> {
  CComVariant value;
  HRESULT From(const VARIANT& argument) {
    const HRESULT converted = VariantChangeType(&value, &argument, 0, VT_I8);
    if (FAILED(converted)) return converted;
    if constexpr (std::is_integral_v<T> && sizeof(T) <= sizeof(LONG)) {
      if (!std::in_range<T>(value.llVal)) return DISP_E_OVERFLOW;
    }
    return S_OK;
  }
  T Get() const { return static_cast<T>(value.llVal); }
};
template <>
struct In<double> {
  CComVariant value;
  HRESULT From(const VARIANT& argument) { return VariantChangeType(&value, &argument, 0, VT_R8); }
  double Get() const { return value.dblVal; }
};
template <>
struct In<const wchar_t*> {
  CComVariant value;
  HRESULT From(const VARIANT& argument) {
    return VariantChangeType(&value, &argument, VARIANT_ALPHABOOL, VT_BSTR);
  }
  const wchar_t* Get() const { return value.bstrVal; }
};
template <>
struct In<IUnknown*> {
  CComVariant value;
  HRESULT From(const VARIANT& argument) {
    return VariantChangeType(&value, &argument, 0, VT_UNKNOWN);
  }
  IUnknown* Get() const { return value.punkVal; }
};
template <>
struct In<VARIANT> {
  VARIANT value;
  HRESULT From(const VARIANT& argument) {
    value = argument;
    return S_OK;
  }
  VARIANT Get() const { return value; }
};

/// Hands what an operation gives out to a script.
inline void Give(VARIANT* result, BSTR text) {
  result->vt = VT_BSTR;
  result->bstrVal = text;
}
inline void Give(VARIANT* result, double number) {
  result->vt = VT_R8;
  result->dblVal = number;
}
inline void Give(VARIANT* result, IUnknown* object) {
  result->vt = VT_UNKNOWN;
  result->punkVal = object;
}
inline void Give(VARIANT* result, VARIANT value) { *result = value; }
template <class T>
requires(std::is_integral_v<T> || std::is_enum_v<T>) void Give(VARIANT* result, T number) {
  if constexpr (std::is_same_v<T, long long> || std::is_same_v<T, std::int64_t>) {
    // An operation's long carries 32 bits; only a 64-bit value type needs all.
    if (number >= INT32_MIN && number <= INT32_MAX) {
      result->vt = VT_I4;
      result->lVal = static_cast<LONG>(number);
      return;
    }
    result->vt = VT_I8;
    result->llVal = static_cast<LONGLONG>(number);
  } else if constexpr (sizeof(T) > sizeof(LONG)) {
    result->vt = VT_I8;
    result->llVal = static_cast<LONGLONG>(number);
  } else if constexpr (std::is_unsigned_v<T>) {
    result->vt = VT_UI4;
    result->ulVal = static_cast<ULONG>(number);
  } else {
    result->vt = VT_I4;
    result->lVal = static_cast<LONG>(number);
  }
}

template <class T>
inline constexpr bool kIsOut = std::is_pointer_v<T> && !std::is_same_v<T, IUnknown*> &&
                               !std::is_const_v<std::remove_pointer_t<T>>;

/// Takes an interface operation apart: in-arguments first, at most one out-argument last.
template <class Operation>
struct Signature;
template <class Interface, class... A>
struct Signature<HRESULT (Interface::*)(A...)> {
  using Target = Interface;
  using Arguments = std::tuple<A...>;
  static constexpr bool kGivesBack = (false || ... || kIsOut<A>);
  static constexpr unsigned kIns = static_cast<unsigned>(sizeof...(A)) - (kGivesBack ? 1 : 0);
};

template <auto kOperation, std::size_t... I>
HRESULT Call(IVorCvar* cvar, VARIANT* arguments, VARIANT* result, std::index_sequence<I...>) {
  using S = Signature<decltype(kOperation)>;
  std::tuple<In<std::tuple_element_t<I, typename S::Arguments>>...> in;
  HRESULT converted = S_OK;
  (void)(... && SUCCEEDED(converted = std::get<I>(in).From(arguments[I])));
  if (FAILED(converted)) return converted;
  auto* const target = static_cast<typename S::Target*>(cvar);
  if constexpr (S::kGivesBack) {
    using Out = std::remove_pointer_t<std::tuple_element_t<S::kIns, typename S::Arguments>>;
    Out out{};
    const HRESULT called = (target->*kOperation)(std::get<I>(in).Get()..., &out);
    if (SUCCEEDED(called)) Give(result, out);
    return called;
  } else {
    return (target->*kOperation)(std::get<I>(in).Get()...);
  }
}

template <auto kOperation>
HRESULT Call(IVorCvar* cvar, VARIANT* arguments, VARIANT* result) {
  return Call<kOperation>(cvar, arguments, result,
                          std::make_index_sequence<Signature<decltype(kOperation)>::kIns>());
}

}  // namespace script

/// A property that scripts read: an operation with one out-argument.
template <auto kOperation>
constexpr ScriptMember ScriptGet(const wchar_t* name) {
  return {name, DISPATCH_PROPERTYGET, script::Signature<decltype(kOperation)>::kIns,
          &script::Call<kOperation>};
}
/// A property that scripts write: an operation with one in-argument.
template <auto kOperation>
constexpr ScriptMember ScriptPut(const wchar_t* name) {
  return {name, DISPATCH_PROPERTYPUT, script::Signature<decltype(kOperation)>::kIns,
          &script::Call<kOperation>};
}
/// A method: in-arguments and at most one out-argument, which is its result.
template <auto kOperation>
constexpr ScriptMember ScriptMethod(const wchar_t* name) {
  return {name, DISPATCH_METHOD, script::Signature<decltype(kOperation)>::kIns,
          &script::Call<kOperation>};
}

/// The members that every cvar has.
CVARS_API std::span<const ScriptMember> CommonScriptMembers() noexcept;

/// The members of a typed interface beside the common ones; each typed interface specialises it in
/// libraries/client/ScriptMembers<Type>.cpp.
template <class Interface>
std::span<const ScriptMember> TypedScriptMembers() noexcept {
  return {};
}

/// IDispatch::GetIDsOfNames over two tables, the typed one first.
CVARS_API HRESULT FindScriptMembers(std::span<const ScriptMember> typed, wchar_t** names,
                                    UINT nameCount, DISPID* ids) noexcept;
/// IDispatch::Invoke over two tables, the typed one first.
CVARS_API HRESULT InvokeScriptMember(std::span<const ScriptMember> typed, IVorCvar* cvar, DISPID id,
                                     WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO* exception, UINT* argumentError);

}  // namespace cvars
