#include "CCvarObject.h"

#include <gtest/gtest.h>

#include <thread>

#include "BareCvar.h"
#include "CCvarDouble.h"
#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadProperties.h"
#include "ReadText.h"
#include "RecordingListener.h"
#include "platform/ComponentModule.h"

namespace {

using cvars::test::BareCvar;
using cvars::test::RecordingListener;
using cvars::test::TextOf;

using Masks = std::vector<NOTIFYTYPE>;

constexpr NOTIFYTYPE kValueAndRequested = NOTIFY_VALUE | NOTIFY_REQUESTED;

template <class I>
using Object = CComPtr<CvarObject<CCvarObject<I>>>;

template <class I>
Object<I> Make(bool holdsReference = true, CVARFLAGS flags = CVARFLAGS(0)) {
  Object<I> cvar = CvarObject<CCvarObject<I>>::Create();
  cvar->Initialize(L"Selected|sel", flags, holdsReference, CVARREPLICATIONFLAGS(0x202));
  return cvar;
}

/// An object that offers one interface; tells its references and counts its kind.
template <class I>
class Thing
    : public cvars::platform::Component<cvars::platform::Offers<I, cvars::InterfaceId<I>::value>> {
 public:
  Thing() { ++s_live; }
  ~Thing() override { --s_live; }

  static CComPtr<Thing> Create() {
    CComPtr<Thing> thing;
    thing.Attach(new Thing);
    return thing;
  }
  static int Live() { return s_live; }
  ULONG References() {
    this->AddRef();
    return this->Release();
  }

 private:
  static inline int s_live = 0;
};

class FakeStream final : public Thing<IStream> {
 public:
  static CComPtr<FakeStream> Create() {
    CComPtr<FakeStream> stream;
    stream.Attach(new FakeStream);
    return stream;
  }
  HRESULT Read(void*, ULONG, ULONG*) override { return E_NOTIMPL; }
  HRESULT Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }
  HRESULT Seek(LONGLONG, DWORD, ULONGLONG*) override { return E_NOTIMPL; }
};

CComPtr<BareCvar> MakeBareCvar() {
  CComPtr<BareCvar> cvar;
  cvar.Attach(new BareCvar);
  return cvar;
}

CComVariant Unknown(IUnknown* object) { return CComVariant(object); }

template <class Cvar>
CComPtr<RecordingListener> Listen(const Cvar& cvar) {
  CComPtr<RecordingListener> listener = RecordingListener::Create();
  EXPECT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  return listener;
}

/// The object of a cvar; no reference stays.
template <class I>
I* Held(const Object<I>& cvar) {
  CComPtr<I> object;
  EXPECT_EQ(cvar->GetTypedInterface(&object), S_OK);
  return object;
}

class ObjectTest : public cvars::test::CvarTest {
 protected:
  void TearDown() override {
    CvarTest::TearDown();
    EXPECT_EQ(BareCvar::Live(), 0);
    EXPECT_EQ(Thing<IVorProbe>::Live(), 0);
    EXPECT_EQ(Thing<IVorResult>::Live(), 0);
    EXPECT_EQ(Thing<IVorResultProcessorOutputPin>::Live(), 0);
    EXPECT_EQ(Thing<IStream>::Live(), 0);
  }
};

template <class I, class Made>
void TakesAndGivesItsInterface(const CComPtr<Made>& thing, bool isDispatch) {
  const Object<I> cvar = Make<I>();
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Type), L"Object");
  EXPECT_EQ(Held<I>(cvar), nullptr);
  EXPECT_EQ(cvar->put_Value(Unknown(thing)), S_OK);
  EXPECT_EQ(Held<I>(cvar), static_cast<I*>(thing.p));
  EXPECT_EQ(thing->References(), 2u);
  {
    CComVariant value;
    EXPECT_EQ(cvar->get_Value(&value), S_OK);
    EXPECT_EQ(value.vt, isDispatch ? VT_DISPATCH : VT_UNKNOWN);
    EXPECT_EQ(thing->References(), 3u);
  }
  EXPECT_EQ(cvar->put_Value(CComVariant(0)), S_OK);
  EXPECT_EQ(thing->References(), 1u);
  EXPECT_EQ(Held<I>(cvar), nullptr);
}

