#include "DumpWriter.h"

#include <signal.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string_view>
#include <system_error>

#include "LoadedModules.h"
#include "MinidumpFormat.h"
#include "platform/FileVersion.h"
#include "platform/MiniDump.h"
#include "platform/Utf8.h"

namespace cvars::platform {
namespace {

using namespace minidump;

void WriteAll(int descriptor, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw std::system_error(errno, std::generic_category());
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

std::u16string ToUtf16(std::string_view text) {
  std::u16string result;
  for (const wchar_t character : FromUtf8(text)) {
    const auto code = static_cast<std::uint32_t>(character);
    if (code < 0x10000) {
      result += static_cast<char16_t>(code);
    } else {
      result += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      result += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
  }
  return result;
}

// Debuggers of this system expect the number of the signal where others have the exception code.
std::uint32_t SignalOf(DWORD code) {
  switch (code) {
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_PRIV_INSTRUCTION:
      return SIGILL;
    case EXCEPTION_IN_PAGE_ERROR:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
      return SIGBUS;
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
    case EXCEPTION_FLT_DIVIDE_BY_ZERO:
    case EXCEPTION_FLT_INEXACT_RESULT:
    case EXCEPTION_FLT_INVALID_OPERATION:
    case EXCEPTION_FLT_OVERFLOW:
    case EXCEPTION_FLT_UNDERFLOW:
      return SIGFPE;
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_STACK_OVERFLOW:
      return SIGSEGV;
    default:
      return code;
  }
}

std::uint32_t ProtectionOf(const MemoryRegion& region) {
  constexpr std::uint32_t kNoAccess = 0x01;
  constexpr std::uint32_t kReadOnly = 0x02;
  constexpr std::uint32_t kReadWrite = 0x04;
  constexpr std::uint32_t kExecute = 0x10;
  constexpr std::uint32_t kExecuteRead = 0x20;
  constexpr std::uint32_t kExecuteReadWrite = 0x40;
  if (region.writable) return region.executable ? kExecuteReadWrite : kReadWrite;
  if (region.readable) return region.executable ? kExecuteRead : kReadOnly;
  return region.executable ? kExecute : kNoAccess;
}

// The growing content of the file. Offsets are what the format calls them: from the file's start.
class DumpContent {
 public:
  std::uint32_t Append(std::span<const std::byte> bytes) {
    while (m_bytes.size() % 8 != 0) m_bytes.push_back(std::byte{0});
    const auto offset = static_cast<std::uint32_t>(m_bytes.size());
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return offset;
  }

  template <typename T>
  Location AppendObject(const T& object) {
    return AppendBytes(std::as_bytes(std::span(&object, 1)));
  }

  Location AppendBytes(std::span<const std::byte> bytes) {
    const std::uint32_t offset = Append(bytes);
    return {static_cast<std::uint32_t>(bytes.size()), offset};
  }

  // A head followed by equal entries, as one piece.
  template <typename Head, typename T>
  Location AppendList(const Head& head, const std::vector<T>& entries) {
    std::vector<std::byte> bytes(sizeof(head) + entries.size() * sizeof(T));
    std::memcpy(bytes.data(), &head, sizeof(head));
    if (!entries.empty()) {
      std::memcpy(bytes.data() + sizeof(head), entries.data(), entries.size() * sizeof(T));
    }
    return AppendBytes(bytes);
  }

  template <typename T>
  Location AppendCounted(const std::vector<T>& entries) {
    return AppendList(static_cast<std::uint32_t>(entries.size()), entries);
  }

  std::uint32_t AppendText(std::string_view text) {
    const std::u16string wide = ToUtf16(text);
    std::vector<char16_t> units(wide.begin(), wide.end());
    units.push_back(u'\0');
    const auto byteLength = static_cast<std::uint32_t>(wide.size() * sizeof(char16_t));
    return AppendList(byteLength, units).offset;
  }

  std::size_t Size() const { return m_bytes.size(); }
  std::vector<std::byte>& Bytes() { return m_bytes; }

 private:
  std::vector<std::byte> m_bytes;
};

class DumpWriter {
 public:
  DumpWriter(const StoppedProcess& process, const std::optional<DumpedFault>& fault,
             std::uint32_t dumpType)
      : m_process(process), m_fault(fault), m_dumpType(dumpType) {}

  void Write(int descriptor) {
    constexpr std::size_t kLargestStreamCount = 24;
    m_content.Bytes().resize(sizeof(Header) + kLargestStreamCount * sizeof(DirectoryEntry));
    AddSystemInfo();
    AddMiscInfo();
    AddMemory();
    AddThreads();
    AddModules();
    AddException();
    AddMemoryInfo();
    AddProcFiles();
    const bool full = (m_dumpType & MiniDumpWithFullMemory) != 0;
    const std::vector<AddressRange> fullMemory =
        full ? AddFullMemory() : std::vector<AddressRange>();
    WriteDirectory();
    WriteAll(descriptor, m_content.Bytes());
    for (const AddressRange& range : fullMemory) CopyMemory(range, descriptor);
  }

 private:
  void AddStream(StreamType type, Location content) { m_directory.push_back({type, content}); }

  void AddSystemInfo() {
    utsname names = {};
    uname(&names);
    SystemInfo info = {};
    info.processorArchitecture = kArchitectureAmd64;
    info.processorCount =
        static_cast<std::uint8_t>(std::clamp<long>(sysconf(_SC_NPROCESSORS_ONLN), 1, UINT8_MAX));
    info.productType = 1;
    info.platform = kPlatformLinux;
    info.versionText = m_content.AppendText(std::string(names.sysname) + " " + names.release + " " +
                                            names.version);
    (void)std::sscanf(names.release, "%u.%u.%u", &m_release[0], &m_release[1], &m_release[2]);
    info.majorVersion = m_release[0];
    info.minorVersion = m_release[1];
    info.buildNumber = m_release[2];
    AddStream(StreamType::kSystemInfo, m_content.AppendObject(info));
  }

  void AddMiscInfo() {
    MiscInfo info = {};
    info.size = sizeof(info);
    info.validFields = kMiscHasProcessId;
    info.processId = static_cast<std::uint32_t>(m_process.Identifier());
    AddStream(StreamType::kMiscInfo, m_content.AppendObject(info));
  }

  void AddMemory() {
    for (const AddressRange& range : ChooseMemory(m_process, m_fault, m_dumpType)) {
      std::vector<std::byte> content(range.end - range.begin);
      content.resize(m_process.ReadMemory(range.begin, content));
      if (content.empty()) continue;
      m_memory.push_back({range.begin, m_content.AppendBytes(content)});
    }
    AddStream(StreamType::kMemoryList, m_content.AppendCounted(m_memory));
  }

  // The part of the memory already in the file that is a thread's stack.
  MemoryDescriptor StackOf(const CONTEXT& context) const {
    const AddressRange stack = UsedStack(m_process, context.Rsp);
    for (const MemoryDescriptor& memory : m_memory) {
      if (stack.begin < memory.address) continue;
      const std::uint64_t before = stack.begin - memory.address;
      if (before >= memory.content.size) continue;
      const std::uint64_t size =
          std::min<std::uint64_t>(stack.end - stack.begin, memory.content.size - before);
      return {stack.begin,
              {static_cast<std::uint32_t>(size),
               memory.content.offset + static_cast<std::uint32_t>(before)}};
    }
    return {stack.begin, {0, 0}};
  }

  void AddThreads() {
    std::vector<Thread> threads;
    std::vector<ThreadName> names;
    for (const StoppedThread& stopped : m_process.Threads()) {
      const bool faulted = m_fault && m_fault->thread == stopped.identifier;
      const CONTEXT& context = faulted ? m_fault->context : stopped.context;
      Thread thread = {};
      thread.identifier = static_cast<std::uint32_t>(stopped.identifier);
      thread.block = stopped.block;
      thread.stack = StackOf(context);
      thread.context = m_content.AppendObject(context);
      if (faulted) m_faultContext = thread.context;
      threads.push_back(thread);
      names.push_back({thread.identifier, m_content.AppendText(stopped.name)});
    }
    AddStream(StreamType::kThreadList, m_content.AppendCounted(threads));
    AddStream(StreamType::kThreadNames, m_content.AppendCounted(names));
  }

  void AddModules() {
    std::vector<Module> modules;
    for (const LoadedModule& loaded : FindLoadedModules(m_process)) {
      Module module = {};
      module.base = loaded.base;
      module.size = static_cast<std::uint32_t>(std::min<std::uint64_t>(loaded.size, UINT32_MAX));
      module.nameOffset = m_content.AppendText(loaded.path);
      if (const auto version = ReadFileVersion(loaded.path)) {
        module.version.signature = kFixedFileInfoSignature;
        module.version.structureVersion = kFixedFileInfoVersion;
        module.version.fileVersionMs = version->mostSignificant;
        module.version.fileVersionLs = version->leastSignificant;
      }
      if (!loaded.buildId.empty()) {
        module.codeView = m_content.AppendList(kElfBuildIdSignature, loaded.buildId);
      }
      modules.push_back(module);
    }
    AddStream(StreamType::kModuleList, m_content.AppendCounted(modules));
  }

  void AddException() {
    if (!m_fault) return;
    const EXCEPTION_RECORD& record = m_fault->record;
    Exception exception = {};
    exception.threadIdentifier = static_cast<std::uint32_t>(m_fault->thread);
    exception.code = SignalOf(record.ExceptionCode);
    exception.flags = record.ExceptionFlags;
    // The address of a bad access is what a reader looks for first.
    exception.address = record.NumberParameters >= 2
                            ? record.ExceptionInformation[1]
                            : reinterpret_cast<std::uint64_t>(record.ExceptionAddress);
    exception.parameterCount = std::min(record.NumberParameters, EXCEPTION_MAXIMUM_PARAMETERS);
    for (std::uint32_t index = 0; index < exception.parameterCount; ++index) {
      exception.parameters[index] = record.ExceptionInformation[index];
    }
    exception.context =
        m_faultContext.size != 0 ? m_faultContext : m_content.AppendObject(m_fault->context);
    AddStream(StreamType::kException, m_content.AppendObject(exception));
  }

  void AddMemoryInfo() {
    std::vector<MemoryInfo> infos;
    for (const MemoryRegion& region : m_process.Regions()) {
      MemoryInfo info = {};
      info.base = region.begin;
      info.allocationBase = region.begin;
      info.size = region.end - region.begin;
      info.state = kMemoryCommitted;
      info.protect = ProtectionOf(region);
      info.allocationProtect = info.protect;
      info.type = region.isPrivate ? kMemoryPrivate : kMemoryMapped;
      infos.push_back(info);
    }
    const MemoryInfoList head = {sizeof(MemoryInfoList), sizeof(MemoryInfo), infos.size()};
    AddStream(StreamType::kMemoryInfoList, m_content.AppendList(head, infos));
  }

  void AddProcFiles() {
    AddContent(StreamType::kLinuxCpuInfo, ReadWholeFile("/proc/cpuinfo"));
    AddContent(StreamType::kLinuxProcStatus, m_process.ReadProcFile("status"));
    AddContent(StreamType::kLinuxProcStat, m_process.ReadProcFile("stat"));
    AddContent(StreamType::kLinuxLsbRelease, ReadWholeFile("/etc/os-release"));
    AddContent(StreamType::kLinuxMaps, m_process.ReadProcFile("maps"));
    AddContent(StreamType::kLinuxAuxiliaryVector, m_process.ReadProcFile("auxv"));
    if ((m_dumpType & MiniDumpWithProcessThreadData) == 0) return;
    AddContent(StreamType::kLinuxCommandLine, m_process.ReadProcFile("cmdline"));
    AddContent(StreamType::kLinuxEnvironment, m_process.ReadProcFile("environ"));
  }

  void AddContent(StreamType type, const std::vector<std::byte>& content) {
    if (!content.empty()) AddStream(type, m_content.AppendBytes(content));
  }

  // The list only; the memory itself follows behind everything else, in the order of the list.
  std::vector<AddressRange> AddFullMemory() {
    std::vector<AddressRange> ranges;
    std::vector<Memory64Descriptor> descriptors;
    for (const MemoryRegion& region : m_process.Regions()) {
      std::byte probe;
      if (!region.readable || m_process.ReadMemory(region.begin, {&probe, 1}) != 1) continue;
      ranges.push_back({region.begin, region.end});
      descriptors.push_back({region.begin, region.end - region.begin});
    }
    struct {
      std::uint64_t count;
      std::uint64_t offset;
    } head = {descriptors.size(), 0};
    const Location location = m_content.AppendList(head, descriptors);
    head.offset = m_content.Size();
    std::memcpy(m_content.Bytes().data() + location.offset, &head, sizeof(head));
    AddStream(StreamType::kMemory64List, location);
    return ranges;
  }

  // What cannot be read is written as zeros, so that the rest keeps its place.
  void CopyMemory(const AddressRange& range, int descriptor) {
    constexpr std::uint64_t kBlock = 1 << 20;
    std::vector<std::byte> block;
    for (std::uint64_t address = range.begin; address < range.end; address += block.size()) {
      block.assign(std::min(kBlock, range.end - address), std::byte{0});
      (void)m_process.ReadMemory(address, block);
      WriteAll(descriptor, block);
    }
  }

  void WriteDirectory() {
    Header header = {};
    header.signature = kSignature;
    header.version = kVersion;
    header.streamCount = static_cast<std::uint32_t>(m_directory.size());
    header.directoryOffset = sizeof(Header);
    header.time = static_cast<std::uint32_t>(
        std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
    header.flags = m_dumpType;
    std::memcpy(m_content.Bytes().data(), &header, sizeof(header));
    std::memcpy(m_content.Bytes().data() + sizeof(header), m_directory.data(),
                m_directory.size() * sizeof(DirectoryEntry));
  }

  const StoppedProcess& m_process;
  const std::optional<DumpedFault>& m_fault;
  std::uint32_t m_dumpType;
  unsigned m_release[3] = {};
  DumpContent m_content;
  std::vector<DirectoryEntry> m_directory;
  std::vector<MemoryDescriptor> m_memory;
  Location m_faultContext = {};
};

}  // namespace

void WriteMiniDump(const StoppedProcess& process, const std::optional<DumpedFault>& fault,
                   std::uint32_t dumpType, int descriptor) {
  DumpWriter(process, fault, dumpType).Write(descriptor);
}

}  // namespace cvars::platform
