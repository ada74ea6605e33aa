// The bytes of a file or of standard input, which can be read more than once.
//
//   input_file file("-");
//   while (std::size_t count = file.read(buffer, sizeof buffer)) ...
//   file.rewind();
#ifndef ARBOR_TREE_INPUT_FILE_H
#define ARBOR_TREE_INPUT_FILE_H

#include <cstdio>
#include <memory>
#include <string>

namespace arbor::tree {

class input_file {
 public:
  // Opens `path`, "-" for standard input. What cannot be rewound, such as a pipe, is first copied to its end into a
  // temporary file without a name, in the folder that the environment names as TMPDIR, else in /tmp. Throws table_error
  // when it cannot be opened or copied.
  explicit input_file(const std::string& path);

  // Fills `buffer` with the next bytes, at most `size`; fewer than `size` only at the end. Throws table_error.
  std::size_t read(char* buffer, std::size_t size);

  // Goes back to where the file was when it was opened. Throws table_error.
  void rewind();

  // How messages name it.
  const std::string& name() const { return display_name; }

 private:
  using handle = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

  [[noreturn]] void fail(const std::string& what) const;
  void spool();

  std::string display_name;
  handle file;
  long start = 0;
};

}  // namespace arbor::tree

#endif
