// A second version of the split measures, and the nodes on which the real ones are compared with
// it.
//
//   dice roll{1};
//   const node n = random_node(roll, 255, weighing::even);
//   const auto values = code_column<unsigned char>(n, column::CONTINUOUS);
//   w_sequence cases = sequence_of(n);
//   EXPECT_EQ(told(rate(*values, n, *class_column(n, 0), cases)),
//             told(expected(n, column::CONTINUOUS)));
//
// The second version is as plain as can be: every cut and every value adds its cases up anew. Where
// the weights are multiples of 1/8 all sums are exact in any order, so that both versions must
// agree to the last bit.
#ifndef ARBOR_TESTS_SUPPORT_ORACLE_H
#define ARBOR_TESTS_SUPPORT_ORACLE_H

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <set>

#include "arbor/model/column_bool.h"
#include "arbor/model/column_typed.h"
#include "arbor/model/measure/discrete_quality.h"
#include "tests/support/columns.h"

namespace arbor::tests {

using arbor::impls::column_bool;
using arbor::impls::column_typed;
using arbor::impls::options;
using arbor::impls::w_sequence;

constexpr unsigned int top_code = std::numeric_limits<unsigned int>::max();
constexpr unsigned int untouched = 77;  // what the fields of a result hold that nobody has written

// Pseudo-random numbers, the same on every platform: each call gives one from 0 to sides - 1.
struct dice {
  unsigned int operator()(unsigned int sides) {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<unsigned int>((state >> 32) % sides);
  }

  unsigned long long state;
};

struct weighted_case {
  unsigned int code;  // of the rated column, 0 for an unknown value
  unsigned int class_code;
  float weight;
};

// All that a rating depends on. The bounds of a new node are tight.
struct node {
  explicit node(std::vector<weighted_case> list, unsigned int class_count = 2,
                float least_weight = 0)
      : cases(std::move(list)), classes(class_count), min_weight(least_weight) {
    for (const weighted_case& c : cases) {
      total_weight += c.weight;
      if (c.code == 0) continue;
      range.first = range.first == 0 ? c.code : std::min(range.first, c.code);
      range.second = std::max(range.second, c.code + 1);
    }
  }

