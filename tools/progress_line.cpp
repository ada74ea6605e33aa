#include "tools/progress_line.h"

#include <unistd.h>

#include <iostream>

namespace arbor::tools {

progress_line::progress_line()
    : on_terminal(isatty(STDERR_FILENO) == 1), last(std::chrono::steady_clock::now()) {}

bool progress_line::due() {
  return on_terminal && std::chrono::steady_clock::now() - last >= std::chrono::milliseconds(100);
}

void progress_line::show(const std::string& text) {
  std::cerr << "\r\x1B[K" << text << std::flush;
  shown = true;
  last = std::chrono::steady_clock::now();
}

void progress_line::clear() {
  if (shown) std::cerr << "\r\x1B[K" << std::flush;
  shown = false;
}

}  // namespace arbor::tools
