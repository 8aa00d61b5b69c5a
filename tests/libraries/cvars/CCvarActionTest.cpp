#include "CCvarAction.h"

#include <gtest/gtest.h>

#include <latch>
#include <stdexcept>
#include <thread>

#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadProperties.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;

using Action = CComPtr<CvarObject<CCvarAction>>;
using Masks = std::vector<NOTIFYTYPE>;

constexpr NOTIFYTYPE kEverything = NOTIFYTYPE(0xFFFFFFFF);

Action Make(CVARFLAGS flags = CVARFLAGS(0),
            CVARREPLICATIONFLAGS replication = REPLICATE_VALUE | REPLICATE_REQUESTED) {
  Action cvar = CvarObject<CCvarAction>::Create();
  cvar->Initialize(L"Auto Setup|auto setup", flags, L"hint", 11, 12, replication);
  return cvar;
}

template <class Cvar>
CComPtr<RecordingListener> Listen(const Cvar& cvar) {
  CComPtr<RecordingListener> listener = RecordingListener::Create();
  EXPECT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  return listener;
}

class ActionTest : public cvars::test::CvarTest {};

TEST_F(ActionTest, InitializeConfiguresEverythingAndTellsNobody) {
  const Action cvar = CvarObject<CCvarAction>::Create();
  const auto listener = Listen(cvar);
  cvar->Initialize(L"Single", CVARFLAG_GUIONLY, L"hint", 11, 12, REPLICATE_NAME);
  EXPECT_EQ(listener->masks, Masks{});
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Name), L"Single");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Type), L"Action");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetGuiHints), L"hint");
  EXPECT_EQ(cvar->Flags(), CVARFLAG_GUIONLY);
  EXPECT_EQ(cvar->ReplicationFlags(), REPLICATE_NAME);
  unsigned help = 0;
  EXPECT_EQ(cvar->get_HelpStringID(&help), S_OK);
  EXPECT_EQ(help, 11u);
  unsigned long icon = 0;
  unsigned long module = 55;
  EXPECT_EQ(cvar->GetIconInfo(&icon, &module), S_OK);
  EXPECT_EQ(icon, 12u);
  EXPECT_EQ(cvar->ActNow(), S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE}) << "nothing is left over";
}

TEST_F(ActionTest, ActingNotifiesTheValueAndAnswersWhatListenersDo) {
  const Action cvar = Make();
  EXPECT_EQ(cvar->ActNow(), S_OK);
  const auto listener = RecordingListener::Create(E_UNEXPECTED);
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->ActNow(), E_UNEXPECTED);
  EXPECT_EQ(cvar->ActNow(), E_UNEXPECTED) << "a failure leaves it idle";
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_VALUE, NOTIFY_VALUE}));
}

TEST_F(ActionTest, EveryTextPerformsIt) {
  const Action cvar = Make();
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRequestedValueFromString(L"anything"), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_VALUE});
  EXPECT_EQ(cvar->SetRequestedValueFromStringScreen(L""), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_VALUE});
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(nullptr), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_VALUE});
}

TEST_F(ActionTest, AReadOnlyOneRefusesUnlessForced) {
  const Action cvar = Make(CVARFLAG_READONLY);
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->ActNow(), E_ACCESSDENIED);
  EXPECT_EQ(cvar->ActNow(false), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValueFromString(L""), E_ACCESSDENIED);
  EXPECT_EQ(listener->masks, Masks{});
  EXPECT_EQ(cvar->ActNow(true), S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE});
}

