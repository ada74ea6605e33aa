#include "arbor/model/o_set_typed.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "arbor/model/midpoint.h"
#include "arbor/utils/binary_search_mid.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/pair.h"
#include "arbor/utils/string_util.h"
#include "arbor/utils/text_storage.h"

namespace arbor::impls {

using strata::data_types::datatype;
using strata::inpout::ibinstream;
using strata::inpout::obinstream;
using strata::util::joined;
using strata::util::number_text;
using strata::util::string_util;

namespace {

// What differs between the data types, as overloads: text to value, value to text, values to
// stream, order and lookup.

template <class Integer>
void parse(const char* text, Integer& value) {
  string_util::str2int(text, value);
}

void parse(const char* text, double& value) {
  if (!strata::util::read_number(text, value))
    throw std::runtime_error(joined({text, ": not a double"}));
}

void parse(const char* text, float& value) {
  static_assert(std::numeric_limits<float>::is_iec559,
                "a number too large for a float becomes infinity");
  double wide = 0;
  if (!strata::util::read_number(text, wide))
    throw std::runtime_error(joined({text, ": not a float"}));
  value = static_cast<float>(wide);
}

void parse(const char* text, std::string& value) {
  strata::util::assign_text(value, text);
}

template <class T>
T parsed(const char* text) {
  T result;
  parse(text, result.value);
  return result;
}

template <class Number>
std::string text_of(Number value) {
  return number_text(value);
}

std::string text_of(const std::string& value) {
  return value;
}

template <class Number>
void write_values(obinstream& out, const std::vector<datatype<Number>>& values) {
  static_assert(sizeof(datatype<Number>) == sizeof(Number),
                "an array of values is an array of numbers");
  if (!values.empty())
    out.write_values(&values.front().value, static_cast<unsigned int>(values.size()));
}

void write_values(obinstream& out, const std::vector<datatype<std::string>>& values) {
  for (const auto& text : values) out << text.value.c_str();
}

template <class Number>
bool greater(Number a, Number b) {
  return a > b;
}

bool greater(const std::string& a, const std::string& b) {
  return string_util::compare_signed(a.c_str(), b.c_str()) > 0;
}

// A part [first, second) of sorted numbers outside of which `key` is not. Values that are spread
// evenly are about where a straight line from the first to the last one has them, random ones
// within about the square root of their number. So the search begins there.
template <class Number>
strata::util::pair<std::size_t, std::size_t> part_around(
    Number key, const std::vector<datatype<Number>>& values) {
  constexpr std::size_t worth_narrowing = 100;
  const std::size_t count = values.size();
  if (count < worth_narrowing) return {0, count};
  const auto first = static_cast<double>(values.front().value);
  const auto last = static_cast<double>(values.back().value);
  const double share = (static_cast<double>(key) - first) / (last - first);
  if (!(share >= 0 && share <= 1)) return {0, count};  // or one of them is infinite or a NaN
  const auto guess = static_cast<std::size_t>(share * static_cast<double>(count - 1));
  const auto near = static_cast<std::size_t>(std::sqrt(static_cast<double>(count)));
  const std::size_t low = guess > near ? guess - near : 0;
  const std::size_t high = std::min(count, guess + near);
  if (key < values[low].value) return {0, low};
  if (high < count && !(key < values[high].value)) return {high, count};
  return {low, high};
}

// The position of a text's value among sorted values, or their number when it is not there.
template <class Number>
std::size_t position_of(const char* text, const std::vector<datatype<Number>>& values) {
  const auto key = parsed<datatype<Number>>(text);
  auto [lo, hi] = part_around(key.value, values);
  while (lo < hi) {
    const std::size_t mid = lo + (hi - lo) / 2;
    if (values[mid] == key) return mid;
    // Conditional moves: a branch would be mispredicted every other time.
    const bool above = key.value > values[mid].value;
    lo = above ? mid + 1 : lo;
    hi = above ? hi : mid;
  }
  return values.size();
}

std::size_t position_of(const char* key, const std::vector<datatype<std::string>>& values) {
  auto found = values.end();
  strata::adt::binary_search_mid(values.begin(), values.end(), key, found);
  return static_cast<std::size_t>(found - values.begin());
}

// The one allocation that is not always released. It has a function of its own so that a leak
// checker can suppress it by name and nothing else.
template <class T>
[[gnu::noinline]] std::unique_ptr<std::vector<T>> make_unreleased_values() {
  return std::make_unique<std::vector<T>>();
}

std::string no_elements(unsigned int low, unsigned int high) {
  return "[o_set::find_threshold()] called for non-existing elements " + number_text(low) + "-" +
         number_text(high);
}

}  // namespace

template <class T>
o_set_typed<T>::o_set_typed(const std::string& data_type, bool admits_null,
                            const std::string& null_text)
    : o_set(data_type, admits_null, null_text) {}

template <class T>
o_set_typed<T>::~o_set_typed() {
  if (releases_values) delete known_values;
}

template <class T>
const std::vector<T>& o_set_typed<T>::frozen_values() {
  static const std::vector<T> none;
  freeze();
  return known_values == nullptr ? none : *known_values;
}

template <class T>
void o_set_typed<T>::freeze() {
  if (frozen) return;
  std::unique_ptr<std::vector<T>> values = make_unreleased_values<T>();
  const std::unique_ptr<std::vector<T>> sorted(builder.get());
  values->swap(*sorted);
  known_values = values.release();
  frozen = true;
  T released;
  std::swap(released, scratch);
}

template <class T>
void o_set_typed<T>::thaw() {
  if (!frozen) return;
  if (known_values != nullptr)
    builder.insert_all(std::move(*known_values));  // the builder is empty: nothing throws
  delete known_values;
  known_values = nullptr;
  frozen = false;
}

template <class T>
void o_set_typed<T>::insert(const char* value) {
  thaw();
  if (is_null(value)) return insert_null();
  parse(value, scratch.value);
  builder.insert(scratch);
}

template <class T>
void o_set_typed<T>::insert_values(std::vector<T> values) {
  thaw();
  builder.insert_all(std::move(values));
}

template <class T>
unsigned int o_set_typed<T>::size_of_known() {
  return static_cast<unsigned int>(frozen_values().size());
}

template <class T>
bool o_set_typed<T>::get_order(const char* value, unsigned int& code) {
  const std::vector<T>& values = frozen_values();
  if (is_null(value)) return o_set::get_order(value, code);
  const std::size_t position = position_of(value, values);
  if (position == values.size()) return false;
  code = static_cast<unsigned int>(position) + 1;
  return true;
}

template <class T>
std::string o_set_typed<T>::get_value(unsigned int code) {
  const std::vector<T>& values = frozen_values();
  if (code == 0 || code > values.size()) return get_null();
  return text_of(values[code - 1].value);
}

template <class T>
o_set* o_set_typed<T>::clone() {
  freeze();
  auto copy = std::make_unique<o_set_typed<T>>(type_name, admits_null_, get_null());
  copy->contains_null_ = contains_null_;
  copy->releases_values = releases_values;
  if (known_values != nullptr) {
    std::unique_ptr<std::vector<T>> values = make_unreleased_values<T>();
    *values = *known_values;
    copy->known_values = values.release();
  }
  copy->frozen = true;
  return copy.release();
}

template <class T>
int o_set_typed<T>::leq(const std::string& a, const std::string& b) const {
  if (is_null(a.c_str()) || is_null(b.c_str())) return -1;
  const T right = parsed<T>(b.c_str());
  const T left = parsed<T>(a.c_str());
  return greater(left.value, right.value) ? 1 : 0;
}

template <class T>
int o_set_typed<T>::leq(unsigned int code, const std::string& b) {
  const std::vector<T>& values = frozen_values();
  if (code == 0 || is_null(b.c_str())) return -1;
  const T right = parsed<T>(b.c_str());
  return greater(values[code - 1].value, right.value) ? 1 : 0;
}

template <class T>
unsigned int o_set_typed<T>::mid_code(unsigned int low, unsigned int high) {
  const std::vector<T>& values = frozen_values();
  // The first message shows the codes, the second the positions: each the numbers that it checked.
  if (low == 0 || high == 0) throw std::runtime_error(no_elements(low, high));
  const unsigned int i = low - 1;
  const unsigned int j = high - 1;
  if (i >= values.size() || j >= values.size() || i > j)
    throw std::runtime_error(no_elements(i, j));

  if constexpr (std::is_same_v<T, datatype<std::string>>) {
    throw std::runtime_error("mid_value() is undefined on type datatype_string");
  } else {
    const auto [lo, hi] = std::minmax(values[i].value, values[j].value);
    const auto middle = midpoint(lo, hi);
    const auto first = values.begin() + i;
    const auto above = std::upper_bound(first, values.begin() + j + 1, middle,
                                        [](auto m, const T& value) { return !(value.value <= m); });
    // If the middle is a NaN, no value is less than or equal to it, and the low value is taken.
    return above == first ? low : static_cast<unsigned int>(above - values.begin());
  }
}

template <class T>
std::string o_set_typed<T>::find_mid(unsigned int low, unsigned int high) {
  const unsigned int code = mid_code(low, high);
  return text_of((*known_values)[code - 1].value);
}

template <class T>
unsigned int o_set_typed<T>::find_mid_code(unsigned int low, unsigned int high) {
  // A derived class may have a find_mid of its own.
  if (typeid(*this) != typeid(o_set_typed)) return o_set::find_mid_code(low, high);
  return mid_code(low, high);
}

template <class T>
obinstream& o_set_typed<T>::bin_out(obinstream& out) {
  freeze();
  out << (known_values != nullptr);
  if (known_values == nullptr) return out;
  out << size_of_known();
  write_values(out, *known_values);
  return out;
}

template <class T>
ibinstream& o_set_typed<T>::bin_in(ibinstream& in) {
  std::vector<T>* read = nullptr;
  in.read_special(read);
  const std::unique_ptr<std::vector<T>> loaded(read);
  freeze();
  if (loaded == nullptr) {
    delete std::exchange(known_values, nullptr);
  } else {
    if (known_values == nullptr) known_values = make_unreleased_values<T>().release();
    known_values->swap(*loaded);
  }
  return in;
}

template class o_set_typed<datatype<int>>;
template class o_set_typed<datatype<unsigned int>>;
template class o_set_typed<datatype<float>>;
template class o_set_typed<datatype<double>>;
template class o_set_typed<datatype<std::string>>;

}  // namespace arbor::impls