  std::vector<weighted_case> cases;
  unsigned int classes;
  float min_weight;
  float total_weight = 0;
  strata::util::pair<unsigned int, unsigned int> range{0, 0};
  unsigned int known_values = 3;  // of the rated column's domain
  bool penalty_by_case_count = false;
};

// Multiples of 1/8 (0 among them), or fractions that sums must round.
enum class weighing { even, uneven };

// A node with codes below `top`, in which runs, gaps, noise, unknown values and loose bounds come
// in all mixtures.
inline node random_node(dice& roll, unsigned int top, weighing weights) {
  const unsigned int width = 2 + roll(roll(3) == 0 ? 200 : 20);
  const unsigned int first = 1 + roll(top - width), step = 1 + roll(3),
                     run = 1 + width / (1 + roll(6));
  const unsigned int classes = 2 + roll(4) * roll(4), noise = roll(3), unknowns = roll(3),
                     weight_kind = roll(3);
  std::vector<weighted_case> cases(1 + roll(roll(2) == 0 ? 12 : 150));
  for (weighted_case& c : cases) {
    c.code = roll(8) < unknowns ? 0 : first + roll((width + step - 1) / step) * step;
    c.class_code = 1 + (roll(4) < noise ? roll(classes) : c.code / run % classes);
    const unsigned int eighths = weight_kind == 0 ? 8 : roll(weight_kind == 1 ? 25 : 3);
    c.weight = weights == weighing::even ? static_cast<float>(eighths) / 8
                                         : static_cast<float>(1 + roll(4000)) / 997;
  }
  node result(cases, classes,
              roll(4) == 0 ? static_cast<float>(roll(31)) : static_cast<float>(roll(9)) / 4.0F);
  result.penalty_by_case_count = roll(2) == 0;
  result.known_values = 2 + roll(30);
  if (roll(2) == 0 && result.range.first != 0) {
    result.range.first -= roll(std::min(result.range.first, 30U));
    result.range.second += roll(30);
  }
  return result;
}

// The node's cases as those of a column with two known values and no unknown one.
inline node two_valued(node n) {
  for (weighted_case& c : n.cases) c.code = 1 + c.code % 2;
  n.range = {1, 3};
  n.known_values = 2;
  return n;
}

using rating = column::splitting_desc;

// Not by a stream, which would hide a lack of memory.
inline std::string told(const rating& r) {
  char text[128];
  static_cast<void>(std::snprintf(
      text, sizeof text, "%u branches, cut %u|%u, gain %a, split info %a", r.branches, r.low_code,
      r.high_code, static_cast<double>(r.gain), static_cast<double>(r.split_info)));
  return text;
}

// -- The second version. --

inline float log2_of(double x) {
  return static_cast<float>(std::log(x) / 0.693147182464599609375);
}

// The entropy of a distribution, times its sum.
inline double weighted_entropy(const std::vector<float>& parts) {
  const double sum = std::accumulate(parts.begin(), parts.end(), 0.0F);
  float terms = 0;
  for (double x : parts) terms = static_cast<float>(terms + (x > 0 ? x * log2_of(x) : 0));
  return (sum > 0 ? sum * log2_of(sum) : 0) - terms;
}

// The cases whose codes run from `from` to `to`, both included.
struct part {
  part(const node& n, unsigned int from, unsigned int to) : by_class(n.classes) {
    for (const weighted_case& c : n.cases) {
      if (c.code < from || c.code > to) continue;
      weight += c.weight;
      by_class[c.class_code - 1] += c.weight;
      one_class = last_class == 0 || (one_class && last_class == c.class_code);
      last_class = c.class_code;
    }
  }

  double entropy() const { return weighted_entropy(by_class); }

