#include "FunctionListener.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "CCvarDouble.h"
#include "CvarObject.h"

namespace {

using Double = CComPtr<CvarObject<CCvarDouble>>;

Double MakeDouble() {
  Double cvar = CvarObject<CCvarDouble>::Create();
  cvar->Initialize(L"Level", 0, 0, 10, 1, nullptr, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE);
  return cvar;
}

long SinksOf(const Double& cvar) {
  long count = -1;
  EXPECT_EQ(cvar->get_EventSinkCount(&count), S_OK);
  return count;
}

TEST(FunctionListener, CallsItsFunctionAndAnswersWithItsResult) {
  const Double cvar = MakeDouble();
  std::vector<NOTIFYTYPE> masks;
  const auto listener = cvars::FunctionListener::Create([&](IVorCvar* source, NOTIFYTYPE what) {
    EXPECT_EQ(source, cvar->GetIVorCvar());
    masks.push_back(what);
    return E_ABORT;
  });
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(3.0), E_ABORT);
  EXPECT_EQ(masks, std::vector<NOTIFYTYPE>{NOTIFY_REQUESTED | NOTIFY_VALUE});
}

TEST(FunctionListener, FunctionThatThrowsAnswersAsAFailure) {
  const Double cvar = MakeDouble();
  const cvars::ScopedListener listener(
      cvar, [](IVorCvar*, NOTIFYTYPE) -> HRESULT { throw std::runtime_error("refused"); });
  EXPECT_EQ(cvar->SetRequestedValue(3.0), E_FAIL);
}

TEST(ScopedListener, ListensWhileItLives) {
  const Double cvar = MakeDouble();
  int calls = 0;
  {
    const cvars::ScopedListener listener(cvar, [&](IVorCvar*, NOTIFYTYPE) {
      ++calls;
      return S_OK;
    });
    EXPECT_EQ(SinksOf(cvar), 1);
    EXPECT_EQ(cvar->SetRequestedValue(3.0), S_OK);
  }
  EXPECT_EQ(SinksOf(cvar), 0);
  EXPECT_EQ(cvar->SetRequestedValue(4.0), S_OK);
  EXPECT_EQ(calls, 1);
}

TEST(ScopedListener, KeepsItsCvar) {
  Double cvar = MakeDouble();
  const cvars::ScopedListener listener(cvar, [](IVorCvar*, NOTIFYTYPE) { return S_OK; });
  const int destructed = CvarBaseCpp::NumCvarsDestructed();
  cvar.Release();
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), destructed);
}

}  // namespace
