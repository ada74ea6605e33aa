#include "arbor/utils/ibinstream.h"

#include <algorithm>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>

#include "arbor/utils/allocatable.h"
#include "arbor/utils/block_transfer.h"
#include "arbor/utils/no_storage.h"
#include "arbor/utils/text_storage.h"

namespace strata::inpout {

using data_types::datatype;

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "values are read as they are in memory");

template <class T>
ibinstream& ibinstream::read(T& value) {
  device->read(&value, sizeof value);
  return *this;
}

ibinstream& ibinstream::operator>>(bool& value) {
  unsigned char byte = 0;
  *this >> byte;
  value = byte != 0;
  return *this;
}
ibinstream& ibinstream::operator>>(unsigned char& value) {
  return read(value);
}
ibinstream& ibinstream::operator>>(unsigned short& value) {
  return read(value);
}
ibinstream& ibinstream::operator>>(unsigned int& value) {
  return read(value);
}
ibinstream& ibinstream::operator>>(unsigned long long& value) {
  return read(value);
}
ibinstream& ibinstream::operator>>(int& value) {
  return read(value);
}
ibinstream& ibinstream::operator>>(float& value) {
  return read(value);
}
ibinstream& ibinstream::operator>>(double& value) {
  return read(value);
}

ibinstream& ibinstream::operator>>(char*& text) {
  text = nullptr;
  bool present = false;
  *this >> present;
  if (!present) return *this;
  unsigned int length = 0;
  *this >> length;
  expect(length, 1);
  // No longer text is ever written; and with its terminating zero it would need 2^31 bytes.
  if (length > 0x7FFFFFFEU) throw std::runtime_error("Failed to create object");
  std::unique_ptr<char[]> array(new (std::nothrow) char[length + 1]);
  if (array == nullptr) throw util::no_storage("Failed to create object");
  device->read(array.get(), length);
  array[length] = '\0';
  text = array.release();
  return *this;
}

ibinstream& ibinstream::operator>>(std::string& text) {
  char* array = nullptr;
  *this >> array;
  const std::unique_ptr<char[]> owner(array);
  util::assign_text(text, array == nullptr ? "" : array);
  return *this;
}

void ibinstream::expect(unsigned long long count, unsigned int least_bytes) const {
  if (count > device->remaining() / least_bytes) {
    throw std::runtime_error("ibinstream: a length of " + std::to_string(count) +
                             " is more than what is left to read");
  }
}

template <class T>
ibinstream& ibinstream::read_block(T* elements, unsigned int count) {
  if constexpr (std::is_same_v<T, bool>) {
    read_bools(elements, count);
  } else {
    transfer_block(elements, count,
                   [this](T* data, unsigned int bytes) { device->read(data, bytes); });
  }
  return *this;
}

// As bytes, because a bool that holds any byte but 0 and 1 has no value.
void ibinstream::read_bools(bool* elements, unsigned int count) {
  auto* const bytes = reinterpret_cast<unsigned char*>(elements);
  try {
    read_block(bytes, count);
  } catch (...) {
    std::fill_n(elements, count, false);
    throw;
  }
  std::transform(bytes, bytes + count, elements, [](unsigned char byte) { return byte != 0; });
}

template <class Vector>
ibinstream& ibinstream::read_vector(Vector*& vector) {
  using value_type = decltype(Vector::value_type::value);
  vector = nullptr;
  bool present = false;
  *this >> present;
  if (!present) return *this;
  std::unique_ptr<Vector> loaded(new (std::nothrow) Vector());
  if (loaded == nullptr)
    throw util::no_storage("ibinstream::operator >>: failed to create object.");
  unsigned int count = 0;
  *this >> count;
  // The shortest text is an absent one, a single byte.
  expect(count, std::is_same_v<value_type, std::string> ? 1 : sizeof(value_type));
  loaded->resize(util::allocatable<typename Vector::value_type>(count));
  if constexpr (std::is_same_v<value_type, std::string>) {
    for (auto& element : *loaded) *this >> element.value;
  } else {
    static_assert(sizeof(typename Vector::value_type) == sizeof(value_type),
                  "an array of values is an array of numbers");
    device->read_values(loaded->data(), sizeof(value_type), count);
  }
  vector = loaded.release();
  return *this;
}

template ibinstream& ibinstream::read_block(bool*, unsigned int);
template ibinstream& ibinstream::read_block(unsigned char*, unsigned int);
template ibinstream& ibinstream::read_block(unsigned short*, unsigned int);
template ibinstream& ibinstream::read_block(unsigned int*, unsigned int);
template ibinstream& ibinstream::read_block(unsigned long long*, unsigned int);
template ibinstream& ibinstream::read_block(int*, unsigned int);
template ibinstream& ibinstream::read_block(float*, unsigned int);
template ibinstream& ibinstream::read_block(double*, unsigned int);
template ibinstream& ibinstream::read_vector(std::vector<datatype<int>>*&);
template ibinstream& ibinstream::read_vector(std::vector<datatype<unsigned int>>*&);
template ibinstream& ibinstream::read_vector(std::vector<datatype<float>>*&);
template ibinstream& ibinstream::read_vector(std::vector<datatype<double>>*&);
template ibinstream& ibinstream::read_vector(std::vector<datatype<std::string>>*&);

}  // namespace strata::inpout