  float weight = 0;
  std::vector<float> by_class;
  bool one_class = false;
  unsigned int last_class = 0;
};

inline rating no_split(unsigned int branches) {
  return {branches, untouched, untouched, nullptr, rating::no_split, 0};
}

inline rating expected_by_value(const node& n) {
  rating r = no_split(n.known_values);
  const float unknown = part(n, 0, 0).weight, known = n.total_weight - unknown;
  std::vector<float> branches{unknown};
  float within = 0;
  int real_branches = 0;
  for (unsigned int code = n.range.first; code < n.range.second; ++code) {
    const part branch(n, code, code);
    within = static_cast<float>(within + branch.entropy());
    branches.push_back(std::accumulate(branch.by_class.begin(), branch.by_class.end(), 0.0F));
    if (branches.back() >= n.min_weight) ++real_branches;
  }
  if (known == 0 || real_branches < 2) return r;
  const float before = static_cast<float>(part(n, 1, top_code).entropy()) / known;
  const float difference = before - within / known, known_share = known / (unknown + known);
  r.gain = difference * known_share;
  r.split_info = static_cast<float>(weighted_entropy(branches)) / n.total_weight;
  return r;
}

// `by_table` tells the measure that does without sorting: it takes a code of no weight for one that
// does not occur, and evaluates every cut. The other passes over a cut with cases of one class
// alone, from the last cut evaluated through the next code, unless the next cut is too high.
inline rating expected_cut(const node& n, bool by_table) {
  rating r = no_split(2);
  const float unknown = part(n, 0, 0).weight, known = n.total_weight - unknown;
  if (2 * n.min_weight > known) return r;
  const auto before = static_cast<float>(part(n, 1, top_code).entropy() / known);
  const auto class_share = static_cast<float>(0.1 * known / n.classes);
  const float min_side = n.min_weight >= class_share ? n.min_weight : std::min(class_share, 25.0F);
  const float max_left = known - min_side;
  std::set<unsigned int> codes;
  for (const weighted_case& c : n.cases) {
    if (c.code != 0 && !(by_table && c.weight == 0)) codes.insert(c.code);
  }
  rating best = r;
  unsigned int candidates = 0, evaluated = 0;
  for (auto next = codes.begin(); next != codes.end();) {
    const unsigned int cut = *next++;
    const part left(n, 1, cut);
    if (next == codes.end() || left.weight < min_side || left.weight > max_left) continue;
    ++candidates;
    const bool inside_run = part(n, evaluated + 1, *next).one_class;
    if (!by_table && inside_run && part(n, 1, *next).weight <= max_left) continue;
    evaluated = cut;
    const auto within = static_cast<float>(left.entropy() + part(n, cut + 1, top_code).entropy());
    const double k = known;
    const auto gain = static_cast<float>((before - within / k) * (k / (unknown + k)));
    if (!(gain > best.gain)) continue;
    const std::vector<float> sides{unknown, left.weight, known - left.weight};
    best = {2,       cut,  *next,
            nullptr, gain, static_cast<float>(weighted_entropy(sides)) / n.total_weight};
  }
  const double spread =
      n.penalty_by_case_count ? static_cast<double>(n.cases.size()) : n.total_weight;
  const auto penalty = static_cast<float>((candidates == 0 ? 0 : log2_of(candidates)) / spread);
  if (!(penalty < best.gain)) return r;
  best.gain -= penalty;
  return best;
}

// What a column of codes answers, which itself chooses the measure.
inline rating expected(const node& n, column::_type kind) {
  const unsigned int width = n.range.second - n.range.first;
  if (width <= 1 || (kind != column::DISCRETE && kind != column::CONTINUOUS)) return no_split(0);
  return kind == column::DISCRETE ? expected_by_value(n)
                                  : expected_cut(n, n.cases.size() / width > 2);
}

// -- The real columns. Case i of a node is row 2 * i + 1; the rows between are other nodes'. --

inline w_sequence sequence_of(const node& n) {
  w_sequence cases;
  for (const weighted_case& c : n.cases)
    cases.push_back({static_cast<unsigned int>(2 * cases.size() + 1), c.weight});
  return cases;
}

// The domain of 1 to `count`, in which every value is its own code.
inline o_set* numbers_to(unsigned int count) {
  std::unique_ptr<o_set> domain = make_domain("integer", {});
  for (unsigned int value = 1; value <= count; ++value)
    domain->insert(std::to_string(value).c_str());
  return domain.release();
}

// A number of each case by row, with 2 in the rows between.
inline std::vector<unsigned int> by_row(const node& n, unsigned int weighted_case::*number) {
  std::vector<unsigned int> numbers;
  for (const weighted_case& c : n.cases) numbers.insert(numbers.end(), {2, c.*number});
  return numbers;
}

// A column that shows its codes, so that a test can give it some that its domain does not have.
template <class T>
struct open_column : column_typed<T> {
  using column_typed<T>::column_typed;
  using column_typed<T>::values;
};

// A column of a number of each case, any that fits T, with `plus` added.
template <class T>
std::unique_ptr<column_typed<T>> code_column(
    const node& n, column::_type kind, T plus = 0,
    unsigned int weighted_case::*number = &weighted_case::code) {
  open_column<T> open(numbers_to(n.known_values), "x", kind);
  for (unsigned int code : by_row(n, number)) open.values.push_back(static_cast<T>(code + plus));
  return std::unique_ptr<column_typed<T>>(static_cast<column_typed<T>*>(open.clone(false)));
}

// A column of a user's own, which keeps its codes elsewhere than its base.
template <class Base>
struct user_column : Base {
  using Base::Base;
  void append_codes(const unsigned int* added, unsigned int count) override {
    codes.assign(added, added + count);
  }
  unsigned int get_row_index(unsigned int row) const override {
    if (row >= codes.size() || reads_left-- == 0) throw std::runtime_error("no such page");
    return codes[row];
  }
  bool less_than(unsigned int a, unsigned int b) const override { return codes[a] < codes[b]; }

