#include "arbor/processes/moved_cases.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/model/extract_rows.h"
#include "arbor/utils/bindevice.h"
#include "arbor/utils/ibinstream.h"

namespace arbor::tree {

namespace {

using bytes = std::vector<char>;

template <class T>
void put(bytes& to, const T& value) {
  const std::size_t begin = to.size();
  to.resize(begin + sizeof value);
  std::memcpy(to.data() + begin, &value, sizeof value);
}

template <class T>
T take_value(const char*& from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  from += sizeof value;
  return value;
}

// Calls use(code) with a code of the type that the column stores.
template <class Use>
void with_code_type(const impls::column& column, Use use) {
  const std::type_info& storage = typeid(column);
  if (storage == typeid(impls::column_typed<unsigned short>)) {
    use(static_cast<unsigned short>(0));
  } else if (storage == typeid(impls::column_typed<unsigned int>)) {
    use(0U);
  } else if (storage == typeid(impls::column_typed<unsigned long long>)) {
    use(0ULL);
  } else {
    use(static_cast<unsigned char>(0));  // or a bit
  }
}

bool is_of_bits(const impls::column& column) {
  return typeid(column) == typeid(impls::column_bool);
}

// As the record of the rows, which the column itself can read; bits as bytes.
void put_codes(bytes& to, const impls::column& column, const impls::w_sequence& cases) {
  put(to, static_cast<unsigned int>(cases.size()));
  with_code_type(column, [&](auto code) {
    std::size_t place = to.size();
    to.resize(place + cases.size() * sizeof code);
    impls::with_codes(column, [&](auto code_of) {
      for (const auto& weighted : cases) {
        const auto stored = static_cast<decltype(code)>(code_of(weighted.first));
        std::memcpy(to.data() + place, &stored, sizeof stored);
        place += sizeof stored;
      }
    });
  });
}

// Bytes that others own.
class received_bytes : public strata::inpout::bindevice {
 public:
  explicit received_bytes(const char*& from) : next(from) {}

  void write(const void* /*data*/, unsigned int /*count*/) override {
    throw std::logic_error("received bytes are only read");
  }
  void read(void* data, unsigned int count) override {
    std::memcpy(data, next, count);
    next += count;
  }

 private:
  const char*& next;
};

void take_codes(const char*& from, impls::column& column) {
  if (!is_of_bits(column)) {
    received_bytes device(from);
    strata::inpout::ibinstream in(device);
    column.bin_in(in);
    return;
  }
  std::vector<unsigned int> codes(take_value<unsigned int>(from));
  for (unsigned int& code : codes) code = take_value<unsigned char>(from);
  column.append_codes(codes.data(), static_cast<unsigned int>(codes.size()));
}

// Each case has a weight at the node and one in the table. Most often both are 1.
bool all_weigh_one(const case_rows& rows, const impls::w_sequence& cases) {
  return std::all_of(cases.begin(), cases.end(), [&](const auto& weighted) {
    return weighted.second == 1 && rows.weight(weighted.first) == 1;
  });
}

void put_sequence(bytes& to, const case_rows& rows, const impls::w_sequence& cases) {
  put(to, static_cast<std::uint64_t>(cases.size()));
  for (const impls::column* column : rows.columns()) {
    if (rows.is_read(*column)) put_codes(to, *column, cases);
  }
  const bool has_weights = !all_weigh_one(rows, cases);
  put(to, has_weights);
  if (!has_weights) return;
  for (const auto& [row, weight] : cases) {
    put(to, weight);
    put(to, rows.weight(row));
  }
}

// The cases of a node as they come from the processes.
class arriving_node {
 public:
  explicit arriving_node(const case_rows& of_table) {
    for (const impls::column* column : of_table.columns()) {
      if (of_table.is_read(*column)) columns.push_back(impls::extract_rows(*column, {}));
    }
  }

  void take_sequence(const char*& from) {
    const auto count = static_cast<std::size_t>(take_value<std::uint64_t>(from));
    for (const auto& column : columns) take_codes(from, *column);
    const bool has_weights = take_value<bool>(from);
    const std::size_t first = cases.size();
    cases.resize(first + count);
    row_weights.resize(first + count);
    for (std::size_t i = first; i < cases.size(); ++i) {
      const auto row = static_cast<unsigned int>(i);
      cases[i] = {row, has_weights ? take_value<float>(from) : 1.0F};
      row_weights[i] = {row, has_weights ? take_value<float>(from) : 1.0F};
    }
  }

  node_cases node(const table& training, std::vector<code_range> ranges, unsigned int depth) {
    return {std::make_shared<const case_rows>(training, std::move(columns), std::move(row_weights)),
            std::make_shared<const impls::w_sequence>(std::move(cases)), std::move(ranges), depth};
  }

 private:
  std::vector<std::unique_ptr<impls::column>> columns;
  impls::w_sequence cases;
  impls::w_sequence row_weights;
};

}  // namespace

std::vector<node_cases> moved_here(process_group& group, const table& training,
                                   std::vector<moving_node> nodes) {
  std::vector<bytes> outgoing(group.size());
  for (moving_node& node : nodes) {
    for (auto& sequence : node.cases.sequences) {
      put_sequence(outgoing[node.to], *node.cases.rows, *sequence);
      sequence.reset();
    }
  }
  const std::vector<bytes> incoming = group.exchanged(std::move(outgoing));
  std::vector<const char*> next;
  for (const bytes& of_process : incoming) next.push_back(of_process.data());
  std::vector<node_cases> moved;
  for (moving_node& node : nodes) {
    if (node.to != group.rank()) continue;
    arriving_node arriving(*node.cases.rows);
    for (std::size_t i = 0; i < node.cases.sequences.size(); ++i) {
      for (const char*& of_process : next) arriving.take_sequence(of_process);
    }
    moved.push_back(arriving.node(training, std::move(node.cases.ranges), node.cases.depth));
  }
  return moved;
}

}  // namespace arbor::tree
