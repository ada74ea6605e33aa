#include "arbor/model/measure/continuous_quality.h"

#include <array>

#include "arbor/model/measure/cut_search.h"
#include "arbor/model/measure/sorted_cases.h"

namespace arbor::impls {

namespace {

// Moves a cut over sorted cases, case by case.
template <class Cases>
class case_sweep {
 public:
  explicit case_sweep(const Cases& sorted) : cases(sorted) {
    if (cases.size() > 0) run_class = cases.class_code(0);
  }

  template <class Search>
  bool move_next(Search& search) {
    if (next == cases.size()) return false;
    const auto code = cases.code(next);
    do {
      const unsigned int class_code = cases.class_code(next);
      one_class = one_class && class_code == run_class;
      search.move(class_code, search.as_weight(cases.weight(next)));
      ++next;
    } while (next < cases.size() && cases.code(next) == code);
    return next < cases.size();
  }

  std::size_t place() const { return next; }
  unsigned int low_code(std::size_t place) const { return code_at(place - 1); }
  unsigned int high_code(std::size_t place) const { return code_at(place); }

  // A cut is inside a run if all cases since the last cut that was rated, and all of the next code,
  // are of one class, and the right side of the cut after these is not too light. The best cut is
  // never inside a run (U. M. Fayyad and K. B. Irani, Machine Learning 8 (1992), 87-102).
  template <class Search>
  bool inside_run(const Search& search) {
    if (one_class && run_goes_on(search)) return true;
    run_class = cases.class_code(next);
    one_class = true;
    return false;
  }

 private:
  unsigned int code_at(std::size_t i) const { return static_cast<unsigned int>(cases.code(i)); }

  template <class Search>
  bool run_goes_on(const Search& search) const {
    const auto code = cases.code(next);
    auto left_of_next_cut = search.left_weight();
    for (std::size_t i = next; i < cases.size() && cases.code(i) == code; ++i) {
      if (cases.class_code(i) != run_class) return false;
      left_of_next_cut += search.as_weight(cases.weight(i));
      if (search.right_too_light(left_of_next_cut)) return false;
    }
    return true;
  }

  const Cases& cases;
  std::size_t next = 0;  // the first case on the right side
  unsigned int run_class = 0;
  bool one_class = true;  // whether all cases since the last cut that was rated are of run_class
};

// Rates sorted cases. The class weights of `node` are added up here, in the order of the cases.
template <class Cases>
void rate_sorted_cases(const Cases& cases, cut_problem node, column::splitting_desc& result) {
  strata::util::work_array<float, 16> class_weights(node.class_count + 1ULL);
  for (std::size_t i = 0; i < cases.size(); ++i) {
    class_weights[cases.class_code(i)] += static_cast<float>(cases.weight(i));
  }
  node.class_weights = class_weights.data() + 1;
  node.unknown_weight = cases.unknown_weight();
  using weight = decltype(cases.weight(0));
  find_best_cut<0, weight>(node, cases.size(), case_sweep<Cases>(cases), result);
}

// Where each code ends among packed cases of two classes. As all weights are equal, two numbers
// describe a cut: how many cases are up to it, and how many of these are of the second class.
// Nothing here or in the sweep branches on a case: codes and classes are hard to predict.
class code_ends {
 public:
  explicit code_ends(const packed_cases& sorted)
      : cases(sorted),
        each(sorted.weight()),
        cases_up_to(sorted.size(), strata::util::first_values::any),
        second_up_to(sorted.size(), strata::util::first_values::any) {
    unsigned int second_class = 0;
    for (std::size_t i = 0; i < cases.size(); ++i) {
      second_class += cases.class_code(i) == 2 ? 1 : 0;
      // Unless the code ends here, the next case overwrites the entry.
      cases_up_to[count] = static_cast<unsigned int>(i + 1);
      second_up_to[count] = second_class;
      const bool last = i + 1 == cases.size();
      count += last || cases.code(i) != cases.code(i + 1) ? 1 : 0;
    }
  }

  std::size_t size() const { return count; }
  unsigned int code(std::size_t i) const { return cases.code(cases_up_to[i] - 1); }
  // The weight of the cases up to the i-th end, and of those of the second class.
  unsigned int weight(std::size_t i) const { return cases_up_to[i] * each; }
  unsigned int second_weight(std::size_t i) const { return second_up_to[i] * each; }

 private:
  const packed_cases& cases;
  unsigned int each;
  std::size_t count = 0;
  strata::util::work_array<unsigned int, 64> cases_up_to;
  strata::util::work_array<unsigned int, 64> second_up_to;
};

// Moves a cut from code to code.
class two_class_sweep {
 public:
  explicit two_class_sweep(const code_ends& of_codes) : ends(of_codes) {}

