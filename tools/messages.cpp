#include "tools/messages.h"

#include <unistd.h>

#include <iostream>
#include <string_view>

#include "arbor/csv/shown_text.h"

namespace arbor::tools {

void complain(const std::string& message) {
  constexpr std::size_t most_columns = 1000;
  const std::string line = "arbor: " + tree::shown(message, most_columns) + '\n';
  std::cerr << line << std::flush;
}

void complain_of_memory() noexcept {
  constexpr std::string_view line = "arbor: out of memory\n";
  // A failure is ignored: there is no other place to report it.
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace arbor::tools
