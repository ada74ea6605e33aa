// Reads what obinstream wrote, in the same order and with the same types.
//
//   memory_device device(bytes);
//   ibinstream in(device);
//   unsigned int number = 0;
//   std::string name;
//   in >> number >> name;
#ifndef ARBOR_UTILS_IBINSTREAM_H
#define ARBOR_UTILS_IBINSTREAM_H

#include <string>
#include <type_traits>
#include <vector>

#include "arbor/utils/bindevice.h"
#include "arbor/utils/datatype.h"

namespace strata::inpout {

// Has no buffer: each value is one call of the device. What the device throws is passed on; a
// pointer that was to be set is null then, and nothing is leaked. A length or count that is larger
// than the rest of the device (see bindevice::remaining) is refused with std::runtime_error before
// memory is allocated for it.
class ibinstream {
 public:
  // The device stays the caller's and must outlive the stream.
  explicit ibinstream(bindevice& source) : device(&source) {}

  ibinstream& operator>>(bool& value);  // true for any byte but 0
  ibinstream& operator>>(unsigned char& value);
  ibinstream& operator>>(unsigned short& value);
  ibinstream& operator>>(unsigned int& value);
  ibinstream& operator>>(unsigned long long& value);
  ibinstream& operator>>(int& value);
  ibinstream& operator>>(float& value);
  ibinstream& operator>>(double& value);

  // Reads a text into a new NUL-terminated array, which the caller releases with delete[]; an
  // absent text gives null. The earlier value of `text` is not released. Throws std::runtime_error
  // "Failed to create object" for a length above 2147483646, and the same as no_storage (see
  // no_storage.h) if there is no memory for it.
  ibinstream& operator>>(char*& text);

  // Reads a text up to its first zero byte; an absent text gives the empty one. Throws also
  // std::bad_alloc. `text` is unchanged when anything is thrown.
  ibinstream& operator>>(std::string& text);

  // Reads `count` elements, as write_block wrote them, into the array `elements`, which the caller
  // has allocated. T is bool, an unsigned type, int, float or double of the operators above. When
  // the device throws, bools are all false and other elements may have been read.
  template <class T>
  ibinstream& read_block(T* elements, unsigned int count);

  // Reads a vector, 00 for a null pointer or 01 | count u32 | elements, each a primitive or a text.
  // Vector is std::vector<datatype<T>> with T int, unsigned int, float, double or std::string. The
  // caller owns the new vector; the earlier value of `vector` is not released. Throws also
  // std::bad_alloc, and no_storage if there is no memory for the empty vector. The operator does
  // the same. Domains and columns have operators of their own.
  template <class Vector>
  ibinstream& read_special(Vector*& vector) {
    static_assert(holds_one_of<Vector, int, unsigned int, float, double, std::string>,
                  "a pointer can be read only if it is a char*, a pointer to a std::vector of "
                  "datatype<T>, or of exactly the type that an operator>> of its class takes");
    return read_vector(vector);
  }
  template <class Vector>
  ibinstream& operator>>(Vector*& vector) {
    return read_special(vector);
  }

  // Throws std::runtime_error if `count` elements of at least `least_bytes` bytes each (not 0) are
  // more than the device can still hold.
  void expect(unsigned long long count, unsigned int least_bytes) const;

 private:
  template <class Vector, class... T>
  static constexpr bool holds_one_of =
      (std::is_same_v<Vector, std::vector<data_types::datatype<T>>> || ...);

  template <class T>
  ibinstream& read(T& value);
  void read_bools(bool* elements, unsigned int count);
  template <class Vector>
  ibinstream& read_vector(Vector*& vector);

  bindevice* device;
};

}  // namespace strata::inpout

#endif
