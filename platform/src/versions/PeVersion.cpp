#include "PeVersion.h"

#include <array>
#include <string_view>
#include <vector>

namespace cvars::platform {
namespace {

constexpr std::uint16_t kDosSignature = 0x5A4D;     // "MZ"
constexpr std::uint32_t kPeSignature = 0x00004550;  // "PE"
constexpr std::uint64_t kPeOffsetField = 0x3C;
constexpr std::uint16_t kMagic32 = 0x10B;
constexpr std::uint16_t kMagic64 = 0x20B;
constexpr std::uint32_t kResourceDirectoryIndex = 2;
constexpr std::uint32_t kVersionResourceType = 16;
constexpr std::uint32_t kSubdirectory = 0x80000000;
// Real modules have a dozen; a made-up count must not cost time.
constexpr std::uint16_t kLargestSectionCount = 256;

struct CoffHeader {
  std::uint16_t machine;
  std::uint16_t sectionCount;
  std::uint32_t timestamp;
  std::uint32_t symbolTable;
  std::uint32_t symbolCount;
  std::uint16_t optionalHeaderSize;
  std::uint16_t characteristics;
};
static_assert(sizeof(CoffHeader) == 20);

struct SectionHeader {
  char name[8];
  std::uint32_t virtualSize;
  std::uint32_t virtualAddress;
  std::uint32_t rawSize;
  std::uint32_t rawOffset;
  std::uint32_t other[4];
};
static_assert(sizeof(SectionHeader) == 40);

struct DirectoryHeader {
  std::uint32_t characteristics;
  std::uint32_t timestamp;
  std::uint32_t version;
  std::uint16_t namedEntries;
  std::uint16_t numberedEntries;
};
static_assert(sizeof(DirectoryHeader) == 16);

struct DirectoryEntry {
  std::uint32_t identifier;
  std::uint32_t offset;
};
static_assert(sizeof(DirectoryEntry) == 8);

struct DataEntry {
  std::uint32_t address;
  std::uint32_t size;
  std::uint32_t codePage;
  std::uint32_t reserved;
};
static_assert(sizeof(DataEntry) == 16);

struct VersionHeader {
  std::uint16_t length;
  std::uint16_t valueLength;
  std::uint16_t type;
  std::array<char16_t, 16> key;  // with its terminator
  std::uint16_t padding;
};
static_assert(sizeof(VersionHeader) == 40);
constexpr std::u16string_view kVersionKey = u"VS_VERSION_INFO";

struct FixedInfo {
  std::uint32_t signature;
  std::uint32_t structureVersion;
  std::uint32_t fileVersionMs;
  std::uint32_t fileVersionLs;
  std::uint32_t other[9];
};
static_assert(sizeof(FixedInfo) == 52);

// Where the parts of one PE file lie.
class PeFile {
 public:
  static std::optional<PeFile> Open(const ModuleBytes& bytes) {
    if (bytes.ReadAt<std::uint16_t>(0) != kDosSignature) return std::nullopt;
    const auto peOffset = bytes.ReadAt<std::uint32_t>(kPeOffsetField);
    if (!peOffset || bytes.ReadAt<std::uint32_t>(*peOffset) != kPeSignature) return std::nullopt;
    PeFile file(bytes);
    const std::uint64_t coffOffset = std::uint64_t{*peOffset} + sizeof(kPeSignature);
    const auto coff = bytes.ReadAt<CoffHeader>(coffOffset);
    if (!coff || coff->sectionCount > kLargestSectionCount) return std::nullopt;
    file.m_optionalHeader = coffOffset + sizeof(CoffHeader);
    file.m_optionalHeaderSize = coff->optionalHeaderSize;
    file.m_sections.resize(coff->sectionCount);
    if (!bytes.Read(file.m_optionalHeader + coff->optionalHeaderSize,
                    std::as_writable_bytes(std::span(file.m_sections)))) {
      return std::nullopt;
    }
    return file;
  }

