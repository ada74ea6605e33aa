// The table that units are timed on: columns of as many values as asked for, spread evenly over the
// rows and in no order, and classes that depend on them half of the time, so that there is a split
// to find.
#ifndef ARBOR_BENCH_SAMPLE_H
#define ARBOR_BENCH_SAMPLE_H

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "arbor/model/column_bool.h"
#include "arbor/model/column_typed.h"

namespace arbor::bench {

using impls::column;
using impls::column_bool;
using impls::column_typed;
using impls::o_set;
using impls::w_sequence;
using weighted_case = w_sequence::value_type;
using code_range = strata::util::pair<unsigned int, unsigned int>;

// An empty column over a domain of the texts.
std::unique_ptr<column> make_column(const std::string& kind, const std::string& data_type,
                                    const std::vector<std::string>& domain);

// The integers from 0 to `count` - 1.
std::vector<std::string> integer_texts(unsigned int count);

// 100,000 as people write it.
std::string with_thousands(unsigned int number);

enum class row_order {
  rows,       // one after the other
  scattered,  // ascending, a random third of all
  shuffled    // those, in no order
};
enum class weighing { unit, uneven };

class sample {
 public:
  static constexpr unsigned int cases = 1000000;  // of a node, unless another number is named
  static constexpr unsigned int rows = 3 * cases;

  sample();

  // Made when first asked for. A discrete column of 2 values is one of bits; the least value has
  // code 1.
  column* attribute(const std::string& kind, unsigned int known);
  column* classes(unsigned int count) { return attribute("class", count); }

  static w_sequence node(row_order order, weighing weights);

  // A column of three values; half of the rows have the second.
  column* skewed();

 private:
  column* filled(const std::string& key, const std::string& kind, unsigned int known,
                 const std::function<unsigned int(double)>& value_at);

  std::vector<double> position;        // of a row's values among all values, from 0 to 1
  std::vector<double> class_position;  // the same for the class
  std::map<std::string, std::unique_ptr<column>> columns;
};

// The codes of a column of bits, read by hand.
struct bit_array {
  const unsigned int* words;
  unsigned int operator[](unsigned int row) const { return 1 + (words[row / 32] >> row % 32 & 1U); }
};

// Calls `use` with the array in which the column keeps its codes, for bare loops to read.
template <class Use>
auto with_codes(const column& source, Use use) {
  if (const auto* bits = dynamic_cast<const column_bool*>(&source))
    return use(bit_array{bits->bits().data()});
  if (const auto* one = dynamic_cast<const column_typed<unsigned char>*>(&source))
    return use(one->codes().data());
  if (const auto* two = dynamic_cast<const column_typed<unsigned short>*>(&source))
    return use(two->codes().data());
  if (const auto* four = dynamic_cast<const column_typed<unsigned int>*>(&source))
    return use(four->codes().data());
  throw std::logic_error("a column of bits, or of codes of one, two or four bytes");
}

inline const unsigned char* class_codes(const column& classes) {
  return dynamic_cast<const column_typed<unsigned char>&>(classes).codes().data();
}

}  // namespace arbor::bench

#endif
