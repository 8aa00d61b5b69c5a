#include "platform/ResultMessage.h"

#include <algorithm>
#include <iterator>

#include "ResultCodes.h"

namespace cvars::platform {
namespace {

struct Message {
  HRESULT result;
  std::wstring_view text;
};

constexpr Message kMessages[] = {
    {S_OK, L"Done.\r\n"},
    {S_FALSE, L"There was nothing to do.\r\n"},
    {E_NOTIMPL, L"This operation is not offered here.\r\n"},
    {E_NOINTERFACE, L"The object does not offer this interface.\r\n"},
    {E_POINTER, L"A pointer is null that must not be.\r\n"},
    {E_ABORT, L"The operation was cancelled.\r\n"},
    {E_FAIL, L"The operation failed for a reason that is not told.\r\n"},
    {E_UNEXPECTED, L"The operation came at a moment that does not allow it.\r\n"},
    {E_ACCESSDENIED, L"Access is not allowed.\r\n"},
    {E_HANDLE, L"The handle stands for nothing.\r\n"},
    {E_OUTOFMEMORY, L"There is not enough memory.\r\n"},
    {E_INVALIDARG, L"An argument has a value that is not allowed.\r\n"},
    {OLE_E_BLANK, L"The object is not set up yet.\r\n"},
    {CLASS_E_NOAGGREGATION, L"The class cannot be made as a part of another object.\r\n"},
    {CLASS_E_CLASSNOTAVAILABLE, L"The module does not hold this class.\r\n"},
    {REGDB_E_CLASSNOTREG, L"The class is not registered.\r\n"},
    {CO_E_NOTINITIALIZED, L"The component runtime is not initialised on this thread.\r\n"},
    {CO_E_CLASSSTRING, L"The text names no class.\r\n"},
    {CO_E_DLLNOTFOUND, L"The module of the class is not found.\r\n"},
    {CO_E_ERRORINDLL, L"The module of the class cannot be used.\r\n"},
    {CO_E_OBJNOTREG, L"The object is not registered.\r\n"},
    // The two codes of a text that is read as a number.
    {ResultCode(0x80040512), L"The text does not start with a number.\r\n"},
    {ResultCode(0x80040513), L"The number is followed by an unknown unit or prefix.\r\n"},
    {DISP_E_UNKNOWNINTERFACE, L"The interface is not known.\r\n"},
    {DISP_E_MEMBERNOTFOUND, L"The object has no such member.\r\n"},
    {DISP_E_PARAMNOTFOUND, L"A parameter is missing.\r\n"},
    {DISP_E_TYPEMISMATCH, L"The value is of a type that does not fit.\r\n"},
    {DISP_E_UNKNOWNNAME, L"The name is not known.\r\n"},
    {DISP_E_NONAMEDARGS, L"Arguments cannot be given by name here.\r\n"},
    {DISP_E_BADVARTYPE, L"The type of the variant is not valid.\r\n"},
    {DISP_E_EXCEPTION, L"The member reported an exception.\r\n"},
    {DISP_E_OVERFLOW, L"The value is too large for its type.\r\n"},
    {DISP_E_BADINDEX, L"The index is outside the array.\r\n"},
    {DISP_E_ARRAYISLOCKED, L"The array is in use.\r\n"},
    {DISP_E_BADPARAMCOUNT, L"The number of parameters is wrong.\r\n"},
    {DISP_E_DIVBYZERO, L"A division by zero was asked for.\r\n"},
};

constexpr std::wstring_view kUnknown = L"There is no description of this result code.\r\n";

}  // namespace

std::wstring_view ResultMessage(HRESULT result) noexcept {
  const auto found =
      std::find_if(std::begin(kMessages), std::end(kMessages),
                   [result](const Message& message) { return message.result == result; });
  return found != std::end(kMessages) ? found->text : kUnknown;
}

}  // namespace cvars::platform
