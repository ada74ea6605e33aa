// Delivers pieces of work in the order of their numbers, while threads make them in any order.
//
//   ordered_delivery<std::string> rows(8, [&](const std::string& text) { out << text; });
//   // on each thread, for each number that it gets:
//   if (!rows.put(number, text, true)) return;
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
  // can be used again. A number may have several pieces, from one thread, with `is_last` at the
  // last. Delivers the piece and those that waited for it, unless another thread is about to;
  // throws what that throws. Blocks while too many pieces would wait. Returns false, and does
  // nothing, after `end`.
  bool put(std::size_t number, Piece& piece, bool is_last);

  // Ends the delivery. Call it when a number will never be put, or when `put` has thrown.
  void end();

 private:
  struct place {
    Piece piece;
    bool is_taken = false;
    bool is_last = false;
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
bool ordered_delivery<Piece>::put(std::size_t number, Piece& piece, bool is_last) {
  std::unique_lock<std::mutex> lock(mutex);
  place& own = place_of(number);
  changed.wait(lock, [&] { return ended || (number < next + waiting.size() && !own.is_taken); });
  if (ended) return false;
  std::swap(own.piece, piece);
  own.is_taken = true;
  own.is_last = is_last;
  if (std::exchange(is_delivering, true)) return true;
  while (!ended && place_of(next).is_taken) {
    lock.unlock();
    deliver(place_of(next).piece);  // only this thread changes `next`
    lock.lock();
    place_of(next).is_taken = false;
    if (place_of(next).is_last) ++next;
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
