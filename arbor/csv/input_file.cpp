#include "arbor/csv/input_file.h"

#include <sys/stat.h>

#include <algorithm>
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

input_file::input_file(const std::string& path, std::uint64_t first, std::uint64_t end)
    : input_file(path) {
  bytes_left = end - first;
  if (fseeko(file.get(), static_cast<off_t>(first), SEEK_SET) != 0) fail("cannot be read");
}

std::size_t input_file::read(char* buffer, std::size_t size) {
  size = static_cast<std::size_t>(std::min<std::uint64_t>(size, bytes_left));
  const std::size_t count = std::fread(buffer, 1, size, file.get());
  if (count < size && std::ferror(file.get()) != 0) fail("cannot be read");
  bytes_left -= count;
  bytes_read += count;
  return count;
}

std::optional<std::uint64_t> input_file::plain_size() const {
  struct stat status {};
  if (fstat(fileno(file.get()), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

void input_file::fail(const std::string& what) const {
  throw table_error(display_name + ": " + what + ": " + std::strerror(errno));
}

}  // namespace arbor::tree
