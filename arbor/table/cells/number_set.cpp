#include "arbor/table/cells/number_set.h"

#include <algorithm>

namespace arbor::tree {

namespace {

std::size_t bits_in(const std::vector<number_set::word>& words) {
  std::size_t count = 0;
  for (const number_set::word& w : words)
    count += static_cast<std::size_t>(__builtin_popcountll(w.bits));
  return count;
}

}  // namespace

number_set::number_set(std::vector<word> in_order)
    : all(std::move(in_order)), count(bits_in(all)) {}

// The loop has no branches that depend on the numbers: nobody could predict which side is next.
void number_set::unite(const number_set& other) {
  const std::vector<word> a = std::exchange(all, {});
  const std::vector<word>& b = other.all;
  all.resize(a.size() + b.size());
  std::size_t i = 0;
  std::size_t j = 0;
  std::size_t made = 0;
  for (; i < a.size() && j < b.size(); ++made) {
    const bool is_in_a = a[i].place <= b[j].place;
    const bool is_in_b = b[j].place <= a[i].place;
    all[made] = {std::min(a[i].place, b[j].place),
                 (is_in_a ? a[i].bits : 0) | (is_in_b ? b[j].bits : 0)};
    i += is_in_a ? 1 : 0;
    j += is_in_b ? 1 : 0;
  }
  auto end = all.begin() + static_cast<std::ptrdiff_t>(made);
  end = std::copy(a.begin() + static_cast<std::ptrdiff_t>(i), a.end(), end);
  end = std::copy(b.begin() + static_cast<std::ptrdiff_t>(j), b.end(), end);
  all.erase(end, all.end());
  count = bits_in(all);
}

}  // namespace arbor::tree
