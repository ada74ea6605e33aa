#include "arbor/table/thread_pool.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace arbor::tree {

unsigned int machine_threads() {
  return std::max(1U, std::thread::hardware_concurrency());
}

thread_pool::thread_pool(unsigned int threads) {
  try {
    for (unsigned int i = 1; i < threads; ++i) workers.emplace_back([this] { run_worker(); });
  } catch (const std::system_error&) {
    return;  // those that have started do all the work
  } catch (...) {
    stop();
    throw;
  }
}

thread_pool::~thread_pool() {
  stop();
}

void thread_pool::stop() {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    stopping = true;
  }
  changed.notify_all();
  for (std::thread& worker : workers) worker.join();
}

void thread_pool::for_each(std::size_t count, const std::function<void(std::size_t)>& work) {
  std::unique_lock<std::mutex> lock(mutex);
  task = &work;
  next = 0;
  end = count;
  if (count > 1) changed.notify_all();
  take_part(lock);
  changed.wait(lock, [this] { return running == 0; });
  if (thrown) std::rethrow_exception(std::exchange(thrown, nullptr));
}

void thread_pool::run_worker() {
  uselocale(of_caller);
  std::unique_lock<std::mutex> lock(mutex);
  while (!stopping) {
    take_part(lock);
    changed.wait(lock, [this] { return stopping || next < end; });
  }
}

void thread_pool::take_part(std::unique_lock<std::mutex>& lock) {
  while (next < end) {
    const std::size_t number = next++;
    ++running;
    lock.unlock();
    const std::exception_ptr failure = failure_of([&] { (*task)(number); });
    lock.lock();
    --running;
    if (failure) {
      thrown = failure;
      next = end;
    }
  }
  if (running == 0) changed.notify_all();
}

}  // namespace arbor::tree
