// A device in a file.
//
//   file_device device("tree.model", file_device::mode::write);
//   obinstream out(device);
//   out << 7U;
//   device.close();
#ifndef ARBOR_UTILS_FILE_DEVICE_H
#define ARBOR_UTILS_FILE_DEVICE_H

#include <cstdio>
#include <memory>
#include <string>

#include "arbor/utils/bindevice.h"

namespace strata::inpout {

// Buffered. Every failure throws std::runtime_error that names the path.
class file_device : public bindevice {
 public:
  enum class mode { read, write };

  // Opens an existing file, or creates or empties one.
  file_device(const std::string& path, mode direction);
  // Closes without a word of what fails; call `close` to know.
  ~file_device() override = default;

  void write(const void* data, unsigned int count) override;
  void read(void* data, unsigned int count) override;
  void write_values(const void* data, unsigned int width, unsigned int count) override;
  void read_values(void* data, unsigned int width, unsigned int count) override;
  // Known for regular files that are read.
  unsigned long long remaining() const override;

  // Hands all that was written to the system and closes. No other call may follow.
  void close();

 private:
  void write_bytes(const void* data, std::size_t count);
  void read_bytes(void* data, std::size_t count);
  [[noreturn]] void fail(const char* what) const;

  std::string name;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file;
  unsigned long long unread;
};

}  // namespace strata::inpout

#endif
