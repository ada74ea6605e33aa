#include "arbor/processes/shared_loading.h"

#include <cstdint>
#include <exception>

#include "arbor/csv/cell_text.h"
#include "arbor/processes/agreement.h"
#include "arbor/processes/file_sharing.h"
#include "arbor/table/row_sharing.h"

namespace arbor::tree {

namespace {

class group_sharing : public row_sharing {
 public:
  explicit group_sharing(process_group& of) : group(of) {}

  void agree(const std::exception_ptr& own_failure) override { tree::agree(group, own_failure); }

  std::vector<file_part> own_parts(const csv_table& file) override {
    return tree::own_parts(group, file);
  }

  void add_up(std::vector<std::uint64_t>& numbers) override { group.add_up(numbers); }

  void unite(std::vector<distinct_cells>& columns) override;

  float total_weight(const impls::w_sequence& cases) override {
    std::vector<double> sum{0};
    group.add_in_order(sum, false, [&](std::vector<double>& of_cases) {
      for (const auto& weighted : cases) of_cases[0] += static_cast<double>(weighted.second);
    });
    return static_cast<float>(sum[0]);
  }

 private:
  process_group& group;
};

std::vector<char> bytes_of(const std::vector<distinct_cells>& columns) {
  std::vector<char> bytes;
  for (const distinct_cells& cells : columns) append_bytes(cells, bytes);
  bytes.insert(bytes.end(), readable_after_cell, '\0');
  return bytes;
}

// In each round every second of the processes that are left sends its cells to the one before it,
// so that in the end the first one has all of them.
void group_sharing::unite(std::vector<distinct_cells>& columns) {
  group.enter("domains");
  for (unsigned int step = 1; step < group.size(); step *= 2) {
    if (group.rank() % (2 * step) == step) {
      const std::vector<char> bytes = bytes_of(columns);
      group.send(std::vector<std::uint64_t>{bytes.size()}, group.rank() - step);
      group.send(bytes, group.rank() - step);
      break;
    }
    if (group.rank() + step >= group.size()) continue;
    std::vector<std::uint64_t> size(1);
    group.receive(size, group.rank() + step);
    std::vector<char> bytes(size[0]);
    group.receive(bytes, group.rank() + step);
    const char* next = bytes.data();
    for (distinct_cells& cells : columns) add_later(cells, read_distinct_cells(next));
  }
  std::vector<char> bytes;
  if (group.is_first()) bytes = bytes_of(columns);
  group.broadcast(bytes, 0);
  if (group.is_first()) return;
  const char* next = bytes.data();
  for (distinct_cells& cells : columns) cells = read_distinct_cells(next);
}

}  // namespace

table load_shared_table(process_group& group, const std::vector<std::string>& paths,
                        const load_options& options) {
  group.enter("reading");
  if (group.size() == 1) return agreed(group, [&] { return load_table(paths, options); });
  agreed(group, [&] { check_can_be_shared(paths); });
  group_sharing sharing(group);
  return load_table(paths, options, sharing);
}

}  // namespace arbor::tree
