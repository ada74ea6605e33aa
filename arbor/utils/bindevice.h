// Where the binary streams write their bytes to and read them from: a file, memory, or a class of
// your own.
//
//   class socket_device : public strata::inpout::bindevice {
//    public:
//     void write(const void* data, unsigned int count) override { send_all(data, count); }
//     void read(void* data, unsigned int count) override { receive_all(data, count); }
//   };
#ifndef ARBOR_UTILS_BINDEVICE_H
#define ARBOR_UTILS_BINDEVICE_H

#include <limits>

namespace strata::inpout {

// The streams do not check what a device did: a call that cannot be carried out as a whole must
// throw. They pass on what it throws. One thread at a time uses a device.
class bindevice {
 public:
  virtual ~bindevice() = default;

  // Appends `count` bytes, which start at `data`. The streams also call it with a count of 0.
  virtual void write(const void* data, unsigned int count) = 0;

  // Reads the next `count` bytes into `data`, which has room for them. The streams also call it
  // with a count of 0.
  virtual void read(void* data, unsigned int count) = 0;

  // Returns how many bytes can still be read, or the largest value if that is unknown. The streams
  // compare it with each count that they read before they allocate memory for it, so that a damaged
  // count is refused instead of taking gigabytes.
  virtual unsigned long long remaining() const {
    return std::numeric_limits<unsigned long long>::max();
  }

  // Write and read `count` values of `width` bytes each, which follow each other in memory. Here
  // each value is one call of write or read; a device whose calls are costly can override them to
  // transfer all values at once.
  virtual void write_values(const void* data, unsigned int width, unsigned int count) {
    const auto* value = static_cast<const unsigned char*>(data);
    for (; count > 0; --count, value += width) write(value, width);
  }
  virtual void read_values(void* data, unsigned int width, unsigned int count) {
    auto* value = static_cast<unsigned char*>(data);
    for (; count > 0; --count, value += width) read(value, width);
  }
};

}  // namespace strata::inpout

#endif
