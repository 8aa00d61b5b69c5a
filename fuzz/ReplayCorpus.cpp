// Runs the inputs of a corpus folder through a fuzzer's entry once each.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    std::fprintf(stderr, "usage: %s <corpus folder>\n", arguments[0]);
    return 2;
  }
  int inputCount = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(arguments[1])) {
    if (!entry.is_regular_file()) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
    (void)LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()),
                                 content.size());
    ++inputCount;
  }
  std::printf("%d inputs\n", inputCount);
  return inputCount == 0 ? 1 : 0;
}
