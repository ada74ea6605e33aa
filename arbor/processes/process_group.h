// The processes that work on one table together, and what they send each other.
//
//   process_group group(argc, argv);
//   std::vector<float> of_all = group.gathered(own);   // the same in every process
//
// Process 0 has the first rows of the table, and each one the rows after those of the one before.
// A collective function is called by every process, by all in the same order. All functions belong
// to the thread that made the group. A failure of MPI ends all processes, as MPI does by default.
//
// W. Gropp, E. Lusk and A. Skjellum, Using MPI, 3rd edition (2014).
#ifndef ARBOR_PROCESSES_PROCESS_GROUP_H
#define ARBOR_PROCESSES_PROCESS_GROUP_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "arbor/processes/traffic.h"
#include "arbor/utils/nocopy.h"

namespace arbor::tree {

class process_group : private strata::util::nocopy {
 public:
  // Starts MPI, which may take arguments of its own. There may be one group in a process.
  process_group(int& argc, char**& argv);
  // Waits for all processes. While an exception is thrown, it ends them instead, with status 2.
  ~process_group();

  unsigned int rank() const { return own_rank; }
  unsigned int size() const { return all; }
  bool is_first() const { return own_rank == 0; }
  bool is_last() const { return own_rank + 1 == all; }
  // How many of the processes run on this machine.
  unsigned int on_this_machine() const { return neighbours; }

  // Ends all processes at once; before there is a group or after it, this one.
  [[noreturn]] static void abort(int status) noexcept;

  // From now on what is sent, and the time, counts for this phase, which may have been before.
  void enter(const std::string& phase) { counted.enter(phase); }
  const traffic& statistics() const { return counted; }

  // -- Collective --

  // The values of all processes, in the order of the processes.
  template <class T>
  std::vector<T> gathered(const std::vector<T>& own);

  // Makes `values` those of one process.
  template <class T>
  void broadcast(std::vector<T>& values, unsigned int from);

  // Sends `outgoing[p]` to each process p. Returns what each process has sent, by process.
  template <class T>
  std::vector<std::vector<T>> exchanged(std::vector<std::vector<T>> outgoing);

  // Makes each of the values the sum, the least or the greatest of those of all processes, in all
  // of which there are equally many. The order of a sum is not specified: it must be exact.
  void add_up(std::vector<std::uint32_t>& values);
  void add_up(std::vector<std::uint64_t>& values);
  void add_up(std::vector<float>& values);
  void add_up(std::vector<double>& values);
  void take_least(std::vector<std::uint32_t>& values);
  void take_greatest(std::vector<std::uint32_t>& values);

  // Makes each of `count` values the sum of those of all processes in the process `owner`.
  // Elsewhere they lose their meaning. It is done when settle() returns.
  void add_up_at(std::uint32_t* values, std::size_t count, unsigned int owner);

  // Passes values from process to process, in each of which `use()` changes them in their turn, and
  // makes those of all processes what the last one leaves: so float sums are formed in the order of
  // the rows, on which they depend.
  template <class T, class Use>
  void pass_on(std::vector<T>& values, Use use);

  // Sums of terms that all processes have; `add(sums)` adds those of this process, one after the
  // other. Sums that are not known to be exact are passed on.
  template <class T, class Add>
  void add_in_order(std::vector<T>& sums, bool exact, Add add);

  // -- From one process to another, both of which know how many there are --

  template <class T>
  void send(const T* values, std::size_t count, unsigned int to);
  template <class T>
  void receive(T* values, std::size_t count, unsigned int from);
  // Sends without waiting for the receiver. It is done when settle() returns.
  template <class T>
  void send_later(const T* values, std::size_t count, unsigned int to);
  template <class T>
  void send(const std::vector<T>& values, unsigned int to) {
    send(values.data(), values.size(), to);
  }
  template <class T>
  void receive(std::vector<T>& values, unsigned int from) {
    receive(values.data(), values.size(), from);
  }

  // Waits until all is done that was begun. Until then the values must stay as they are, at their
  // place.
  void settle();

 private:
  struct requests;  // of MPI, not done yet

