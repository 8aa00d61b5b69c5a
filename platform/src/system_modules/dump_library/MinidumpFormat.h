#pragma once

#include <cstdint>

// The structures of a mini-dump file. All numbers are little-endian, offsets count from the start
// of the file, and nothing is padded beyond four bytes.
namespace cvars::platform::minidump {

inline constexpr std::uint32_t kSignature = 0x504D444D;  // "MDMP"
inline constexpr std::uint32_t kVersion = 0xA793;

enum class StreamType : std::uint32_t {
  kThreadList = 3,
  kModuleList = 4,
  kMemoryList = 5,
  kException = 6,
  kSystemInfo = 7,
  kMemory64List = 9,
  kMiscInfo = 15,
  kMemoryInfoList = 16,
  kThreadNames = 24,
  kLinuxCpuInfo = 0x47670003,
  kLinuxProcStatus = 0x47670004,
  kLinuxLsbRelease = 0x47670005,
  kLinuxCommandLine = 0x47670006,
  kLinuxEnvironment = 0x47670007,
  kLinuxAuxiliaryVector = 0x47670008,
  kLinuxMaps = 0x47670009,
  kLinuxProcStat = 0x4767000B,
};

#define CVARS_PACKED __attribute__((packed, aligned(4)))

struct CVARS_PACKED Location {
  std::uint32_t size;
  std::uint32_t offset;
};

struct CVARS_PACKED MemoryDescriptor {
  std::uint64_t address;
  Location content;
};

struct CVARS_PACKED Header {
  std::uint32_t signature;
  std::uint32_t version;
  std::uint32_t streamCount;
  std::uint32_t directoryOffset;
  std::uint32_t checksum;
  std::uint32_t time;  // seconds since 1970
  std::uint64_t flags;
};
static_assert(sizeof(Header) == 32);

struct CVARS_PACKED DirectoryEntry {
  StreamType type;
  Location content;
};
static_assert(sizeof(DirectoryEntry) == 12);

struct CVARS_PACKED SystemInfo {
  std::uint16_t processorArchitecture;
  std::uint16_t processorLevel;
  std::uint16_t processorRevision;
  std::uint8_t processorCount;
  std::uint8_t productType;
  std::uint32_t majorVersion;
  std::uint32_t minorVersion;
  std::uint32_t buildNumber;
  std::uint32_t platform;
  std::uint32_t versionText;  // offset of a string
  std::uint16_t suiteMask;
  std::uint16_t reserved;
  std::uint8_t processor[24];
};
static_assert(sizeof(SystemInfo) == 56);
inline constexpr std::uint16_t kArchitectureAmd64 = 9;
inline constexpr std::uint32_t kPlatformLinux = 0x8201;

struct CVARS_PACKED Thread {
  std::uint32_t identifier;
  std::uint32_t suspendCount;
  std::uint32_t priorityClass;
  std::uint32_t priority;
  std::uint64_t block;
  MemoryDescriptor stack;
  Location context;
};
static_assert(sizeof(Thread) == 48);

struct CVARS_PACKED ThreadName {
  std::uint32_t identifier;
  std::uint64_t nameOffset;
};
static_assert(sizeof(ThreadName) == 12);

struct CVARS_PACKED FixedFileInfo {
  std::uint32_t signature;
  std::uint32_t structureVersion;
  std::uint32_t fileVersionMs;
  std::uint32_t fileVersionLs;
  std::uint32_t other[9];
};

struct CVARS_PACKED Module {
  std::uint64_t base;
  std::uint32_t size;
  std::uint32_t checksum;
  std::uint32_t time;
  std::uint32_t nameOffset;
  FixedFileInfo version;
  Location codeView;
  Location misc;
  std::uint64_t reserved[2];
};
static_assert(sizeof(Module) == 108);
inline constexpr std::uint32_t kFixedFileInfoSignature = 0xFEEF04BD;
inline constexpr std::uint32_t kFixedFileInfoVersion = 0x00010000;
inline constexpr std::uint32_t kElfBuildIdSignature = 0x4270454C;  // "LEpB", then the bytes of it

struct CVARS_PACKED Exception {
  std::uint32_t threadIdentifier;
  std::uint32_t alignment;
  std::uint32_t code;
  std::uint32_t flags;
  std::uint64_t record;
  std::uint64_t address;
  std::uint32_t parameterCount;
  std::uint32_t parameterAlignment;
  std::uint64_t parameters[15];
  Location context;
};
static_assert(sizeof(Exception) == 168);

struct CVARS_PACKED MiscInfo {
  std::uint32_t size;
  std::uint32_t validFields;
  std::uint32_t processId;
  std::uint32_t createTime;  // seconds since 1970
  std::uint32_t userTime;    // seconds
  std::uint32_t kernelTime;  // seconds
};
static_assert(sizeof(MiscInfo) == 24);
inline constexpr std::uint32_t kMiscHasProcessId = 1;
inline constexpr std::uint32_t kMiscHasTimes = 2;

struct CVARS_PACKED MemoryInfoList {
  std::uint32_t headerSize;
  std::uint32_t entrySize;
  std::uint64_t count;
};

struct CVARS_PACKED MemoryInfo {
  std::uint64_t base;
  std::uint64_t allocationBase;
  std::uint32_t allocationProtect;
  std::uint32_t alignment1;
  std::uint64_t size;
  std::uint32_t state;
  std::uint32_t protect;
  std::uint32_t type;
  std::uint32_t alignment2;
};
static_assert(sizeof(MemoryInfo) == 48);
inline constexpr std::uint32_t kMemoryCommitted = 0x1000;
inline constexpr std::uint32_t kMemoryPrivate = 0x20000;
inline constexpr std::uint32_t kMemoryMapped = 0x40000;

struct CVARS_PACKED Memory64Descriptor {
  std::uint64_t address;
  std::uint64_t size;
};

#undef CVARS_PACKED

}  // namespace cvars::platform::minidump
