// Does pieces of work side by side, on threads of the standard library.
//
//   crew workers(4);
//   workers.each(columns.size(), [&](std::size_t i) { ratings[i] = rate(*columns[i]); });
#ifndef ARBOR_TREE_CREW_H
#define ARBOR_TREE_CREW_H

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "arbor/utils/nocopy.h"

namespace arbor::tree {

// As many threads as the machine has cores; at least one.
unsigned int machine_threads();

class crew : private strata::util::nocopy {
 public:
  // A crew of one is the calling thread. It is smaller than asked for when more threads cannot be
  // had.
  explicit crew(unsigned int threads);
  ~crew();

  unsigned int size() const { return static_cast<unsigned int>(helpers.size()) + 1; }

  // Calls `work` with each number from 0 to count - 1 once, in any order, and returns when all
  // calls have. The calling thread takes part. Of what calls throw, one is thrown on; the numbers
  // that nobody has begun by then are left out. One thread at a time may call it, and none of those
  // calls.
  void each(std::size_t count, const std::function<void(std::size_t)>& work);

 private:
  void help();
  void take_part(std::unique_lock<std::mutex>& lock);
  void dismiss();

  std::mutex mutex;  // guards what follows
  std::condition_variable changed;
  const std::function<void(std::size_t)>* task = nullptr;
  std::size_t next = 0;   // number to begin
  std::size_t end = 0;    // of the numbers
  std::size_t begun = 0;  // and not returned from
  std::exception_ptr thrown;
  bool closing = false;
  std::vector<std::thread> helpers;
};

}  // namespace arbor::tree

#endif
