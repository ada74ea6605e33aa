// A device that writes or reads a file.
//
//   file_device device("tree.model", file_device::mode::write);
//   obinstream out(device);
//   out << 7U;
//   device.close();
#ifndef ARBOR_UTILS_FILE_DEVICE_H
#define ARBOR_UTILS_FILE_DEVICE_H

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "arbor/utils/bindevice.h"

namespace strata::inpout {

// Buffered: a value takes no system call of its own. Every failure throws a std::runtime_error
// whose message begins with the path.
class file_device : public bindevice {
 public:
  enum class mode { read, write };

  // Opens an existing file to read it from its first byte, or creates the file to write it. A file
  // that is there already is emptied then. `path` is relative to the current directory.
  file_device(const std::string& path, mode direction);
  // Closes the file, silently if that fails; call `close` first to learn of it.
  ~file_device() override = default;

  // May buffer the bytes, so that a full disk shows only in a later call or in `close`.
  void write(const void* data, unsigned int count) override;
  // Throws if the file ends before `count` bytes ("<path>: ends too early") or cannot be read. The
  // bytes that were there have been read then.
  void read(void* data, unsigned int count) override;
  // As above, for all values at once; in a class derived from this one by a call of write or read
  // for each value.
  void write_values(const void* data, unsigned int width, unsigned int count) override;
  void read_values(void* data, unsigned int width, unsigned int count) override;

  // For a regular file that is read: the size it had when it was opened, minus the bytes read. When
  // that is 0, it looks for another byte: if there is one, the result is unknown, because the file
  // has grown or has no size of its own, like those under /proc. Unknown for everything else.
  unsigned long long remaining() const override;

  // Writes what is still buffered and closes the file. No other call may follow.
  void close();

 private:
  void write_bytes(const void* data, std::size_t count);
  void read_bytes(void* data, std::size_t count);
  bool at_end() const;
  [[noreturn]] void fail(const char* what) const;

  std::string name;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file;
  std::optional<unsigned long long> size;  // of a regular file that is read
  unsigned long long position = 0;         // how many bytes have been read
};

}  // namespace strata::inpout

#endif
