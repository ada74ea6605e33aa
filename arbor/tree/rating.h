// Rates the split that each attribute of a table would make.
//
//   const table_rating golf_rating = rate_attributes(golf, golf.cases, 2);
//   for (const attribute_rating& rated : golf_rating.attributes) ...
#ifndef ARBOR_TREE_RATING_H
#define ARBOR_TREE_RATING_H

#include <optional>
#include <string>
#include <vector>

#include "arbor/table/table.h"

namespace arbor::tree {

struct split_rating {
  float gain = 0;             // information gain, in bits per unit of weight
  float judged_gain = 0;      // less a charge for many values; see judged_split.h
  float split_info = 0;       // split information, in bits per unit of weight
  float gain_ratio = 0;       // gain divided by split information
  unsigned int branches = 0;  // of a discrete attribute one for each value, else 2
  // Of a continuous attribute: values up to this one are on the low branch.
  std::optional<std::string> threshold;
};

struct attribute_rating {
  std::string name;
  std::string kind;               // discrete, continuous or ignore
  std::string data_type;          // integer, uinteger, decimal, float, double, string or null
  unsigned int values = 0;        // the number of distinct known values
  std::size_t unknown_cells = 0;  // the number of cases with an unknown value
  std::optional<split_rating> split;
  std::string no_split_reason;  // set if there is no split
  bool chosen = false;          // whether a tree would test it; see test_choice.h
};

struct table_rating {
  std::vector<attribute_rating> attributes;
  double average_judged_gain = 0;  // as in split_choice
};

// Rates every attribute of a table, in its order, on `cases`: some of its rows with their weights.
// `min_weight`, 0 or more, is the least weight of two branches of a discrete split, or of both
// sides of a threshold.
table_rating rate_attributes(const table& rated, const impls::w_sequence& cases, float min_weight);

enum class rating_order { ratio, gain, name };

// Sorts ratings for a reader: by name, or the greatest ratio or gain first and attributes without a
// split last. Equal ones keep their order.
void sort_ratings(std::vector<attribute_rating>& ratings, rating_order order);

}  // namespace arbor::tree

#endif
