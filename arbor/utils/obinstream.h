// Writes values, texts and arrays in the flat binary form of saved models.
//
//   memory_device device;
//   obinstream out(device);
//   out << 7U << "seven";
//
// Multi-byte values are little-endian, lengths and counts four bytes; nothing stands between
// values:
//
//   bool              1 byte, 0 or 1
//   other primitives  1, 2, 4 or 8 bytes, as in memory
//   text              00 for a null pointer, else 01 | length u32 | bytes, without a terminating zero
//   array             element after element; its count is not part of it
#ifndef ARBOR_UTILS_OBINSTREAM_H
#define ARBOR_UTILS_OBINSTREAM_H

#include "arbor/utils/bindevice.h"

namespace strata::inpout {

// Every value is one call of the device, those of a vector one each unless the device has another
// way. What the device throws passes through.
class obinstream {
 public:
  // The device stays the caller's and must outlive the stream.
  explicit obinstream(bindevice& target) : device(&target) {}

  obinstream& operator<<(bool value);
  obinstream& operator<<(unsigned char value);
  obinstream& operator<<(unsigned short value);
  obinstream& operator<<(unsigned int value);
  obinstream& operator<<(unsigned long long value);
  obinstream& operator<<(int value);
  obinstream& operator<<(float value);
  obinstream& operator<<(double value);

  // Writes a NUL-terminated text, or null. Throws std::runtime_error, with nothing written, for one
  // of more than 2147483646 bytes.
  obinstream& operator<<(const char* text);

  // Writes `count` elements of 1, 2, 4 or 8 bytes in one call of the device, or, when they have
  // 2147483647 bytes or more (less what is no whole element), in one call each.
  template <class T>
  obinstream& write_block(const T* elements, unsigned int count);

  // Writes `count` elements like as many values, each a call of the device or all together, as that
  // prefers. T is int, unsigned int, float or double.
  template <class T>
  obinstream& write_values(const T* elements, unsigned int count);

 private:
  template <class T>
  obinstream& write(const T& value);

  bindevice* device;
};

}  // namespace strata::inpout

#endif
