#include "arbor/utils/memory_device.h"

#include <cstring>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "arbor/utils/allocatable.h"

namespace strata::inpout {

memory_device::memory_device(std::vector<unsigned char> bytes) : contents(std::move(bytes)) {}

void memory_device::write(const void* data, unsigned int count) {
  write_bytes(data, count);
}

void memory_device::read(void* data, unsigned int count) {
  read_bytes(data, count);
}

// A class derived from this one may count the calls, or write elsewhere.
void memory_device::write_values(const void* data, unsigned int width, unsigned int count) {
  if (typeid(*this) != typeid(memory_device)) return bindevice::write_values(data, width, count);
  write_bytes(data, 1ULL * width * count);
}

void memory_device::read_values(void* data, unsigned int width, unsigned int count) {
  if (typeid(*this) != typeid(memory_device)) return bindevice::read_values(data, width, count);
  read_bytes(data, 1ULL * width * count);
}

void memory_device::write_bytes(const void* data, unsigned long long count) {
  util::allocatable<unsigned char>(contents.size() + count);
  const auto* first = static_cast<const unsigned char*>(data);
  contents.insert(contents.end(), first, first + static_cast<std::ptrdiff_t>(count));
}

void memory_device::read_bytes(void* data, unsigned long long count) {
  if (count > remaining()) throw std::runtime_error("memory_device: read past the end");
  if (count != 0) std::memcpy(data, contents.data() + position, static_cast<std::size_t>(count));
  position += static_cast<std::size_t>(count);
}

}  // namespace strata::inpout
