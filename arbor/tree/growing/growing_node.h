// A node that has its cases, on the way to becoming a test or a leaf, and the split that divides
// them. Growing a tree asks nothing else about cases. Where they are is up to the class: in this
// process (local_node.h), or shared out among several.
//
//   for (std::size_t i = 0; i < node.pieces(); ++i) node.rate(i);
//   if (const std::shared_ptr<node_split> split = node.split())
//     for (const node_split::branch& branch : split->branches()) grow(split->take(branch));
#ifndef ARBOR_TREE_GROWING_GROWING_NODE_H
#define ARBOR_TREE_GROWING_GROWING_NODE_H

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "arbor/tree/grower.h"
#include "arbor/tree/growing/test_choice.h"
#include "arbor/utils/nocopy.h"

namespace arbor::tree {

class node_split;

// What is known of all cases of a node.
struct node_summary {
  // The sums are those of add_class_weights.
  node_summary(std::size_t case_count, const std::vector<double>& sums, unsigned int tests_above);

  std::size_t cases;
  float weight;
  std::vector<weighted_class> class_weights;
  unsigned int depth;  // the number of tests above the node

  // Whether a node may become a test at all.
  bool may_split(const grow_options& options) const;
};

class growing_node : private strata::util::nocopy {
 public:
  virtual ~growing_node() = default;

  const node_summary& summary() const { return all; }

  // In how many pieces the columns are rated; 0 if the node has to be a leaf.
  virtual std::size_t pieces() const = 0;
  // Rates the columns of a piece, once; several threads may rate different ones.
  virtual void rate(std::size_t piece) = 0;
  // Divides the cases by the best test, once all pieces are rated. Null for a leaf.
  virtual std::shared_ptr<node_split> split() = 0;

 protected:
  explicit growing_node(node_summary of_cases) : all(std::move(of_cases)) {}

 private:
  node_summary all;
};

// The cases of a node, divided by its test.
class node_split : private strata::util::nocopy {
 public:
  struct branch {
    unsigned int number;  // see tree_node::branch
    // The branch's share of the known weight, by which the weight of the unknown cases is
    // multiplied. The shares of all branches add up to 1.
    float share;
    std::size_t known_cases;
  };

  virtual ~node_split() = default;

  const rated_test& test() const { return chosen; }
  // In the order of their numbers. Values of a discrete attribute that no case has give no branch.
  const std::vector<branch>& branches() const { return all_branches; }
  // The cases whose value is unknown, which go down every branch.
  std::size_t unknown_cases() const { return unknown; }

  // Takes the cases of a branch, once. Several threads may take those of different branches.
  virtual std::unique_ptr<growing_node> take(const branch& taken) = 0;

 protected:
  explicit node_split(const rated_test& test) : chosen(test) {}

  rated_test chosen;
  std::vector<branch> all_branches;
  std::size_t unknown = 0;
};

}  // namespace arbor::tree

#endif
