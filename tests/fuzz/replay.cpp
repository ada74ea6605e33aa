// Runs a fuzz target once on each of the given files, so that inputs that found faults, and those
// that reach far, are ordinary tests. A fault aborts; the last file printed is the cause.
#include <fstream>
#include <iostream>
#include <iterator>

#include "tests/fuzz/fuzz.h"

int main(int count, char** paths) {
  for (int i = 1; i < count; ++i) {
    std::cout << paths[i] << std::endl;
    std::ifstream file(paths[i], std::ios::binary);
    const std::vector<unsigned char> bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  }
  return count == 1 ? 1 : 0;
}
