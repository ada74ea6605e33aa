#include "arbor/model/measure/entropy.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <new>

namespace arbor::impls {

namespace {

// Adds up the weights and terms of several distributions side by side: an addition waits for the
// one before it, but not for those of other distributions. Each sum is formed as if it were alone.
// set_terms(first, terms) sets the terms of the weights of a class.
template <class Entropies, class Weight, class SetTerms>
void add_up_classes(const Entropies& entropies, const Weight* weights, const distributions& shape,
                    SetTerms set_terms, distribution_sums<Weight>* sums) {
  constexpr std::size_t few = 4;
  const std::size_t count = shape.count;
  if (count < few) {
    for (std::size_t i = 0; i < count; ++i)
      sums[i] = add_up_one(entropies, weights + i, shape.classes, shape.room);
    return;
  }
  std::array<Weight, most_together> weight_sums{};
  std::array<float, most_together> term_sums{};
  std::array<double, most_together> terms;
  for (std::size_t c = 0; c < shape.classes; ++c) {
    const Weight* const of_class = weights + c * shape.room;
    set_terms(of_class, terms.data());
    for (std::size_t i = 0; i < count; ++i) weight_sums[i] += of_class[i];
    for (std::size_t i = 0; i < count; ++i) term_sums[i] = with_term(term_sums[i], terms[i]);
  }
  set_terms(weight_sums.data(), terms.data());
  for (std::size_t i = 0; i < count; ++i) sums[i] = {weight_sums[i], terms[i], term_sums[i]};
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

}  // namespace

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

void whole_entropies::add_up(const unsigned int* weights, const distributions& shape,
                             distribution_sums<unsigned int>* sums) const {
  const auto look_up = [&](const unsigned int* numbers, double* terms) {
    for (std::size_t i = 0; i < shape.count; ++i) terms[i] = term[numbers[i]];
  };
  add_up_classes(*this, weights, shape, look_up, sums);
}

void real_entropies::add_up(const float* weights, const distributions& shape,
                            distribution_sums<float>* sums) {
  constexpr std::size_t many_classes = 5;  // with fewer, most weights differ from those before
  std::array<float, most_together> different;
  std::array<double, most_together> different_terms;
  std::array<unsigned int, most_together> places;  // in both
  // A weight that is the one before has its term. Nothing branches on the weights.
  const auto calculate = [&](const float* numbers, double* terms) {
    if (shape.classes < many_classes) return log_terms(numbers, shape.count, terms);
    unsigned int place = 0;
    for (std::size_t i = 0; i < shape.count; ++i) {
      place += i > 0 && numbers[i] != numbers[i - 1] ? 1 : 0;
      different[place] = numbers[i];
      places[i] = place;
    }
    log_terms(different.data(), place + 1ULL, different_terms.data());
    for (std::size_t i = 0; i < shape.count; ++i) terms[i] = different_terms[places[i]];
  };
  add_up_classes(real_entropies(), weights, shape, calculate, sums);
}

}  // namespace arbor::impls
