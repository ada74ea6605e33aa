#include "arbor/utils/file_device.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <typeinfo>

#include "arbor/utils/text_storage.h"

namespace strata::inpout {

file_device::file_device(const std::string& path, mode direction)
    : name(path),
      file(std::fopen(path.c_str(), direction == mode::read ? "rb" : "wb"), std::fclose) {
  if (file == nullptr) fail("cannot be opened");
  if (direction == mode::write) return;
  std::error_code not_regular;
  const auto found = std::filesystem::file_size(path, not_regular);
  if (!not_regular) size = found;
}

void file_device::write(const void* data, unsigned int count) {
  write_bytes(data, count);
}

// A class derived from this one may count the calls, or write elsewhere.
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
  const std::size_t got = std::fread(data, 1, count, file.get());
  position += got;
  if (got == count) return;
  if (std::ferror(file.get()) != 0) fail("cannot be read");
  std::clearerr(file.get());              // or bytes that are appended later could not be read
  if (size.has_value()) size = position;  // it ends here, whatever its size was
  throw std::runtime_error(util::joined({name, ": ends too early"}));
}

unsigned long long file_device::remaining() const {
  if (!size.has_value()) return bindevice::remaining();
  if (position < *size) return *size - position;
  return at_end() ? 0 : bindevice::remaining();
}

// Whether there is no byte to read. An error is left to the next read to report.
bool file_device::at_end() const {
  const int next = std::getc(file.get());
  if (next != EOF) return std::ungetc(next, file.get()) == EOF;
  const bool ended = std::feof(file.get()) != 0;
  std::clearerr(file.get());
  return ended;
}

void file_device::close() {
  if (std::fclose(file.release()) != 0) fail("cannot be written");
}

void file_device::fail(const char* what) const {
  throw std::runtime_error(util::joined({name, ": ", what, ": ", std::strerror(errno)}));
}

}  // namespace strata::inpout
