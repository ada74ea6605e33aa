// A device in memory.
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

// Writing appends; reading goes on where the last reading ended, from the first byte on.
class memory_device : public bindevice {
 public:
  memory_device() = default;
  explicit memory_device(std::vector<unsigned char> bytes);

  void write(const void* data, unsigned int count) override;
  // Throw std::runtime_error, and read nothing, when fewer bytes than that are left.
  void read(void* data, unsigned int count) override;
  void write_values(const void* data, unsigned int width, unsigned int count) override;
  void read_values(void* data, unsigned int width, unsigned int count) override;
  unsigned long long remaining() const override { return contents.size() - position; }

  const std::vector<unsigned char>& bytes() const { return contents; }

 private:
  void write_bytes(const void* data, unsigned long long count);
  void read_bytes(void* data, unsigned long long count);

  std::vector<unsigned char> contents;
  std::size_t position = 0;
};

}  // namespace strata::inpout

#endif
