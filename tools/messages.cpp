#include "tools/messages.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <string_view>

#include "arbor/csv/shown_text.h"
#include "tools/program.h"

namespace arbor::tools {

void complain(const std::string& message) {
  constexpr std::size_t most_columns = 1000;
  const std::string line =
      std::string(program_name) + ": " + tree::shown(message, most_columns) + '\n';
  std::cerr << line << std::flush;
}

void complain_of_memory() noexcept {
  constexpr std::string_view message = ": out of memory\n";
  std::array<char, 64> line{};
  char* end = std::copy(program_name.begin(), program_name.end(), line.begin());
  end = std::copy(message.begin(), message.end(), end);
  // A failure is ignored: there is no other place to report it.
  [[maybe_unused]] const ssize_t written =
      write(STDERR_FILENO, line.data(), static_cast<std::size_t>(end - line.data()));
}

}  // namespace arbor::tools