  void count_combined(std::size_t bytes);
  void begin_sending(const void* bytes, std::size_t size, unsigned int to, requests& begun);
  void send_bytes(const void* bytes, std::size_t size, unsigned int to);
  void send_bytes_later(const void* bytes, std::size_t size, unsigned int to);
  void receive_bytes(void* bytes, std::size_t size, unsigned int from);
  void broadcast_bytes(void* bytes, std::size_t size, unsigned int from);
  // The sizes are in bytes; those of `incoming` are known by the receiver.
  void exchange_bytes(const std::vector<std::pair<const void*, std::size_t>>& outgoing,
                      const std::vector<std::pair<void*, std::size_t>>& incoming);
  void gather_bytes(const void* own, std::vector<std::size_t> sizes, char* gathered_bytes);
  std::vector<std::uint64_t> gathered_sizes(std::uint64_t own);
  std::vector<std::uint64_t> exchanged_sizes(const std::vector<std::uint64_t>& outgoing);

  unsigned int own_rank = 0;
  unsigned int all = 1;
  unsigned int neighbours = 1;
  traffic counted;
  std::unique_ptr<requests> pending;
};

// -- Implementation --

template <class T>
std::vector<T> process_group::gathered(const std::vector<T>& own) {
  static_assert(std::is_trivially_copyable_v<T>, "its bytes are sent");
  std::vector<std::size_t> sizes;
  std::size_t count = 0;
  for (const std::uint64_t of_process : gathered_sizes(own.size())) {
    sizes.push_back(of_process * sizeof(T));
    count += of_process;
  }
  std::vector<T> values(count);
  gather_bytes(own.data(), std::move(sizes), reinterpret_cast<char*>(values.data()));
  return values;
}

template <class T>
void process_group::broadcast(std::vector<T>& values, unsigned int from) {
  static_assert(std::is_trivially_copyable_v<T>, "its bytes are sent");
  std::uint64_t count = values.size();
  broadcast_bytes(&count, sizeof count, from);
  values.resize(count);
  broadcast_bytes(values.data(), count * sizeof(T), from);
}

template <class T>
std::vector<std::vector<T>> process_group::exchanged(std::vector<std::vector<T>> outgoing) {
  static_assert(std::is_trivially_copyable_v<T>, "its bytes are sent");
  std::vector<std::uint64_t> counts;
  for (const auto& values : outgoing) counts.push_back(values.size());
  const std::vector<std::uint64_t> incoming_counts = exchanged_sizes(counts);
  std::vector<std::vector<T>> received(all);
  std::vector<std::pair<const void*, std::size_t>> out(all);
  std::vector<std::pair<void*, std::size_t>> in(all);
  for (unsigned int p = 0; p < all; ++p) {
    if (p == own_rank) continue;
    received[p].resize(incoming_counts[p]);
    out[p] = {outgoing[p].data(), outgoing[p].size() * sizeof(T)};
    in[p] = {received[p].data(), received[p].size() * sizeof(T)};
  }
  received[own_rank] = std::move(outgoing[own_rank]);
  exchange_bytes(out, in);
  return received;
}

template <class T, class Use>
void process_group::pass_on(std::vector<T>& values, Use use) {
  if (!is_first()) receive(values, own_rank - 1);
  use();
  if (!is_last()) send(values, own_rank + 1);
  broadcast_bytes(values.data(), values.size() * sizeof(T), all - 1);
}

template <class T, class Add>
void process_group::add_in_order(std::vector<T>& sums, bool exact, Add add) {
  if (!exact) return pass_on(sums, [&] { add(sums); });
  add(sums);
  add_up(sums);
}

template <class T>
void process_group::send(const T* values, std::size_t count, unsigned int to) {
  static_assert(std::is_trivially_copyable_v<T>, "its bytes are sent");
  send_bytes(values, count * sizeof(T), to);
}

template <class T>
void process_group::receive(T* values, std::size_t count, unsigned int from) {
  static_assert(std::is_trivially_copyable_v<T>, "its bytes are sent");
  receive_bytes(values, count * sizeof(T), from);
}

template <class T>
void process_group::send_later(const T* values, std::size_t count, unsigned int to) {
  static_assert(std::is_trivially_copyable_v<T>, "its bytes are sent");
  send_bytes_later(values, count * sizeof(T), to);
}

}  // namespace arbor::tree

#endif
