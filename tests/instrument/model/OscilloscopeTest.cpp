#include "instrument/model/Oscilloscope.h"

#include <gtest/gtest.h>

#include <string>

#include "CComBSTR.h"
#include "CComVariant.h"
#include "IVorCvarDouble.h"
#include "IsolatedHome.h"
#include "KnownNotifier.h"

namespace cvars::model {
namespace {

constexpr unsigned kDeadlineMs = 20000;

class OscilloscopeTest : public testing::Test {
 protected:
  CComPtr<IVorCvarDouble> Cvar(const wchar_t* bag, const wchar_t* name) {
    CComPtr<IVorCvarDouble> found;
    for (const CComPtr<CCvarBag>& one : m_scope.Bags()) {
      if (one->Name() != bag) continue;
      const CComPtr<IVorCvar> cvar = one->Find(name);
      if (cvar == nullptr) continue;
      EXPECT_EQ(cvar.QueryInterface(&found), S_OK);
    }
    EXPECT_NE(found, nullptr) << "no such cvar";
    return found;
  }
  double Value(const wchar_t* bag, const wchar_t* name) {
    double value = -12345;
    EXPECT_EQ(Cvar(bag, name)->GetAdaptedValue(&value), S_OK);
    return value;
  }
  HRESULT Set(const wchar_t* bag, const wchar_t* name, double value) {
    return Cvar(bag, name)->SetRequestedValue(value);
  }
  void Settle() { EXPECT_EQ(m_notifier->Drain(kDeadlineMs), S_OK); }

  test::IsolatedHome m_home;
  IVorAsynchronousCvarNotifier* const m_notifier = test::KnownNotifier();
  Oscilloscope m_scope;
};

TEST_F(OscilloscopeTest, TheWindowsScaleIsItsOwnUntilItTracks) {
  EXPECT_FALSE(m_scope.Window().Tracks());
  EXPECT_EQ(Set(L"Horizontal", L"Scale", 0.5), S_OK);
  EXPECT_EQ(Value(L"Horizontal", L"Window Scale"), 1e-3);
  m_scope.Window().SetTracks(true);
  EXPECT_TRUE(m_scope.Window().Tracks());
  EXPECT_EQ(Value(L"Horizontal", L"Window Scale"), 0.5);
  EXPECT_EQ(Set(L"Horizontal", L"Scale", 0.2), S_OK);
  EXPECT_EQ(Value(L"Horizontal", L"Window Scale"), 0.2);
}

TEST_F(OscilloscopeTest, TheMainScaleDoesNotFollowTheWindows) {
  m_scope.Window().SetTracks(true);
  EXPECT_EQ(Set(L"Horizontal", L"Window Scale", 2), S_OK);
  EXPECT_EQ(Value(L"Horizontal", L"Scale"), 1e-3);
  EXPECT_EQ(Set(L"Horizontal", L"Scale", 0.2), S_OK);
  EXPECT_EQ(Value(L"Horizontal", L"Window Scale"), 0.2);
}

TEST_F(OscilloscopeTest, AFreedWindowKeepsItsScale) {
  m_scope.Window().SetTracks(true);
  EXPECT_EQ(Set(L"Horizontal", L"Scale", 0.2), S_OK);
  m_scope.Window().SetTracks(false);
  EXPECT_EQ(Set(L"Horizontal", L"Scale", 4), S_OK);
  EXPECT_EQ(Value(L"Horizontal", L"Window Scale"), 0.2);
}

TEST_F(OscilloscopeTest, AResetFreesTheWindow) {
  m_scope.Window().SetTracks(true);
  EXPECT_EQ(Set(L"Horizontal", L"Scale", 0.2), S_OK);
  m_scope.Reset();
  EXPECT_FALSE(m_scope.Window().Tracks());
  EXPECT_EQ(Value(L"Horizontal", L"Window Scale"), 1e-3);
}

// The points of the scale are 1, 2, 5 times a power of ten; the probe divides by ten.
TEST_F(OscilloscopeTest, TheScaleAtTheTipStepsWithTheChannelsScale) {
  EXPECT_EQ(Set(L"Channel2", L"Probe Attenuation", 10), S_OK);
  EXPECT_EQ(Set(L"Channel2", L"Scale", 0.5), S_OK);
  EXPECT_DOUBLE_EQ(Value(L"Channel2", L"Probe Scale"), 5);
  EXPECT_EQ(Cvar(L"Channel2", L"Probe Scale")->Increment(1), S_OK);
  EXPECT_DOUBLE_EQ(Value(L"Channel2", L"Probe Scale"), 10);
  EXPECT_EQ(Cvar(L"Channel2", L"Probe Scale")->Increment(-2), S_OK);
  EXPECT_DOUBLE_EQ(Value(L"Channel2", L"Probe Scale"), 2);
  EXPECT_DOUBLE_EQ(Value(L"Channel2", L"Scale"), 0.2);
}

TEST_F(OscilloscopeTest, TheDisplayFollowsEveryChannel) {
  for (int channel = 1; channel <= Oscilloscope::kChannelCount; ++channel) {
    const std::wstring number = std::to_wstring(channel);
    const std::wstring bag = L"Channel" + number;
    EXPECT_EQ(Set(bag.c_str(), L"Scale", 0.2 * channel), S_OK);
    EXPECT_EQ(Set(bag.c_str(), L"Offset", 0.5 * channel), S_OK);
    EXPECT_EQ(Set(bag.c_str(), L"Position", -0.25 * channel), S_OK);
    Settle();
    for (const wchar_t* const setting : {L"Scale", L"Offset", L"Position"}) {
      EXPECT_EQ(Value(L"Display", (setting + number).c_str()), Value(bag.c_str(), setting));
    }
  }
}

TEST_F(OscilloscopeTest, TheDisplayHasUnitAndRangeOfTheChannel) {
  CComBSTR text;
  EXPECT_EQ(Cvar(L"Display", L"Scale2")->GetAdaptedValueStringScreen(&text), S_OK);
  EXPECT_STREQ(text, L"100 mV");
  double most = 0;
  EXPECT_EQ(Cvar(L"Display", L"Scale2")->GetMaxValue(&most), S_OK);
  EXPECT_EQ(most, 10);
}

TEST_F(OscilloscopeTest, TheDisplayCannotBeSet) {
  EXPECT_EQ(Set(L"Display", L"Scale1", 1), E_ACCESSDENIED);
  EXPECT_EQ(Set(L"Channel1", L"Scale", 0.5), S_OK);
  Settle();
  EXPECT_EQ(Value(L"Display", L"Scale1"), 0.5);
  EXPECT_EQ(Set(L"Display", L"Scale1", 1), E_ACCESSDENIED);
}

TEST_F(OscilloscopeTest, TheDisplayFollowsAReset) {
  EXPECT_EQ(Set(L"Channel3", L"Scale", 0.5), S_OK);
  m_scope.Reset();
  Settle();
  EXPECT_EQ(Value(L"Display", L"Scale3"), 0.1);
}

}  // namespace
}  // namespace cvars::model
