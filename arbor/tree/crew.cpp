#include "arbor/tree/crew.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace arbor::tree {

unsigned int machine_threads() {
  return std::max(1U, std::thread::hardware_concurrency());
}

crew::crew(unsigned int threads) {
  try {
    for (unsigned int i = 1; i < threads; ++i) helpers.emplace_back([this] { help(); });
  } catch (const std::system_error&) {
    return;
  } catch (...) {
    dismiss();
    throw;
  }
}

crew::~crew() {
  dismiss();
}

void crew::dismiss() {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    closing = true;
  }
  changed.notify_all();
  for (std::thread& helper : helpers) helper.join();
}

void crew::each(std::size_t count, const std::function<void(std::size_t)>& work) {
  std::unique_lock<std::mutex> lock(mutex);
  task = &work;
  next = 0;
  end = count;
  if (count > 1) changed.notify_all();
  take_part(lock);
  changed.wait(lock, [this] { return begun == 0; });
  if (thrown) std::rethrow_exception(std::exchange(thrown, nullptr));
}

void crew::help() {
  std::unique_lock<std::mutex> lock(mutex);
  while (!closing) {
    take_part(lock);
    changed.wait(lock, [this] { return closing || next < end; });
  }
}

void crew::take_part(std::unique_lock<std::mutex>& lock) {
  while (next < end) {
    const std::size_t number = next++;
    ++begun;
    lock.unlock();
    std::exception_ptr failure;
    try {
      (*task)(number);
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    --begun;
    if (failure) {
      thrown = failure;
      next = end;
    }
  }
  if (begun == 0) changed.notify_all();
}

}  // namespace arbor::tree
