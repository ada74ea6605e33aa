#include "python/core/interruption.h"

#include <pybind11/pybind11.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

#include "arbor/table/thread_pool.h"

namespace arbor::python {

namespace {

class stopped : public std::runtime_error {
 public:
  stopped() : std::runtime_error("interrupted") {}
};

// The calls of run() in this process, of which a forked one has none. The GIL guards it.
struct {
  pid_t process = 0;
  int running = 0;
  std::atomic<bool> ending{false};
} calls;

// Ends a thread of Python, without a message.
[[noreturn]] void leave_thread() {
  PyErr_SetNone(PyExc_SystemExit);
  throw pybind11::error_already_set();
}

class counted_call {
 public:
  counted_call() {
    if (calls.ending) leave_thread();
    if (std::exchange(calls.process, getpid()) != getpid()) calls.running = 0;
    ++calls.running;
  }
  ~counted_call() { --calls.running; }
  counted_call(const counted_call&) = delete;
  counted_call& operator=(const counted_call&) = delete;
};

}  // namespace

void end_all() {
  calls.ending = true;
  while (calls.process == getpid() && calls.running > 0) {
    const pybind11::gil_scoped_release release;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

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
  const counted_call counted;
  {
    const pybind11::gil_scoped_release release;
    std::thread worker([&] {
      std::exception_ptr thrown = tree::failure_of([&] {
        const point_locale with_points;
        work([&] {
          if (stop || calls.ending) throw stopped();
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
  if (failure && calls.ending) leave_thread();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace arbor::python
