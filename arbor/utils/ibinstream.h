// Reads back what obinstream wrote, in the order in which it was written.
//
//   memory_device device(bytes);
//   ibinstream in(device);
//   unsigned int number = 0;
//   std::string name;
//   in >> number >> name;
#ifndef ARBOR_UTILS_IBINSTREAM_H
#define ARBOR_UTILS_IBINSTREAM_H

#include <string>
#include <vector>

#include "arbor/utils/bindevice.h"
#include "arbor/utils/datatype.h"

namespace strata::inpout {

// Every value is one call of the device, those of a vector one each unless the device has another
// way. What the device throws passes through; a pointer that was to be set is null then, and
// nothing is leaked. A length or count that the device's remaining bytes cannot hold is refused
// with std::runtime_error before anything is allocated for it.
class ibinstream {
 public:
  // The device stays the caller's and must outlive the stream.
  explicit ibinstream(bindevice& source) : device(&source) {}

  ibinstream& operator>>(bool& value);  // true from any byte but 0
  ibinstream& operator>>(unsigned char& value);
  ibinstream& operator>>(unsigned short& value);
  ibinstream& operator>>(unsigned int& value);
  ibinstream& operator>>(unsigned long long& value);
  ibinstream& operator>>(int& value);
  ibinstream& operator>>(float& value);
  ibinstream& operator>>(double& value);

  // Reads a text: null if it was, else a new NUL-terminated array that the caller releases with
  // delete[]. Throws no_storage, a std::runtime_error, "Failed to create object" when there is none
  // for it.
  ibinstream& operator>>(char*& text);

  // Reads a text up to its first zero byte, an absent one as the empty text. When it throws, `text`
  // is unchanged.
  ibinstream& operator>>(std::string& text);

  // Reads `count` elements of 1, 2, 4 or 8 bytes into storage that the caller has made, as
  // write_block wrote them.
  template <class T>
  ibinstream& read_block(T* elements, unsigned int count);

  // Reads a vector, 00 for a null pointer, else 01 | count u32 | elements; each element is a
  // primitive or a text. The caller owns it. Vector is std::vector<datatype<T>> with T int, float,
  // double or std::string for read_special, and unsigned int for the operator; they do the same.
  template <class Vector>
  ibinstream& read_special(Vector*& vector);
  template <class Vector>
  ibinstream& operator>>(Vector*& vector);

  // Throws std::runtime_error if `count` elements that take at least `least_bytes` each cannot be
  // what remains.
  void expect(unsigned long long count, unsigned int least_bytes) const;

 private:
  template <class T>
  ibinstream& read(T& value);

  bindevice* device;
};

}  // namespace strata::inpout

#endif
