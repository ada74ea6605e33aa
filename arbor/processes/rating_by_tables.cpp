#include "arbor/processes/rating_by_tables.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/class_table.h"

namespace arbor::tree {

namespace {

constexpr std::size_t most_cells = std::size_t{1} << 24U;  // on their way at a time: 64 MiB

// How many tables are on their way at a time: whenever MPI looks for what has arrived, it looks at
// all of them. Each process can still have one.
std::size_t most_tables(const process_group& group) {
  constexpr std::size_t least = 64;
  return std::max<std::size_t>(least, group.size());
}

void add_cases(impls::class_counts& table, const impls::column& attribute,
               const impls::column& classes, const impls::w_sequence& cases) {
  const impls::even_weight weight(cases);
  impls::with_codes(attribute, [&](auto code_of) {
    impls::with_codes(classes,
                      [&](auto class_of) { table.count(code_of, class_of, cases, weight); });
  });
}

void add_cases(impls::class_sums& table, const impls::column& attribute,
               const impls::column& classes, const impls::w_sequence& cases) {
  impls::with_codes(attribute, [&](auto code_of) {
    impls::with_codes(classes, [&](auto class_of) { table.add(code_of, class_of, cases); });
  });
}

void finish(impls::class_counts& table, const shared_cases& node) {
  table.finish(node.even_weight);
}
void finish(impls::class_sums& /*table*/, const shared_cases& /*node*/) {}

// The tables of some attributes, each of which has an owner: the process that rates it. `Table` is
// class_counts for even weights, else class_sums.
template <class Table>
class owned_tables {
 public:
  owned_tables(process_group& of_processes, const shared_cases& rated)
      : group(of_processes), node(rated), classes(rated.rows->class_column()) {}

  using place = std::vector<shared_attribute>::const_iterator;

  // Makes empty tables of the next attributes. Returns the first one that finds no room. Each goes
  // to the process that has the fewest cells so far.
  place take(place next, place end) {
    tables.clear();
    std::vector<std::size_t> cells(group.size(), 0);
    std::size_t all = 0;
    for (; next != end; ++next) {
      const std::size_t size = Table::cell_count(next->range, classes.get_distinct());
      if (tables.size() == most_tables(group) || (all > 0 && all + size > most_cells)) break;
      const auto least = std::min_element(cells.begin(), cells.end());
      tables.push_back({&*next, static_cast<unsigned int>(least - cells.begin()), size,
                        std::make_unique<Table>(next->range, classes.get_distinct())});
      *least += size;
      all += size;
    }
    return next;
  }

  // Counts are exact in any order; while those of one attribute are on their way, the next are
  // counted.
  void count() {
    std::vector<std::uint32_t> rests;
    for (owned_table& owned : tables) {
      for (const auto& sequence : node.sequences) add(owned, *sequence);
      rests.resize(rests.size() + owned.table->rest_count());
      owned.table->put_rest(rests.data() + rests.size() - owned.table->rest_count());
      group.add_up_at(owned.table->all_cells(), owned.cells, owned.owner);
    }
    group.add_up(rests);
    const std::uint32_t* rest = rests.data();
    for (owned_table& owned : tables) {
      owned.table->take_rest(rest);
      rest += owned.table->rest_count();
    }
    group.settle();
  }

  // The order of float sums is that of the cases, so the tables go from process to process. The
  // last one sends them to their owners or, if there is another sequence of cases, to the first
  // one. It does not wait then, since the first one may be waiting for it, so it sends a copy.
  void add_in_order() {
    const unsigned int last = group.size() - 1;
    for (std::size_t i = 0; i < node.sequences.size(); ++i) {
      const bool is_end = i + 1 == node.sequences.size();
      for (owned_table& owned : tables) {
        if (!group.is_first()) {
          receive(owned, group.rank() - 1);
        } else if (i > 0 && last > 0) {
          receive(owned, last);
        }
        add(owned, *node.sequences[i]);
        if (!group.is_last()) {
          send(owned, group.rank() + 1);
        } else if (last > 0 && (owned.owner != last || !is_end)) {
          send_copy(owned, is_end ? owned.owner : 0);
        }
      }
    }
    for (owned_table& owned : tables) {
      if (owned.owner == group.rank() && !group.is_last()) receive(owned, last);
    }
    group.settle();
    copies.clear();
  }

  // Rates those of this process.
  void rate(const rated_node& known, std::vector<shared_result>& results) {
    for (owned_table& owned : tables) {
      if (owned.owner != group.rank()) continue;
      const shared_attribute& attribute = *owned.attribute;
      finish(*owned.table, node);
      results.push_back(shared_result::of(
          attribute, rate_table<typename Table::weight_type>(*attribute.column, attribute.range,
                                                             *owned.table, node.all, known)));
    }
  }

 private:
  using numbers = std::vector<typename Table::weight_type>;

  struct owned_table {
    const shared_attribute* attribute;
    unsigned int owner;
    std::size_t cells;
    std::unique_ptr<Table> table;
  };

  void add(owned_table& to, const impls::w_sequence& cases) const {
    add_cases(*to.table, *to.attribute->column, classes, cases);
  }

  // The cells of a table, and the rest of its numbers.
  numbers copy_of(owned_table& owned) const {
    numbers copy(owned.cells + owned.table->rest_count());
    std::copy_n(owned.table->all_cells(), owned.cells, copy.data());
    owned.table->put_rest(copy.data() + owned.cells);
    return copy;
  }

  void send(owned_table& owned, unsigned int to) { group.send(copy_of(owned), to); }

  void send_copy(owned_table& owned, unsigned int to) {
    copies.push_back(copy_of(owned));
    group.send_later(copies.back().data(), copies.back().size(), to);
  }

  void receive(owned_table& owned, unsigned int from) {
    numbers received(owned.cells + owned.table->rest_count());
    group.receive(received, from);
    std::copy_n(received.data(), owned.cells, owned.table->all_cells());
    owned.table->take_rest(received.data() + owned.cells);
  }

  process_group& group;
  const shared_cases& node;
  const impls::column& classes;
  std::vector<owned_table> tables;
  std::vector<numbers> copies;  // on their way
};

}  // namespace

std::vector<shared_result> rate_by_tables(process_group& group, const shared_cases& node,
                                          const std::vector<shared_attribute>& attributes,
                                          const rated_node& known) {
  std::vector<shared_result> results;
  if (node.is_even()) {
    owned_tables<impls::class_counts> tables(group, node);
    for (auto next = attributes.begin(); next != attributes.end();) {
      next = tables.take(next, attributes.end());
      tables.count();
      tables.rate(known, results);
    }
  } else {
    owned_tables<impls::class_sums> tables(group, node);
    for (auto next = attributes.begin(); next != attributes.end();) {
      next = tables.take(next, attributes.end());
      tables.add_in_order();
      tables.rate(known, results);
    }
  }
  return results;
}

}  // namespace arbor::tree
