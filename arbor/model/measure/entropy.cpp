#include "arbor/model/measure/entropy.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <new>

namespace arbor::impls {

namespace {

using two_numbers = double __attribute__((vector_size(16)));
using two_floats = float __attribute__((vector_size(8)));

// with_term for two sums.
two_floats with_terms(two_floats sums, two_numbers terms) {
  return __builtin_convertvector(__builtin_convertvector(sums, two_numbers) + terms, two_floats);
}

// Adds up the weights and terms of several distributions at once: an addition waits for the one
// before it, but not for those of other distributions. Each sum is formed as if it were alone.
// term_of(i) is the term of rows[i]. `Classes` is the number of classes if the compiler knows it,
// else 0.
template <unsigned int Classes, class Weight, class TermOf>
void add_up_rows(const Weight* rows, const distribution_rows& shape, TermOf term_of,
                 distribution_sums<Weight>* sums) {
  constexpr std::size_t at_once = 4;
  const std::size_t classes = Classes != 0 ? Classes : shape.classes;
  for (std::size_t i = 0; i < shape.count; i += at_once) {
    std::array<std::size_t, at_once> first{};  // weight of each; the last one may be there again
    for (std::size_t r = 0; r < at_once; ++r)
      first[r] = std::min(i + r, shape.count - 1) * shape.stride;
    std::array<Weight, at_once> weights{};
    two_floats terms_of_two{};
    two_floats terms_of_others{};
    for (std::size_t c = 0; c < classes; ++c) {
      for (std::size_t r = 0; r < at_once; ++r) weights[r] += rows[first[r] + c];
      terms_of_two =
          with_terms(terms_of_two, two_numbers{term_of(first[0] + c), term_of(first[1] + c)});
      terms_of_others =
          with_terms(terms_of_others, two_numbers{term_of(first[2] + c), term_of(first[3] + c)});
    }
    const std::array<float, at_once> terms{terms_of_two[0], terms_of_two[1], terms_of_others[0],
                                           terms_of_others[1]};
    for (std::size_t r = 0; r < at_once && i + r < shape.count; ++r)
      sums[i + r] = {weights[r], 0, terms[r]};
  }
}

template <class Weight, class TermOf>
void add_up_rows(const Weight* rows, const distribution_rows& shape, TermOf term_of,
                 distribution_sums<Weight>* sums) {
  if (shape.classes == 2) {
    for (std::size_t i = 0; i < shape.count; ++i) {
      const std::size_t at = i * shape.stride;
      sums[i] = {rows[at] + rows[at + 1], 0,
                 with_term(static_cast<float>(term_of(at)), term_of(at + 1))};
    }
  } else {
    add_up_rows<0>(rows, shape, term_of, sums);
  }
}

// The lengths of the tables: from 8 KB, for a small node, to 32 MB, for four million cases.
constexpr std::array<unsigned int, 8> lengths{1U << 10U, 1U << 12U, 1U << 14U, 1U << 16U,
                                              1U << 18U, 1U << 20U, 1U << 21U, 1U << 22U};
// Each is made once for the whole process.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
std::array<std::atomic<const double*>, lengths.size()> tables{};

// Takes no lock: if two threads make a table at once, one of them drops its own.
const double* made(std::size_t i) {
  std::unique_ptr<double[]> fresh(new (std::nothrow) double[lengths[i]]);
  if (fresh == nullptr) return nullptr;
  for (unsigned int x = 0; x < lengths[i]; ++x) fresh[x] = log_term(static_cast<float>(x));
  const double* first = nullptr;
  if (tables[i].compare_exchange_strong(first, fresh.get(), std::memory_order_acq_rel))
    return fresh.release();
  return first;
}

// With fewer classes most weights differ from those of the distribution before.
constexpr std::size_t many_classes = 5;

}  // namespace

distribution_sums<float> add_up(const float* first, const float* last) {
  distribution_sums<float> result{};
  for (; first != last; ++first) {
    result.weight += *first;
    result.terms = with_term(result.terms, log_term(*first));
  }
  result.weight_term = log_term(result.weight);
  return result;
}

const double* whole_number_terms(unsigned int greatest, unsigned long long terms) {
  constexpr unsigned long long most_entries_per_term = 32;  // as tens of nodes share a table
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    if (greatest >= lengths[i]) continue;
    const double* table = tables[i].load(std::memory_order_acquire);
    if (table != nullptr) return table;
    return i == 0 || lengths[i] <= most_entries_per_term * terms ? made(i) : nullptr;
  }
  return nullptr;
}

void whole_entropies::add_up(const unsigned int* rows, const distribution_rows& shape,
                             distribution_sums<unsigned int>* sums) const {
  const double* const of_numbers = term;
  add_up_rows(
      rows, shape, [=](std::size_t i) { return of_numbers[rows[i]]; }, sums);
  for (std::size_t i = 0; i < shape.count; ++i) sums[i].weight_term = term[sums[i].weight];
}

real_entropies::real_entropies(std::size_t classes, std::size_t most)
    : terms(most + 1, strata::util::first_values::any),
      changed(classes < many_classes ? 0 : most + 1, strata::util::first_values::any),
      places(classes < many_classes ? 0 : most, strata::util::first_values::any) {}

void real_entropies::add_up(const float* rows, const distribution_rows& shape,
                            distribution_sums<float>* sums) {
  const double* const of_weights = terms.data();
  if (shape.classes < many_classes) {
    log_terms(rows, (shape.count - 1) * shape.stride + shape.classes, terms.data());
    add_up_rows(
        rows, shape, [=](std::size_t i) { return of_weights[i]; }, sums);
  } else {
    make_terms_of_changes(rows, shape);
    const unsigned int* const place = places.data();
    add_up_rows(
        rows, shape, [=](std::size_t i) { return of_weights[place[i]]; }, sums);
  }
  std::array<float, most_together> weights;
  std::array<double, most_together> weight_terms;
  for (std::size_t i = 0; i < shape.count; ++i) weights[i] = sums[i].weight;
  log_terms(weights.data(), shape.count, weight_terms.data());
  for (std::size_t i = 0; i < shape.count; ++i) sums[i].weight_term = weight_terms[i];
}

// A weight that is the same as in the distribution before has the same term. Nothing branches on
// the weights.
void real_entropies::make_terms_of_changes(const float* rows, const distribution_rows& shape) {
  unsigned int next = 0;
  for (; next < shape.classes; ++next) {
    places[next] = next;
    changed[next] = rows[next];
  }
  for (std::size_t i = 1; i < shape.count; ++i) {
    const float* const before = rows + (i - 1) * shape.stride;
    const float* const weights = rows + i * shape.stride;
    const unsigned int* const places_before = places.data() + (i - 1) * shape.stride;
    unsigned int* const places_here = places.data() + i * shape.stride;
    for (std::size_t c = 0; c < shape.classes; ++c) {
      const auto differs = static_cast<unsigned int>(weights[c] != before[c]);
      const unsigned int place_before = places_before[c];
      changed[next] = weights[c];
      places_here[c] = place_before + (next - place_before) * differs;
      next += differs;
    }
  }
  log_terms(changed.data(), next, terms.data());
}

}  // namespace arbor::impls
