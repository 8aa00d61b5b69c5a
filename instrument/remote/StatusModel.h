#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "instrument/remote/ScpiError.h"

namespace cvars::remote {

/// One condition, event and enable register, as below STATus:OPERation and STATus:QUEStionable.
class EventRegister {
 public:
  /// Bit 15 is never used, so that an answer stays positive in 16 bits.
  static constexpr unsigned kMask = 0x7FFF;

  /// Replaces the condition; a bit that rises is kept in the event register until it is read.
  void SetCondition(unsigned bits) noexcept;
  unsigned Condition() const noexcept { return m_condition; }
  /// Gives the event bits and clears them.
  unsigned TakeEvent() noexcept;
  void ClearEvent() noexcept { m_event = 0; }
  void SetEnable(unsigned bits) noexcept { m_enable = bits & kMask; }
  unsigned Enable() const noexcept { return m_enable; }
  /// True when an enabled event is waiting.
  bool Summary() const noexcept { return (m_event & m_enable) != 0; }

 private:
  unsigned m_condition = 0;
  unsigned m_event = 0;
  unsigned m_enable = 0;
};

/// Status registers and error queue of one client.
///
/// Every connection has its own, so that one client's errors never show up at another.
class StatusModel {
 public:
  /// Errors that the queue holds; when one more arrives the last turns into "Queue overflow".
  static constexpr std::size_t kQueueLength = 32;

  // Bits of the standard event status register.
  static constexpr unsigned kOperationComplete = 0x01;
  static constexpr unsigned kQueryError = 0x04;
  static constexpr unsigned kDeviceError = 0x08;
  static constexpr unsigned kExecutionError = 0x10;
  static constexpr unsigned kCommandError = 0x20;
  // Bits of the status byte.
  static constexpr unsigned kErrorsQueued = 0x04;
  static constexpr unsigned kQuestionableSummary = 0x08;
  static constexpr unsigned kMessageAvailable = 0x10;
  static constexpr unsigned kEventStatusSummary = 0x20;
  static constexpr unsigned kMasterSummary = 0x40;
  static constexpr unsigned kOperationSummary = 0x80;

  /// Queues an error and sets the event status bit of its class. kNone does nothing.
  void Report(ScpiError error) noexcept;
  /// Takes the oldest error out of the queue; kNone when there is none.
  ScpiError TakeError() noexcept;
  std::size_t ErrorCount() const noexcept { return m_errorCount; }

  void SetOperationComplete() noexcept { m_eventStatus |= kOperationComplete; }
  /// Gives the event status register and clears it.
  unsigned TakeEventStatus() noexcept;
  void SetEventStatusEnable(unsigned bits) noexcept { m_eventStatusEnable = bits & 0xFF; }
  unsigned EventStatusEnable() const noexcept { return m_eventStatusEnable; }
  /// The master summary bit cannot be enabled.
  void SetServiceRequestEnable(unsigned bits) noexcept {
    m_serviceRequestEnable = bits & 0xFF & ~kMasterSummary;
  }
  unsigned ServiceRequestEnable() const noexcept { return m_serviceRequestEnable; }
  /// The status byte with the master summary in bit 6; reading changes nothing.
  /// @param messageAvailable  whether an answer waits to be sent.
  unsigned StatusByte(bool messageAvailable) const noexcept;

  EventRegister& Operation() noexcept { return m_operation; }
  EventRegister& Questionable() noexcept { return m_questionable; }

  /// Clears events and errors; what is enabled stays.
  void Clear() noexcept;
  /// Disables the events of the operation and questionable registers.
  void Preset() noexcept;

 private:
  std::array<ScpiError, kQueueLength> m_errors{};
  std::size_t m_firstError = 0;
  std::size_t m_errorCount = 0;
  unsigned m_eventStatus = 0;
  unsigned m_eventStatusEnable = 0;
  unsigned m_serviceRequestEnable = 0;
  EventRegister m_operation;
  EventRegister m_questionable;
};

}  // namespace cvars::remote
