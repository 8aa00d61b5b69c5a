// Uses the library through its umbrella header: a cvar in a bag, a listener, texts.
#include <Cvars.h>

#include <cstdio>

namespace {

class Listener final : public IVorCvarEventSink {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    return S_OK;
  }
  // It lives on the stack of main, longer than it is attached.
  ULONG AddRef() override { return 2; }
  ULONG Release() override { return 1; }
  HRESULT OnCvarNotify(IVorCvar*, NOTIFYTYPE what) override {
    heard = heard | static_cast<unsigned>(what);
    return S_OK;
  }

  unsigned heard = 0;
};

bool Holds(bool condition, const char* what) {
  if (!condition) std::printf("does not hold: %s\n", what);
  return condition;
}

}  // namespace

int main() {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Trigger", nullptr);
  CComPtr<CvarObject<CCvarDouble>> level = CvarObject<CCvarDouble>::Create();
  level->Initialize(L"Trigger Level|trig level", 0.0, -10.0, 10.0, 0.01, L"V", CVARFLAGS(0), L"", 0,
                    CVARREPLICATIONFLAGS(0x202));
  if (!Holds(bag->Add(level) == S_OK, "the bag takes the cvar")) return 1;

  Listener listener;
  if (!Holds(level->AttachCvarEventSink(&listener) == S_OK, "a listener is attached")) return 1;
  const HRESULT set = level->SetRequestedValue(1.2345);
  const HRESULT detached = level->DetachCvarEventSink(&listener);
  if (!Holds(set == S_OK && detached == S_OK, "a value is set")) return 1;

  CComBSTR text;
  const HRESULT read = level->GetAdaptedValueStringScreen(&text);
  // 1.2345 rounds to the grain of 0.01 V; the request and the value changed.
  return Holds(read == S_OK && VarBstrCmp(text, CComBSTR(L"1.23 V"), 1024, 0) == VARCMP_EQ,
               "the screen text is \"1.23 V\"") &&
                 Holds(listener.heard == 0x102, "the listener hears of both changes")
             ? 0
             : 1;
}
