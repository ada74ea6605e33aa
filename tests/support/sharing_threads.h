// Threads that load a table together, as processes do.
//
//   share_rows(3, [&](unsigned int part, tree::row_sharing& sharing) {
//     tables[part] = tree::load_table(paths, options, sharing);
//   });
#ifndef ARBOR_TESTS_SUPPORT_SHARING_THREADS_H
#define ARBOR_TESTS_SUPPORT_SHARING_THREADS_H

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "arbor/csv/row_search.h"
#include "arbor/table/row_sharing.h"
#include "arbor/table/table.h"
#include "tests/support/columns.h"

namespace arbor::tests {

// What another process receives of these cells.
inline tree::distinct_cells sent(const tree::distinct_cells& cells) {
  std::vector<char> bytes;
  append_bytes(cells, bytes);
  const std::size_t size = bytes.size();
  bytes.resize(size + tree::readable_after_cell);
  const char* next = bytes.data();
  tree::distinct_cells received = tree::read_distinct_cells(next);
  if (next != bytes.data() + size) throw std::logic_error("not all bytes have been read");
  return received;
}

// Where the threads meet.
struct meeting_point {
  std::vector<void*> values;  // by thread
  std::size_t here = 0;
  unsigned int meetings = 0;
  std::mutex mutex = {};
  std::condition_variable all_are_here = {};
};

class sharing_thread : public tree::row_sharing {
 public:
  sharing_thread(meeting_point& shared, std::size_t number) : place(shared), own(number) {}

  // The message is copied, as threads must not share the exception.
  void agree(const std::exception_ptr& failure) override {
    std::string message;
    if (failure) message = message_of([&] { std::rethrow_exception(failure); });
    join(message, [](std::string& before, const std::string& later) {
      if (before.empty()) before = later;
    });
    if (!message.empty()) throw std::runtime_error(message);
  }

  // Whole files if there are several, or one that cannot be divided.
  std::vector<tree::file_part> own_parts(const tree::csv_table& file) override {
    std::vector<tree::file_part> parts;
    const std::size_t files = file.paths().size();
    if (files > 1 || !file.divisible_size(0)) {
      for (std::size_t i = 0; i < files; ++i)
        if (i * place.values.size() / files == own) parts.push_back({i, std::nullopt});
      return parts;
    }
    const tree::file_place begin = part_begin(file, own), end = part_begin(file, own + 1);
    if (begin.byte < end.byte)
      parts.push_back({0, tree::file_part::byte_range{begin.byte, end.byte, begin.line}});
    return parts;
  }

  void add_up(std::vector<std::uint64_t>& numbers) override {
    join(numbers, [](auto& sums, const auto& later) {
      std::transform(sums.begin(), sums.end(), later.begin(), sums.begin(), std::plus<>());
    });
  }

  void unite(std::vector<tree::distinct_cells>& columns) override {
    join(columns, [](auto& before, const auto& later) {
      for (std::size_t i = 0; i < before.size(); ++i) add_later(before[i], sent(later[i]));
    });
    for (tree::distinct_cells& column : columns) column = sent(column);
  }

  float total_weight(const impls::w_sequence& cases) override {
    impls::w_sequence all = cases;
    join(all, [](auto& before, const auto& later) {
      before.insert(before.end(), later.begin(), later.end());
    });
    return tree::total_weight(all);
  }

 private:
  // Waits for all threads. The last one adds up their values with add(sum, value of a later one):
  // neighbours first, then pairs of them, and so on. Each gets the sum.
  template <class T, class Add>
  void join(T& value, Add add) {
    std::unique_lock<std::mutex> lock(place.mutex);
    auto& values = place.values;
    const auto at = [&](std::size_t i) -> T& { return *static_cast<T*>(values[i]); };
    values[own] = &value;
    if (++place.here < values.size())
      return place.all_are_here.wait(lock, [&, m = place.meetings] { return place.meetings != m; });
    for (std::size_t step = 1; step < values.size(); step *= 2)
      for (std::size_t i = 0; i + step < values.size(); i += 2 * step) add(at(i), at(i + step));
    for (std::size_t i = 1; i < values.size(); ++i) at(i) = at(0);
    place.here = 0;
    ++place.meetings;
    place.all_are_here.notify_all();
  }

  // The first row that begins in a part, or in a later one.
  tree::file_place part_begin(const tree::csv_table& file, std::size_t part) const {
    const std::string& path = file.paths()[0];
    const std::uint64_t size = *file.divisible_size(0), byte = size * part / place.values.size();
    if (byte == 0) return {0, 1, false};
    const auto first = tree::first_row(path, size, file.row_form(), file.has_names());
    if (byte < first.byte) return first;
    const tree::range_counts before = tree::counts_in(path, 0, byte);
    const tree::file_place from{byte, 1 + before.line_ends, before.quotes % 2 == 1};
    return tree::next_row(path, from, size, file.row_form()).value_or(tree::file_place{size, 0, 0});
  }

  meeting_point& place;
  std::size_t own;
};

// Calls load(part, sharing) in so many threads.
template <class Load>
void share_rows(std::size_t parts, Load load) {
  meeting_point place{std::vector<void*>(parts)};
  std::vector<std::thread> threads;
  for (std::size_t part = 0; part < parts; ++part) {
    threads.emplace_back([&, part] {
      sharing_thread sharing(place, part);
      load(part, sharing);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace arbor::tests

#endif
