// Where the binary streams put their bytes and take them from: a file, memory, or a class of your
// own.
#ifndef ARBOR_UTILS_BINDEVICE_H
#define ARBOR_UTILS_BINDEVICE_H

#include <limits>

namespace strata::inpout {

class bindevice {
 public:
  virtual ~bindevice() = default;

  // Takes the next `count` bytes from `data`. Throws if it cannot take them all. May be called with
  // no bytes.
  virtual void write(const void* data, unsigned int count) = 0;

  // Puts the next `count` bytes into `data`. Throws if there are fewer. May be called for no bytes.
  virtual void read(void* data, unsigned int count) = 0;

  // How many bytes can still be read; the largest value if that is not known. Readers hold the
  // lengths they read against it before they allocate, so that a device that knows is safe from
  // lengths that lie.
  virtual unsigned long long remaining() const {
    return std::numeric_limits<unsigned long long>::max();
  }

  // Write and read `count` values of `width` bytes each, one behind the other. Here each is a call
  // of write or read; a device to which a call matters takes and puts them all at once.
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
