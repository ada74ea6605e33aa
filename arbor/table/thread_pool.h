// Runs the calls of a loop on several threads of the standard library.
//
//   thread_pool pool(4);
//   pool.for_each(columns.size(), [&](std::size_t i) { ratings[i] = rate(*columns[i]); });
#ifndef ARBOR_TABLE_THREAD_POOL_H
#define ARBOR_TABLE_THREAD_POOL_H

#include <locale.h>

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "arbor/utils/nocopy.h"

namespace arbor::tree {

// The number of the machine's cores, at least 1.
unsigned int machine_threads();

// What a call throws; null if it returns.
template <class Call>
std::exception_ptr failure_of(Call&& call) {
  try {
    call();
    return nullptr;
  } catch (...) {
    return std::current_exception();
  }
}

class thread_pool : private strata::util::nocopy {
 public:
  // `threads`, at least 1, counts the calling thread too: with 1 it works alone. The pool is
  // smaller if the system refuses a thread. All threads use the locale of the calling thread, which
  // may have chosen one of its own. Throws std::bad_alloc; no thread is left then.
  explicit thread_pool(unsigned int threads);
  ~thread_pool();

  // The number of threads, the calling one included.
  unsigned int size() const { return static_cast<unsigned int>(workers.size()) + 1; }

  // Calls `work` once with each number from 0 to count - 1, in any order, and returns when all
  // calls have returned. The calling thread takes part. After a call has thrown, no further number
  // is begun, and one of the exceptions is rethrown. Only one thread at a time may call this, and
  // `work` may not call it.
  void for_each(std::size_t count, const std::function<void(std::size_t)>& work);

 private:
  void run_worker();
  void take_part(std::unique_lock<std::mutex>& lock);
  void stop();

  std::mutex mutex;  // guards the fields below
  std::condition_variable changed;
  const std::function<void(std::size_t)>* task = nullptr;
  std::size_t next = 0;     // the next number to begin
  std::size_t end = 0;      // one past the last number
  std::size_t running = 0;  // calls that have not returned
  std::exception_ptr thrown;
  bool stopping = false;
  const locale_t of_caller = uselocale(nullptr);
  std::vector<std::thread> workers;
};

}  // namespace arbor::tree

#endif
