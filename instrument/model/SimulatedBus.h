#pragma once

namespace cvars::model {

/// The bus to the simulated acquisition chip.
///
/// The chip has two registers. Every transfer takes its time, which the bus counts and nobody waits
/// for.
class SimulatedBus {
 public:
  static constexpr unsigned kControlAddress = 0x4000;
  static constexpr unsigned kStatusAddress = 0x4004;
  static constexpr long long kTransferUs = 40;

  // Bits of the control register.
  static constexpr unsigned kRun = 1u << 0;
  static constexpr unsigned kSingle = 1u << 1;
  static constexpr unsigned kForce = 1u << 2;  ///< reads as 0: the chip takes it back at once
  // Bits of the status register.
  static constexpr unsigned kReady = 1u << 0;
  static constexpr unsigned kArmed = 1u << 1;
  static constexpr unsigned kTriggered = 1u << 2;

  /// Writes a register. The status register takes nothing.
  void Write(unsigned address, unsigned value) noexcept;
  /// @return 0 where there is no register
  unsigned Read(unsigned address) noexcept;
  /// Time that all transfers took, in microseconds.
  long long BusyUs() const noexcept { return m_busyUs; }

 private:
  unsigned m_control = 0;
  bool m_triggered = false;
  long long m_busyUs = 0;
};

}  // namespace cvars::model
