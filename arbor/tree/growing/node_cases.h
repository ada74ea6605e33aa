// The cases of a node while a tree grows, and the rows that their codes are read from.
//
// The rows are those of the table, or a copy of a few of them. Each column is read several times
// for every node. Where a node's cases are scattered over a large table, each of these reads would
// fetch a whole cache line for a few bytes; a copy puts the rows side by side.
#ifndef ARBOR_TREE_GROWING_NODE_CASES_H
#define ARBOR_TREE_GROWING_NODE_CASES_H

#include <memory>
#include <vector>

#include "arbor/table/table.h"
#include "arbor/utils/nocopy.h"
#include "arbor/utils/pair.h"

namespace arbor::tree {

// Whether a tree may test a column.
bool is_testable(const impls::column& column);

class case_rows : private strata::util::nocopy {
 public:
  // The rows of a table, which must outlive this object.
  explicit case_rows(const table& whole);

  // A copy of the rows of `cases`, numbered in their order. Only the class and the columns that a
  // tree may test are copied, and they use the domains of the table. Requires from.can_be_copied().
  case_rows(const case_rows& from, const impls::w_sequence& cases);

  // Rows that are not those of a table in this process, with their weights in the table. `read` has
  // the columns that is_read is true of, in the order of the table, and uses its domains.
  case_rows(const table& whole, std::vector<std::unique_ptr<impls::column>> read,
            impls::w_sequence row_weights);

  // Whether a column is the class or one that a tree may test; no other one is copied.
  bool is_read(const impls::column& column) const;

  // In the order of the table.
  const std::vector<const impls::column*>& columns() const { return all_columns; }
  impls::column& class_column() const { return *classes; }
  // The number of rows.
  std::size_t size() const { return weights.size(); }
  // The weight of a row in the table.
  float weight(unsigned int row) const { return weights[row].second; }
  // Whether all columns that would be copied are of the library's own classes. A copy of any other
  // class would lose what the class overrides.
  bool can_be_copied() const { return copyable; }

 private:
  void add_copy(const impls::column& of, std::unique_ptr<impls::column> copy);

  std::vector<const impls::column*> all_columns;
  impls::column* classes;
  bool copyable = true;
  std::vector<std::unique_ptr<impls::column>> copies;
  impls::w_sequence copied_weights;
  const impls::w_sequence& weights;
};

// Whether so little is left of a case's weight that it is left out. It would take the time and the
// memory of a whole case, in many branches at once, and its weight might end as 0.
inline bool is_sliver(const impls::w_sequence::value_type& weighted, const case_rows& rows) {
  constexpr float least_part = 1.0F / 1024;
  return weighted.second < least_part * rows.weight(weighted.first) || !(weighted.second > 0);
}

// Bounds [first, second) of known codes.
using code_range = strata::util::pair<unsigned int, unsigned int>;

struct node_cases {
  std::shared_ptr<const case_rows> rows;  // the row numbers of `cases` refer to these
  std::shared_ptr<const impls::w_sequence> cases;
  std::vector<code_range> ranges;  // by column of the table: bounds of the codes among the cases
  unsigned int depth = 0;          // the number of tests above the node
};

// The root of a tree that is grown on some rows of a table. Both must outlive the result.
node_cases root_cases(const table& training, const impls::w_sequence& cases);

// Gives a node a copy of its rows where its cases are so scattered that the copy pays.
void gather_rows(node_cases& node);

}  // namespace arbor::tree

#endif
