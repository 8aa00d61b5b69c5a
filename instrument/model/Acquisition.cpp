#include "instrument/model/Acquisition.h"

#include <atomic>

#include "instrument/model/SelectedChannel.h"

namespace cvars::model {
namespace {

constexpr CVARREPLICATIONFLAGS kReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;

/// A register that holds what the bus reads back; the status is read with every write.
class BusRegister : public CCvarRegister {
 public:
  /// @param status  the register that a write to this one changes; may be null.
  void Connect(std::shared_ptr<SimulatedBus> bus, CComPtr<IVorCvarRegister> status) {
    m_bus = std::move(bus);
    m_status = std::move(status);
  }

  HRESULT UpdateFromHardware(unsigned int value) override {
    unsigned int address = 0;
    if (m_bus == nullptr || GetHardwareAddress(&address) != S_OK) {
      return CCvarRegister::UpdateFromHardware(value);
    }
    m_bus->Write(address, value);
    const HRESULT result = CCvarRegister::UpdateFromHardware(m_bus->Read(address));
    if (m_status != nullptr) (void)m_status->UpdateFromHardware(0);  // the bus knows better
    return result;
  }

 protected:
  BusRegister() = default;
  ~BusRegister() = default;

 private:
  std::shared_ptr<SimulatedBus> m_bus;
  CComPtr<IVorCvarRegister> m_status;
};

CComPtr<CvarObject<BusRegister>> MakeRegister(const wchar_t* name, ACCESSSTYLE style,
                                              unsigned address, unsigned bits) {
  auto made = CvarObject<BusRegister>::Create();
  made->Initialize(name, 0, style, address, bits, 0xFFFFFFFF, CVARFLAGS(0), nullptr, 0,
                   kReplication, false);
  return made;
}

/// Performs an action when it is acted.
class Performer final : public IVorCvarEventSink {
 public:
  static CComPtr<IVorCvarEventSink> Create(std::function<void()> perform) {
    CComPtr<IVorCvarEventSink> performer;
    performer.Attach(new Performer(std::move(perform)));
    return performer;
  }

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  HRESULT OnCvarNotify(IVorCvar*, NOTIFYTYPE what) override {
    if ((what & NOTIFY_VALUE) != 0) m_perform();
    return S_OK;
  }

 private:
  explicit Performer(std::function<void()> perform) : m_perform(std::move(perform)) {}
  ~Performer() = default;

  std::atomic<ULONG> m_references{1};
  std::function<void()> m_perform;
};

// What the simulated signal, 1 kHz and 1 V, is best seen with.
constexpr wchar_t kBestTimeScale[] = L"200 US";
constexpr wchar_t kBestVoltageScale[] = L"200 MV";
constexpr wchar_t kBestTriggerLevel[] = L"500 MV";

void Set(const CComPtr<IVorCvar>& cvar, const wchar_t* text) {
  if (cvar != nullptr) (void)cvar->SetRequestedValueFromStringRemote(text);  // it lies in the range
}

}  // namespace

Acquisition::Acquisition(const Settings& settings, std::function<void()> reset)
    : m_bag(CCvarBag::Create(L"Acquisition", nullptr)),
      m_bus(std::make_shared<SimulatedBus>()),
      m_triggerLevel(settings.trigger.Find(L"Level")),
      m_triggerMode(settings.trigger.Find(L"Mode")),
      m_timeScale(settings.horizontal.Find(L"Scale")) {
  for (const CComPtr<CCvarBag>& channel : settings.channels) {
    m_voltageScales.push_back(channel->Find(L"Scale"));
    m_offsets.push_back(channel->Find(L"Offset"));
  }
  AddRegisters();
  const auto selected = CvarObject<SelectedChannel>::Create();
  selected->Initialize(L"Selected Channel|channel", CVARFLAGS(0), true, kReplication);
  selected->Offer({settings.channels.begin(), settings.channels.end()});
  (void)m_bag->Add(selected);  // a new cvar has no parent yet
  AddAction(L"Auto Setup", [this] { AutoSetup(); });
  AddAction(L"Single", [this] { Single(); });
  AddAction(L"Force Trigger", [this] { ForceTrigger(); });
  AddAction(L"Default Setup", std::move(reset));
}

Acquisition::~Acquisition() {
  for (const auto& [action, performer] : m_actions) (void)action->DetachCvarEventSink(performer);
}

void Acquisition::AddRegisters() {
  const auto status =
      MakeRegister(L"Status", ACCESSSTYLE_READONLY, SimulatedBus::kStatusAddress, 8);
  status->SetFieldDescription(0, 0, L"Ready");
  status->SetFieldDescription(1, 1, L"Armed");
  status->SetFieldDescription(2, 2, L"Triggered");
  status->Connect(m_bus, nullptr);
  const auto control =
      MakeRegister(L"Control", ACCESSSTYLE_READWRITE, SimulatedBus::kControlAddress, 16);
  control->SetFieldDescription(0, 0, L"Run");
  control->SetFieldDescription(1, 1, L"Single");
  control->SetFieldDescription(2, 2, L"Force");
  control->SetFieldDescription(4, 7, L"Averages");
  control->Connect(m_bus, CComPtr<IVorCvarRegister>(status));
  m_control = CComPtr<IVorCvarRegister>(control);
  (void)m_control->UpdateFromHardware(0);  // also reads the status
  (void)m_bag->Add(control);
  (void)m_bag->Add(status);
}

void Acquisition::AddAction(const wchar_t* name, std::function<void()> perform) {
  const auto action = CvarObject<CCvarAction>::Create();
  action->Initialize(name, CVARFLAGS(0), nullptr, 0, 0, kReplication);
  m_actions.emplace_back(CComPtr<IVorCvar>(action), Performer::Create(std::move(perform)));
  (void)action->AttachCvarEventSink(m_actions.back().second);
  (void)m_bag->Add(action);  // a new cvar has no parent yet
}

void Acquisition::AutoSetup() {
  Set(m_timeScale, kBestTimeScale);
  for (const CComPtr<IVorCvar>& scale : m_voltageScales) Set(scale, kBestVoltageScale);
  for (const CComPtr<IVorCvar>& offset : m_offsets) Set(offset, L"0");
  Set(m_triggerLevel, kBestTriggerLevel);
  Set(m_triggerMode, L"AUTO");
}

void Acquisition::Single() {
  Set(m_triggerMode, L"SINGLE");
  unsigned int held = 0;
  (void)m_control->GetAdaptedValue(&held);
  (void)m_control->SetRequestedValue(held | SimulatedBus::kRun | SimulatedBus::kSingle);
}

void Acquisition::ForceTrigger() {
  unsigned int held = 0;
  (void)m_control->GetAdaptedValue(&held);
  (void)m_control->SetRequestedValue(held | SimulatedBus::kForce);
}

}  // namespace cvars::model
