#include "DumpedMemory.h"

#include <algorithm>
#include <cstring>

#include "platform/MiniDump.h"

namespace cvars::platform {
namespace {

// Leaf functions use this much below the stack pointer.
constexpr std::uint64_t kRedZone = 128;
constexpr std::uint64_t kLargestStack = 16 << 20;
constexpr std::uint64_t kCodeBytes = 128;  // on either side of the instruction
// Around an address that something points to.
constexpr std::uint64_t kReferencedBefore = 128;
constexpr std::uint64_t kReferencedAfter = 1024;
constexpr std::uint64_t kLargestReferenced = 32 << 20;

class Chooser {
 public:
  explicit Chooser(const StoppedProcess& process) : m_process(process) {}

  void AddThread(const CONTEXT& context) {
    const AddressRange stack = UsedStack(m_process, context.Rsp);
    Add(stack);
    m_stacks.push_back(stack);
    AddAround(context.Rip, kCodeBytes, kCodeBytes);
    for (const std::uint64_t value :
         {context.Rax, context.Rcx, context.Rdx, context.Rbx, context.Rbp, context.Rsi, context.Rdi,
          context.R8, context.R9, context.R10, context.R11, context.R12, context.R13, context.R14,
          context.R15}) {
      m_registers.push_back(value);
    }
  }

  // What registers and stacks point to, in writable memory: the code is in the module files.
  void AddReferenced() {
    for (const std::uint64_t value : m_registers) AddReference(value);
    for (const AddressRange& stack : m_stacks) {
      std::vector<std::byte> content(stack.end - stack.begin);
      content.resize(m_process.ReadMemory(stack.begin, content));
      for (std::size_t position = 0; position + sizeof(std::uint64_t) <= content.size();
           position += sizeof(std::uint64_t)) {
        std::uint64_t value = 0;
        std::memcpy(&value, content.data() + position, sizeof(value));
        AddReference(value);
      }
    }
  }

  void AddRegion(const MemoryRegion& region) { Add({region.begin, region.end}); }

  void AddAround(std::uint64_t address, std::uint64_t before, std::uint64_t after) {
    const MemoryRegion* region = m_process.RegionAt(address);
    if (region == nullptr || !region->readable) return;
    const std::uint64_t begin = address - std::min(before, address - region->begin);
    const std::uint64_t end = address + std::min(after, region->end - address);
    Add({begin, end});
  }

  std::vector<AddressRange> Merged() {
    std::sort(m_ranges.begin(), m_ranges.end(),
              [](const auto& a, const auto& b) { return a.begin < b.begin; });
    std::vector<AddressRange> merged;
    for (const AddressRange& range : m_ranges) {
      if (!merged.empty() && range.begin <= merged.back().end) {
        merged.back().end = std::max(merged.back().end, range.end);
      } else {
        merged.push_back(range);
      }
    }
    return merged;
  }

 private:
  void Add(const AddressRange& range) {
    if (range.begin < range.end) m_ranges.push_back(range);
  }

  void AddReference(std::uint64_t value) {
    if (m_referencedBytes >= kLargestReferenced) return;
    const MemoryRegion* region = m_process.RegionAt(value);
    if (region == nullptr || !region->writable) return;
    AddAround(value, kReferencedBefore, kReferencedAfter);
    m_referencedBytes += kReferencedBefore + kReferencedAfter;
  }

  const StoppedProcess& m_process;
  std::vector<AddressRange> m_ranges;
  std::vector<AddressRange> m_stacks;
  std::vector<std::uint64_t> m_registers;
  std::uint64_t m_referencedBytes = 0;
};

bool Holds(std::uint32_t type, MINIDUMP_TYPE flag) { return (type & flag) != 0; }

}  // namespace

AddressRange UsedStack(const StoppedProcess& process, std::uint64_t stackPointer) {
  const MemoryRegion* region = process.RegionAt(stackPointer);
  // A stack that has overflowed is pointed to from just below it.
  if (region == nullptr || !region->writable) {
    constexpr std::uint64_t kPage = 4096;
    for (std::uint64_t step = 1; step <= 16; ++step) {
      region = process.RegionAt(stackPointer + step * kPage);
      if (region != nullptr && region->writable) break;
    }
    if (region == nullptr || !region->writable) return {0, 0};
    stackPointer = region->begin;
  }
  const std::uint64_t begin =
      std::max(region->begin, stackPointer - std::min(kRedZone, stackPointer)) & ~std::uint64_t{15};
  return {begin, std::min(region->end, begin + kLargestStack)};
}

std::vector<AddressRange> ChooseMemory(const StoppedProcess& process,
                                       const std::optional<DumpedFault>& fault,
                                       std::uint32_t dumpType) {
  Chooser chooser(process);
  for (const StoppedThread& thread : process.Threads()) {
    chooser.AddThread(thread.context);
    if (Holds(dumpType, MiniDumpWithProcessThreadData)) {
      constexpr std::uint64_t kThreadBlockBytes = 2048;
      chooser.AddAround(thread.block, kThreadBlockBytes, kThreadBlockBytes);
    }
  }
  if (fault) chooser.AddThread(fault->context);
  if (Holds(dumpType, MiniDumpWithIndirectlyReferencedMemory)) chooser.AddReferenced();
  for (const MemoryRegion& region : process.Regions()) {
    const bool isModuleData = region.writable && !region.name.empty() && region.name[0] == '/';
    if (isModuleData && Holds(dumpType, MiniDumpWithDataSegs)) chooser.AddRegion(region);
  }
  return chooser.Merged();
}

}  // namespace cvars::platform