TEST_F(ObjectTest, EachInterfaceIsTakenAndGivenBack) {
  TakesAndGivesItsInterface<IUnknown>(Thing<IVorProbe>::Create(), false);
  TakesAndGivesItsInterface<IUnknown>(MakeBareCvar(), true);
  TakesAndGivesItsInterface<IDispatch>(MakeBareCvar(), true);
  TakesAndGivesItsInterface<IVorCvar>(MakeBareCvar(), true);
  TakesAndGivesItsInterface<IStream>(FakeStream::Create(), false);
  TakesAndGivesItsInterface<IVorProbe>(Thing<IVorProbe>::Create(), false);
  TakesAndGivesItsInterface<IVorResult>(Thing<IVorResult>::Create(), false);
  TakesAndGivesItsInterface<IVorResultProcessorOutputPin>(
      Thing<IVorResultProcessorOutputPin>::Create(), false);
}

TEST_F(ObjectTest, InitializeDoesNotSuspendNotifications) {
  const Object<IUnknown> cvar = CvarObject<CCvarObject<IUnknown>>::Create();
  const auto listener = Listen(cvar);
  cvar->Initialize(L"Selected|sel", CVARFLAG_HIDDEN, true, REPLICATE_NAME);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_FLAGS});
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_NameRemote), L"SEL");
  EXPECT_EQ(cvar->ReplicationFlags(), REPLICATE_NAME);
  cvar->Initialize(nullptr, CVARFLAG_HIDDEN, true, REPLICATE_NAME);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Name), L"");
}

TEST_F(ObjectTest, TheIntegerZeroTakesTheObjectOutAndNotifiesOnce) {
  const Object<IVorProbe> cvar = Make<IVorProbe>();
  const auto probe = Thing<IVorProbe>::Create();
  EXPECT_EQ(cvar->put_Value(Unknown(probe)), S_OK);
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->put_Value(CComVariant(0)), S_OK);
  EXPECT_EQ(cvar->put_Value(CComVariant(0)), S_OK);
  EXPECT_EQ(listener->masks, Masks{kValueAndRequested});
  EXPECT_EQ(probe->References(), 1u);
}

TEST_F(ObjectTest, AnotherIntegerOrKindIsRefusedAndChangesNothing) {
  const Object<IVorProbe> cvar = Make<IVorProbe>();
  const auto probe = Thing<IVorProbe>::Create();
  EXPECT_EQ(cvar->put_Value(Unknown(probe)), S_OK);
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->put_Value(CComVariant(5)), E_INVALIDARG);
  EXPECT_EQ(cvar->put_Value(CComVariant(-1)), E_INVALIDARG);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"text")), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(cvar->put_Value(CComVariant(1e20)), DISP_E_OVERFLOW);
  EXPECT_EQ(Held<IVorProbe>(cvar), probe.p);
  EXPECT_EQ(probe->References(), 2u);
  EXPECT_EQ(listener->masks, Masks{});
}

TEST_F(ObjectTest, ANullObjectMeansNoObject) {
  const auto cvar = Make<IVorCvar>();
  const CComPtr<BareCvar> bare = MakeBareCvar();
  for (const CComVariant& none : {CComVariant(static_cast<IUnknown*>(nullptr)),
                                  CComVariant(static_cast<IDispatch*>(nullptr))}) {
    EXPECT_EQ(cvar->put_Value(Unknown(bare)), S_OK);
    EXPECT_EQ(cvar->put_Value(none), S_OK);
    EXPECT_EQ(Held<IVorCvar>(cvar), nullptr);
  }
  CComVariant value(7);
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  EXPECT_EQ(value.vt, VT_UNKNOWN);
  EXPECT_EQ(value.punkVal, nullptr);
}

TEST_F(ObjectTest, AnObjectWithoutTheInterfaceIsRefused) {
  const Object<IVorResult> cvar = Make<IVorResult>();
  const auto probe = Thing<IVorProbe>::Create();
  EXPECT_EQ(cvar->put_Value(Unknown(probe)), E_NOINTERFACE);
  EXPECT_EQ(Held<IVorResult>(cvar), nullptr);
  EXPECT_EQ(probe->References(), 1u);
}

TEST_F(ObjectTest, SettingTheSameObjectTwiceNotifiesOnce) {
  const Object<IUnknown> cvar = Make<IUnknown>();
  const CComPtr<BareCvar> bare = MakeBareCvar();
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->put_Value(Unknown(bare)), S_OK);
  EXPECT_EQ(cvar->put_Value(Unknown(bare)), S_OK);
  EXPECT_EQ(cvar->put_Value(CComVariant(static_cast<IDispatch*>(bare))), S_OK);
  EXPECT_EQ(listener->masks, Masks{kValueAndRequested});
  EXPECT_EQ(bare->References(), 2u);
}

