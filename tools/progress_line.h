// A line on standard error that shows the progress of long work. Where standard error is no
// terminal, nothing is shown.
//
//   progress_line progress;
//   for (...) if (progress.due()) progress.show(std::to_string(rows) + " rows read");
#ifndef ARBOR_TOOLS_PROGRESS_LINE_H
#define ARBOR_TOOLS_PROGRESS_LINE_H

#include <chrono>
#include <string>

namespace arbor::tools {

class progress_line {
 public:
  progress_line();
  // Clears the line.
  ~progress_line() { clear(); }
  progress_line(const progress_line&) = delete;
  progress_line& operator=(const progress_line&) = delete;

  // Whether there is a terminal and the line is a tenth of a second old.
  bool due();
  // Replaces the line.
  void show(const std::string& text);
  void clear();

 private:
  bool on_terminal;
  bool shown = false;
  std::chrono::steady_clock::time_point last;
};

}  // namespace arbor::tools

#endif
