#include "arbor/csv/input_file.h"

#include <cerrno>
#include <cstring>

#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

int leave_open(std::FILE* /*standard_input*/) {
  return 0;
}

}  // namespace

input_file::input_file(const std::string& path)
    : display_name(path == "-" ? "standard input" : printable(path)),
      file(path == "-" ? handle(stdin, leave_open)
                       : handle(std::fopen(path.c_str(), "rb"), std::fclose)) {
  if (file == nullptr) fail("cannot be opened");
}

std::size_t input_file::read(char* buffer, std::size_t size) {
  const std::size_t count = std::fread(buffer, 1, size, file.get());
  if (count < size && std::ferror(file.get()) != 0) fail("cannot be read");
  bytes_read += count;
  return count;
}

void input_file::fail(const std::string& what) const {
  throw table_error(display_name + ": " + what + ": " + std::strerror(errno));
}

}  // namespace arbor::tree
