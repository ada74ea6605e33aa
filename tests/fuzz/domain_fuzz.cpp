// A domain beside a plain set of values: any sequence of insertions, questions, copies and reloads
// gives the same codes.
#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;

template <class T>
static T value_of(const std::string& text) {
  if constexpr (std::is_same_v<T, std::string>) {
    return text;
  } else if constexpr (std::is_integral_v<T>) {
    return static_cast<T>(std::strtoll(text.c_str(), nullptr, 10));
  } else {
    return static_cast<T>(std::strtod(text.c_str(), nullptr));
  }
}

template <class T>
static bool is_nan(const T& value) {
  if constexpr (std::is_floating_point_v<T>) {
    return std::isnan(value);
  } else {
    return false;
  }
}

// Rounded down between integers, to a float between floats.
template <class T>
static T middle(T low_value, T high_value) {
  const auto low = static_cast<double>(low_value), high = static_cast<double>(high_value);
  return static_cast<T>(std::is_integral_v<T> ? std::floor((low + high) / 2)
                                              : (high - low) * 0.5 + low);
}

static std::string text_off(input& in) {
  static const char* const odd[] = {
      "?",    "0",  "-0",         "+",           "1e-40",      "inf",   "-inf", "nan",
      "1e39", "-1", "2147483647", "-2147483647", "4294967295", "0x1p3", "",     " 7"};
  const unsigned int way = in.below(4);
  if (way == 0) return in.text();
  return way == 1 ? odd[in.below(16)] : std::to_string(static_cast<int>(in.byte()) - 99);
}

// Whether texts sort and compare alike, which those of other bytes do not.
static bool is_ascii(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0; });
}

template <class T>
static void run(const std::string& type, input& in) {
  owner<arbor::impls::o_set> domain(arbor::impls::o_set::NEW_O_SET(type, true, "?"));
  std::set<T> values;
  unsigned int nans = 0;
  bool has_unknown = false, all_ascii = true;
  const auto known = [&] { return static_cast<unsigned int>(values.size()); };
  const auto at = [&](unsigned int code) { return *std::next(values.begin(), code - 1); };
  const auto insert = [&](const std::string& text) {
    if (!refusal([&] { domain->insert(text.c_str()); }).empty()) return;
    const T value = value_of<T>(text);
    all_ascii = all_ascii && is_ascii(text);
    if (text == "?") {
      has_unknown = true;
    } else if (!is_nan(value)) {
      values.insert(value);
    } else {
      ++nans;  // each is a value of its own
    }
  };
  while (!in.empty()) {
    const unsigned int step = in.below(10);
    const std::string text = text_off(in);
    const T value = value_of<T>(text);
    unsigned int code = 77;
    if (step < 4) insert(text);
    if (step == 4 && text == "7") {  // so many that the builder puts them in order on the way
      for (unsigned int i = 0; i < 300; ++i) insert(std::to_string(i * 7919 % 9973));
    }
    if (bool found = false;
        step == 5 && refusal([&] { found = domain->get_order(text.c_str(), code); }).empty()) {
      const auto place = is_nan(value) ? values.end() : values.find(value);
      const auto expected =
          text == "?" ? 0 : static_cast<unsigned int>(std::distance(values.begin(), place)) + 1;
      const bool there = text == "?" ? has_unknown : place != values.end();
      check(found ? there && code == expected : code == 77, text + " has its code");
      check(found || !there || !all_ascii || !is_ascii(text), text + " is found");
    }
    const unsigned int low = in.below(known() + 1), high = low + in.below(known() + 1 - low);
    if (int greater = 0; step == 6 && refusal([&] { greater = domain->leq(low, text); }).empty()) {
      const int expected = low == 0 || text == "?" ? -1 : value < at(low) ? 1 : 0;
      check(greater == expected || !all_ascii || !is_ascii(text), "values compare");
    }
    if constexpr (!std::is_same_v<T, std::string>) {
      if (step == 7 && low > 0) {
        unsigned int threshold = low;  // also when the middle is not a number
        while (threshold < high && at(threshold + 1) <= middle(at(low), at(high))) ++threshold;
        check_same(domain->find_mid(low, high), domain->get_value(threshold), "the middle");
      }
    }
    if (step == 8) {
      check_record(domain.get());
      domain = record_in<arbor::impls::o_set>(record_of(domain.get()));
    }
    if (step == 9) domain.reset(owner<arbor::impls::o_set>(std::move(domain))->clone());
  }
  check(domain->size_of_known() == known() + nans && domain->contains_null() == has_unknown,
        "all are there");
  for (unsigned int code = 1; code <= known(); ++code) {
    bool same =
        value_of<T>(domain->get_value(code)) == at(code);  // all of them but the least fractions
    if constexpr (std::is_floating_point_v<T>) same = same || std::fabs(at(code)) < T(1e-10);
    check(same, "values ascend");
  }
  for (unsigned int i = 1; i <= nans; ++i)
    check(domain->get_value(known() + i).back() == 'n', "NaNs are last");
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  input in{data, size};
  const unsigned int type = in.below(5);
  if (type == 0) run<int>("integer", in);
  if (type == 1) run<unsigned int>("uinteger", in);
  if (type == 2) run<float>("float", in);
  if (type == 3) run<double>("double", in);
  if (type == 4) run<std::string>("string", in);
  return 0;
}
