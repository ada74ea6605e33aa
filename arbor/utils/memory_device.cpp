#include "arbor/utils/memory_device.h"

#include <cstring>
#include <stdexcept>
#include <utility>

namespace strata::inpout {

memory_device::memory_device(std::vector<unsigned char> bytes) : contents(std::move(bytes)) {}

void memory_device::write(const void* data, unsigned int count) {
  write_values(data, 1, count);
}

void memory_device::write_values(const void* data, unsigned int width, unsigned int count) {
  const auto* first = static_cast<const unsigned char*>(data);
  contents.insert(contents.end(), first, first + std::size_t{width} * count);
}

void memory_device::read(void* data, unsigned int count) {
  read_values(data, 1, count);
}

void memory_device::read_values(void* data, unsigned int width, unsigned int count) {
  const unsigned long long bytes = 1ULL * width * count;
  if (bytes > remaining()) throw std::runtime_error("memory_device: read past the end");
  if (bytes != 0) std::memcpy(data, contents.data() + position, static_cast<std::size_t>(bytes));
  position += static_cast<std::size_t>(bytes);
}

}  // namespace strata::inpout
