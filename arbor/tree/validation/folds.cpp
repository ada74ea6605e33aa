#include "arbor/tree/validation/folds.h"

#include <algorithm>
#include <numeric>

#include "arbor/model/code_readers.h"
#include "arbor/tree/validation/random_order.h"

namespace arbor::tree {

namespace {

// The indices of the cases, in a random order within each class, one class after the other.
std::vector<unsigned int> shuffled_by_class(const impls::column& classes,
                                            const impls::w_sequence& cases,
                                            std::mt19937_64& random) {
  std::vector<std::size_t> ends(classes.get_distinct() + 1, 0);  // by class
  std::vector<unsigned int> order(cases.size());
  impls::with_codes(classes, [&](auto class_of) {
    for (const auto& weighted : cases) ++ends[class_of(weighted.first) + 1];
    std::partial_sum(ends.begin(), ends.end(), ends.begin());
    for (unsigned int i = 0; i < cases.size(); ++i) order[ends[class_of(cases[i].first)]++] = i;
  });
  auto begin = order.begin();
  for (const std::size_t end : ends) {
    shuffle(begin, order.begin() + static_cast<std::ptrdiff_t>(end), random);
    begin = order.begin() + static_cast<std::ptrdiff_t>(end);
  }
  return order;
}

}  // namespace

std::vector<unsigned int> deal_folds(const impls::column& classes, const impls::w_sequence& cases,
                                     unsigned int folds, std::mt19937_64& random) {
  const std::vector<unsigned int> order = shuffled_by_class(classes, cases, random);
  std::vector<unsigned int> result(cases.size());
  // Each class goes on with the fold after the one where the class before it ended.
  for (std::size_t i = 0; i < order.size(); ++i)
    result[order[i]] = static_cast<unsigned int>(i % folds);
  return result;
}

divided_cases hold_out_fold(const impls::w_sequence& cases, const std::vector<unsigned int>& folds,
                            unsigned int held_back) {
  divided_cases result;
  for (std::size_t i = 0; i < cases.size(); ++i)
    (folds[i] == held_back ? result.held_back : result.training).push_back(cases[i]);
  return result;
}

}  // namespace arbor::tree
