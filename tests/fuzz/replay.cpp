// Runs a fuzz target once on every file of the given folders, so that the inputs that found faults,
// and those that reach far, are ordinary tests. A fault aborts; the last file printed is the cause.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "tests/fuzz/fuzz.h"

int main(int count, char** folders) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < count; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(folders[i]))
      files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const auto& path : files) {
    std::cout << path.string() << std::endl;
    std::ifstream file(path, std::ios::binary);
    const std::vector<unsigned char> bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  }
  return files.empty() ? 1 : 0;
}
