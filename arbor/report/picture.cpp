#include "arbor/report/picture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

using c_file = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

[[noreturn]] void fail() {
  throw table_error("Graphviz could not draw the picture");
}

// In memory, so that a command can read it while this process reads what the command writes.
c_file in_memory(const std::string& text) {
  const int descriptor = memfd_create("graph", 0);
  c_file file(descriptor < 0 ? nullptr : fdopen(descriptor, "w"), std::fclose);
  if (descriptor >= 0 && file == nullptr) close(descriptor);
  if (file == nullptr) fail();
  const bool whole = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
  if (!whole || std::fflush(file.get()) != 0) fail();
  return file;
}

}  // namespace

bool can_draw() {
  return std::system("command -v dot >/dev/null 2>&1") == 0;
}

// Graphviz does not report each failure to write. What it writes is taken here, so that the caller
// writes the file.
std::string as_svg(const std::string& graph) {
  const c_file input = in_memory(graph);
  const std::string from = "/proc/self/fd/" + std::to_string(fileno(input.get()));
  c_file output(popen(("dot -Tsvg <" + from).c_str(), "r"), pclose);
  if (output == nullptr) fail();
  std::string svg;
  std::array<char, 1U << 13U> part{};
  while (const std::size_t count = std::fread(part.data(), 1, part.size(), output.get()))
    svg.append(part.data(), count);
  const bool whole = std::ferror(output.get()) == 0;
  if (pclose(output.release()) != 0 || !whole || svg.empty()) fail();
  return svg;
}

}  // namespace arbor::tree
