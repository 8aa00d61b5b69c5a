#include "platform/ResultMessage.h"

#include <gtest/gtest.h>

#include <set>
#include <string_view>

#include "ResultCodes.h"

namespace {

using cvars::ResultCode;
using cvars::platform::ResultMessage;

constexpr HRESULT kKnown[] = {
    S_OK,
    S_FALSE,
    E_NOTIMPL,
    E_NOINTERFACE,
    E_POINTER,
    E_ABORT,
    E_FAIL,
    E_UNEXPECTED,
    E_ACCESSDENIED,
    E_HANDLE,
    E_OUTOFMEMORY,
    E_INVALIDARG,
    OLE_E_BLANK,
    CLASS_E_NOAGGREGATION,
    CLASS_E_CLASSNOTAVAILABLE,
    REGDB_E_CLASSNOTREG,
    CO_E_NOTINITIALIZED,
    CO_E_CLASSSTRING,
    CO_E_DLLNOTFOUND,
    CO_E_ERRORINDLL,
    CO_E_OBJNOTREG,
    ResultCode(0x80040512),
    ResultCode(0x80040513),
    DISP_E_UNKNOWNINTERFACE,
    DISP_E_MEMBERNOTFOUND,
    DISP_E_PARAMNOTFOUND,
    DISP_E_TYPEMISMATCH,
    DISP_E_UNKNOWNNAME,
    DISP_E_NONAMEDARGS,
    DISP_E_BADVARTYPE,
    DISP_E_EXCEPTION,
    DISP_E_OVERFLOW,
    DISP_E_BADINDEX,
    DISP_E_ARRAYISLOCKED,
    DISP_E_BADPARAMCOUNT,
    DISP_E_DIVBYZERO,
};

constexpr std::wstring_view kUnknown = L"There is no description of this result code.\r\n";

TEST(ResultMessage, EveryCodeOfTheLibraryHasOneOfItsOwn) {
  std::set<std::wstring_view> messages = {kUnknown};
  for (const HRESULT result : kKnown) {
    EXPECT_TRUE(messages.insert(ResultMessage(result)).second) << std::hex << result;
  }
}

TEST(ResultMessage, IsOneLineWithItsLineBreak) {
  for (const HRESULT result : kKnown) {
    const std::wstring_view message = ResultMessage(result);
    EXPECT_GT(message.size(), 3u);
    EXPECT_EQ(message.find(L"\r\n"), message.size() - 2) << std::hex << result;
  }
}

TEST(ResultMessage, SaysWhatIsWrong) {
  EXPECT_EQ(ResultMessage(E_INVALIDARG), L"An argument has a value that is not allowed.\r\n");
  EXPECT_EQ(ResultMessage(ResultCode(0x80040512)), L"The text does not start with a number.\r\n");
}

TEST(ResultMessage, OtherCodesShareOne) {
  for (const HRESULT result : {ResultCode(0x80041234), ResultCode(0xFFFFFFFF), 2, 0x7FFFFFFF}) {
    EXPECT_EQ(ResultMessage(result), kUnknown) << std::hex << result;
  }
}

}  // namespace
