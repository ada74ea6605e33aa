// The threshold of a continuous split. While a tree grows it is a code; a finished tree has its
// text, because other tables have other codes.
//
//   const cut best = cut_of(rating);
//   unsigned int code = threshold_code(humidity, best);     // codes up to it are on the low branch
//   std::string text = threshold_text(humidity, best);      // "75"
#ifndef ARBOR_TREE_GROWING_THRESHOLD_H
#define ARBOR_TREE_GROWING_THRESHOLD_H

#include <string>

#include "arbor/model/column.h"

namespace arbor::tree {

// The codes on either side of a cut. Both occur among the cases that were rated; codes between them
// belong to values that other rows of the table have.
struct cut {
  unsigned int low_code = 0;
  unsigned int high_code = 0;
};
cut cut_of(const impls::column::splitting_desc& rating);

// The code of the value in the middle of the cut. Where the middle is not below the high value, it
// is the low code: the middle of neighbouring floats may round up to the upper one, and the middle
// of a number and infinity is infinite.
unsigned int threshold_code(const impls::column& attribute, cut place);

// The text of that value, as the domain prints it. Domains print thirty decimals, which are too few
// for the smallest floats; where the text does not give the code again, and where threshold_code is
// the low code because there is no middle, this is the shortest text of the low value.
std::string threshold_text(const impls::column& attribute, cut place);

}  // namespace arbor::tree

#endif
