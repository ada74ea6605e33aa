// Writes values, texts and arrays in the binary form of saved models.
//
//   memory_device device;
//   obinstream out(device);
//   out << 7U << "seven";
//
// Multi-byte values are little-endian, lengths and counts have four bytes, and nothing separates
// one value from the next:
//
//   bool              1 byte, 0 or 1
//   other primitives  1, 2, 4 or 8 bytes, as in memory
//   text              00 for a null pointer, else 01 | length u32 | bytes, without a terminating 0
//   array             element after element; its count is not part of it
#ifndef ARBOR_UTILS_OBINSTREAM_H
#define ARBOR_UTILS_OBINSTREAM_H

#include <cstddef>
#include <type_traits>

#include "arbor/utils/bindevice.h"

namespace strata::inpout {

// Has no buffer: each value is one call of the device. What the device throws is passed on; what
// was written before stays written.
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

  // Writes the text up to its first zero byte, or the absent text for a null pointer. Throws
  // std::runtime_error "obinstream::writing too long string" for a text of more than 2147483646
  // bytes; nothing is written then.
  obinstream& operator<<(const char* text);
  obinstream& operator<<(std::nullptr_t) { return *this << false; }

  // Any other pointer would be converted to bool and written as one byte. Domains and columns have
  // operators of their own.
  obinstream& operator<<(const volatile void* a_pointer_cannot_be_saved) = delete;
  template <class Function, class = std::enable_if_t<std::is_function_v<Function>>>
  obinstream& operator<<(Function* a_function_cannot_be_saved) = delete;
  template <class Member, class Class>
  obinstream& operator<<(Member Class::*a_member_cannot_be_saved) = delete;

  // Writes `count` elements from `elements` on: in one call of the device if they have less than
  // 2147483647 bytes (rounded down to whole elements), else in one call for each. T is bool, an
  // unsigned type, int, float or double of the operators above.
  template <class T>
  obinstream& write_block(const T* elements, unsigned int count);

  // Writes `count` elements from `elements` on as single values: one call of the device for each,
  // or all at once if the device overrides write_values. T is int, unsigned int, float or double.
  template <class T>
  obinstream& write_values(const T* elements, unsigned int count);

 private:
  template <class T>
  obinstream& write(const T& value);

  bindevice* device;
};

}  // namespace strata::inpout

#endif