  // Address of the resource directory when loaded; nothing when the file has none.
  std::optional<std::uint32_t> ResourceAddress() const {
    const auto magic = m_bytes.ReadAt<std::uint16_t>(m_optionalHeader);
    if (magic != kMagic32 && magic != kMagic64) return std::nullopt;
    const std::uint64_t countOffset = magic == kMagic64 ? 108 : 92;
    const auto count = m_bytes.ReadAt<std::uint32_t>(m_optionalHeader + countOffset);
    if (!count || *count <= kResourceDirectoryIndex) return std::nullopt;
    const std::uint64_t entry = countOffset + 4 + kResourceDirectoryIndex * 8;
    if (entry + 8 > m_optionalHeaderSize) return std::nullopt;
    const auto address = m_bytes.ReadAt<std::uint32_t>(m_optionalHeader + entry);
    if (!address || *address == 0) return std::nullopt;
    return address;
  }

  // Offset in the file of `size` bytes that are at `address` when loaded.
  std::optional<std::uint64_t> FileOffset(std::uint32_t address, std::uint32_t size) const {
    for (const SectionHeader& section : m_sections) {
      if (address < section.virtualAddress) continue;
      const std::uint32_t inSection = address - section.virtualAddress;
      if (std::uint64_t{inSection} + size > section.rawSize) continue;
      return std::uint64_t{section.rawOffset} + inSection;
    }
    return std::nullopt;
  }

  template <typename T>
  std::optional<T> ReadLoaded(std::uint64_t address) const {
    if (address > UINT32_MAX) return std::nullopt;
    const auto offset = FileOffset(static_cast<std::uint32_t>(address), sizeof(T));
    return offset ? m_bytes.ReadAt<T>(*offset) : std::nullopt;
  }

 private:
  explicit PeFile(const ModuleBytes& bytes) : m_bytes(bytes) {}

  const ModuleBytes& m_bytes;
  std::uint64_t m_optionalHeader = 0;
  std::uint16_t m_optionalHeaderSize = 0;
  std::vector<SectionHeader> m_sections;
};

// Entry of one level of the resource tree: the one with the identifier, or the first of all.
std::optional<DirectoryEntry> FindEntry(const PeFile& file, std::uint64_t directory,
                                        std::optional<std::uint32_t> identifier) {
  const auto header = file.ReadLoaded<DirectoryHeader>(directory);
  if (!header) return std::nullopt;
  const std::uint32_t count = std::uint32_t{header->namedEntries} + header->numberedEntries;
  for (std::uint32_t index = 0; index < count; ++index) {
    const auto entry = file.ReadLoaded<DirectoryEntry>(
        directory + sizeof(DirectoryHeader) + std::uint64_t{index} * sizeof(DirectoryEntry));
    if (!entry) return std::nullopt;
    if (!identifier || entry->identifier == *identifier) return entry;
  }
  return std::nullopt;
}

// The tree has three levels: type, name, language. Of names and languages the first is taken.
std::optional<DataEntry> FindVersionResource(const PeFile& file, std::uint32_t root) {
  const auto type = FindEntry(file, root, kVersionResourceType);
  if (!type || (type->offset & kSubdirectory) == 0) return std::nullopt;
  const auto name =
      FindEntry(file, std::uint64_t{root} + (type->offset & ~kSubdirectory), std::nullopt);
  if (!name || (name->offset & kSubdirectory) == 0) return std::nullopt;
  const auto language =
      FindEntry(file, std::uint64_t{root} + (name->offset & ~kSubdirectory), std::nullopt);
  if (!language || (language->offset & kSubdirectory) != 0) return std::nullopt;
  return file.ReadLoaded<DataEntry>(std::uint64_t{root} + language->offset);
}

}  // namespace

std::optional<FileVersion> ReadPeVersion(const ModuleBytes& bytes) {
  const auto file = PeFile::Open(bytes);
  if (!file) return std::nullopt;
  const auto root = file->ResourceAddress();
  if (!root) return std::nullopt;
  const auto data = FindVersionResource(*file, *root);
  if (!data || data->size < sizeof(VersionHeader) + sizeof(FixedInfo)) return std::nullopt;
  const auto header = file->ReadLoaded<VersionHeader>(data->address);
  if (!header || header->valueLength < sizeof(FixedInfo) || header->key[kVersionKey.size()] != 0 ||
      std::u16string_view(header->key.data(), kVersionKey.size()) != kVersionKey) {
    return std::nullopt;
  }
  const auto fixed =
      file->ReadLoaded<FixedInfo>(std::uint64_t{data->address} + sizeof(VersionHeader));
  if (!fixed) return std::nullopt;
  return FileVersion{fixed->fileVersionMs, fixed->fileVersionLs};
}

}  // namespace cvars::platform
