#pragma once

// What the tests of the enum cvar share.

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <string>
#include "CCvarEnum.h"
#include "CvarObject.h"
#include "RecordingListener.h"

namespace cvars::test {

using Masks = std::vector<NOTIFYTYPE>;
using Enum = CComPtr<CvarObject<CCvarEnum>>;

inline constexpr CVARREPLICATIONFLAGS kDefaultReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;
inline constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;
inline constexpr NOTIFYTYPE kRangeAndValue = NOTIFY_RANGE | NOTIFY_VALUE;
inline constexpr int kUntouched = 77;

inline Enum MakeEnum(const wchar_t* values, int defaultIndex = 0, CVARFLAGS flags = CVARFLAGS(0)) {
  Enum cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"Coupling", values, defaultIndex, flags, nullptr, 0, kDefaultReplication, 0);
  return cvar;
}

inline CComPtr<RecordingListener> Listen(const Enum& cvar) {
  auto listener = RecordingListener::Create();
  EXPECT_EQ(S_OK, cvar->AttachCvarEventSink(listener));
  return listener;
}

inline int Adapted(const Enum& cvar) {
  int index = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValue(&index));
  return index;
}
inline int Requested(const Enum& cvar) {
  int index = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetRequestedValue(&index));
  return index;
}
inline int Default(const Enum& cvar) {
  int index = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetDefaultValue(&index));
  return index;
}

// The text that an operation hands out.
template <class Get, class... A>
std::wstring Text(const Enum& cvar, Get get, A... arguments) {
  CComBSTR text;
  EXPECT_EQ(S_OK, ((*cvar).*get)(arguments..., &text));
  return std::wstring(text.View());
}
inline std::wstring All(const Enum& cvar) { return Text(cvar, &CCvarEnum::GetFullRangeString, 1); }
inline std::wstring Screens(const Enum& cvar) {
  return Text(cvar, &CCvarEnum::get_RangeStringScreen);
}

}  // namespace cvars::test
