// Ends the program as main does where memory runs out and no handler can catch the exception: while
// the objects of libraries are made before main, in functions of a library that promise to throw
// nothing, and where there is no memory for the exception itself.

#include <cxxabi.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <new>
#include <typeinfo>

#include "arbor/store/file_replacement.h"
#include "tools/messages.h"
#include "tools/program.h"

namespace arbor::tools {

namespace {

// Any other uncaught exception is a fault of the program, and ends it with a core dump.
[[noreturn]] void end_for_want_of_memory() {
  const std::type_info* const thrown = abi::__cxa_current_exception_type();
  if (thrown != nullptr && *thrown != typeid(std::bad_alloc)) std::abort();
  static std::atomic_flag ends = ATOMIC_FLAG_INIT;
  while (ends.test_and_set()) pause();  // another thread writes the line and ends all of them
  tree::remove_unfinished_file();
  complain_of_memory();
  end_program(failure);
}

// The first priority that programs may use: before all other objects of this one.
[[gnu::constructor(101)]] void handle_want_of_memory() {
  std::set_terminate(end_for_want_of_memory);
}

}  // namespace

}  // namespace arbor::tools