  template <class Search>
  bool move_next(Search& search) {
    if (next + 1 >= ends.size()) return false;
    const unsigned int second = ends.second_weight(next);
    search.set_left(search.as_weight(ends.weight(next) - second), search.as_weight(second));
    ++next;
    return true;
  }

  std::size_t place() const { return next - 1; }
  unsigned int low_code(std::size_t place) const { return ends.code(place); }
  unsigned int high_code(std::size_t place) const { return ends.code(place + 1); }

  // As in case_sweep.
  template <class Search>
  bool inside_run(const Search& search) {
    const unsigned int since = ends.weight(next) - rated_weight;
    const unsigned int second_since = ends.second_weight(next) - rated_second;
    const bool one_class = (second_since == 0) | (second_since == since);
    const bool inside = one_class & !search.right_too_light(search.as_weight(ends.weight(next)));
    rated_weight = inside ? rated_weight : ends.weight(next - 1);
    rated_second = inside ? rated_second : ends.second_weight(next - 1);
    return inside;
  }

 private:
  const code_ends& ends;
  std::size_t next = 0;           // the first code on the right side
  unsigned int rated_weight = 0;  // up to the last cut that was rated
  unsigned int rated_second = 0;
};

void rate_two_classes(const packed_cases& cases, cut_problem node, column::splitting_desc& result) {
  const code_ends ends(cases);
  if (ends.size() < 2) return;
  const unsigned int weight = ends.weight(ends.size() - 1);
  const unsigned int second = ends.second_weight(ends.size() - 1);
  const std::array<float, 2> class_weights{static_cast<float>(weight - second),
                                           static_cast<float>(second)};
  node.class_weights = class_weights.data();
  node.unknown_weight = cases.unknown_weight();
  find_best_cut<2, unsigned int>(node, ends.size(), two_class_sweep(ends), result);
}

// Sorts a copy of the cases, packed if they can be, and leaves the caller's sequence as it is.
template <class T>
void rate_copy(const column_typed<T>& rated, const column& class_column, const w_sequence& cases,
               const code_bounds& range, const cut_problem& node, column::splitting_desc& result) {
  const stored_codes<T> code_of{rated.codes().data()};
  // Codes of more than 32 bits cannot be packed: all their bits count for the order.
  if constexpr (sizeof(T) <= sizeof(unsigned int)) {
    const auto rate = [&](const packed_cases& packed) {
      if (node.class_count == 2) {
        rate_two_classes(packed, node, result);
      } else {
        rate_sorted_cases(packed, node, result);
      }
    };
    if (with_packed_cases(code_of, class_column, cases, range, rate)) return;
  }
  rate_sorted_cases(gathered_cases<T>(code_of, class_column, cases, range), node, result);
}

}  // namespace

template <class T>
void rate_continuous(const column_typed<T>& rated, const column& class_column, float total_weight,
                     w_sequence& cases, const code_bounds& code_range, float min_weight,
                     const options* opts, bool copy_cases, column::splitting_desc& result) {
  result.set_no_split();
  if (cases.empty()) return;
  const cut_problem node{
      nullptr, class_column.get_distinct() - 1, 0, total_weight, cases.size(), min_weight, opts};
  const bool own_class = typeid(rated) == typeid(column_typed<T>);
  if (copy_cases && own_class) {
    rate_copy(rated, class_column, cases, code_range, node, result);
    return;
  }
  const auto rate_in_place = [&](const w_sequence& sorted) {
    with_column_codes(rated, [&](auto code_of) {
      rate_sorted_cases(cases_in_place(code_of, class_column, sorted), node, result);
    });
  };
  if (copy_cases) {
    w_sequence copy = cases;
    sort_stably(rated, copy, code_range);
    rate_in_place(copy);
  } else {
    sort_in_place(rated, cases, code_range);
    rate_in_place(cases);
  }
}

template void rate_continuous(const column_typed<unsigned char>&, const column&, float, w_sequence&,
                              const code_bounds&, float, const options*, bool,
                              column::splitting_desc&);
template void rate_continuous(const column_typed<unsigned short>&, const column&, float,
                              w_sequence&, const code_bounds&, float, const options*, bool,
                              column::splitting_desc&);
template void rate_continuous(const column_typed<unsigned int>&, const column&, float, w_sequence&,
                              const code_bounds&, float, const options*, bool,
                              column::splitting_desc&);
template void rate_continuous(const column_typed<unsigned long long>&, const column&, float,
                              w_sequence&, const code_bounds&, float, const options*, bool,
                              column::splitting_desc&);

}  // namespace arbor::impls
