// Lets threads take turns in the order of their work, which they have done side by side.
//
//   turns order;
//   // on each thread, for each piece of work that it gets:
//   if (!order.take(number, [&] { out << made; })) return;
#ifndef ARBOR_TREE_TURNS_H
#define ARBOR_TREE_TURNS_H

#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace arbor::tree {

class turns {
 public:
  // Waits until the turns of all numbers from 0 up to this one have been taken, and calls `act`.
  // Returns false, without the call, if `end` has been called.
  template <class Act>
  bool take(std::size_t number, Act act) {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [&] { return ended || next == number; });
    if (ended) return false;
    act();
    ++next;
    lock.unlock();
    changed.notify_all();
    return true;
  }

  // Call it when an exception, of `act` too, keeps a number from being taken.
  void end() {
    {
      const std::lock_guard<std::mutex> lock(mutex);
      ended = true;
    }
    changed.notify_all();
  }

 private:
  std::mutex mutex;  // guards the fields below
  std::condition_variable changed;
  std::size_t next = 0;
  bool ended = false;
};

}  // namespace arbor::tree

#endif
