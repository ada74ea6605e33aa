// The rating of splits beside its plainer version, on nodes that the input makes up.
#include "tests/fuzz/fuzz.h"
#include "tests/support/oracle.h"

using namespace arbor::tests;
using arbor::fuzz::check_same;

static node node_off(arbor::fuzz::input& in) {
  const unsigned int classes = 2 + in.below(6), top = 1 + in.below(60),
                     least_eighths = in.below(100);
  const unsigned int loose_before = in.below(4), loose_behind = in.below(40),
                     known_values = 2 + in.below(40);
  const bool by_case_count = in.below(2) == 1;
  std::vector<weighted_case> cases;
  do
    cases.push_back(
        {in.below(top + 1), 1 + in.below(classes), static_cast<float>(in.below(64)) / 8});
  while (!in.empty());
  node result(cases, classes, static_cast<float>(least_eighths) / 8);
  if (result.range.first != 0) {
    result.range.first -= std::min(result.range.first - 1, loose_before);
    result.range.second += loose_behind;
  }
  result.known_values = known_values;
  result.penalty_by_case_count = by_case_count;
  return result;
}

template <class T>
static void compare(const node& n, column& classes, bool copy_cases) {
  w_sequence cases = sequence_of(n);
  for (column::_type kind : {column::DISCRETE, column::CONTINUOUS, column::IGNORE}) {
    check_same(told(rate(*code_column<T>(n, kind), n, classes, cases)), told(expected(n, kind)),
               "what is chosen");
  }
  if (n.range.second - n.range.first < 2) return;
  const auto owned = code_column<T>(n, column::CONTINUOUS);
  const column_typed<T>& x = *owned;
  check_same(told(rate(by::value, x, n, classes, cases)), told(expected_by_value(n)), "by value");
  check_same(told(rate(by::table, x, n, classes, cases)), told(expected_cut(n, true)), "by table");
  check_same(told(rate(by::sorting, x, n, classes, cases, copy_cases)),
             told(expected_cut(n, false)), "by sorting");
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  arbor::fuzz::input in{data, size};
  const unsigned int width = in.below(5), storage = in.below(30);
  const bool copy_cases = in.below(2) == 1;
  const node n = node_off(in), two = two_valued(n);
  const auto classes = class_column(n, storage);
  if (width == 0) compare<unsigned char>(n, *classes, copy_cases);
  if (width == 1) compare<unsigned short>(n, *classes, copy_cases);
  if (width == 2) compare<unsigned int>(n, *classes, copy_cases);
  if (width == 3) compare<unsigned long long>(n, *classes, copy_cases);
  w_sequence cases = sequence_of(two);
  const rating of_bits = rate(*bits_of(two, column::DISCRETE), two, *classes, cases);
  check_same(told(of_bits), told(expected(two, column::DISCRETE)), "of two values");
  return 0;
}
