// Replaces a file as a whole or not at all.
//
//   file_replacement file("golf.model");
//   write(file.temporary_path());
//   file.commit();
#ifndef ARBOR_STORE_FILE_REPLACEMENT_H
#define ARBOR_STORE_FILE_REPLACEMENT_H

#include <string>

namespace arbor::tree {

// Whatever happens before `commit` has returned, std::bad_alloc for one, the file that was there
// stays as it was; the temporary file beside it goes with this object, and when a signal ends the
// process (SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXFSZ). One exists at a time. A link to a file that
// is there is followed, and the access rights of a file that is there are kept.
class file_replacement {
 public:
  // Creates the temporary file, empty, in the folder of the file. Throws table_error, also for what
  // is there and is no regular file.
  explicit file_replacement(const std::string& path);
  ~file_replacement();
  file_replacement(const file_replacement&) = delete;
  file_replacement& operator=(const file_replacement&) = delete;

  const std::string& temporary_path() const { return temporary; }

  // Makes sure that what the temporary file holds is on the disk, and gives it the name of the
  // file. Throws table_error.
  void commit();

 private:
  std::string target;
  std::string temporary;
  bool committed = false;
};

}  // namespace arbor::tree

#endif
