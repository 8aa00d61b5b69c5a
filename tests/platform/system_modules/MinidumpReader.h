#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace cvars::test {

/// Reads back what a mini-dump holds, straight from the layout of the format.
class MinidumpReader {
 public:
  explicit MinidumpReader(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    m_bytes.assign(std::istreambuf_iterator<char>(file), {});
    if (m_bytes.size() < 32) return;
    const std::uint32_t count = Word(8);
    const std::uint32_t directory = Word(12);
    for (std::uint32_t index = 0; index < count; ++index) {
      m_streams[Word(directory + index * 12)] = Word(directory + index * 12 + 8);
    }
  }

  bool IsMinidump() const { return Word(0) == 0x504D444D && (Word(4) & 0xFFFF) == 0xA793; }
  bool HasStream(std::uint32_t type) const { return m_streams.contains(type); }
  std::uint64_t Flags() const { return Long(24); }

  struct Thread {
    std::uint32_t identifier;
    std::uint64_t stackStart;
    std::uint32_t stackSize;
    std::uint64_t stackPointer;
    std::uint64_t programCounter;
  };
  std::vector<Thread> Threads() const {
    std::vector<Thread> threads;
    const std::uint32_t list = Stream(3);
    for (std::uint32_t index = 0; index < Word(list); ++index) {
      const std::uint32_t entry = list + 4 + index * 48;
      const std::uint32_t context = Word(entry + 44);
      threads.push_back({Word(entry), Long(entry + 24), Word(entry + 32), Long(context + 0x98),
                         Long(context + 0xF8)});
    }
    return threads;
  }

  struct Module {
    std::string name;
    std::uint64_t base;
    std::uint32_t size;
    std::size_t buildIdBytes;
  };
  std::vector<Module> Modules() const {
    std::vector<Module> modules;
    const std::uint32_t list = Stream(4);
    for (std::uint32_t index = 0; index < Word(list); ++index) {
      const std::uint32_t entry = list + 4 + index * 108;
      const std::uint32_t codeViewSize = Word(entry + 76);
      const bool hasBuildId = codeViewSize > 4 && Word(Word(entry + 80)) == 0x4270454C;
      modules.push_back({Text(Word(entry + 20)), Long(entry), Word(entry + 8),
                         hasBuildId ? codeViewSize - 4 : 0});
    }
    return modules;
  }

  /// Number of memory regions described.
  std::uint64_t RegionCount() const { return Long(Stream(16) + 8); }

  struct Exception {
    std::uint32_t thread;
    std::uint32_t code;
    std::uint64_t address;
    std::uint64_t programCounter;
  };
  Exception ExceptionInfo() const {
    const std::uint32_t stream = Stream(6);
    return {Word(stream), Word(stream + 8), Long(stream + 24), Long(Word(stream + 164) + 0xF8)};
  }

  /// Says whether the memory at an address is in the dump.
  bool HoldsMemory(std::uint64_t address) const {
    const std::uint32_t list = Stream(5);
    for (std::uint32_t index = 0; index < Word(list); ++index) {
      const std::uint32_t entry = list + 4 + index * 16;
      if (address >= Long(entry) && address < Long(entry) + Word(entry + 8)) return true;
    }
    return false;
  }

 private:
  std::uint32_t Stream(std::uint32_t type) const { return m_streams.at(type); }

  template <typename T>
  T At(std::size_t offset) const {
    T value = 0;
    if (offset + sizeof(T) <= m_bytes.size()) std::memcpy(&value, &m_bytes[offset], sizeof(T));
    return value;
  }
  std::uint32_t Word(std::size_t offset) const { return At<std::uint32_t>(offset); }
  std::uint64_t Long(std::size_t offset) const { return At<std::uint64_t>(offset); }

  // The texts looked for are plain ASCII.
  std::string Text(std::uint32_t offset) const {
    std::string text;
    for (std::uint32_t index = 0; index < Word(offset) / 2; ++index) {
      text += m_bytes[offset + 4 + index * 2];
    }
    return text;
  }

  std::vector<char> m_bytes;
  std::map<std::uint32_t, std::uint32_t> m_streams;
};

}  // namespace cvars::test
