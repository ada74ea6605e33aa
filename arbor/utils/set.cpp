#include "arbor/utils/set.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

#include "arbor/utils/allocatable.h"
#include "arbor/utils/datatype.h"

namespace strata::adt {

using data_types::datatype;

namespace {

constexpr unsigned int slot_count = 1339;
constexpr unsigned int first_threshold = 256;
constexpr unsigned int largest_threshold = 0xFFFFFFFF;

// The slot of a value has no influence on the result, only on how many repeats are dropped early.
// Equal values must share a slot, though, so that the one inserted first reaches `pending` first.
unsigned int slot_key(int value) {
  return static_cast<unsigned int>(value);
}

unsigned int slot_key(unsigned int value) {
  return value;
}

unsigned int slot_key(const std::string& value) {
  unsigned int sum = 0;
  for (const char c : value) {
    if (c == '\0') break;
    sum += static_cast<unsigned int>(static_cast<signed char>(c));
  }
  return sum;
}

unsigned int slot_key(double value) {
  constexpr double scale = 100000.0;  // spreads the first five decimals over the slots
  constexpr double key_end = 9223372036854775808.0;
  const double key = (value < 1.0 ? 1.0 / value : value) * scale;
  // Zeros (whose inverse is infinite), infinities, NaNs and keys beyond 64 bits cannot be
  // converted.
  if (!(key > -key_end && key < key_end)) return 0;
  return static_cast<unsigned int>(static_cast<long long>(key));
}

// `<`, with NaNs after all other values, so that the others stay searchable.
template <class T>
bool comes_before(const datatype<T>& a, const datatype<T>& b) {
  if constexpr (std::is_floating_point_v<T>) {
    if (std::isnan(b.value)) return !std::isnan(a.value);
  }
  return a < b;
}

// Of values that are equal the first one stays. Only 0 and -0 are equal and different, so the other
// data types do without a stable sort.
template <class T>
void sort_distinct(std::vector<datatype<T>>& values) {
  const auto before = [](const auto& a, const auto& b) { return comes_before(a, b); };
  const auto misplaced = [&](const auto& a, const auto& b) { return !before(a, b); };
  if (std::adjacent_find(values.begin(), values.end(), misplaced) == values.end()) return;
  if constexpr (std::is_floating_point_v<T>) {
    std::stable_sort(values.begin(), values.end(), before);
  } else {
    std::sort(values.begin(), values.end(), before);
  }
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

}  // namespace

template <class T>
struct set<T>::slot_cache {
  std::array<T, slot_count> value;
  std::array<bool, slot_count> used{};
};

template <class T>
set<T>::set() : flush_threshold(first_threshold) {}

template <class T>
set<T>::~set() = default;

template <class T>
void set<T>::insert(const T& value) {
  if (slots == nullptr) slots = std::make_unique<slot_cache>();
  const unsigned int slot = slot_key(value.value) % slot_count;
  T& cached = slots->value[slot];
  bool& used = slots->used[slot];
  if (used && cached == value) return;
  T copy = value;
  if (used) {
    util::allocatable<T>(pending.size() + 1ULL);
    pending.push_back(std::move(cached));
  }
  cached = std::move(copy);
  used = true;
  if (pending.size() >= flush_threshold) compact();
}

template <class T>
void set<T>::insert_all(std::vector<T> values) {
  if (pending.empty() && slots == nullptr) {
    pending = std::move(values);
    return;
  }
  empty_slots(values.size());
  pending.insert(pending.end(), std::make_move_iterator(values.begin()),
                 std::make_move_iterator(values.end()));
}

// Moves the cached values to `pending`, which then has room for `more`. On std::bad_alloc nothing
// is changed.
template <class T>
void set<T>::empty_slots(std::size_t more) {
  const auto cached =
      slots == nullptr ? 0 : std::count(slots->used.begin(), slots->used.end(), true);
  pending.reserve(
      util::allocatable<T>(0ULL + pending.size() + static_cast<std::size_t>(cached) + more));
  for (unsigned int slot = 0; cached > 0 && slot < slot_count; ++slot) {
    if (slots->used[slot]) pending.push_back(std::move(slots->value[slot]));
  }
  slots.reset();
}

template <class T>
void set<T>::compact() {
  sort_distinct(pending);
  const std::size_t distinct = pending.size();
  flush_threshold =
      distinct > 0x3FFFFFFE ? largest_threshold : static_cast<unsigned int>(4 * distinct);
  try {
    pending.reserve(std::min<std::size_t>(flush_threshold, pending.max_size()));
  } catch (const std::bad_alloc&) {
    // The value that led here has been added, and the room only saves time.
  }
}

template <class T>
std::vector<T>* set<T>::get() {
  auto result = std::make_unique<std::vector<T>>();
  empty_slots(0);
  result->swap(pending);
  clear();
  sort_distinct(*result);
  result->shrink_to_fit();
  return result.release();
}

template <class T>
void set<T>::clear() noexcept {
  pending = std::vector<T>();
  slots.reset();
  flush_threshold = first_threshold;
}

template class set<datatype<int>>;
template class set<datatype<unsigned int>>;
template class set<datatype<float>>;
template class set<datatype<double>>;
template class set<datatype<std::string>>;

}  // namespace strata::adt
