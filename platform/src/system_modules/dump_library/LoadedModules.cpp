#include "LoadedModules.h"

#include <elf.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace cvars::platform {
namespace {

constexpr std::uint64_t kLargestNotes = 64 * 1024;
constexpr std::string_view kBuildIdOwner("GNU\0", 4);

std::uint64_t RoundUp4(std::uint64_t value) { return (value + 3) & ~std::uint64_t{3}; }

std::span<const std::byte> FindBuildId(std::span<const std::byte> notes) {
  std::size_t position = 0;
  while (position + sizeof(Elf64_Nhdr) <= notes.size()) {
    Elf64_Nhdr note;
    std::memcpy(&note, notes.data() + position, sizeof(note));
    const std::size_t name = position + sizeof(note);
    const std::size_t content = name + RoundUp4(note.n_namesz);
    const std::size_t next = content + RoundUp4(note.n_descsz);
    if (next > notes.size()) break;
    if (note.n_type == NT_GNU_BUILD_ID && note.n_namesz == kBuildIdOwner.size() &&
        std::memcmp(notes.data() + name, kBuildIdOwner.data(), kBuildIdOwner.size()) == 0) {
      return notes.subspan(content, note.n_descsz);
    }
    position = next;
  }
  return {};
}

// Reads the build identifier out of the loaded module, which may no longer be the one on the disk.
std::vector<std::byte> ReadBuildId(const StoppedProcess& process, const Elf64_Ehdr& header,
                                   std::uint64_t base) {
  std::uint64_t firstAddress = 0;
  for (int pass = 0; pass < 2; ++pass) {
    for (std::uint16_t index = 0; index < header.e_phnum; ++index) {
      const auto segment = process.ReadObject<Elf64_Phdr>(
          base + header.e_phoff + std::uint64_t{index} * sizeof(Elf64_Phdr));
      if (!segment) return {};
      if (pass == 0 && segment->p_type == PT_LOAD && segment->p_offset == 0) {
        firstAddress = segment->p_vaddr;
      }
      if (pass == 0 || segment->p_type != PT_NOTE) continue;
      std::vector<std::byte> notes(std::min<std::uint64_t>(segment->p_memsz, kLargestNotes));
      notes.resize(process.ReadMemory(base - firstAddress + segment->p_vaddr, notes));
      const std::span<const std::byte> identifier = FindBuildId(notes);
      if (!identifier.empty()) return {identifier.begin(), identifier.end()};
    }
  }
  return {};
}

bool IsElf(const Elf64_Ehdr& header) {
  return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
         header.e_ident[EI_CLASS] == ELFCLASS64 && header.e_phentsize == sizeof(Elf64_Phdr);
}

std::string ProgramPath(pid_t process) {
  char path[PATH_MAX];
  const std::string link = "/proc/" + std::to_string(process) + "/exe";
  const ssize_t length = readlink(link.c_str(), path, sizeof(path));
  return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

}  // namespace

std::vector<LoadedModule> FindLoadedModules(const StoppedProcess& process) {
  std::vector<LoadedModule> modules;
  for (const MemoryRegion& region : process.Regions()) {
    if (region.name.empty() || (region.name[0] != '/' && region.name != "[vdso]")) continue;
    // The further parts of a module follow its first.
    if (!modules.empty() && modules.back().path == region.name && region.fileOffset != 0) {
      modules.back().size = region.end - modules.back().base;
      continue;
    }
    if (region.fileOffset != 0 || !region.readable) continue;
    const auto header = process.ReadObject<Elf64_Ehdr>(region.begin);
    if (!header || !IsElf(*header)) continue;
    if (!modules.empty() && modules.back().path == region.name) continue;
    modules.push_back({region.begin, region.end - region.begin, region.name,
                       ReadBuildId(process, *header, region.begin)});
  }
  const std::string program = ProgramPath(process.Identifier());
  std::stable_partition(modules.begin(), modules.end(),
                        [&program](const LoadedModule& module) { return module.path == program; });
  return modules;
}

}  // namespace cvars::platform
