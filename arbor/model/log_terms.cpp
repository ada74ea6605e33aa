#include "arbor/model/log_terms.h"

#include <array>
#include <atomic>
#include <cmath>
#include <new>

#include "arbor/model/weight_type.h"

namespace arbor::impls {

namespace {

// Tables of 2^10 entries, which a small node needs, of 2^15, and of 2^20: 8 MB, for a million cases.
constexpr std::array<unsigned int, 3> table_ends{1U << 10U, 1U << 15U, 1U << 20U};
std::array<std::atomic<const double*>, table_ends.size()> tables{};

// Null without memory. No lock is taken: of two threads that make a table at once, one drops its own.
const double* table_at(std::size_t i) {
  if (const double* made = tables[i].load(std::memory_order_acquire)) return made;
  double* fresh = new (std::nothrow) double[table_ends[i]];
  if (fresh == nullptr) return nullptr;
  for (unsigned int x = 0; x < table_ends[i]; ++x) fresh[x] = log_term(static_cast<float>(x));
  const double* first = nullptr;
  if (tables[i].compare_exchange_strong(first, fresh, std::memory_order_acq_rel)) return fresh;
  delete[] fresh;
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

whole_terms::whole_terms(unsigned int greatest) {
  std::size_t i = 0;
  while (i + 1 < table_ends.size() && greatest >= table_ends[i]) ++i;
  table = table_at(i);
  if (table != nullptr) end = table_ends[i];
}

}  // namespace arbor::impls
