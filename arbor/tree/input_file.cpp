#include "arbor/tree/input_file.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "arbor/tree/message_text.h"
#include "arbor/tree/table_error.h"

namespace arbor::tree {

namespace {

int leave_open(std::FILE* /*standard_input*/) {
  return 0;
}

}  // namespace

input_file::input_file(const std::string& path)
    : display_name(path == "-" ? "standard input" : printable(path)),
      file(path == "-" ? handle(stdin, leave_open) : handle(std::fopen(path.c_str(), "rb"), std::fclose)) {
  if (file == nullptr) fail("cannot be opened");
  start = std::ftell(file.get());
  if (start >= 0) return;
  if (errno != ESPIPE) fail("cannot be read");
  spool();
}

void input_file::spool() {
  const char* folder = std::getenv("TMPDIR");
  std::string path = std::string(folder == nullptr ? "/tmp" : folder) + "/arbor.XXXXXX";
  const std::string failure = "cannot be copied to a temporary file " + printable(path);
  const int descriptor = mkstemp(path.data());
  if (descriptor < 0) fail(failure);
  unlink(path.c_str());
  handle copy(fdopen(descriptor, "w+b"), std::fclose);
  if (copy == nullptr) fail(failure);
  std::array<char, 1U << 16U> buffer{};
  while (const std::size_t count = read(buffer.data(), buffer.size())) {
    if (std::fwrite(buffer.data(), 1, count, copy.get()) != count) fail(failure);
  }
  if (std::fflush(copy.get()) != 0) fail(failure);
  file = std::move(copy);
  start = 0;
  rewind();
}

std::size_t input_file::read(char* buffer, std::size_t size) {
  const std::size_t count = std::fread(buffer, 1, size, file.get());
  if (count < size && std::ferror(file.get()) != 0) fail("cannot be read");
  return count;
}

void input_file::rewind() {
  if (std::fseek(file.get(), start, SEEK_SET) != 0) fail("cannot be read again from its beginning");
}

void input_file::fail(const std::string& what) const {
  throw table_error(display_name + ": " + what + ": " + std::strerror(errno));
}

}  // namespace arbor::tree
