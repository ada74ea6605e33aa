#include "arbor/utils/file_device.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <typeinfo>

namespace strata::inpout {

file_device::file_device(const std::string& path, mode direction)
    : name(path),
      file(std::fopen(path.c_str(), direction == mode::read ? "rb" : "wb"), std::fclose),
      unread(bindevice::remaining()) {
  if (file == nullptr) fail("cannot be opened");
  std::error_code no_regular_file;
  const auto size = std::filesystem::file_size(path, no_regular_file);
  if (direction == mode::read && !no_regular_file) unread = size;
}

void file_device::write(const void* data, unsigned int count) {
  write_bytes(data, count);
}

// A device derived from this one may watch each call.
void file_device::write_values(const void* data, unsigned int width, unsigned int count) {
  if (typeid(*this) != typeid(file_device)) return bindevice::write_values(data, width, count);
  write_bytes(data, std::size_t{width} * count);
}

void file_device::read(void* data, unsigned int count) {
  read_bytes(data, count);
}

void file_device::read_values(void* data, unsigned int width, unsigned int count) {
  if (typeid(*this) != typeid(file_device)) return bindevice::read_values(data, width, count);
  read_bytes(data, std::size_t{width} * count);
}

void file_device::write_bytes(const void* data, std::size_t count) {
  if (std::fwrite(data, 1, count, file.get()) != count) fail("cannot be written");
}

void file_device::read_bytes(void* data, std::size_t count) {
  if (std::fread(data, 1, count, file.get()) != count) {
    if (std::ferror(file.get()) != 0) fail("cannot be read");
    throw std::runtime_error(name + ": ends too early");
  }
  if (unread != bindevice::remaining()) unread -= count;
}

unsigned long long file_device::remaining() const {
  return unread;
}

void file_device::close() {
  if (std::fclose(file.release()) != 0) fail("cannot be written");
}

void file_device::fail(const char* what) const {
  throw std::runtime_error(name + ": " + what + ": " + std::strerror(errno));
}

}  // namespace strata::inpout
