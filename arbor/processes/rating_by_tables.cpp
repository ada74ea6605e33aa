#include "arbor/processes/rating_by_tables.h"

#include <algorithm>
#include <cstdint>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/class_table.h"

namespace arbor::tree {

namespace {

constexpr std::size_t most_numbers = std::size_t{1} << 24U;  // on their way at a time: 64 MiB

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
      : group(of_processes),
        node(rated),
        classes(rated.rows->class_column()),
        numbers(group.size()) {}

  using place = std::vector<shared_attribute>::const_iterator;

  // Makes empty tables of the next attributes. Returns the first one that finds no room.
  place take(place next, place end) {
    tables.clear();
    std::vector<std::size_t> sizes(group.size(), 0);
    std::size_t all = 0;
    for (; next != end; ++next) {
      const std::size_t size = Table::number_count(next->range, classes.get_distinct());
      if (all > 0 && all + size > most_numbers) break;
      const auto least = std::min_element(sizes.begin(), sizes.end());
      tables.push_back({&*next, static_cast<unsigned int>(least - sizes.begin()), *least});
      *least += size;
      all += size;
    }
    for (unsigned int owner = 0; owner < group.size(); ++owner)
      numbers[owner].assign(sizes[owner], 0);
    return next;
  }

  // Counts are exact in any order; while those of one owner are on their way, the next are counted.
  void count() {
    for (unsigned int owner = 0; owner < group.size(); ++owner) {
      for (std::size_t i = 0; i < node.sequences.size(); ++i) add_own_cases(owner, i);
      group.add_up_at(numbers[owner], owner);
    }
    group.settle();
  }

  // The order of float sums is that of the cases, so the tables go from process to process. The last
  // one sends them to their owners or, if there is another sequence of cases, to the first one; it
  // does not wait, since the first one may be waiting for it.
  void add_in_order() {
    const unsigned int last = group.size() - 1;
    for (std::size_t i = 0; i < node.sequences.size(); ++i) {
      const bool is_end = i + 1 == node.sequences.size();
      for (unsigned int owner = 0; owner < group.size(); ++owner) {
        if (!group.is_first()) {
          group.receive(numbers[owner], group.rank() - 1);
        } else if (i > 0 && last > 0) {
          group.receive(numbers[owner], last);
        }
        add_own_cases(owner, i);
        if (!group.is_last()) {
          group.send(numbers[owner], group.rank() + 1);
        } else if (last > 0 && (owner != last || !is_end)) {
          group.send_later(numbers[owner], is_end ? owner : 0);
        }
      }
    }
    if (!group.is_last()) group.receive(numbers[group.rank()], last);
    group.settle();
  }

  // Rates those of this process.
  void rate(const rated_node& known, std::vector<shared_result>& results) const {
    for (const owned_table& owned : tables) {
      if (owned.owner != group.rank()) continue;
      const shared_attribute& attribute = *owned.attribute;
      Table table(attribute.range, classes.get_distinct());
      table.take_numbers(numbers[owned.owner].data() + owned.begin);
      finish(table, node);
      results.push_back(shared_result::of(
          attribute, rate_table<typename Table::weight_type>(*attribute.column, attribute.range,
                                                             table, node.all, known)));
    }
  }

 private:
  struct owned_table {
    const shared_attribute* attribute;
    unsigned int owner;
    std::size_t begin;  // of its numbers among those of the owner
  };

  void add_own_cases(unsigned int owner, std::size_t sequence) {
    const impls::w_sequence& cases = *node.sequences[sequence];
    if (cases.empty()) return;
    for (const owned_table& owned : tables) {
      if (owned.owner != owner) continue;
      Table table(owned.attribute->range, classes.get_distinct());
      table.take_numbers(numbers[owner].data() + owned.begin);
      add_cases(table, *owned.attribute->column, classes, cases);
      table.put_numbers(numbers[owner].data() + owned.begin);
    }
  }

  process_group& group;
  const shared_cases& node;
  const impls::column& classes;
  std::vector<owned_table> tables;
  std::vector<std::vector<typename Table::weight_type>> numbers;  // by owner
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