TEST_F(ActionTest, HasNoValue) {
  const Action cvar = Make();
  const auto listener = Listen(cvar);
  CComVariant value(7);
  double position = 7;
  BSTR text = nullptr;
  EXPECT_EQ(cvar->put_Value(value), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(cvar->get_Value(&value), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(cvar->GetRequestedVariantValue(&value), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(cvar->GetAdaptedValueStringScreen(&text), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(cvar->GetAdaptedValueStringRemote(&text), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(cvar->GetAdaptedValueStringRemoteNoUnit(&text), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(value.lVal, 7);
  EXPECT_EQ(position, 7);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(cvar->Increment(1), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.5), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(listener->masks, Masks{});
  CComBSTR automation;
  EXPECT_EQ(cvar->GetAdaptedValueStringAutomation(&automation), DISP_E_MEMBERNOTFOUND);
  EXPECT_NE(automation.m_str, nullptr);
  EXPECT_EQ(automation, L"");
}

TEST_F(ActionTest, NullOutPointersAreRefusedFirst) {
  const Action cvar = Make();
  EXPECT_EQ(cvar->get_Value(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetRequestedVariantValue(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueStringScreen(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueStringRemote(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Signature(nullptr), E_POINTER);
}

TEST_F(ActionTest, SetToDefaultDoesNothing) {
  const Action cvar = Make();
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(listener->masks, Masks{});
}

/// What a client makes of an action: it counts the steps it is given.
class SteppingAction : public CCvarAction {
 public:
  HRESULT put_Value(VARIANT value) override {
    given = value;
    return S_OK;
  }
  CComVariant given;

 protected:
  SteppingAction() = default;
  ~SteppingAction() = default;
};

TEST_F(ActionTest, StepsAndPositionsReachAPutValueThatHasAMeaning) {
  const CComPtr<CvarObject<SteppingAction>> cvar = CvarObject<SteppingAction>::Create();
  EXPECT_EQ(cvar->Increment(-3), S_OK);
  EXPECT_EQ(cvar->given.vt, VT_I4);
  EXPECT_EQ(cvar->given.lVal, -3);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.5), S_OK);
  EXPECT_EQ(cvar->given.vt, VT_R8);
  EXPECT_EQ(cvar->given.dblVal, 0.5);
}

TEST_F(ActionTest, TellsItsSignatureAndTheCommonProperties) {
  const Action cvar = Make(CVARFLAG_HIDDEN);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Signature), L"Type,Action,Flags,H");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"n/a");
  EXPECT_TRUE(cvars::test::OwnPropertiesOf(*cvar).empty());
}

TEST_F(ActionTest, SetAndLoadIconSetsTheIconOfAModule) {
  const Action cvar = Make();
  const auto listener = Listen(cvar);
  // A number that stands for a module; nothing is loaded from it.
  const auto module = reinterpret_cast<HINSTANCE>(std::uintptr_t{3});
  EXPECT_EQ(cvar->SetAndLoadIcon(77, module), S_OK);
  EXPECT_EQ(cvar->SetAndLoadIcon(77, module), S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_ATTRIBUTES});
  unsigned long icon = 0;
  unsigned long number = 0;
  EXPECT_EQ(cvar->GetIconInfo(&icon, &number), S_OK);
  EXPECT_EQ(icon, 77u);
  EXPECT_EQ(number, 3u);
}

TEST_F(ActionTest, OffersItsInterface) {
  const Action cvar = Make();
  CComPtr<IVorCvarAction> action;
  EXPECT_EQ(cvar->QueryInterface(IID_IVorCvarAction, reinterpret_cast<void**>(&action)), S_OK);
  EXPECT_EQ(action.p, static_cast<IVorCvarAction*>(cvar.p));
}

// Acting again ------------------------------------------------------------------------------------

TEST_F(ActionTest, AListenerThatActsItAgainIsSwallowed) {
  const Action cvar = Make();
  const auto listener = Listen(cvar);
  std::vector<HRESULT> answers;
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    answers.push_back(cvar->ActNow());
    answers.push_back(cvar->ActNow(true));
  };
  EXPECT_EQ(cvar->ActNow(), S_OK);
  EXPECT_EQ(answers, (std::vector<HRESULT>{S_FALSE, S_FALSE}));
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE}) << "no second notification";
}

TEST_F(ActionTest, IsIdleAgainAfterAListenerThatThrows) {
  const Action cvar = Make();
  const auto listener = Listen(cvar);
  listener->onNotify = [](IVorCvar*, NOTIFYTYPE) { throw std::runtime_error("listener"); };
  EXPECT_EQ(cvar->ActNow(), E_FAIL);
  EXPECT_EQ(cvar->ActNow(), E_FAIL);
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_VALUE, NOTIFY_VALUE}));
}

