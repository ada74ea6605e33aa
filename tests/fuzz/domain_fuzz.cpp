// A domain beside a plain set of values: any sequence of insertions, lookups, copies and reloads
// gives the same codes.
#include <algorithm>
#include <cmath>
#include <set>

#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;

template <class T>
static T value_of(const std::string& text) {
  if constexpr (std::is_same_v<T, std::string>) return text;
  if constexpr (std::is_integral_v<T>) return T(std::strtoll(text.c_str(), nullptr, 10));
  if constexpr (std::is_floating_point_v<T>) return T(std::strtod(text.c_str(), nullptr));
}

// Rounded down between integers, to a float between floats.
template <class T>
static T middle(T low_value, T high_value) {
  const auto low = static_cast<double>(low_value), high = static_cast<double>(high_value);
  return static_cast<T>(std::is_integral_v<T> ? std::floor((low + high) / 2)
                                              : (high - low) * 0.5 + low);
}

// Of ASCII alone: texts of other bytes are not sorted as std::string sorts them.
static std::string text_from(input& in) {
  static const char* const odd[] = {
      "?",    "0",  "-0",         "+",           "1e-40",      "inf",   "-inf", "nan",
      "1e39", "-1", "2147483647", "-2147483647", "4294967295", "0x1p3", "",     " 7"};
  const unsigned int way = in.below(4);
  if (way == 1) return odd[in.below(16)];
  if (way > 1) return std::to_string(static_cast<int>(in.byte()) - 99);
  std::string text = in.text();
  for (char& c : text) c = static_cast<char>(c & 0x7F);
  return text.c_str();
}

template <class T>
static void run(const std::string& type, input& in) {
  owner<o_set> domain(o_set::NEW_O_SET(type, true, "?"));
  std::set<T> values;
  unsigned int nans = 0;  // each is a value of its own
  bool has_unknown = false;
  const auto known = [&] { return static_cast<unsigned int>(values.size()); };
  const auto at = [&](unsigned int code) { return *std::next(values.begin(), code - 1); };
  const auto insert = [&](const std::string& text) {
    if (!refusal([&] { domain->insert(text.c_str()); }).empty()) return;
    const T value = value_of<T>(text);
    if (text == "?") has_unknown = true;
    if (text != "?" && value == value) values.insert(value);
    if (text != "?" && value != value) ++nans;
  };
  while (!in.empty()) {
    const unsigned int step = in.below(10);
    const std::string text = text_from(in);
    const T value = value_of<T>(text);
    const unsigned int low = in.below(known() + 1), high = low + in.below(known() + 1 - low);
    if (step < 4) insert(text);
    for (unsigned int i = 0; step == 4 && text == "7" && i < 300; ++i)  // enough to compact them
      insert(std::to_string(i * 7919 % 9973));
    if (bool found = false; step == 5) {
      unsigned int code = 77, expected = 0;
      if (!refusal([&] { found = domain->get_order(text.c_str(), code); }).empty()) continue;
      const auto place = value == value ? values.find(value) : values.end();
      if (text != "?")
        expected = 1 + static_cast<unsigned int>(std::distance(values.begin(), place));
      check(found == (text == "?" ? has_unknown : place != values.end()), text + " is found");
      check(code == (found ? expected : 77), text + " has its code");
    }
    if (int order = 0; step == 6 && refusal([&] { order = domain->leq(low, text); }).empty())
      check(order == (low == 0 || text == "?" ? -1 : value < at(low) ? 1 : 0), "values compare");
    if constexpr (!std::is_same_v<T, std::string>) {
      if (step == 7 && low > 0) {
        unsigned int threshold = low;  // also when the middle is not a number
        while (threshold < high && at(threshold + 1) <= middle(at(low), at(high))) ++threshold;
        check_same(domain->find_mid(low, high), domain->get_value(threshold), "the middle");
      }
    }
    if (step == 8) {
      check_record(domain.get());
      domain = accepted_record<o_set>(record_of(domain.get()));
    }
    if (step == 9) domain.reset(owner<o_set>(std::move(domain))->clone());
  }
  check(domain->size_of_known() == known() + nans && domain->contains_null() == has_unknown,
        "all values are there");
  for (unsigned int code = 1; code <= known(); ++code) {
    bool same = value_of<T>(domain->get_value(code)) == at(code);
    if constexpr (std::is_floating_point_v<T>) same |= std::fabs(at(code)) < T(1e-10);
    check(same, "values ascend");  // the least fractions are shown as 0
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
