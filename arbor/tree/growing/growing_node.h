// A node that has its cases, on the way to becoming a test or a leaf.
//
//   growing_node node(std::move(cases), options);
//   for (std::size_t i = 0; i < node.columns(); ++i) node.rate(i);
//   std::shared_ptr<node_split> split = node.split();
#ifndef ARBOR_TREE_GROWING_GROWING_NODE_H
#define ARBOR_TREE_GROWING_GROWING_NODE_H

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "arbor/tree/grower.h"
#include "arbor/tree/growing/node_split.h"
#include "arbor/tree/growing/test_choice.h"

namespace arbor::tree {

class growing_node {
 public:
  growing_node(node_cases of_node, const grow_options& options);

  float weight() const { return all_weight; }  // of its cases
  const std::vector<weighted_class>& class_weights() const { return classes; }

  // The number of columns to rate; 0 if the node has to be a leaf.
  std::size_t columns() const { return search ? search->columns() : 0; }
  // Rates one of them, once; several threads may rate different ones.
  void rate(std::size_t i) { search->rate(i); }
  // Divides the cases by the best test, once all columns are rated. Null for a leaf.
  std::shared_ptr<node_split> split();

 private:
  bool may_split(const grow_options& options) const;

  node_cases node;
  float all_weight;
  std::vector<weighted_class> classes;
  std::optional<test_search> search;
};

}  // namespace arbor::tree

#endif
