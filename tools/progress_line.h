// One line on standard error that tells how far long work has come, while that is a terminal; else
// nothing.
#ifndef ARBOR_TOOLS_PROGRESS_LINE_H
#define ARBOR_TOOLS_PROGRESS_LINE_H

#include <chrono>
#include <string>

namespace arbor::tools {

class progress_line {
 public:
  progress_line();
  ~progress_line() { clear(); }
  progress_line(const progress_line&) = delete;
  progress_line& operator=(const progress_line&) = delete;

  // Whether there is a terminal and a tenth of a second has gone by since the last time. Cheap
  // enough to ask at each row.
  bool due();
  void show(const std::string& text);
  void clear();

 private:
  bool on_terminal;
  bool shown = false;
  unsigned int asked = 0;
  std::chrono::steady_clock::time_point last;
};

}  // namespace arbor::tools

#endif
