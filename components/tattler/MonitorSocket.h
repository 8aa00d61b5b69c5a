#pragma once

#include <cstdint>

namespace cvars::components {

/// What a program and the monitor say to each other: one packet each, a message and, of the kinds
/// that have one, a name in UTF-8 behind it.
enum class MessageKind : std::uint32_t {
  kProgram = 1,  ///< The name of the program; the first packet.
  kName = 2,     ///< The name of an identifier.
  kReport = 3,
  kLost = 4,  ///< `firstValue` reports were not sent, because the monitor was busy.
};

struct Message {
  MessageKind kind;
  std::uint32_t identifier;
  std::uint32_t firstValue;
  std::uint32_t secondValue;
  std::uint32_t entryOrExit;
  std::uint32_t thread;
  std::uint64_t realTimeNs;       ///< Since 1970.
  std::uint64_t monotonicTimeNs;  ///< For durations.
};
inline constexpr std::uint32_t kLargestNameBytes = 4096;

/// Opens the socket that the monitor of this home listens on, in place of one left behind.
/// @return a descriptor; -1 on failure
int ListenForPrograms();

/// Takes the socket away, so that nobody connects any more.
void StopListening();

/// Connects to the monitor of this home. @return a descriptor; -1 when there is none
int ConnectToMonitor();

}  // namespace cvars::components
