// The probabilities of the classes of a case, from the leaves of a tree that it reaches.
//
//   const class_probabilities probabilities(tree, thresholds_of(tree));
//   std::vector<double> distribution =
//       probabilities.of_case([&](unsigned int attribute) { return values[attribute]; });
//
// A case goes down the branch of its value. If the value is unknown, or no training case of the
// node had it, the case goes down every branch, its weight multiplied by the branch's share. The
// distributions of all leaves that it reaches are added up.
#ifndef ARBOR_TREE_CLASS_DISTRIBUTION_H
#define ARBOR_TREE_CLASS_DISTRIBUTION_H

#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// A value as a test compares it: of a continuous attribute a number, of a discrete one the code in
// the tree's domain. The unknown value is not a number, and equals nothing.
inline constexpr double unknown_value = std::numeric_limits<double>::quiet_NaN();

// Which probabilities a leaf gives.
enum class leaf_estimate {
  // The m-estimate toward those of its parent, which are estimated in the same way; those of the
  // root are the shares of its cases. With the class weights w, their sum n, and m = 2:
  //
  //   p = (w + m p_parent) / (n + m)
  //
  // Few cases do not make a class certain or impossible, and many outweigh their parent:
  // B. Cestnik, "Estimating probabilities: a crucial task in machine learning", Proceedings of the
  // 9th European Conference on Artificial Intelligence (1990), 147-149.
  smoothed,
  // The share of each class in the weight of its training cases.
  training_share
};

// m, and what is too little to change a sum in double. Exports of a tree have them too.
inline constexpr double parent_weight = 2;
inline constexpr double negligible_weight = 0x1p-60;

// The tree must outlive this object. Any number of threads may use one.
class class_probabilities {
 public:
  // `thresholds` has an entry for each node: for a continuous test the greatest number that goes
  // down its low branch. The others are not read.
  class_probabilities(const decision_tree& tree, const std::vector<double>& thresholds,
                      leaf_estimate estimate = leaf_estimate::smoothed);

  std::size_t class_count() const { return tree.class_count(); }
  std::size_t node_count() const { return steps.size(); }

  // Stands for no node.
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  // The child on the branch of a value at a test; none if the case goes down every branch. Nodes
  // are given by their index in the tree.
  std::size_t child(std::size_t test, double value) const;

  // The parent of a node; the root's is the root.
  std::size_t parent(std::size_t node) const { return parents[node]; }

  // The leaf that the case reaches; none if it reaches several. `value_of` returns its value of an
  // attribute, given by the index in the tree.
  template <class ValueOf>
  std::size_t leaf_of(ValueOf value_of) const;

  // The probability of each class for a case that reaches this node and no other, as if it were a
  // leaf. Entry c is that of the class with code c + 1.
  std::vector<double> at_node(std::size_t node) const;

  // The same for any case. Takes time and memory in proportion to the classes of the tree, the
  // nodes that the case reaches and the classes that occur there.
  template <class ValueOf>
  std::vector<double> of_case(ValueOf value_of) const;

 private:
  // A node of the tree in a few bytes, all that a case on its way reads.
  struct step {
    double threshold;
    unsigned int attribute;
    unsigned int first_child;
    unsigned int child_count;  // 0 for a leaf
    bool is_continuous;
  };

  // A node that a case reaches.
  struct visit {
    std::size_t node;
    std::size_t parent;  // the place of its parent's visit; the root's is its own
    double weight;       // that the case has at a leaf; 0 at a test
  };

  std::size_t child_with_code(const step& test, unsigned int code) const;
  std::vector<double> of_visits(std::vector<visit> visits) const;

  const decision_tree& tree;
  leaf_estimate estimate;
  std::vector<step> steps;             // by node
  std::vector<unsigned int> branches;  // by node, its number among those of its parent
  std::vector<std::size_t> parents;    // by node
  std::vector<double> case_weights;    // by node
};

// By node: the entry of the class that is predicted where a case reaches this node and no other, as
// if it were a leaf. A node more than 100 levels below another takes the training shares of that
// one for the probabilities there. Takes time in proportion to the classes that occur at the nodes.
std::vector<std::size_t> predicted_classes(const decision_tree& tree);

// The entry of the class with the greatest probability; of equal ones the first.
std::size_t likeliest_class(const std::vector<double>& distribution);

// -- Implementation --

// Both branches of a continuous test have a child.
inline std::size_t class_probabilities::child(std::size_t test, double value) const {
  const step& here = steps[test];
  if (std::isnan(value)) return none;
  if (here.is_continuous) return here.first_child + (value > here.threshold ? 1U : 0U);
  return child_with_code(here, static_cast<unsigned int>(value));
}

template <class ValueOf>
std::size_t class_probabilities::leaf_of(ValueOf value_of) const {
  std::size_t node = 0;
  while (node != none && steps[node].child_count != 0)
    node = child(node, value_of(steps[node].attribute));
  return node;
}

template <class ValueOf>
std::vector<double> class_probabilities::of_case(ValueOf value_of) const {
  constexpr std::size_t usual_nodes = 32;
  std::vector<visit> visits;
  visits.reserve(usual_nodes);
  visits.push_back({0, 0, 1});
  for (std::size_t place = 0; place < visits.size(); ++place) {
    const std::size_t node = visits[place].node;
    const step& here = steps[node];
    if (here.child_count == 0) continue;
    const double weight = std::exchange(visits[place].weight, 0.0);
    const std::size_t next = child(node, value_of(here.attribute));
    if (next != none) {
      visits.push_back({next, place, weight});
    } else {
      for (std::size_t i = here.first_child; i < here.first_child + here.child_count; ++i)
        visits.push_back({i, place, weight * static_cast<double>(tree.nodes[i].share)});
    }
  }
  return of_visits(std::move(visits));
}

}  // namespace arbor::tree

#endif
