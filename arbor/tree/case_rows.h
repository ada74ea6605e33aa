// The rows that a part of a tree grows on: those of the table, or an extract of a few of them,
// which lie side by side.
#ifndef ARBOR_TREE_CASE_ROWS_H
#define ARBOR_TREE_CASE_ROWS_H

#include <memory>
#include <vector>

#include "arbor/table/table.h"
#include "arbor/utils/nocopy.h"

namespace arbor::tree {

class case_rows : private strata::util::nocopy {
 public:
  // Those of a table, which must outlive it.
  explicit case_rows(const table& whole);

  // An extract: the rows of `cases`, numbered in their order.
  case_rows(const case_rows& from, const impls::w_sequence& cases);

  // The table's columns, in its order. Of an extract, those that are rated and the class have its
  // rows.
  const std::vector<const impls::column*>& columns() const { return all_columns; }
  impls::column& class_column() const { return *classes; }
  // How many rows there are.
  std::size_t size() const { return weights.size(); }
  // The weight that a row has in the table.
  float weight(unsigned int row) const { return weights[row].second; }

 private:
  std::vector<const impls::column*> all_columns;
  impls::column* classes;
  std::vector<std::unique_ptr<impls::column>> extracts;
  impls::w_sequence extracted_weights;
  const impls::w_sequence& weights;
};

}  // namespace arbor::tree

#endif
