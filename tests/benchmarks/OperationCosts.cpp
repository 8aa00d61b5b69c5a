// Runs each operation many times between two marks of callgrind, which counts its instructions.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>

#include "Cvars.h"

namespace {

constexpr int kTimes = 1000;

class Listener final : public IVorCvarEventSink {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override { return --m_references; }
  HRESULT OnCvarNotify(IVorCvar*, NOTIFYTYPE) override { return S_OK; }

 private:
  ULONG m_references = 1;
};

using Cvar = CComPtr<CvarObject<CCvarDouble>>;

Cvar MakeCvar() {
  Cvar cvar = CvarObject<CCvarDouble>::Create();
  // Without a unit, so that no component is asked.
  cvar->Initialize(L"Trigger Level", 1.0, 0.0, 10.0, 0.001, L"", CVARFLAGS(0), L"", 0,
                   CVARREPLICATIONFLAGS(0x202));
  return cvar;
}

void Check(HRESULT result) {
  if (result != S_OK) {
    std::fprintf(stderr, "operation_costs: %08x\n", static_cast<unsigned>(result));
    std::exit(1);
  }
}

template <class Operation>
void Measure(const char* name, Operation operation) {
  for (int i = 0; i < kTimes; ++i) operation(i);  // nothing is the first of its kind any more
  CALLGRIND_ZERO_STATS;
  for (int i = 0; i < kTimes; ++i) operation(i);
  CALLGRIND_DUMP_STATS_AT(name);
}

double Changed(int i) { return (i & 1) != 0 ? 2.5 : 7.25; }

}  // namespace

int main() {
  Listener listeners[8];
  const Cvar unheard = MakeCvar();
  const Cvar heard = MakeCvar();
  const Cvar byMany = MakeCvar();
  Check(heard->AttachCvarEventSink(&listeners[0]));
  for (Listener& listener : listeners) Check(byMany->AttachCvarEventSink(&listener));
  IVorCvarDouble& alone = *unheard;
  IVorCvarDouble& one = *heard;
  IVorCvarDouble& eight = *byMany;

  Measure("set, no listener", [&](int i) { Check(alone.SetRequestedValue(Changed(i))); });
  Measure("set, 1 listener", [&](int i) { Check(one.SetRequestedValue(Changed(i))); });
  Measure("set, 8 listeners", [&](int i) { Check(eight.SetRequestedValue(Changed(i))); });
  Measure("set the same", [&](int) { Check(one.SetRequestedValue(2.5)); });
  Measure("typed read", [&](int) {
    double value = 0;
    Check(one.GetAdaptedValue(&value));
  });
  Measure("variant read and set", [&](int i) {
    VARIANT value = {};
    Check(one.get_Value(&value));
    value.dblVal = Changed(i);
    Check(one.put_Value(value));
  });
  Measure("10 sets in 1 notification", [&](int) {
    heard->SuspendNotifications(1);
    for (int k = 0; k < 10; ++k) Check(one.SetRequestedValue(Changed(k)));
    heard->SuspendNotifications(0);
  });
  Measure("attach and detach", [&](int) {
    Check(one.AttachCvarEventSink(&listeners[1]));
    Check(one.DetachCvarEventSink(&listeners[1]));
  });
  Measure("screen text", [&](int) {
    BSTR text = nullptr;
    Check(one.GetAdaptedValueStringScreen(&text));
    SysFreeString(text);
  });
  Measure("set by text", [&](int i) {
    Check(one.SetRequestedValueFromStringScreen((i & 1) != 0 ? L"2.5" : L"7250 m"));
  });
  const CComPtr<CvarObject<CCvarEnum>> choice = CvarObject<CCvarEnum>::Create();
  choice->Initialize(L"Coupling", L"AC,DC 50,DC 1M,Ground", 0, CVARFLAGS(0), L"", 0,
                     CVARREPLICATIONFLAGS(0x202), 0);
  Measure("choice by text", [&](int i) {
    int index = -1;
    Check(choice->GetIndexOfStringName((i & 1) != 0 ? L"dc 50" : L"GROUND", &index));
  });
  Measure("make, configure, destroy", [&](int) { (void)MakeCvar(); });

  Check(heard->DetachCvarEventSink(&listeners[0]));
  for (Listener& listener : listeners) Check(byMany->DetachCvarEventSink(&listener));
}
