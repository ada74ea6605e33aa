#include "arbor/report/picture.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/store/file_replacement.h"

namespace arbor::tree {

namespace {

// Writes a text to the standard input of a shell command. Returns whether all of it was written and
// the command succeeded.
bool pipe_into(const std::string& command, const std::string& text) {
  FILE* input = popen(command.c_str(), "w");
  if (input == nullptr) return false;
  const bool sent = std::fwrite(text.data(), 1, text.size(), input) == text.size();
  return pclose(input) == 0 && sent;
}

}  // namespace

bool can_draw() {
  return std::system("command -v dot >/dev/null 2>&1") == 0;
}

void draw(const std::string& graph, const std::string& path) {
  file_replacement file(path);
  // A command that ends before it has read everything must not end this process.
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  const bool drawn = pipe_into("dot -Tsvg >" + shell_word(file.temporary_path()), graph);
  static_cast<void>(std::signal(SIGPIPE, before));
  if (!drawn) throw table_error(printable(path) + ": Graphviz could not draw the picture");
  file.commit();
}

}  // namespace arbor::tree
