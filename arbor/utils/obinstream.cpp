#include "arbor/utils/obinstream.h"

#include <cstring>
#include <stdexcept>

#include "arbor/utils/block_transfer.h"

namespace strata::inpout {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "values are written as they are in memory");

template <class T>
obinstream& obinstream::write(const T& value) {
  device->write(&value, sizeof value);
  return *this;
}

obinstream& obinstream::operator<<(bool value) {
  return *this << static_cast<unsigned char>(value ? 1 : 0);
}
obinstream& obinstream::operator<<(unsigned char value) {
  return write(value);
}
obinstream& obinstream::operator<<(unsigned short value) {
  return write(value);
}
obinstream& obinstream::operator<<(unsigned int value) {
  return write(value);
}
obinstream& obinstream::operator<<(unsigned long long value) {
  return write(value);
}
obinstream& obinstream::operator<<(int value) {
  return write(value);
}
obinstream& obinstream::operator<<(float value) {
  return write(value);
}
obinstream& obinstream::operator<<(double value) {
  return write(value);
}

obinstream& obinstream::operator<<(const char* text) {
  if (text == nullptr) return *this << false;
  // Not strlen: a 32-bit compiler assumes that its result is smaller, and drops the check.
  const void* end = std::memchr(text, '\0', 0x7FFFFFFFU);
  if (end == nullptr) throw std::runtime_error("obinstream::writing too long string");
  const auto length = static_cast<unsigned int>(static_cast<const char*>(end) - text);
  *this << true << length;
  device->write(text, length);
  return *this;
}

template <class T>
obinstream& obinstream::write_block(const T* elements, unsigned int count) {
  transfer_block(elements, count,
                 [this](const T* data, unsigned int bytes) { device->write(data, bytes); });
  return *this;
}

template <class T>
obinstream& obinstream::write_values(const T* elements, unsigned int count) {
  device->write_values(elements, sizeof(T), count);
  return *this;
}

template obinstream& obinstream::write_values(const unsigned int*, unsigned int);
template obinstream& obinstream::write_values(const int*, unsigned int);
template obinstream& obinstream::write_values(const float*, unsigned int);
template obinstream& obinstream::write_values(const double*, unsigned int);
template obinstream& obinstream::write_block(const bool*, unsigned int);
template obinstream& obinstream::write_block(const unsigned char*, unsigned int);
template obinstream& obinstream::write_block(const unsigned short*, unsigned int);
template obinstream& obinstream::write_block(const unsigned int*, unsigned int);
template obinstream& obinstream::write_block(const unsigned long long*, unsigned int);
template obinstream& obinstream::write_block(const int*, unsigned int);
template obinstream& obinstream::write_block(const float*, unsigned int);
template obinstream& obinstream::write_block(const double*, unsigned int);

}  // namespace strata::inpout
