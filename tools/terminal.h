// The terminal that standard output may be.
#ifndef ARBOR_TOOLS_TERMINAL_H
#define ARBOR_TOOLS_TERMINAL_H

#include <cstddef>
#include <memory>
#include <ostream>
#include <streambuf>

namespace arbor::tools {

// How many columns a name or a value may take in a report: those of the terminal; 60 where standard
// output is none or does not say.
std::size_t text_width();

// While it exists, what is written to a stream that is a terminal is escaped as by `printable`, but
// for line feeds: comma-separated values and help quote texts as they are, which a program needs
// and a terminal might obey.
class terminal_guard {
 public:
  // Guards the stream, which must outlive this object, if `is_terminal`. Flush the stream before
  // this object ends: it writes what is left, but does not say if that fails.
  terminal_guard(std::ostream& guarded, bool is_terminal);
  ~terminal_guard();
  terminal_guard(const terminal_guard&) = delete;
  terminal_guard& operator=(const terminal_guard&) = delete;

 private:
  std::ostream& stream;
  std::streambuf* unguarded;
  std::unique_ptr<std::streambuf> escaping;
};

// Whether standard output is a terminal.
bool prints_to_terminal();

}  // namespace arbor::tools

#endif
