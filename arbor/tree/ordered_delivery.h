// Delivers pieces of work in the order of their numbers, while threads make them in any order.
//
//   ordered_delivery<std::string> rows(8, [&](const std::string& text) { out << text; });
//   // on each thread, for each number that it gets:
//   if (!rows.put(number, text)) return;
#ifndef ARBOR_TREE_ORDERED_DELIVERY_H
#define ARBOR_TREE_ORDERED_DELIVERY_H

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace arbor::tree {

template <class Piece>
class ordered_delivery {
 public:
  // Calls `take` with one piece after another. At most `most_waiting` pieces, at least 1, wait for
  // those before them.
  ordered_delivery(std::size_t most_waiting, std::function<void(const Piece&)> take)
      : deliver(std::move(take)), waiting(most_waiting) {}

  // Hands over the piece of a number, from 0 on, and leaves an old one in its place, whose storage
  // can be used again. Delivers it and those that waited for it, unless another thread is about to;
  // throws what that throws. Blocks while too many pieces would wait. Returns false, and does
  // nothing, after `end`.
  bool put(std::size_t number, Piece& piece);

  // Ends the delivery. Call it when a number will never be put, or when `put` has thrown.
  void end();

 private:
  struct place {
    Piece piece;
    bool is_taken = false;
  };

  place& place_of(std::size_t number) { return waiting[number % waiting.size()]; }

  const std::function<void(const Piece&)> deliver;
  std::mutex mutex;  // guards the fields below, but for the piece that is being delivered
  std::condition_variable changed;
  std::vector<place> waiting;
  std::size_t next = 0;  // the number to deliver
  bool is_delivering = false;
  bool ended = false;
};

// -- Implementation --

template <class Piece>
bool ordered_delivery<Piece>::put(std::size_t number, Piece& piece) {
  std::unique_lock<std::mutex> lock(mutex);
  changed.wait(lock, [&] { return ended || number < next + waiting.size(); });
  if (ended) return false;
  std::swap(place_of(number).piece, piece);
  place_of(number).is_taken = true;
  if (std::exchange(is_delivering, true)) return true;
  while (!ended && place_of(next).is_taken) {
    lock.unlock();
    deliver(place_of(next).piece);  // only this thread changes `next`
    lock.lock();
    place_of(next).is_taken = false;
    ++next;
    changed.notify_all();
  }
  is_delivering = false;
  return !ended;
}

template <class Piece>
void ordered_delivery<Piece>::end() {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    ended = true;
  }
  changed.notify_all();
}

}  // namespace arbor::tree

#endif