TEST_F(ActionTest, AListenerMayReleaseTheLastReference) {
  Action cvar = Make();
  const auto listener = Listen(cvar);
  CCvarAction* const plain = cvar.p;
  const int live = cvars::test::LiveCvars();
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) { cvar = nullptr; };
  EXPECT_EQ(plain->ActNow(), S_OK);
  EXPECT_EQ(cvars::test::LiveCvars(), live - 1);
}

TEST_F(ActionTest, ASecondThreadIsAnsweredWithoutWaiting) {
  const Action cvar = Make();
  const auto listener = Listen(cvar);
  std::latch acting(1);
  std::latch answered(1);
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    acting.count_down();
    answered.wait();
  };
  HRESULT first = E_UNEXPECTED;
  {
    std::jthread thread([&] { first = cvar->ActNow(); });
    acting.wait();
    EXPECT_EQ(cvar->ActNow(), S_FALSE);
    answered.count_down();
  }
  EXPECT_EQ(first, S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE});
}

TEST_F(ActionTest, ThreadsAtOnceAreToldOncePerActThatWasPerformed) {
  const Action cvar = Make();
  const auto listener = Listen(cvar);
  std::atomic<int> inside = 0;
  std::atomic<int> together = 0;
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    if (++inside != 1) ++together;
    --inside;
  };
  std::atomic<std::size_t> performed = 0;
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([&] {
        for (int i = 0; i < 1000; ++i) performed += cvar->ActNow() == S_OK ? 1u : 0u;
      });
    }
  }
  EXPECT_EQ(together, 0);
  EXPECT_EQ(listener->masks.size(), performed);
}

// Replication -------------------------------------------------------------------------------------

TEST_F(ActionTest, AReplicaActsWithItsSourceAndNotWhenItIsConnected) {
  const Action source = Make();
  const Action replica = Make();
  const auto listener = Listen(replica);
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(listener->masks, Masks{});
  EXPECT_EQ(source->ActNow(), S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE});
  EXPECT_EQ(replica->ActNow(), S_OK);
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_VALUE, NOTIFY_VALUE}));
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
}

TEST_F(ActionTest, TwoThatReplicateEachOtherActOnceEach) {
  const Action first = Make();
  const Action second = Make();
  const auto firstListener = Listen(first);
  const auto secondListener = Listen(second);
  EXPECT_EQ(second->StartCvarReplication(first, true, 0x11, kEverything), S_OK);
  EXPECT_EQ(first->ActNow(), S_OK);
  EXPECT_EQ(firstListener->masks, Masks{NOTIFY_VALUE});
  EXPECT_EQ(secondListener->masks, Masks{NOTIFY_VALUE});
  EXPECT_EQ(second->StopAllCvarReplication(), S_OK);
}

TEST_F(ActionTest, AReadOnlyReplicaDoesNotActUnlessItOverrides) {
  const Action source = Make();
  const Action refusing = Make(CVARFLAG_READONLY);
  const Action overriding =
      Make(CVARFLAG_READONLY, REPLICATE_VALUE | REPLICATE_REQUESTED | REPLICATE_OVERRIDE_READONLY);
  EXPECT_EQ(refusing->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(overriding->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  const auto refusingListener = Listen(refusing);
  const auto overridingListener = Listen(overriding);
  EXPECT_EQ(source->ActNow(), S_OK);
  EXPECT_EQ(refusingListener->masks, Masks{});
  EXPECT_EQ(overridingListener->masks, (Masks{NOTIFY_FLAGS, NOTIFY_VALUE, NOTIFY_FLAGS}));
  EXPECT_TRUE(overriding->HasFlag(CVARFLAG_READONLY));
  EXPECT_EQ(refusing->StopAllCvarReplication(), S_OK);
  EXPECT_EQ(overriding->StopAllCvarReplication(), S_OK);
}

}  // namespace
