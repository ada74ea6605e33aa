#include "arbor/utils/set.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

#include "arbor/utils/datatype.h"

namespace strata::adt {

using data_types::datatype;

namespace {

constexpr unsigned int slot_count = 1339;
constexpr unsigned int first_threshold = 256;
constexpr unsigned int largest_threshold = 0xFFFFFFFF;

// The slot of a value decides only how well repeats are absorbed, never what comes out of the
// builder.
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
  if (value == 0.0)
    return std::signbit(value) ? 1 : 0;  // or the zero that came first would absorb the other
  const double key = (value < 1.0 ? 1.0 / value : value) * scale;
  // Infinities, values that are not numbers and keys beyond 64 bits have no integer to truncate to.
  if (!(key > -key_end && key < key_end)) return 0;
  return static_cast<unsigned int>(static_cast<long long>(key));
}

// The order of values: `<`, with the ties and the incomparable values of floating point put in
// order as well, so that what comes out does not depend on the order of insertion and the values
// around a not-a-number stay searchable.
template <class T>
bool comes_before(const datatype<T>& a, const datatype<T>& b) {
  if constexpr (std::is_floating_point_v<T>) {
    if (a.value == b.value) return !std::signbit(a.value) && std::signbit(b.value);
    if (std::isnan(b.value)) return !std::isnan(a.value);
  }
  return a < b;
}

template <class T>
bool is_sorted_distinct(const std::vector<T>& values) {
  const auto misplaced = [](const T& a, const T& b) { return !comes_before(a, b) || a == b; };
  return std::adjacent_find(values.begin(), values.end(), misplaced) == values.end();
}

template <class T>
void sort_distinct(std::vector<T>& values) {
  if (is_sorted_distinct(values)) return;
  std::sort(values.begin(), values.end(),
            [](const T& a, const T& b) { return comes_before(a, b); });
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
  if (slots == nullptr) {
    pending.push_back(value);
  } else {
    const unsigned int slot = slot_key(value.value) % slot_count;
    T& cached = slots->value[slot];
    bool& used = slots->used[slot];
    if (used && cached == value) return;
    T copy = value;
    if (used) pending.push_back(cached);
    cached = std::move(copy);
    used = true;
  }
  if (pending.size() >= flush_threshold) compact();
}

template <class T>
void set<T>::insert_all(std::vector<T> values) {
  if (pending.empty()) {
    pending = std::move(values);
  } else {
    pending.insert(pending.end(), std::make_move_iterator(values.begin()),
                   std::make_move_iterator(values.end()));
  }
}

template <class T>
void set<T>::compact() {
  sort_distinct(pending);
  const std::size_t distinct = pending.size();
  flush_threshold =
      distinct > 0x3FFFFFFE ? largest_threshold : static_cast<unsigned int>(4 * distinct);
  try {
    pending.reserve(std::min<std::size_t>(flush_threshold, pending.max_size()));
    if (slots == nullptr) slots = std::make_unique<slot_cache>();
  } catch (const std::bad_alloc&) {
    // The value that led here has been taken, and both only save time.
  }
}

template <class T>
std::vector<T>* set<T>::get() {
  auto result = std::make_unique<std::vector<T>>();
  if (slots != nullptr) {
    pending.reserve(pending.size() + slot_count);
    for (unsigned int slot = 0; slot < slot_count; ++slot) {
      if (slots->used[slot]) pending.push_back(std::move(slots->value[slot]));
    }
  }
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
