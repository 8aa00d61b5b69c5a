#include "ElfVersion.h"

#include <elf.h>

#include <algorithm>
#include <array>

namespace cvars::platform {
namespace {

// What cvars_set_version writes: a note of this name and type whose content is the two words.
constexpr std::array<char, 8> kNoteName = {'V', 'o', 'r', 't', 'a', 'n', 'a', '\0'};
constexpr std::uint32_t kNoteType = 1;

// Notes of a real module are a few hundred bytes; made-up sizes must not cost time.
constexpr std::uint64_t kLargestNotes = 1 << 20;

struct NoteContent {
  std::array<char, kNoteName.size()> name;
  FileVersion version;
};

constexpr std::uint64_t RoundUp(std::uint64_t value, std::uint64_t alignment) {
  return (value + alignment - 1) / alignment * alignment;
}

std::optional<FileVersion> FindNote(const ModuleBytes& bytes, std::uint64_t offset,
                                    std::uint64_t size, std::uint64_t alignment) {
  const std::uint64_t padding = alignment == 8 ? 8 : 4;
  std::uint64_t position = 0;
  while (position + sizeof(Elf64_Nhdr) <= size) {
    const auto note = bytes.ReadAt<Elf64_Nhdr>(offset + position);
    if (!note) return std::nullopt;
    const std::uint64_t content = position + sizeof(Elf64_Nhdr);
    if (note->n_type == kNoteType && note->n_namesz == kNoteName.size() &&
        note->n_descsz == sizeof(FileVersion) && content + sizeof(NoteContent) <= size) {
      const auto found = bytes.ReadAt<NoteContent>(offset + content);
      if (found && found->name == kNoteName) return found->version;
    }
    position = RoundUp(content + note->n_namesz, padding);
    position = RoundUp(position + note->n_descsz, padding);
  }
  return std::nullopt;
}

template <typename Header, typename ProgramHeader>
std::optional<FileVersion> Search(const ModuleBytes& bytes) {
  const auto header = bytes.ReadAt<Header>(0);
  if (!header || header->e_phentsize != sizeof(ProgramHeader)) return std::nullopt;
  std::uint64_t bytesLeft = kLargestNotes;
  for (std::uint16_t index = 0; index < header->e_phnum; ++index) {
    const std::uint64_t offset =
        std::uint64_t{header->e_phoff} + std::uint64_t{index} * sizeof(ProgramHeader);
    const auto segment = bytes.ReadAt<ProgramHeader>(offset);
    if (!segment) return std::nullopt;
    if (segment->p_type != PT_NOTE) continue;
    const std::uint64_t size = std::min<std::uint64_t>(segment->p_filesz, bytesLeft);
    if (const auto version = FindNote(bytes, segment->p_offset, size, segment->p_align)) {
      return version;
    }
    bytesLeft -= size;
  }
  return std::nullopt;
}

}  // namespace

std::optional<FileVersion> ReadElfVersion(const ModuleBytes& bytes) {
  const auto ident = bytes.ReadAt<std::array<unsigned char, EI_NIDENT>>(0);
  if (!ident || std::memcmp(ident->data(), ELFMAG, SELFMAG) != 0 ||
      (*ident)[EI_DATA] != ELFDATA2LSB) {
    return std::nullopt;
  }
  if ((*ident)[EI_CLASS] == ELFCLASS64) return Search<Elf64_Ehdr, Elf64_Phdr>(bytes);
  if ((*ident)[EI_CLASS] == ELFCLASS32) return Search<Elf32_Ehdr, Elf32_Phdr>(bytes);
  return std::nullopt;
}

}  // namespace cvars::platform
