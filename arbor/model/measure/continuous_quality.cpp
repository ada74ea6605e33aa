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

// What is up to the end of a code among sorted cases of two classes. If all cases weigh the same,
// the weight and that of the second class say everything.
class counted_end {
 public:
  using weight = unsigned int;
  using of_classes = std::array<weight, 2>;

  // What is before the first case.
  static counted_end start(const packed_cases<counted_case>& /*cases*/) { return {}; }
  void add(unsigned int is_second, weight each) {
    up_to += each;
    second += is_second * each;
  }

  weight left_side() const { return up_to; }
  of_classes left() const { return {up_to - second, second}; }
  of_classes right(const of_classes& all) const {
    return {all[0] - (up_to - second), all[1] - second};
  }
  // Of the last end: the weights of all cases.
  of_classes all(const counted_end& /*start*/) const { return left(); }
  // The cases up to here, those of the second class in particular.
  unsigned int of_all() const { return up_to; }
  unsigned int of_second_class() const { return second; }

 private:
  weight up_to;
  weight second;
};

// Otherwise each weight is a float sum over the cases, one after the other. The cases are counted
// as well, because some may weigh nothing.
class weighed_end {
 public:
  using weight = float;
  using of_classes = std::array<weight, 2>;

  static weighed_end start(const packed_cases<weighed_case>& cases) {
    weighed_end result{};
    for (std::size_t i = 0; i < cases.size(); ++i) {
      const unsigned int is_second = cases.class_code(i) == 2 ? 1 : 0;
      result.after[0] += weight_if(1 - is_second, cases.weight(i));
      result.after[1] += weight_if(is_second, cases.weight(i));
    }
    return result;
  }
  void add(unsigned int is_second, weight added) {
    // Adding and subtracting 0 leaves a sum as it is.
    const float of_first = weight_if(1 - is_second, added);
    const float of_second = weight_if(is_second, added);
    up_to[0] += of_first;
    up_to[1] += of_second;
    after[0] -= of_first;
    after[1] -= of_second;
    all_up_to += added;
    ++cases;
    second_cases += is_second;
  }

  weight left_side() const { return all_up_to; }
  const of_classes& left() const { return up_to; }
  const of_classes& right(const of_classes& /*all*/) const { return after; }
  static const of_classes& all(const weighed_end& start) { return start.after; }
  unsigned int of_all() const { return cases; }
  unsigned int of_second_class() const { return second_cases; }

 private:
  of_classes up_to;
  of_classes after;
  weight all_up_to;
  unsigned int cases;
  unsigned int second_cases;
};

// The ends of the codes among sorted cases. Nothing here or in the sweep branches on a case: codes
// and classes are hard to predict.
template <class End>
struct code_ends {
  template <class Case>
  explicit code_ends(const packed_cases<Case>& cases)
      : ends(cases.size(), strata::util::first_values::any),
        codes(cases.size(), strata::util::first_values::any) {
    const End start = End::start(cases);
    End end = start;
    for (std::size_t i = 0; i < cases.size(); ++i) {
      end.add(cases.class_code(i) == 2 ? 1 : 0, cases.weight(i));
      // Unless the code ends here, the next case overwrites the entries.
      ends[count] = end;
      codes[count] = cases.code(i);
      const bool last = i + 1 == cases.size();
      count += last || cases.code(i) != cases.code(i + 1) ? 1 : 0;
    }
    all = end.all(start);
  }

  typename End::of_classes all;  // the weights of both classes
  std::size_t count = 0;
  strata::util::work_array<End, 64> ends;
  strata::util::work_array<unsigned int, 64> codes;
};

// Moves a cut from code to code.
template <class End>
class two_class_sweep {
 public:
  explicit two_class_sweep(const code_ends<End>& of_codes) : at(of_codes) {}

  template <class Sides>
  bool move_next(Sides& sides) {
    if (next + 1 >= at.count) return false;
    const End& end = at.ends[next];
    sides.set(end.left(), end.right(at.all), end.left_side());
    ++next;
    return true;
  }

  std::size_t place() const { return next - 1; }
  unsigned int low_code(std::size_t place) const { return at.codes[place]; }
  unsigned int high_code(std::size_t place) const { return at.codes[place + 1]; }

  // As in case_sweep.
  template <class Search, class Sides>
  bool inside_run(const Search& search, const Sides& sides) {
    const End& end = at.ends[next];
    const unsigned int since = end.of_all() - rated_all;
    const unsigned int second_since = end.of_second_class() - rated_second;
    const bool one_class = (second_since == 0) | (second_since == since);
    const bool inside = one_class & !search.right_too_light(sides.as_weight(end.left_side()));
    rated_all = inside ? rated_all : at.ends[next - 1].of_all();
    rated_second = inside ? rated_second : at.ends[next - 1].of_second_class();
    return inside;
  }

 private:
  const code_ends<End>& at;
  std::size_t next = 0;        // the first code on the right side
  unsigned int rated_all = 0;  // up to the last cut that was rated
  unsigned int rated_second = 0;
};

template <class Case>
void rate_two_classes(const packed_cases<Case>& cases, cut_problem node,
                      column::splitting_desc& result) {
  using weight = typename Case::weight_type;
  using end = std::conditional_t<std::is_integral_v<weight>, counted_end, weighed_end>;
  const code_ends<end> codes(cases);
  if (codes.count < 2) return;
  const std::array<float, 2> class_weights{static_cast<float>(codes.all[0]),
                                           static_cast<float>(codes.all[1])};
  node.class_weights = class_weights.data();
  node.unknown_weight = cases.unknown_weight();
  find_best_cut<2, weight>(node, codes.count, two_class_sweep<end>(codes), result);
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