TEST_F(ObjectTest, WithoutHoldingNoReferenceIsCounted) {
  const Object<IVorProbe> cvar = Make<IVorProbe>(false);
  const auto first = Thing<IVorProbe>::Create();
  const auto second = Thing<IVorProbe>::Create();
  EXPECT_EQ(cvar->put_Value(Unknown(first)), S_OK);
  EXPECT_EQ(first->References(), 1u);
  EXPECT_EQ(cvar->put_Value(Unknown(second)), S_OK);
  EXPECT_EQ(first->References(), 1u);
  EXPECT_EQ(second->References(), 1u);
  EXPECT_EQ(Held<IVorProbe>(cvar), second.p);
  EXPECT_EQ(cvar->put_Value(CComVariant(0)), S_OK);
  EXPECT_EQ(second->References(), 1u);
}

TEST_F(ObjectTest, AHeldObjectGoesWithTheCvar) {
  auto probe = Thing<IVorProbe>::Create();
  {
    const Object<IVorProbe> holding = Make<IVorProbe>();
    const Object<IVorProbe> weak = Make<IVorProbe>(false);
    EXPECT_EQ(holding->put_Value(Unknown(probe)), S_OK);
    EXPECT_EQ(weak->put_Value(Unknown(probe)), S_OK);
    EXPECT_EQ(probe->References(), 2u);
  }
  EXPECT_EQ(probe->References(), 1u);
}

TEST_F(ObjectTest, ASecondInitializeCountsTheObjectThatIsThere) {
  const Object<IVorProbe> cvar = Make<IVorProbe>();
  const auto probe = Thing<IVorProbe>::Create();
  EXPECT_EQ(cvar->put_Value(Unknown(probe)), S_OK);
  EXPECT_EQ(probe->References(), 2u);
  cvar->Initialize(L"Weak", CVARFLAGS(0), false, CVARREPLICATIONFLAGS(0));
  EXPECT_EQ(probe->References(), 1u);
  EXPECT_EQ(Held<IVorProbe>(cvar), probe.p);
  cvar->Initialize(L"Held", CVARFLAGS(0), true, CVARREPLICATIONFLAGS(0));
  EXPECT_EQ(probe->References(), 2u);
}

TEST_F(ObjectTest, AReadOnlyOneRefuses) {
  const Object<IVorProbe> cvar = Make<IVorProbe>(true, CVARFLAG_READONLY);
  const auto probe = Thing<IVorProbe>::Create();
  EXPECT_EQ(cvar->put_Value(Unknown(probe)), E_ACCESSDENIED);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"text")), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetToDefault(), E_ACCESSDENIED);
  EXPECT_EQ(probe->References(), 1u);
}

TEST_F(ObjectTest, AnswersTheConversionAndNotTheListeners) {
  const Object<IVorProbe> cvar = Make<IVorProbe>();
  const auto listener = RecordingListener::Create(E_UNEXPECTED);
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->put_Value(Unknown(Thing<IVorProbe>::Create())), S_OK);
  EXPECT_EQ(listener->masks, Masks{kValueAndRequested});
}

TEST_F(ObjectTest, TheOldObjectGoesAfterTheListenersRan) {
  const Object<IVorProbe> cvar = Make<IVorProbe>();
  EXPECT_EQ(cvar->put_Value(Unknown(Thing<IVorProbe>::Create())), S_OK);
  EXPECT_EQ(Thing<IVorProbe>::Live(), 1);
  const auto listener = Listen(cvar);
  int liveInside = 0;
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) { liveInside = Thing<IVorProbe>::Live(); };
  EXPECT_EQ(cvar->put_Value(CComVariant(0)), S_OK);
  EXPECT_EQ(liveInside, 1);
  EXPECT_EQ(Thing<IVorProbe>::Live(), 0);
}

TEST_F(ObjectTest, ListenersRunOutsideTheLock) {
  const Object<IVorCvar> cvar = Make<IVorCvar>();
  const CComPtr<BareCvar> bare = MakeBareCvar();
  const auto listener = Listen(cvar);
  IVorCvar* seen = nullptr;
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    std::jthread([&] { seen = Held<IVorCvar>(cvar); }).join();
  };
  EXPECT_EQ(cvar->put_Value(Unknown(bare)), S_OK);
  EXPECT_EQ(seen, bare.p);
}

TEST_F(ObjectTest, ReadsRunALateUpdateFirst) {
  const Object<IUnknown> cvar = Make<IUnknown>(true, CVARFLAG_LATEUPDATE);
  const auto listener = Listen(cvar);
  CComVariant value;
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  EXPECT_EQ(Held<IUnknown>(cvar), nullptr);
  EXPECT_EQ(cvar->GetRequestedVariantValue(&value), S_OK);
  EXPECT_EQ(listener->masks, Masks(3, NOTIFY_LATEUPDATE));
}

