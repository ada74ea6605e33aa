// Replaces a file either as a whole or not at all.
//
//   file_replacement file("golf.model");
//   write(file.temporary_path());
//   file.commit();
#ifndef ARBOR_STORE_FILE_REPLACEMENT_H
#define ARBOR_STORE_FILE_REPLACEMENT_H

#include <string>

namespace arbor::tree {

// Until `commit` has returned, the present file stays as it is, whatever happens. The temporary
// file in its folder is removed with this object, and also when a signal ends the process (SIGINT,
// SIGTERM, SIGHUP, SIGQUIT, SIGXFSZ). Only one object may exist at a time. A link to an existing
// file is followed, and the access rights of an existing file are kept.
class file_replacement {
 public:
  // Creates the temporary file, empty, in the folder of the file. Throws table_error, also if
  // `path` exists and is no regular file, and std::bad_alloc.
  explicit file_replacement(const std::string& path);
  ~file_replacement();
  file_replacement(const file_replacement&) = delete;
  file_replacement& operator=(const file_replacement&) = delete;

  const std::string& temporary_path() const { return temporary; }

  // Flushes the temporary file to the disk, and renames it to the file. Throws table_error; the
  // present file is unchanged then.
  void commit();

 private:
  std::string target;
  std::string temporary;
  bool committed = false;
};

}  // namespace arbor::tree

#endif
