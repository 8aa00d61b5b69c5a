#pragma once

#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "Cvars.h"
#include "instrument/model/SimulatedBus.h"

namespace cvars::model {

/// The acquisition: its registers on the bus, the actions of the front panel, the selected channel.
class Acquisition {
 public:
  /// Bags whose settings the actions change; borrowed, and held by the owner of this.
  struct Settings {
    CCvarBag& horizontal;
    CCvarBag& trigger;
    std::span<const CComPtr<CCvarBag>> channels;
  };

  /// @param reset  what the default set-up does.
  Acquisition(const Settings& settings, std::function<void()> reset);
  ~Acquisition();
  Acquisition(const Acquisition&) = delete;
  Acquisition& operator=(const Acquisition&) = delete;

  const CComPtr<CCvarBag>& Bag() const noexcept { return m_bag; }
  const SimulatedBus& Bus() const noexcept { return *m_bus; }

 private:
  void AddRegisters();
  void AddAction(const wchar_t* name, std::function<void()> perform);
  void AutoSetup();
  void Single();
  void ForceTrigger();

  CComPtr<CCvarBag> m_bag;
  std::shared_ptr<SimulatedBus> m_bus;
  CComPtr<IVorCvarRegister> m_control;
  CComPtr<IVorCvar> m_triggerLevel;
  CComPtr<IVorCvar> m_triggerMode;
  CComPtr<IVorCvar> m_timeScale;
  std::vector<CComPtr<IVorCvar>> m_voltageScales;
  std::vector<CComPtr<IVorCvar>> m_offsets;
  // Each action with the listener that performs it.
  std::vector<std::pair<CComPtr<IVorCvar>, CComPtr<IVorCvarEventSink>>> m_actions;
};

}  // namespace cvars::model
