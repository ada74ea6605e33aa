#include "arbor/tree/task_stack.h"

#include <utility>

namespace arbor::tree {

void task_stack::add(std::function<void()> task) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (failed) return;
  waiting.push_back(std::move(task));
  changed.notify_one();
}

void task_stack::run(thread_pool& pool) {
  pool.for_each(pool.size(), [this](std::size_t /*thread*/) { take_part(); });
}

void task_stack::take_part() {
  std::unique_lock<std::mutex> lock(mutex);
  while (true) {
    changed.wait(lock, [this] { return !waiting.empty() || running == 0; });
    if (waiting.empty()) return;
    std::function<void()> task = std::move(waiting.back());
    waiting.pop_back();
    ++running;
    lock.unlock();
    // What the task holds is freed before others see that it has ended.
    const std::exception_ptr failure = failure_of([&] { std::exchange(task, nullptr)(); });
    lock.lock();
    --running;
    if (failure) {
      failed = true;
      waiting.clear();
    }
    if (running == 0) changed.notify_all();
    if (failure) std::rethrow_exception(failure);
  }
}

}  // namespace arbor::tree
