// A register cvar that mirrors a register of real hardware.
//
// The hardware here is a simulated bus, on which every transfer takes its time. A write goes to the
// bus; only when the bus has read the register back does the cvar change and tell its listeners.

#include <cstdio>
#include <functional>
#include <map>
#include <queue>
#include <utility>

#include "Cvars.h"

namespace {

/// A bus whose transfers take 40 microseconds each, in a time of its own.
class SimulatedBus {
 public:
  using Completion = std::function<void(unsigned int readBack)>;

  /// Queues a write and the read-back after it.
  void Write(unsigned int address, unsigned int value, Completion done) {
    const long long start = m_transfers.empty() ? m_nowUs : m_transfers.back().endUs;
    m_transfers.push({start + kLatencyUs, address, value, std::move(done)});
  }

  /// Lets time pass, and completes the transfers that end in it.
  void Advance(long long us) {
    m_nowUs += us;
    while (!m_transfers.empty() && m_transfers.front().endUs <= m_nowUs) {
      const Transfer transfer = std::move(m_transfers.front());
      m_transfers.pop();
      // This chip has no bit 7, and its bit 0 says that it is ready.
      unsigned int& content = m_memory[transfer.address];
      content = (transfer.value & 0x7Fu) | 1u;
      transfer.done(content);
    }
  }

  long long NowUs() const { return m_nowUs; }

 private:
  static constexpr long long kLatencyUs = 40;

  struct Transfer {
    long long endUs;
    unsigned int address;
    unsigned int value;
    Completion done;
  };
  std::queue<Transfer> m_transfers;
  std::map<unsigned int, unsigned int> m_memory;
  long long m_nowUs = 0;
};

/// A register on the bus: what it holds is what the bus has read back.
class BusRegister : public CCvarRegister {
 public:
  /// @param bus  weak; must outlive the register.
  void Connect(SimulatedBus* bus) { m_bus = bus; }

  HRESULT UpdateFromHardware(unsigned int value) override {
    if (m_bus == nullptr) return CCvarRegister::UpdateFromHardware(value);
    unsigned int address = 0;
    (void)GetHardwareAddress(&address);
    m_bus->Write(address, value, [self = CComPtr<IVorCvar>(this), this](unsigned int readBack) {
      (void)CCvarRegister::UpdateFromHardware(readBack);  // self keeps the cvar until then
    });
    return S_OK;
  }

 protected:
  BusRegister() = default;
  ~BusRegister() = default;

 private:
  SimulatedBus* m_bus = nullptr;
};

/// Prints each value that the hardware took, and what its fields are called.
class Printer final : public IVorCvarEventSink {
 public:
  explicit Printer(const SimulatedBus& bus) : m_bus(bus) {}

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    return S_OK;
  }
  // Lives on the stack of main, longer than the cvar.
  ULONG AddRef() override { return 2; }
  ULONG Release() override { return 1; }

  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override {
    if ((what & NOTIFY_VALUE) == 0) return S_OK;
    CComBSTR text;
    (void)source->GetAdaptedValueStringScreen(&text);
    std::printf("%lld us: the register holds %ls\n", m_bus.NowUs(), text.m_str);
    return S_OK;
  }

 private:
  const SimulatedBus& m_bus;
};

}  // namespace

int main() {
  SimulatedBus bus;
  Printer printer(bus);

  CComPtr<CvarObject<BusRegister>> control = CvarObject<BusRegister>::Create();
  control->Initialize(L"Control", 0x00, ACCESSSTYLE_READWRITE, /*hardwareAddress=*/0x4000,
                      /*nbOfBits=*/8, /*mask=*/0xFF, CVARFLAGS(0), L"", 0,
                      CVARREPLICATIONFLAGS(0x202), /*notifyOnEveryUpdate=*/false);
  control->SetFieldDescription(0, 0, L"Ready");
  control->SetFieldDescription(4, 6, L"Gain");
  control->Connect(&bus);
  control->AttachCvarEventSink(&printer);

  CComPtr<IVorCvarRegister> offered(control);
  offered->SetRequestedValueFromString(L"0x30");
  offered->SetRequestedValueFromString(L"0xD2");
  for (int step = 0; step < 4; ++step) bus.Advance(25);

  CComBSTR field;
  offered->GetFieldDescriptionString(5, &field);
  unsigned int requested = 0;
  unsigned int adapted = 0;
  offered->GetRequestedValue(&requested);
  offered->GetAdaptedValue(&adapted);
  std::printf("bit 5 belongs to %ls; asked for %02x, got %02x\n", field.m_str, requested, adapted);
  control->DetachCvarEventSink(&printer);
  return 0;
}
