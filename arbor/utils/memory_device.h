// A device that keeps its bytes in memory.
//
//   memory_device device;
//   obinstream out(device);
//   out << 7U;
//   save(device.bytes());
#ifndef ARBOR_UTILS_MEMORY_DEVICE_H
#define ARBOR_UTILS_MEMORY_DEVICE_H

#include <cstddef>
#include <vector>

#include "arbor/utils/bindevice.h"

namespace strata::inpout {

// Writing appends. Reading starts at the first byte and has a position of its own, so that what was
// written can be read back from the same device.
class memory_device : public bindevice {
 public:
  memory_device() = default;
  // Starts with `bytes`, which can be read.
  explicit memory_device(std::vector<unsigned char> bytes);

  // Throws std::bad_alloc; nothing is written then.
  void write(const void* data, unsigned int count) override;
  // Throws std::runtime_error "memory_device: read past the end" if fewer than `count` bytes are
  // left; nothing is read then.
  void read(void* data, unsigned int count) override;
  // As above, for all values at once; in a class derived from this one by a call of write or read
  // for each value.
  void write_values(const void* data, unsigned int width, unsigned int count) override;
  void read_values(void* data, unsigned int width, unsigned int count) override;

  unsigned long long remaining() const override { return contents.size() - position; }

  // All bytes, those read already among them. The reference is valid as long as the device.
  const std::vector<unsigned char>& bytes() const { return contents; }

 private:
  void write_bytes(const void* data, unsigned long long count);
  void read_bytes(void* data, unsigned long long count);

  std::vector<unsigned char> contents;
  std::size_t position = 0;  // of the next byte to read
};

}  // namespace strata::inpout

#endif
