#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "StoppedProcess.h"

namespace cvars::platform {

/// The registers of a thread at a fault, which stand in for those it was stopped with.
struct DumpedFault {
  pid_t thread;
  EXCEPTION_RECORD record;
  CONTEXT context;
};

/// A range of addresses.
struct AddressRange {
  std::uint64_t begin;
  std::uint64_t end;
};

/// Chooses what memory goes into a dump: the used part of every stack, the code each thread
/// stands at, and what the dump's type asks for.
///
/// @return ascending and without overlap.
std::vector<AddressRange> ChooseMemory(const StoppedProcess& process,
                                       const std::optional<DumpedFault>& fault,
                                       std::uint32_t dumpType);

/// Gives the used part of the stack that a stack pointer lies in; empty when it lies in none.
AddressRange UsedStack(const StoppedProcess& process, std::uint64_t stackPointer);

}  // namespace cvars::platform
