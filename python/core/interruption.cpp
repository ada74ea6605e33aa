#include "python/core/interruption.h"

#include <pybind11/pybind11.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <stdexcept>
#include <thread>

#include "arbor/table/thread_pool.h"

namespace arbor::python {

namespace {

class stopped : public std::runtime_error {
 public:
  stopped() : std::runtime_error("interrupted") {}
};

}  // namespace

point_locale::point_locale() : own(newlocale(LC_NUMERIC_MASK, "C", nullptr)), before(nullptr) {
  if (own == nullptr) throw std::bad_alloc();
  before = uselocale(own);
}

point_locale::~point_locale() {
  uselocale(before);
  freelocale(own);
}

void run(const std::function<void(const std::function<void()>& check)>& work) {
  constexpr auto between_checks = std::chrono::milliseconds(50);
  std::atomic<bool> stop{false};
  std::mutex mutex;
  std::condition_variable changed;
  bool ended = false;
  std::exception_ptr failure;
  std::optional<pybind11::error_already_set> raised;
  {
    const pybind11::gil_scoped_release release;
    std::thread worker([&] {
      std::exception_ptr thrown = tree::failure_of([&] {
        const point_locale with_points;
        work([&] {
          if (stop) throw stopped();
        });
      });
      const std::lock_guard<std::mutex> lock(mutex);
      failure = std::move(thrown);
      ended = true;
      changed.notify_all();
    });
    std::unique_lock<std::mutex> lock(mutex);
    while (!changed.wait_for(lock, between_checks, [&] { return ended; })) {
      if (raised) continue;
      lock.unlock();
      {
        const pybind11::gil_scoped_acquire acquire;
        if (PyErr_CheckSignals() != 0) raised.emplace();
      }
      if (raised) stop = true;
      lock.lock();
    }
    lock.unlock();
    worker.join();
  }
  if (raised) throw pybind11::error_already_set(*raised);
  if (failure) std::rethrow_exception(failure);
}

}  // namespace arbor::python
