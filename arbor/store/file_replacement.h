// Replaces a file either as a whole or not at all.
//
//   file_replacement file("golf.model");
//   file.write(bytes.data(), bytes.size());
//   file.commit();
#ifndef ARBOR_STORE_FILE_REPLACEMENT_H
#define ARBOR_STORE_FILE_REPLACEMENT_H

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "arbor/store/ownership.h"

namespace arbor::tree {

// Until `commit` has returned, the present file stays as it is, whatever happens. The temporary
// file in its folder, NAME.XXXXXX, is removed with this object, and also when a signal ends the
// process. For that, the first object gives each signal that would end the process, faults too, a
// handler that removes the file and then lets the signal end the process; it stays. Signals that
// are ignored, or have a handler, are left alone; a handler that ends the process should call
// remove_unfinished_file. Only one object may exist at a time.
//
// The new file has the owner, the group and the access rights of the present one, without setuid,
// setgid and sticky. If owner or group have changed, it has only those of the rights that the umask
// allows; a new group has none, and others none that the old group did not have. Access control
// lists and extended attributes are not kept, nor the rights of a group next to such a list.
//
// Symbolic links are followed, even if the file that they name does not exist yet, and stay.
// Other names of the present file (hard links) keep the old content.
//
// A device or named pipe has no content to keep. It is opened by the first `write`, which waits for
// a reader of the pipe, and is written to directly; `commit` only closes it.
class file_replacement {
 public:
  // Creates the temporary file, empty, with rights for its owner alone. Throws std::bad_alloc;
  // ownership_error; and table_error, also if `path` exists and is anything but a regular file, a
  // character device or a named pipe, and if it names a file as an open one (/dev/fd/3).
  explicit file_replacement(const std::string& path, ownership of_new_file = ownership::kept);
  ~file_replacement();
  file_replacement(const file_replacement&) = delete;
  file_replacement& operator=(const file_replacement&) = delete;

  // Writes all bytes, without a buffer. Throws table_error, naming the file and the reason.
  void write(const void* data, std::size_t count);

  // Flushes the temporary file to the disk, and renames it to the file; nothing else may be called
  // then. Throws table_error; the present file is unchanged then.
  void commit();

 private:
  void create_temporary_file();
  void close_file();
  void discard() noexcept;

  std::string name;       // as the caller wrote it
  std::string target;     // where its links lead
  std::string temporary;  // empty if the target is written to directly
  int descriptor = -1;
  mode_t rights = 0;
};

// Removes the temporary file if there is one: for handlers that end the process without unwinding
// the stack. Safe in a handler of signals.
void remove_unfinished_file() noexcept;

}  // namespace arbor::tree

#endif
