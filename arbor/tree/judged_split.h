// The split of an attribute at a node, with its gain judged by what chance alone would give.
//
// The judged gain of a discrete split into k > 2 values that occur is its gain, less
// 1.5 (k - 2) / (k - 1) times the gain that values of the same weights have on average if they tell
// nothing about the classes; any other split keeps its gain.
//
// The gain on the cases that a tree is grown on rises with the number of values whether they tell
// anything or not, and is greatest for a column that has a value of its own for each row. On
// average a useless attribute has the gain by chance, and would do as much harm again to cases that
// the tree has not seen (H. Akaike, IEEE Transactions on Automatic Control 19 (1974), 716-723). One
// that does tell something does less of that harm, so half of it is charged. A split into two keeps
// its gain, so one of the k - 1 degrees of freedom is free; the penalty of a threshold is already
// part of its gain. docs/quality.md has the measurements.
//
// The gain by chance: G. A. Miller, "Note on the bias of information estimates", in H. Quastler
// (ed.), Information Theory in Psychology (1955), 95-100; for attributes of a tree A. Dobra and
// J. Gehrke, "Bias correction in classification tree construction", ICML 2001, 90-97.
//
// Judging is left to the tree, as only the choice among several attributes needs it: the gain by
// itself remains the information that a split gives.
#ifndef ARBOR_TREE_JUDGED_SPLIT_H
#define ARBOR_TREE_JUDGED_SPLIT_H

#include "arbor/tree/node_cases.h"

namespace arbor::tree {

struct judged_split {
  impls::column::splitting_desc rating;  // see column::quality_measure
  float judged_gain = 0;                 // as the gain, or below 0 if it is likely to be chance

  bool exists() const { return rating.gain != impls::column::splitting_desc::no_split; }
  double gain_ratio() const;  // the gain divided by the split information
};

// Rates a split as column::quality_measure does, which describes the arguments, and judges its
// gain. The cases are not reordered.
judged_split rate_split(const impls::column& attribute, impls::column& class_column,
                        float total_weight, const impls::w_sequence& cases, code_range range,
                        float min_weight);

}  // namespace arbor::tree

#endif
