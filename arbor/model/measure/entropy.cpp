#include "arbor/model/measure/entropy.h"

#include <array>
#include <atomic>
#include <cmath>
#include <memory>
#include <new>

#include "arbor/model/weight_type.h"

namespace arbor::impls {

namespace {

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

float binary_log(double x) {
  return static_cast<float>(std::log(x) / static_cast<double>(weight_type::Log2));
}

double log_term(float x) {
  if (!(x > 0)) return 0;
  return static_cast<double>(x) * static_cast<double>(binary_log(static_cast<double>(x)));
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

}  // namespace arbor::impls
