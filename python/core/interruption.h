// Runs work that takes long on a thread of its own, so that other Python threads go on meanwhile
// and Ctrl-C ends it.
//
//   run([&](const auto& check) { ... check(); ... });
#ifndef ARBOR_PYTHON_CORE_INTERRUPTION_H
#define ARBOR_PYTHON_CORE_INTERRUPTION_H

#include <locale.h>

#include <functional>

namespace arbor::python {

// While it exists, the calling thread reads and writes numbers with a decimal point, whatever
// locale the process has chosen. Pools that it makes do the same.
class point_locale {
 public:
  point_locale();
  ~point_locale();
  point_locale(const point_locale&) = delete;
  point_locale& operator=(const point_locale&) = delete;

 private:
  locale_t own;
  locale_t before;
};

// Calls the work, which must not use Python, and returns when it has ended. `check` throws, on any
// thread, once the work should end. Rethrows what the work throws; when a signal handler of Python
// raised an exception, which for Ctrl-C is KeyboardInterrupt, throws that instead. The caller has
// the GIL.
void run(const std::function<void(const std::function<void()>& check)>& work);

// Ends all work, before the interpreter does. A daemon thread that waits for it could not go on
// afterwards; it leaves with SystemExit. The caller has the GIL.
void end_all();

}  // namespace arbor::python

#endif
