// The probabilities of the classes of a case, from the leaves of a tree that it reaches.
//
//   const class_probabilities probabilities(tree);
//   std::vector<double> distribution = probabilities.of_case([&](std::size_t test) { ... });
//
// A case goes down the branch of its value. If the value is unknown, or no training case of the
// node had it, the case goes down every branch, its weight multiplied by the branch's share. The
// distributions of all leaves that it reaches are added up.
#ifndef ARBOR_TREE_CLASS_DISTRIBUTION_H
#define ARBOR_TREE_CLASS_DISTRIBUTION_H

#include <cstddef>
#include <utility>
#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Stands for the number of a branch where a case goes down every branch. No branch has it.
constexpr unsigned int every_branch = 0;

// The child on a branch of a test, given by its number; null if the case goes down every branch.
const tree_node* child_on(const decision_tree& tree, const tree_node& test, unsigned int branch);

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

// The tree must outlive this object. Any number of threads may use one.
class class_probabilities {
 public:
  explicit class_probabilities(const decision_tree& of_tree,
                               leaf_estimate chosen = leaf_estimate::smoothed);

  // The probability of each class; entry c is that of the class with code c + 1. `branch_of`
  // returns the number of the branch that the case takes at a test, given by its index in the tree,
  // or every_branch. Takes time and memory in proportion to the classes of the tree, the nodes that
  // the case reaches and the classes that occur there.
  template <class BranchOf>
  std::vector<double> of_case(BranchOf branch_of) const;

 private:
  // A node that a case reaches.
  struct visit {
    std::size_t node;
    std::size_t parent;  // the place of its parent's visit; the root's is its own
    double weight;       // that the case has at a leaf; 0 at a test
  };

  std::vector<double> of_visits(std::vector<visit> visits) const;

  const decision_tree& tree;
  leaf_estimate estimate;
  std::vector<double> case_weights;  // by node
};

// By node: the entry of the class that is predicted where a case reaches this node and no other, as
// if it were a leaf. A node more than 100 levels below another takes the training shares of that
// one for the probabilities there. Takes time in proportion to the classes that occur at the nodes.
std::vector<std::size_t> predicted_classes(const decision_tree& tree);

// The entry of the class with the greatest probability; of equal ones the first.
std::size_t likeliest_class(const std::vector<double>& distribution);

// -- Implementation --

template <class BranchOf>
std::vector<double> class_probabilities::of_case(BranchOf branch_of) const {
  constexpr std::size_t usual_nodes = 32;
  std::vector<visit> visits;
  visits.reserve(usual_nodes);
  visits.push_back({0, 0, 1});
  for (std::size_t place = 0; place < visits.size(); ++place) {
    const std::size_t index = visits[place].node;
    const tree_node& node = tree.nodes[index];
    if (node.is_leaf()) continue;
    const double weight = std::exchange(visits[place].weight, 0.0);
    if (const tree_node* child = child_on(tree, node, branch_of(index))) {
      visits.push_back({static_cast<std::size_t>(child - tree.nodes.data()), place, weight});
    } else {
      for (std::size_t i = node.first_child; i < node.first_child + node.child_count; ++i)
        visits.push_back({i, place, weight * static_cast<double>(tree.nodes[i].share)});
    }
  }
  return of_visits(std::move(visits));
}

}  // namespace arbor::tree

#endif
