// A file for the length of a test.
#ifndef ARBOR_TESTS_SUPPORT_TEMPORARY_FILE_H
#define ARBOR_TESTS_SUPPORT_TEMPORARY_FILE_H

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace arbor::tests {

class temporary_file {
 public:
  explicit temporary_file(const std::string& contents)
      : file_path("/tmp/arbor_test_" + std::to_string(getpid()) + "_" + std::to_string(++made)) {
    std::ofstream(file_path, std::ios::binary) << contents;
  }
  ~temporary_file() { std::remove(file_path.c_str()); }
  temporary_file(const temporary_file&) = delete;
  temporary_file& operator=(const temporary_file&) = delete;

  const std::string& path() const { return file_path; }

 private:
  static inline int made = 0;
  std::string file_path;
};

}  // namespace arbor::tests

#endif
