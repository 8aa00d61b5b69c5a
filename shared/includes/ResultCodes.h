#pragma once

#include "BasicTypes.h"

namespace cvars {
/// Gives the signed result code of a 32-bit pattern.
constexpr HRESULT ResultCode(std::uint32_t pattern) noexcept { return static_cast<HRESULT>(pattern); }
}  // namespace cvars

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;  ///< Success; nothing was done.
inline constexpr HRESULT E_NOTIMPL = cvars::ResultCode(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = cvars::ResultCode(0x80004002);
inline constexpr HRESULT E_POINTER = cvars::ResultCode(0x80004003);
inline constexpr HRESULT E_ABORT = cvars::ResultCode(0x80004004);
inline constexpr HRESULT E_FAIL = cvars::ResultCode(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = cvars::ResultCode(0x8000FFFF);
inline constexpr HRESULT E_ACCESSDENIED = cvars::ResultCode(0x80070005);
inline constexpr HRESULT E_HANDLE = cvars::ResultCode(0x80070006);
inline constexpr HRESULT E_OUTOFMEMORY = cvars::ResultCode(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = cvars::ResultCode(0x80070057);
inline constexpr HRESULT OLE_E_BLANK = cvars::ResultCode(0x80040007);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = cvars::ResultCode(0x80040110);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = cvars::ResultCode(0x80040111);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = cvars::ResultCode(0x80040154);
inline constexpr HRESULT CO_E_NOTINITIALIZED = cvars::ResultCode(0x800401F0);
inline constexpr HRESULT CO_E_CLASSSTRING = cvars::ResultCode(0x800401F3);
inline constexpr HRESULT CO_E_DLLNOTFOUND = cvars::ResultCode(0x800401F8);
inline constexpr HRESULT CO_E_ERRORINDLL = cvars::ResultCode(0x800401F9);
inline constexpr HRESULT CO_E_OBJNOTREG = cvars::ResultCode(0x800401FB);
inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = cvars::ResultCode(0x80020001);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = cvars::ResultCode(0x80020003);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = cvars::ResultCode(0x80020004);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = cvars::ResultCode(0x80020005);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = cvars::ResultCode(0x80020006);
inline constexpr HRESULT DISP_E_NONAMEDARGS = cvars::ResultCode(0x80020007);
inline constexpr HRESULT DISP_E_BADVARTYPE = cvars::ResultCode(0x80020008);
inline constexpr HRESULT DISP_E_EXCEPTION = cvars::ResultCode(0x80020009);
inline constexpr HRESULT DISP_E_OVERFLOW = cvars::ResultCode(0x8002000A);
inline constexpr HRESULT DISP_E_BADINDEX = cvars::ResultCode(0x8002000B);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = cvars::ResultCode(0x8002000D);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = cvars::ResultCode(0x8002000E);
inline constexpr HRESULT DISP_E_DIVBYZERO = cvars::ResultCode(0x80020012);

constexpr bool SUCCEEDED(HRESULT result) noexcept { return result >= 0; }
constexpr bool FAILED(HRESULT result) noexcept { return result < 0; }
