#include "platform/FileVersion.h"

#include <elf.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace {

using cvars::platform::FileVersion;
using cvars::platform::ReadFileVersion;
namespace fs = std::filesystem;

const fs::path kGolden = fs::path(CVARS_SOURCE_DIR) / "tests" / "golden";

std::vector<char> ContentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::optional<FileVersion> VersionOf(const std::vector<char>& content) {
  return ReadFileVersion(std::as_bytes(std::span(content)));
}

struct GoldenRow {
  std::string file;
  std::string mostSignificant;
  std::string leastSignificant;
};

std::vector<GoldenRow> GoldenRows() {
  std::vector<GoldenRow> rows;
  std::ifstream table(kGolden / "pe_versions.tsv");
  std::string line;
  std::getline(table, line);
  while (std::getline(table, line)) {
    std::istringstream fields(line);
    GoldenRow row;
    fields >> row.file >> row.mostSignificant >> row.leastSignificant;
    rows.push_back(row);
  }
  return rows;
}

class GoldenPeVersion : public testing::TestWithParam<GoldenRow> {};

TEST_P(GoldenPeVersion, IsReadFromFileAndMemory) {
  const fs::path path = kGolden / "pe" / GetParam().file;
  ASSERT_TRUE(fs::exists(path));
  std::optional<FileVersion> expected;
  if (GetParam().mostSignificant != "-") {
    expected =
        FileVersion{static_cast<DWORD>(std::stoul(GetParam().mostSignificant, nullptr, 16)),
                    static_cast<DWORD>(std::stoul(GetParam().leastSignificant, nullptr, 16))};
  }
  EXPECT_EQ(ReadFileVersion(path), expected);
  EXPECT_EQ(VersionOf(ContentOf(path)), expected);
}

INSTANTIATE_TEST_SUITE_P(Files, GoldenPeVersion, testing::ValuesIn(GoldenRows()),
                         [](const auto& row) {
                           std::string name = row.param.file;
                           for (char& character : name) {
                             if (character == '.') character = '_';
                           }
                           return name;
                         });

TEST(GoldenPeVersions, TheTableIsWhole) { EXPECT_EQ(GoldenRows().size(), 21u); }

TEST(FileVersionOfPe, AFileCutShortAnywhereHasNoWrongVersion) {
  for (const char* name : {"v1_2_3_4_32.dll", "v1_2_3_4_64.dll"}) {
    const std::vector<char> whole = ContentOf(kGolden / "pe" / name);
    ASSERT_FALSE(whole.empty());
    for (std::size_t length = 0; length < whole.size(); ++length) {
      const auto version = VersionOf({whole.begin(), whole.begin() + static_cast<long>(length)});
      if (version) {
        EXPECT_EQ(*version, (FileVersion{0x00010002, 0x00030004})) << name << ' ' << length;
      }
    }
  }
}

TEST(FileVersionOfPe, EveryDamagedByteIsSurvived) {
  const std::vector<char> whole = ContentOf(kGolden / "pe" / "v1_2_3_4_32.dll");
  int stillRead = 0;
  for (std::size_t position = 0; position < whole.size(); ++position) {
    for (const char damage : {'\x00', '\x7F', '\xFF'}) {
      std::vector<char> damaged = whole;
      damaged[position] = damage;
      if (VersionOf(damaged)) ++stillRead;
    }
  }
  // Most bytes of the file have no part in the version.
  EXPECT_GT(stillRead, static_cast<int>(whole.size()));
}

TEST(FileVersionOfPe, AResourceTreeThatLoopsEnds) {
  std::vector<char> file = ContentOf(kGolden / "pe" / "v1_2_3_4_64.dll");
  // The first level of the tree: its one entry stands 16 bytes behind the header of the
  // directory, 10 00 00 00 and the offset of the next level.
  const char kTypeEntry[] = {0x10, 0x00, 0x00, 0x00, 0x18, 0x00, 0x00, static_cast<char>(0x80)};
  const auto found =
      std::search(file.begin(), file.end(), std::begin(kTypeEntry), std::end(kTypeEntry));
  ASSERT_NE(found, file.end());
  *(found + 4) = 0;  // the next level is the root again
  EXPECT_EQ(VersionOf(file), std::nullopt);
}

TEST(FileVersionOfPath, WhatIsNoFileHasNoVersion) {
  EXPECT_EQ(ReadFileVersion(fs::path()), std::nullopt);
  EXPECT_EQ(ReadFileVersion(kGolden / "missing.dll"), std::nullopt);
  EXPECT_EQ(ReadFileVersion(kGolden), std::nullopt);
  EXPECT_EQ(ReadFileVersion(fs::path("/dev/zero")), std::nullopt);
}

