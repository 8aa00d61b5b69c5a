// Writes a mini-dump and prints the result code, then the dump libraries that are loaded.

#include <cstdio>
#include <fstream>
#include <set>
#include <string>

#include "CComBSTR.h"
#include "MiniDumpWriter.h"

int main() {
  cvars::MiniDumpWriter writer(L"Search", L"%LOGS%", 1, 0);
  CComBSTR path;
  const HRESULT result = writer.WriteDump(nullptr, &path, nullptr, 0, 0);
  std::printf("%08x\n", static_cast<unsigned int>(result));
  std::set<std::string> loaded;
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    const std::size_t start = line.find('/');
    if (start != std::string::npos && line.ends_with("/DbgHelp.dll")) {
      loaded.insert(line.substr(start));
    }
  }
  for (const std::string& file : loaded) std::printf("%s\n", file.c_str());
}