TEST_F(ObjectTest, TheRequestIsTheObject) {
  const Object<IUnknown> cvar = Make<IUnknown>();
  const CComPtr<BareCvar> bare = MakeBareCvar();
  EXPECT_EQ(cvar->put_Value(Unknown(bare)), S_OK);
  CComVariant value;
  EXPECT_EQ(cvar->GetRequestedVariantValue(&value), S_OK);
  EXPECT_EQ(value.vt, VT_DISPATCH);
  EXPECT_EQ(value.pdispVal, bare.p);
}

TEST_F(ObjectTest, SetToDefaultTakesTheObjectOut) {
  const Object<IUnknown> cvar = Make<IUnknown>();
  const CComPtr<BareCvar> bare = MakeBareCvar();
  int isDefault = 55;
  EXPECT_EQ(cvar->put_Value(Unknown(bare)), S_OK);
  EXPECT_EQ(cvar->IsDefault(&isDefault), S_OK);
  EXPECT_EQ(isDefault, 0);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(cvar->IsDefault(&isDefault), S_OK);
  EXPECT_EQ(isDefault, 1);
  EXPECT_EQ(bare->References(), 1u);
}

TEST_F(ObjectTest, HasNoTextsAndNoPosition) {
  const Object<IUnknown> cvar = Make<IUnknown>();
  BSTR text = nullptr;
  double position = 7;
  EXPECT_EQ(cvar->GetAdaptedValueStringScreen(&text), E_NOTIMPL);
  EXPECT_EQ(cvar->GetAdaptedValueStringRemote(&text), E_NOTIMPL);
  EXPECT_EQ(cvar->GetAdaptedValueStringRemoteNoUnit(&text), E_NOTIMPL);
  EXPECT_EQ(cvar->SetRequestedValueFromString(L"0"), E_NOTIMPL);
  EXPECT_EQ(cvar->SetRequestedValueFromStringScreen(L"0"), E_NOTIMPL);
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"0"), E_NOTIMPL);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), E_NOTIMPL);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.5), E_NOTIMPL);
  EXPECT_EQ(cvar->Increment(1), E_NOTIMPL);
  EXPECT_EQ(cvar->SetToMin(), E_NOTIMPL);
  EXPECT_EQ(cvar->SetToMax(), E_NOTIMPL);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(position, 7);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"n/a");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Signature), L"notimpl");
  EXPECT_TRUE(cvars::test::OwnPropertiesOf(*cvar).empty());
}

TEST_F(ObjectTest, NullOutPointersAreRefused) {
  const Object<IUnknown> cvar = Make<IUnknown>();
  EXPECT_EQ(cvar->get_Value(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetTypedInterface(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetRequestedVariantValue(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueStringScreen(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueStringRemote(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(nullptr), E_POINTER);
  EXPECT_EQ(cvar->IsDefault(nullptr), E_POINTER);
}

TEST_F(ObjectTest, AReplicaFollowsTheObject) {
  const Object<IVorCvar> source = Make<IVorCvar>();
  const Object<IVorCvar> replica = Make<IVorCvar>();
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x11, NOTIFYTYPE(0xFFFFFFFF)), S_OK);
  const CComPtr<BareCvar> bare = MakeBareCvar();
  EXPECT_EQ(source->put_Value(Unknown(bare)), S_OK);
  EXPECT_EQ(Held<IVorCvar>(replica), bare.p);
  EXPECT_EQ(bare->References(), 3u);
  EXPECT_EQ(replica->put_Value(CComVariant(0)), S_OK);
  EXPECT_EQ(bare->References(), 1u);
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
}

TEST_F(ObjectTest, HoldsACvarOfTheLibrary) {
  const Object<IVorCvar> cvar = Make<IVorCvar>();
  const CComPtr<CvarObject<CCvarDouble>> level = CvarObject<CCvarDouble>::Create();
  EXPECT_EQ(cvar->put_Value(CComVariant(static_cast<IDispatch*>(level.p))), S_OK);
  EXPECT_EQ(Held<IVorCvar>(cvar), static_cast<IVorCvar*>(level.p));
}

TEST_F(ObjectTest, ThreadsMayReplaceAndReadIt) {
  const Object<IVorCvar> cvar = Make<IVorCvar>();
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([&cvar, thread] {
        for (int i = 0; i < 500; ++i) {
          if (thread % 2 == 0) {
            (void)cvar->put_Value(Unknown(MakeBareCvar()));
          } else {
            CComVariant value;
            (void)cvar->get_Value(&value);
          }
        }
      });
    }
  }
  EXPECT_EQ(BareCvar::Live(), 1);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(BareCvar::Live(), 0);
}

}  // namespace