// A minimal ELF file of 64 bits whose one segment holds the notes given.
std::vector<char> ElfWithNotes(const std::vector<char>& notes, std::uint64_t alignment = 4) {
  Elf64_Ehdr header = {};
  std::memcpy(header.e_ident, ELFMAG, SELFMAG);
  header.e_ident[EI_CLASS] = ELFCLASS64;
  header.e_ident[EI_DATA] = ELFDATA2LSB;
  header.e_phoff = sizeof(header);
  header.e_phentsize = sizeof(Elf64_Phdr);
  header.e_phnum = 1;
  Elf64_Phdr segment = {};
  segment.p_type = PT_NOTE;
  segment.p_offset = sizeof(header) + sizeof(segment);
  segment.p_filesz = notes.size();
  segment.p_align = alignment;
  std::vector<char> file(sizeof(header) + sizeof(segment));
  std::memcpy(file.data(), &header, sizeof(header));
  std::memcpy(file.data() + sizeof(header), &segment, sizeof(segment));
  std::ranges::copy(notes, std::back_inserter(file));
  return file;
}

std::vector<char> Note(const std::string& name, std::uint32_t type,
                       const std::vector<std::uint32_t>& words) {
  const std::uint32_t head[] = {static_cast<std::uint32_t>(name.size() + 1),
                                static_cast<std::uint32_t>(words.size() * 4), type};
  std::vector<char> note(reinterpret_cast<const char*>(head),
                         reinterpret_cast<const char*>(head) + sizeof(head));
  std::ranges::copy(name, std::back_inserter(note));
  do {
    note.push_back('\0');
  } while (note.size() % 4 != 0);
  const char* bytes = reinterpret_cast<const char*>(words.data());
  std::copy_n(bytes, words.size() * 4, std::back_inserter(note));
  return note;
}

std::vector<char> Join(std::vector<char> first, const std::vector<char>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

const std::vector<char> kVersionNote = Note("Vortana", 1, {0x00060001, 0x00020003});
constexpr FileVersion kNotedVersion = {0x00060001, 0x00020003};

TEST(FileVersionOfElf, IsInTheNote) {
  EXPECT_EQ(VersionOf(ElfWithNotes(kVersionNote)), kNotedVersion);
}

TEST(FileVersionOfElf, OtherNotesAreStepped) {
  const auto other = Note("GNU", 3, {1, 2, 3, 4, 5});
  EXPECT_EQ(VersionOf(ElfWithNotes(Join(other, kVersionNote))), kNotedVersion);
  EXPECT_EQ(VersionOf(ElfWithNotes(other)), std::nullopt);
}

TEST(FileVersionOfElf, NameTypeAndSizeMustFit) {
  EXPECT_EQ(VersionOf(ElfWithNotes(Note("Vortanb", 1, {1, 2}))), std::nullopt);
  EXPECT_EQ(VersionOf(ElfWithNotes(Note("Vortana", 2, {1, 2}))), std::nullopt);
  EXPECT_EQ(VersionOf(ElfWithNotes(Note("Vortana", 1, {1, 2, 3}))), std::nullopt);
}

TEST(FileVersionOfElf, AFileCutShortAnywhereHasNoVersion) {
  const std::vector<char> whole = ElfWithNotes(kVersionNote);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(VersionOf({whole.begin(), whole.begin() + static_cast<long>(length)}), std::nullopt)
        << length;
  }
}

TEST(FileVersionOfElf, MadeUpSizesAreSurvived) {
  for (const std::uint32_t size : {0u, 0x7FFFFFFFu, 0xFFFFFFF0u, 0xFFFFFFFFu}) {
    std::vector<char> note = Note("GNU", 3, {1, 2});
    std::memcpy(note.data(), &size, 4);
    EXPECT_EQ(VersionOf(ElfWithNotes(note)), std::nullopt) << size;
    std::memcpy(note.data() + 4, &size, 4);
    EXPECT_EQ(VersionOf(ElfWithNotes(note)), std::nullopt) << size;
  }
  std::vector<char> file = ElfWithNotes(kVersionNote);
  const std::uint64_t huge = 0xFFFFFFFFFFFFFFF0u;
  for (const std::size_t field :
       {offsetof(Elf64_Ehdr, e_phoff), sizeof(Elf64_Ehdr) + offsetof(Elf64_Phdr, p_offset)}) {
    std::vector<char> damaged = file;
    std::memcpy(damaged.data() + field, &huge, sizeof(huge));
    EXPECT_EQ(VersionOf(damaged), std::nullopt) << field;
  }
}

TEST(FileVersionOfElf, BigEndianFilesHaveNone) {
  std::vector<char> file = ElfWithNotes(kVersionNote);
  file[EI_DATA] = ELFDATA2MSB;
  EXPECT_EQ(VersionOf(file), std::nullopt);
}

// The test programs carry versions given at build time.
TEST(FileVersionOfElf, IsWrittenByTheBuild) {
  EXPECT_EQ(ReadFileVersion(fs::path("/proc/self/exe")), (FileVersion{0x00060001, 0x00020003}));
}

}  // namespace
