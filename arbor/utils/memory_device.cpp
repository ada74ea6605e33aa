#include "arbor/utils/memory_device.h"

#include <cstring>
#include <stdexcept>
#include <utility>

namespace strata::inpout {

memory_device::memory_device(std::vector<unsigned char> bytes) : contents(std::move(bytes)) {}

void memory_device::write(const void* data, unsigned int count) {
  const auto* first = static_cast<const unsigned char*>(data);
  contents.insert(contents.end(), first, first + count);
}

void memory_device::read(void* data, unsigned int count) {
  if (count > contents.size() - position) throw std::runtime_error("memory_device: read past the end");
  if (count != 0) std::memcpy(data, contents.data() + position, count);
  position += count;
}

}  // namespace strata::inpout