  std::vector<unsigned int> codes;
  mutable unsigned int reads_left = top_code;
};

// A column over 1 to `values` that stores a number of each case.
template <class Column>
std::unique_ptr<Column> stored(const node& n, unsigned int weighted_case::*number,
                               unsigned int values, column::_type kind = column::CLASS) {
  auto result = std::make_unique<Column>(numbers_to(values), "x", kind);
  const std::vector<unsigned int> numbers = by_row(n, number);
  result->append_codes(numbers.data(), static_cast<unsigned int>(numbers.size()));
  return result;
}

// A rated column of the library's class or, for one choice in three, of a user's own.
template <class T>
std::unique_ptr<column_typed<T>> rated_column(const node& n, column::_type kind,
                                              unsigned int choice) {
  if (choice % 3 != 0) return code_column<T>(n, kind);
  return stored<user_column<column_typed<T>>>(n, &weighted_case::code, n.known_values, kind);
}
inline std::unique_ptr<column> bits_of(const node& n, column::_type kind, unsigned int choice = 1) {
  if (choice % 3 != 0) return stored<column_bool>(n, &weighted_case::code, 2, kind);
  return stored<user_column<column_bool>>(n, &weighted_case::code, 2, kind);
}

using user_classes = user_column<column_typed<unsigned char>>;

// The classes of a node in one of five storages, or six where there are two classes; any number
// chooses one.
inline std::unique_ptr<column> class_column(const node& n, unsigned int choice) {
  const auto number = &weighted_case::class_code;
  const unsigned int storage = choice % (n.classes == 2 ? 6 : 5);
  if (storage == 0) return stored<column_typed<unsigned char>>(n, number, n.classes);
  if (storage == 1) return stored<column_typed<unsigned short>>(n, number, n.classes);
  if (storage == 2) return stored<column_typed<unsigned int>>(n, number, n.classes);
  if (storage == 3) return stored<column_typed<unsigned long long>>(n, number, n.classes);
  if (storage == 4) return stored<user_classes>(n, number, n.classes);
  return stored<column_bool>(n, number, n.classes);
}

constexpr rating unrated{untouched, untouched, untouched, nullptr, untouched, untouched};

// Rates by the measure that the column chooses.
inline rating rate(const column& x, node n, column& classes, w_sequence& cases, bool copy = true) {
  rating r = unrated;
  options opts{n.penalty_by_case_count};
  x.quality_measure(&classes, n.total_weight, &cases, n.range, n.min_weight, &opts, r, copy);
  return r;
}

enum class by { value, pair_of_value_and_class, sorting, table };

// Rates by a measure of choice, with null options where the defaults do.
template <class T>
rating rate(by measure, const column_typed<T>& x, node n, column& classes, w_sequence& cases,
            bool copy = true) {
  rating r = unrated;
  options flagged{true}, *opts = n.penalty_by_case_count ? &flagged : nullptr;
  const float total = n.total_weight, least = n.min_weight;
  if (measure == by::value) x.QualityMeasureDiscrete(&classes, total, &cases, n.range, least, r);
  if (measure == by::pair_of_value_and_class) {
    impls::with_codes(x, [&](auto code_of) {
      const impls::sparse_class_table pairs(code_of, classes, cases, n.range);
      impls::rate_discrete(pairs, total, least, r);
    });
    r.branches = x.get_o_set()->size_of_known();  // as a column sets it
  }
  if (measure == by::sorting)
    x.QualityMeasureContinuous(&classes, total, &cases, n.range, least, opts, r, copy);
  if (measure == by::table)
    x.QualityMeasureContinuousRainForest(&classes, total, &cases, n.range, least, opts, r);
  return r;
}

}  // namespace arbor::tests

#endif
