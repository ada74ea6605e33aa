// How good a split each attribute of a table would make.
//
//   for (const attribute_rating& rated : rate_attributes(golf, golf.cases, 2)) ...
#ifndef ARBOR_TREE_RATING_H
#define ARBOR_TREE_RATING_H

#include <optional>
#include <string>
#include <vector>

#include "arbor/table/table.h"

namespace arbor::tree {

// A split.
struct split_rating {
  float gain = 0;                        // information gain, bits per unit of weight
  float split_info = 0;                  // split information, likewise
  float gain_ratio = 0;                  // gain over split information
  unsigned int branches = 0;             // a discrete attribute has one for each value
  std::optional<std::string> threshold;  // a continuous one has two: up to this value, and above it
};

struct attribute_rating {
  std::string name;
  std::string kind;         // discrete, continuous or ignore
  std::string data_type;    // integer, uinteger, float, double, string or null
  unsigned int values = 0;  // distinct known ones
  std::size_t unknown_cells = 0;
  std::optional<split_rating> split;
  std::string no_split_reason;  // why there is none
};

// Rates the attributes, in the order of the table, on some of its rows with their weights. A branch
// must carry `min_weight`, 0 or more, to count as one.
std::vector<attribute_rating> rate_attributes(const table& rated, const impls::w_sequence& cases,
                                              float min_weight);

enum class rating_order { ratio, gain, name };

// Orders ratings for a reader: the greatest ratio or gain first, what cannot be split last, or by
// name; what is equal stays in order.
void sort_ratings(std::vector<attribute_rating>& ratings, rating_order order);

}  // namespace arbor::tree

#endif
