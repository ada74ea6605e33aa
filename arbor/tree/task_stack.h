// Runs tasks on several threads; a task may add others. The one that was added last begins first.
//
//   task_stack tasks;
//   tasks.add([&] { for (const part& p : parts) tasks.add([&] { work_on(p); }); });
//   tasks.run(pool);
#ifndef ARBOR_TREE_TASK_STACK_H
#define ARBOR_TREE_TASK_STACK_H

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

#include "arbor/table/thread_pool.h"
#include "arbor/utils/nocopy.h"

namespace arbor::tree {

class task_stack : private strata::util::nocopy {
 public:
  // Any thread may call this. A task that is added after one has thrown is dropped.
  void add(std::function<void()> task);

  // Returns when all tasks have ended. After one has thrown, none is begun, and one of the
  // exceptions is rethrown.
  void run(thread_pool& pool);

 private:
  void take_part();

  std::mutex mutex;  // guards the fields below
  std::condition_variable changed;
  std::vector<std::function<void()>> waiting;
  std::size_t running = 0;
  bool failed = false;
};

}  // namespace arbor::tree

#endif
