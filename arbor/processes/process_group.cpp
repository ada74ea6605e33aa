#include "arbor/processes/process_group.h"

#include <mpi.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <limits>
#include <memory>
#include <numeric>
#include <thread>

namespace arbor::tree {

namespace {

// MPI counts in int.
constexpr std::size_t most_at_once = std::size_t{1} << 30U;

constexpr int failure = 2;

// Most implementations of MPI keep a processor busy while they wait. Other processes may need it,
// and the processor time would no longer say what work was done. The pauses grow with the time that
// has passed, so that they make no wait longer by more than a small part.
void wait_for(MPI_Request& request) {
  using namespace std::chrono;
  constexpr unsigned int hopeful_tries = 64;
  constexpr int part_of_wait = 16;
  constexpr steady_clock::duration shortest_pause = microseconds(20);
  constexpr steady_clock::duration longest_pause = milliseconds(5);
  steady_clock::time_point begin;
  for (unsigned int tries = 0;; ++tries) {
    int done = 0;
    MPI_Test(&request, &done, MPI_STATUS_IGNORE);
    if (done != 0) return;
    if (tries < hopeful_tries) continue;
    const steady_clock::time_point now = steady_clock::now();
    if (tries == hopeful_tries) begin = now;
    std::this_thread::sleep_for(
        std::clamp((now - begin) / part_of_wait, shortest_pause, longest_pause));
  }
}

// Calls use(first, count) for parts of so many that MPI can count them.
template <class Use>
void in_parts(std::size_t size, Use use) {
  for (std::size_t first = 0; first < size; first += most_at_once)
    use(first, static_cast<int>(std::min(most_at_once, size - first)));
}

template <class T>
void combine(std::vector<T>& values, MPI_Datatype type, MPI_Op operation) {
  in_parts(values.size(), [&](std::size_t first, int count) {
    MPI_Request request{};
    MPI_Iallreduce(MPI_IN_PLACE, values.data() + first, count, type, operation, MPI_COMM_WORLD,
                   &request);
    wait_for(request);
  });
}

// MPICH 4.0 compares unsigned numbers as if they were signed. With the other top bit, signed
// numbers have the order of the unsigned ones.
void combine_by_order(std::vector<std::uint32_t>& values, MPI_Op operation) {
  const auto turn_top_bits = [&] {
    for (std::uint32_t& value : values) value ^= std::uint32_t{1} << 31U;
  };
  turn_top_bits();
  combine(values, MPI_INT32_T, operation);
  turn_top_bits();
}

int rank_number(unsigned int process) {
  return static_cast<int>(process);
}

}  // namespace

struct process_group::requests {
  std::vector<MPI_Request> all;

  MPI_Request* add() { return &all.emplace_back(); }
  void wait() {
    for (MPI_Request& request : all) wait_for(request);
    all.clear();
  }
};

process_group::process_group(int& argc, char**& argv) : pending(std::make_unique<requests>()) {
  int provided = 0;
  MPI_Init_thread(&argc, &argv, MPI_THREAD_FUNNELED, &provided);
  int number = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &number);
  own_rank = static_cast<unsigned int>(number);
  MPI_Comm_size(MPI_COMM_WORLD, &number);
  all = static_cast<unsigned int>(number);
  MPI_Comm machine{};
  MPI_Comm_split_type(MPI_COMM_WORLD, MPI_COMM_TYPE_SHARED, 0, MPI_INFO_NULL, &machine);
  MPI_Comm_size(machine, &number);
  neighbours = static_cast<unsigned int>(number);
  MPI_Comm_free(&machine);
}

process_group::~process_group() {
  if (std::uncaught_exceptions() > 0) abort(failure);
  MPI_Finalize();
}

void process_group::abort(int status) noexcept {
  int begun = 0;
  int ended = 0;
  MPI_Initialized(&begun);
  MPI_Finalized(&ended);
  if (begun != 0 && ended == 0) MPI_Abort(MPI_COMM_WORLD, status);
  std::_Exit(status);
}

void process_group::add_up(std::vector<std::uint32_t>& values) {
  combine(values, MPI_UINT32_T, MPI_SUM);
  count_combined(values.size() * sizeof values.front());
}
void process_group::add_up(std::vector<std::uint64_t>& values) {
  combine(values, MPI_UINT64_T, MPI_SUM);
  count_combined(values.size() * sizeof values.front());
}
void process_group::add_up(std::vector<float>& values) {
  combine(values, MPI_FLOAT, MPI_SUM);
  count_combined(values.size() * sizeof values.front());
}
void process_group::add_up(std::vector<double>& values) {
  combine(values, MPI_DOUBLE, MPI_SUM);
  count_combined(values.size() * sizeof values.front());
}
void process_group::take_least(std::vector<std::uint32_t>& values) {
  combine_by_order(values, MPI_MIN);
  count_combined(values.size() * sizeof values.front());
}
void process_group::take_greatest(std::vector<std::uint32_t>& values) {
  combine_by_order(values, MPI_MAX);
  count_combined(values.size() * sizeof values.front());
}

// Each process adds up its part of the values, and sends the sums to all others.
void process_group::count_combined(std::size_t bytes) {
  counted.sent(2 * (bytes - bytes / all), 2 * (all - 1ULL));
}

