#include "arbor/model/measure/two_class_quality.h"

#include <array>

#include "arbor/model/measure/cut_search.h"

namespace arbor::impls {

namespace {

// Where one code ends and the next begins. With two classes and one weight, how many cases there
// are up to a place, and how many of the second class, is all that is to be known of it. Nothing
// here or in the sweep branches on a case: codes and classes are hard to foresee.
class code_ends {
 public:
  explicit code_ends(const packed_cases& cases)
      : each(cases.weight()),
        cases_up_to(cases.size(), strata::util::first_values::any),
        second(cases.size(), strata::util::first_values::any) {
    unsigned int second_class = 0;
    for (std::size_t i = 0; i < cases.size(); ++i) {
      second_class += cases.class_code(i) == 2 ? 1 : 0;
      // Where the code goes on, the next case overwrites the note.
      cases_up_to[count] = static_cast<unsigned int>(i + 1);
      second[count] = second_class;
      const bool last = i + 1 == cases.size();
      count += last || cases.code(i) != cases.code(i + 1) ? 1 : 0;
    }
  }

  std::size_t size() const { return count; }
  std::size_t last_case(std::size_t i) const { return cases_up_to[i] - 1; }
  // The weight of the cases up to the i-th end, and of those of the second class.
  unsigned int weight(std::size_t i) const { return cases_up_to[i] * each; }
  unsigned int second_weight(std::size_t i) const { return second[i] * each; }

 private:
  unsigned int each;
  std::size_t count = 0;
  strata::util::work_array<unsigned int, 64> cases_up_to;
  strata::util::work_array<unsigned int, 64> second;  // and of these those of the second class
};

// Leaves out the cuts inside a run of one class, as the sweep case by case does.
template <class Search>
void sweep_ends(const code_ends& ends, Search& search) {
  unsigned int evaluated_weight = 0;  // up to the last evaluated cut
  unsigned int evaluated_second = 0;
  for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
    const unsigned int weight = ends.weight(i);
    const unsigned int second = ends.second_weight(i);
    search.put(search.as_weight(weight - second), search.as_weight(second));
    if (search.too_low()) continue;
    if (search.too_high()) break;
    search.count_candidate();
    const unsigned int since = ends.weight(i + 1) - evaluated_weight;
    const unsigned int second_since = ends.second_weight(i + 1) - evaluated_second;
    const bool one_class = (second_since == 0) | (second_since == since);
    const bool inside_run = one_class & !search.too_high(search.as_weight(ends.weight(i + 1)));
    evaluated_weight = inside_run ? evaluated_weight : weight;
    evaluated_second = inside_run ? evaluated_second : second;
    search.evaluate(i, !inside_run);
  }
}

}  // namespace

void rate_two_classes(const packed_cases& cases, float total_weight, std::size_t case_count,
                      float min_weight, const options* opts, column::splitting_desc& result) {
  const code_ends ends(cases);
  if (ends.size() < 2) return;  // a cut needs codes on both sides
  const unsigned int weight = ends.weight(ends.size() - 1);
  const unsigned int second = ends.second_weight(ends.size() - 1);
  const std::array<float, 2> classes{static_cast<float>(weight - second),
                                     static_cast<float>(second)};
  const node_weights node{classes.data(), 2, cases.unknown_weight(), total_weight, min_weight};
  if (!node.splittable()) return;
  with_cut_search<2, unsigned int>(node, ends.size(), [&](auto& search) {
    sweep_ends(ends, search);
    if (!search.conclude(case_count, opts, result)) return;
    const std::size_t best_case = ends.last_case(search.best_place());
    result.low_code = cases.code(best_case);
    result.high_code = cases.code(best_case + 1);
  });
}

}  // namespace arbor::impls
