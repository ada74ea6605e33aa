#include "arbor/model/measure/continuous_quality.h"

#include <array>

#include "arbor/model/measure/cut_search.h"
#include "arbor/model/measure/sorted_cases.h"
#include "arbor/model/measure/weight_if.h"

namespace arbor::impls {

namespace {

// Moves a cut over sorted cases, case by case.
template <class Cases>
class case_sweep {
 public:
  explicit case_sweep(const Cases& sorted) : cases(sorted) {
    if (cases.size() > 0) run_class = cases.class_code(0);
  }

  template <class Sides>
  bool move_next(Sides& sides) {
    if (next == cases.size()) return false;
    const auto code = cases.code(next);
    do {
      const unsigned int class_code = cases.class_code(next);
      one_class = one_class && class_code == run_class;
      sides.move(class_code, sides.as_weight(cases.weight(next)));
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
  template <class Search, class Sides>
  bool inside_run(const Search& search, const Sides& sides) {
    if (one_class && run_goes_on(search, sides)) return true;
    run_class = cases.class_code(next);
    one_class = true;
    return false;
  }

 private:
  unsigned int code_at(std::size_t i) const { return static_cast<unsigned int>(cases.code(i)); }

  template <class Search, class Sides>
  bool run_goes_on(const Search& search, const Sides& sides) const {
    const auto code = cases.code(next);
    auto left_of_next_cut = sides.left_weight();
    for (std::size_t i = next; i < cases.size() && cases.code(i) == code; ++i) {
      if (cases.class_code(i) != run_class) return false;
      left_of_next_cut += sides.as_weight(cases.weight(i));
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

// The cases of two classes up to the end of a code. If all cases weigh the same, their numbers say
// everything; each weighs `each`.
struct counted_end {
  using weight = unsigned int;
  using of_classes = std::array<weight, 2>;

  static counted_end before(const of_classes& /*all*/) { return {0, 0}; }
  void add(unsigned int is_second, weight /*of_case*/) {
    ++cases;
    second_class += is_second;
  }
  weight left_side(weight each) const { return cases * each; }
  of_classes left(weight each) const {
    return {(cases - second_class) * each, second_class * each};
  }
  of_classes right(weight each, const of_classes& all) const {
    return {all[0] - left(each)[0], all[1] - left(each)[1]};
  }

  unsigned int cases;
  unsigned int second_class;  // of these
};

// Otherwise each weight is a float sum over the cases, one after the other.
struct weighed_end : counted_end {
  using weight = float;
  using of_classes = std::array<weight, 2>;

  static weighed_end before(const of_classes& all) { return {{0, 0}, {}, all, 0}; }
  void add(unsigned int is_second, weight of_case) {
    counted_end::add(is_second, 0);
    // Adding and subtracting 0 leaves a sum as it is.
    const float of_first = weight_if(1 - is_second, of_case);
    const float of_second = weight_if(is_second, of_case);
    up_to[0] += of_first;
    up_to[1] += of_second;
    after[0] -= of_first;
    after[1] -= of_second;
    all_up_to += of_case;
  }
  weight left_side(weight /*each*/) const { return all_up_to; }
  const of_classes& left(weight /*each*/) const { return up_to; }
  const of_classes& right(weight /*each*/, const of_classes& /*all*/) const { return after; }

  of_classes up_to;
  of_classes after;
  weight all_up_to;
};

// Finds the ends of the codes among sorted cases of two classes, as many at a time as stay in the
// core's own cache. Nothing here or in the sweep branches on a case: codes and classes are hard to
// predict.
template <class Case>
class code_ends {
 public:
  using end = std::conditional_t<std::is_same_v<Case, counted_case>, counted_end, weighed_end>;
  using of_classes = typename end::of_classes;

  // `sorted` must outlive it.
  explicit code_ends(const packed_cases<Case>& sorted)
      : cases(sorted), weights_of_all(add_up_classes()), up_to_next(end::before(weights_of_all)) {}

  // The weights of both classes.
  const of_classes& all() const { return weights_of_all; }
  const packed_cases<Case>& sorted_cases() const { return cases; }
  std::size_t size() const { return count; }
  const end& operator[](std::size_t i) const { return found[i]; }

  // Forgets the ends before `first`, which becomes the first one, and finds the next ones.
  void go_on_from(std::size_t first) {
    if (first < count) found[0] = found[first];
    count = first < count ? 1 : 0;
    end up_to = up_to_next;
    for (; next < cases.size() && count < found.size(); ++next) {
      up_to.add(is_second(next), cases.weight(next));
      found[count] = up_to;  // unless the code ends here, the next case overwrites it
      const bool last = next + 1 == cases.size();
      count += last || cases.code(next) != cases.code(next + 1) ? 1 : 0;
    }
    up_to_next = up_to;
  }

 private:
  unsigned int is_second(std::size_t i) const { return cases.class_code(i) == 2 ? 1 : 0; }
  of_classes add_up_classes() const {
    of_classes result{};
    for (std::size_t i = 0; i < cases.size(); ++i) {
      result[0] += weight_if(1 - is_second(i), cases.weight(i));
      result[1] += weight_if(is_second(i), cases.weight(i));
    }
    return result;
  }

  const packed_cases<Case>& cases;
  const of_classes weights_of_all;
  end up_to_next;  // what is before the next case
  std::size_t next = 0;
  std::size_t count = 0;
  std::array<end, 128> found;
};

// Moves a cut from code to code.
template <class Case>
class two_class_sweep {
 public:
  explicit two_class_sweep(code_ends<Case>& of_codes)
      : ends(of_codes), each(of_codes.sorted_cases().weight(0)) {}

  template <class Sides>
  bool move_next(Sides& sides) {
    if (next + 1 >= ends.size()) {
      ends.go_on_from(next);
      next = 0;
      if (ends.size() < 2) return false;
    }
    const auto& end = ends[next];
    sides.set(end.left(each), end.right(each, ends.all()), end.left_side(each));
    ++next;
    return true;
  }

  // The number of cases on the left side.
  std::size_t place() const { return ends[next - 1].cases; }
  unsigned int low_code(std::size_t place) const { return ends.sorted_cases().code(place - 1); }
  unsigned int high_code(std::size_t place) const { return ends.sorted_cases().code(place); }

  // As in case_sweep.
  template <class Search, class Sides>
  bool inside_run(const Search& search, const Sides& sides) {
    const auto& here = ends[next - 1];
    const auto& end = ends[next];
    const unsigned int since = end.cases - rated_cases;
    const unsigned int second_since = end.second_class - rated_second;
    const bool one_class = (second_since == 0) | (second_since == since);
    const bool inside = one_class & !search.right_too_light(sides.as_weight(end.left_side(each)));
    rated_cases = inside ? rated_cases : here.cases;
    rated_second = inside ? rated_second : here.second_class;
    return inside;
  }

 private:
  code_ends<Case>& ends;
  typename Case::weight_type each;
  std::size_t next = 0;          // the first code on the right side
  unsigned int rated_cases = 0;  // up to the last cut that was rated
  unsigned int rated_second = 0;
};

template <class Case>
void rate_two_classes(const packed_cases<Case>& cases, cut_problem node,
                      column::splitting_desc& result) {
  if (cases.size() < 2) return;
  code_ends<Case> ends(cases);
  const std::array<float, 2> class_weights{static_cast<float>(ends.all()[0]),
                                           static_cast<float>(ends.all()[1])};
  node.class_weights = class_weights.data();
  node.unknown_weight = cases.unknown_weight();
  find_best_cut<2, typename Case::weight_type>(node, cases.size(), two_class_sweep<Case>(ends),
                                               result);
}

// Rates packed and sorted cases, and leaves the caller's sequence as it is. Returns false if they
// cannot be packed.
template <class T>
bool rate_packed(const column_typed<T>& rated, const column& class_column, const w_sequence& cases,
                 const code_bounds& range, const cut_problem& node,
                 column::splitting_desc& result) {
  // Codes of more than 32 bits cannot be packed: all their bits count for the order.
  if constexpr (sizeof(T) > sizeof(unsigned int)) return false;
  const stored_codes<T> code_of{rated.codes().data()};
  return with_packed_cases(code_of, class_column, cases, range, [&](const auto& packed) {
    if (node.class_count == 2) {
      rate_two_classes(packed, node, result);
    } else {
      rate_sorted_cases(packed, node, result);
    }
  });
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
  if (copy_cases && own_class &&
      rate_packed(rated, class_column, cases, code_range, node, result)) {
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
