// Which attribute a node tests: the one with the best gain ratio among those whose judged gain is
// at least the average judged gain of all attributes for which it is above 0.
//
// The gain ratio is that of the gain as it is: the split information, by which it is divided,
// already grows with the number of values. See judged_split.h.
#ifndef ARBOR_TREE_GROWING_TEST_CHOICE_H
#define ARBOR_TREE_GROWING_TEST_CHOICE_H

#include <cstddef>
#include <optional>
#include <vector>

#include "arbor/tree/growing/judged_split.h"
#include "arbor/tree/growing/node_cases.h"
#include "arbor/utils/nocopy.h"

namespace arbor::tree {

struct split_choice {
  double average_judged_gain = 0;   // of the splits for which it is above 0; 0 if there are none
  std::optional<std::size_t> best;  // the entry of the chosen split, if there is one
};

// Chooses among the splits of a node. Of equally good ones the first is chosen.
split_choice choose(const std::vector<judged_split>& splits);

struct rated_test {
  std::size_t column_index;  // of the tested column in the table
  impls::column::splitting_desc rating;
};

// The indices of the columns that a tree may test.
std::vector<std::size_t> testable_columns(const case_rows& rows);

// The best of the splits of these columns; none if no attribute splits the cases so that a gain is
// left when it is judged.
std::optional<rated_test> best_test(const std::vector<std::size_t>& column_indices,
                                    const std::vector<judged_split>& splits);

// Rates the columns of a node and chooses its test.
//
//   test_search search(node, class_weights, weight, 2);
//   for (std::size_t i = 0; i < search.columns(); ++i) search.rate(i);
//   std::optional<rated_test> test = search.best();
class test_search : private strata::util::nocopy {
 public:
  // `class_weights` are those of the cases, `node_weight` is their sum, and `min_weight` the least
  // weight of a branch. `rated` must outlive the search.
  test_search(node_cases& rated, const std::vector<weighted_class>& class_weights,
              float node_weight, float min_weight);

  // The number of columns that a tree may test.
  std::size_t columns() const { return splits.size(); }
  // Rates one of them, once; several threads may rate different ones. A range of codes in the node
  // that turns out to be far too wide is narrowed.
  void rate(std::size_t i);
  // Once all are rated: the best test, see best_test.
  std::optional<rated_test> best() const { return best_test(column_indices, splits); }

 private:
  node_cases& node;
  const gain_by_chance chance;
  const rated_cases of_node;
  const std::vector<std::size_t> column_indices;
  std::vector<judged_split> splits;
};

}  // namespace arbor::tree

#endif