void process_group::add_up_at(std::uint32_t* values, std::size_t count, unsigned int owner) {
  in_parts(count, [&](std::size_t first, int some) {
    std::uint32_t* const part = values + first;
    const void* const source = own_rank == owner ? MPI_IN_PLACE : part;
    MPI_Ireduce(source, part, some, MPI_UINT32_T, MPI_SUM, rank_number(owner), MPI_COMM_WORLD,
                pending->add());
  });
  if (own_rank != owner) counted.sent(count * sizeof *values);
}

void process_group::settle() {
  pending->wait();
}

void process_group::begin_sending(const void* bytes, std::size_t size, unsigned int to,
                                  requests& begun) {
  in_parts(size, [&](std::size_t first, int count) {
    MPI_Isend(static_cast<const char*>(bytes) + first, count, MPI_BYTE, rank_number(to), 0,
              MPI_COMM_WORLD, begun.add());
    counted.sent(static_cast<std::uint64_t>(count));
  });
}

void process_group::send_bytes(const void* bytes, std::size_t size, unsigned int to) {
  requests begun;
  begin_sending(bytes, size, to, begun);
  begun.wait();
}

void process_group::send_bytes_later(const void* bytes, std::size_t size, unsigned int to) {
  begin_sending(bytes, size, to, *pending);
}

void process_group::receive_bytes(void* bytes, std::size_t size, unsigned int from) {
  requests begun;
  in_parts(size, [&](std::size_t first, int count) {
    MPI_Irecv(static_cast<char*>(bytes) + first, count, MPI_BYTE, rank_number(from), 0,
              MPI_COMM_WORLD, begun.add());
  });
  begun.wait();
}

void process_group::broadcast_bytes(void* bytes, std::size_t size, unsigned int from) {
  in_parts(size, [&](std::size_t first, int count) {
    MPI_Request request{};
    MPI_Ibcast(static_cast<char*>(bytes) + first, count, MPI_BYTE, rank_number(from),
               MPI_COMM_WORLD, &request);
    wait_for(request);
  });
  if (own_rank == from) counted.sent(size * (all - 1ULL), all - 1ULL);
}

void process_group::exchange_bytes(const std::vector<std::pair<const void*, std::size_t>>& outgoing,
                                   const std::vector<std::pair<void*, std::size_t>>& incoming) {
  requests begun;
  for (unsigned int p = 0; p < all; ++p) {
    in_parts(incoming[p].second, [&, p](std::size_t first, int count) {
      MPI_Irecv(static_cast<char*>(incoming[p].first) + first, count, MPI_BYTE, rank_number(p), 0,
                MPI_COMM_WORLD, begun.add());
    });
  }
  // Each process begins with the one after it, so that not all send to the same one first.
  for (unsigned int i = 1; i < all; ++i) {
    const unsigned int p = (own_rank + i) % all;
    begin_sending(outgoing[p].first, outgoing[p].second, p, begun);
  }
  begun.wait();
}

void process_group::gather_bytes(const void* own, std::vector<std::size_t> sizes, char* gathered) {
  const std::size_t size = std::accumulate(sizes.begin(), sizes.end(), std::size_t{0});
  counted.sent(sizes[own_rank] * (all - 1ULL), all - 1ULL);
  if (size <= most_at_once) {
    std::vector<int> counts(sizes.begin(), sizes.end());
    std::vector<int> begins(all, 0);
    std::partial_sum(counts.begin(), counts.end() - 1, begins.begin() + 1);
    MPI_Request request{};
    MPI_Iallgatherv(own, counts[own_rank], MPI_BYTE, gathered, counts.data(), begins.data(),
                    MPI_BYTE, MPI_COMM_WORLD, &request);
    wait_for(request);
    return;
  }
  for (unsigned int p = 0; p < all; gathered += sizes[p], ++p) {
    if (p == own_rank) std::copy_n(static_cast<const char*>(own), sizes[p], gathered);
    in_parts(sizes[p], [&](std::size_t first, int count) {
      MPI_Request request{};
      MPI_Ibcast(gathered + first, count, MPI_BYTE, rank_number(p), MPI_COMM_WORLD, &request);
      wait_for(request);
    });
  }
}

std::vector<std::uint64_t> process_group::gathered_sizes(std::uint64_t own) {
  std::vector<std::uint64_t> sizes(all);
  MPI_Request request{};
  MPI_Iallgather(&own, 1, MPI_UINT64_T, sizes.data(), 1, MPI_UINT64_T, MPI_COMM_WORLD, &request);
  wait_for(request);
  counted.sent(sizeof own * (all - 1ULL), all - 1ULL);
  return sizes;
}

std::vector<std::uint64_t> process_group::exchanged_sizes(
    const std::vector<std::uint64_t>& outgoing) {
  std::vector<std::uint64_t> incoming(all);
  MPI_Request request{};
  MPI_Ialltoall(outgoing.data(), 1, MPI_UINT64_T, incoming.data(), 1, MPI_UINT64_T, MPI_COMM_WORLD,
                &request);
  wait_for(request);
  counted.sent(sizeof(std::uint64_t) * (all - 1ULL), all - 1ULL);
  return incoming;
}

}  // namespace arbor::tree
