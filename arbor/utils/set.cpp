#include "arbor/utils/set.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
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

// Numbers that sort like the values. Zero and its negative have the same one, NaNs the greatest.
unsigned int sort_key(int value) {
  return static_cast<unsigned int>(value) ^ 0x80000000U;
}

unsigned int sort_key(unsigned int value) {
  return value;
}

unsigned int sort_key(float value) {
  if (std::isnan(value)) return 0xFFFFFFFF;
  if (value == 0) return 0x80000000U;
  unsigned int bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits & 0x80000000U) != 0 ? ~bits : bits | 0x80000000U;
}

// One counting sort for each eleven bits of the keys, the lowest first: values that are equal stay
// in their order. Returns whether there is memory for that; the values are unchanged if not.
template <class T>
bool sort_by_digits(std::vector<T>& values) noexcept {
  constexpr unsigned int digit_bits = 11;
  constexpr unsigned int digits = 1U << digit_bits;
  const std::unique_ptr<T[]> copy(new (std::nothrow) T[values.size()]);
  if (copy == nullptr) return false;
  T* from = values.data();
  T* to = copy.get();
  for (unsigned int shift = 0; shift < 32; shift += digit_bits) {
    const auto digit = [shift](const T& v) { return sort_key(v.value) >> shift & (digits - 1); };
    std::array<std::size_t, digits> place{};
    for (std::size_t i = 0; i < values.size(); ++i) ++place[digit(from[i])];
    if (place[digit(from[0])] == values.size()) continue;  // all have the same one
    std::size_t before = 0;
    for (std::size_t& p : place) before += std::exchange(p, before);
    for (std::size_t i = 0; i < values.size(); ++i) to[place[digit(from[i])]++] = from[i];
    std::swap(from, to);
  }
  if (from != values.data()) std::copy_n(from, values.size(), values.data());
  return true;
}

// Of values that are equal the first one stays. Only 0 and -0 are equal and different, so integers
// and texts do without a stable sort.
template <class T>
void sort_values(std::vector<datatype<T>>& values) {
  constexpr std::size_t worth_digits = 1000;
  if constexpr (std::is_arithmetic_v<T> && sizeof(T) == sizeof(int)) {
    if (values.size() >= worth_digits && sort_by_digits(values)) return;
  }
  if constexpr (std::is_floating_point_v<T>) {
    std::stable_sort(values.begin(), values.end(), comes_before<T>);
  } else {
    std::sort(values.begin(), values.end(), comes_before<T>);
  }
}

template <class T>
void sort_distinct(std::vector<datatype<T>>& values) {
  const auto misplaced = [](const auto& a, const auto& b) { return !comes_before(a, b); };
  if (std::adjacent_find(values.begin(), values.end(), misplaced) == values.end()) return;
  sort_values(values);
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
