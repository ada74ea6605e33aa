// The split of an attribute at a node, with its gain judged by what chance alone would give.
//
// The judged gain of a discrete split into k > 2 values that occur is its gain, less
// 1.5 (k - 2) / (k - 1) times the gain that values of the same weights have by chance; any other
// split keeps its gain.
//
// The gain on the cases that a tree is grown on rises with the number of values whether they tell
// anything or not, and is greatest for a column that has a value of its own for each row. On
// average a useless attribute has the gain by chance, and does as much harm to cases that the tree
// has not seen (H. Akaike, IEEE Transactions on Automatic Control 19 (1974), 716-723). One that
// tells something does less of that harm, so half of it is charged. A split into two keeps its
// gain, so one of k - 1 degrees of freedom is free; the penalty of a threshold is already part of
// its gain. docs/quality.md has the measurements.
//
// Only the choice among attributes needs this, so it is left to the tree: the gain itself remains
// the information that a split gives about its own cases.
#ifndef ARBOR_TREE_GROWING_JUDGED_SPLIT_H
#define ARBOR_TREE_GROWING_JUDGED_SPLIT_H

#include <cstddef>

#include "arbor/model/measure/class_table.h"
#include "arbor/tree/growing/gain_by_chance.h"
#include "arbor/tree/growing/node_cases.h"

namespace arbor::tree {

struct judged_split {
  impls::column::splitting_desc rating;  // see column::quality_measure
  float judged_gain = 0;                 // the gain if it is not above 0
  // Whether gain, split information, judged gain and gain ratio are finite as float. Otherwise they
  // say nothing, and the rating has been made that of no split.
  bool finite = true;

  bool exists() const { return rating.gain != impls::column::splitting_desc::no_split; }
  // The gain divided by the split information; 0 if that is 0.
  double gain_ratio() const;
};

// Whether all splits are rated, or only those that may be chosen. A column in which hardly any
// value occurs twice may not, at any node; not to rate it saves much of the time that it takes.
enum class rating_need { all, choice };

// What is known of the cases of a node.
struct rated_node {
  float weight;
  float min_weight;
  const gain_by_chance& chance;  // not owned
  rating_need need;
};

// The cases of a node; nothing is owned.
struct rated_cases {
  const impls::w_sequence& cases;  // at least one
  impls::column& class_column;
  rated_node node;
};

// Rates the split of an attribute as column::quality_measure does, and judges its gain. What is
// returned can be compared: none of its numbers is infinite or not a number. `range` has bounds of
// the known codes among the cases, which are not reordered. Several threads may rate attributes of
// the same cases.
judged_split rate_split(const impls::column& attribute, code_range range,
                        const rated_cases& of_node);

// Whether a continuous attribute is rated by the class weights for each code in its range, and not
// by its cases in the order of their codes.
inline bool is_rated_by_table(std::size_t cases, code_range range) {
  return cases / (range.second - range.first) > 2;
}

// The same rating from the table of such an attribute, or of a discrete one: one of the library's
// own columns. The range has two codes at least.
template <class Weight>
judged_split rate_table(const impls::column& attribute, code_range range,
                        const impls::class_table<Weight>& table, std::size_t cases,
                        const rated_node& node);

}  // namespace arbor::tree

#endif
