// A domain beside a plain set of values: any sequence of insertions, questions, copies and reloads gives the same codes.
#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <type_traits>

#include "arbor/utils/string_util.h"
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;

namespace {

template <class T>
T value_of(const std::string& text) {
  if constexpr (std::is_same_v<T, std::string>) return text;
  if constexpr (std::is_floating_point_v<T>) return static_cast<T>(std::strtod(text.c_str(), nullptr));
  if constexpr (std::is_integral_v<T>) return static_cast<T>(std::strtoll(text.c_str(), nullptr, 10));
}

template <class T>
bool is_nan(const T& value) {
  if constexpr (std::is_floating_point_v<T>) return std::isnan(value);
  return false;
}

// Texts are sorted as unsigned bytes but compared as signed ones.
template <class T>
bool greater(const T& a, const T& b) {
  if constexpr (std::is_same_v<T, std::string>) {
    return strata::util::string_util::compare_signed(a.c_str(), b.c_str()) > 0;
  } else {
    return a > b;
  }
}

// The middle of two numbers: rounded down between integers, to a float between floats.
template <class T>
T middle(T low, T high) {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>((static_cast<double>(high) - static_cast<double>(low)) * 0.5 + static_cast<double>(low));
  } else {
    const long long sum = 0LL + low + high;
    return static_cast<T>(sum >= 0 ? sum / 2 : (sum - 1) / 2);
  }
}

std::string text_off(input& in) {
  static const char* const odd[] = {"?",  "0",          "-0",          "+",          "1e-40", "inf", "-inf", "nan", "1e39",
                                    "-1", "2147483647", "-2147483647", "4294967295", "0x1p3", "",    " 7",   "\x7F", "\x80"};
  const unsigned int way = in.below(4);
  if (way == 0) return in.text();
  if (way == 1) return odd[in.below(18)];
  return std::to_string(way == 2 ? static_cast<int>(in.below(64)) - 32 : static_cast<int>(in.below(1U << 15U)));
}

template <class T>
class comparison {
 public:
  comparison(const std::string& type, bool admits_null)
      : domain(arbor::impls::o_set::NEW_O_SET(type, admits_null, "?")), admits_unknown(admits_null) {}

  void insert(const std::string& text) {
    if (!refusal([&] { domain->insert(text.c_str()); }).empty()) {
      check(text != "?" || !admits_unknown, "an unknown value that is admitted is taken");
    } else if (text == "?") {
      has_unknown = true;
    } else if (const T value = value_of<T>(text); is_nan(value)) {
      ++nans;
    } else {
      values.insert(value);
    }
  }

  void look_up(const std::string& text) {
    unsigned int code = 77;
    bool found = false;
    if (!refusal([&] { found = domain->get_order(text.c_str(), code); }).empty()) return;
    const auto ascii = [](const std::string& t) { return std::all_of(t.begin(), t.end(), [](char c) { return c >= 0; }); };
    if (text == "?") return check(found ? has_unknown && code == 0 : !has_unknown, "the unknown value is found");
    const T value = value_of<T>(text);
    const auto place = is_nan(value) ? values.end() : values.find(value);
    if (found) {
      check(place != values.end() && code == 1 + std::distance(values.begin(), place), text + " has its code");
    } else {
      bool searchable = place != values.end();
      if constexpr (std::is_same_v<T, std::string>) {
        searchable = searchable && ascii(text) && std::all_of(values.begin(), values.end(), ascii);
      }
      check(!searchable && code == 77, text + " is found");
    }
  }

  void compare(unsigned int code, const std::string& text) {
    if (code > values.size()) return;
    int answer = 0;
    if (!refusal([&] { answer = domain->leq(code, text); }).empty()) return;
    if (code == 0 || text == "?") return check(answer == -1, "the unknown value is not compared");
    check(answer == (greater(*std::next(values.begin(), code - 1), value_of<T>(text)) ? 1 : 0), "values compare");
  }

  void find_middle(unsigned int low, unsigned int high) {
    std::string text;
    const bool refused = !refusal([&] { text = domain->find_mid(low, high); }).empty();
    const std::size_t known = values.size() + nans;
    if constexpr (std::is_same_v<T, std::string>) {
      check(refused, "texts have no middle");
    } else if (low == 0 || low > high || high > known) {
      check(refused, "a middle is between values");
    } else {
      unsigned int threshold = low;  // also when the middle is not a number
      if (high <= values.size()) {
        const auto at = [&](unsigned int code) { return *std::next(values.begin(), code - 1); };
        while (threshold < high && at(threshold + 1) <= middle(at(low), at(high))) ++threshold;
      }
      check_same(text, domain->get_value(threshold), "the middle");
    }
  }

  void reload() {
    check_record(domain.get());
    domain = record_in<arbor::impls::o_set>(record_of(domain.get()));
  }

  void copy() {
    older = std::move(domain);
    older_record = record_of(older.get());
    domain.reset(older->clone());
  }

  void check_all() {
    check(domain->size_of_known() == values.size() + nans, "there are as many values");
    check(domain->contains_null() == has_unknown, "the unknown value is there if it was inserted");
    unsigned int code = 0;
    for (const T& value : values) {
      const std::string text = domain->get_value(++code);
      bool same = value_of<T>(text) == value;
      if constexpr (std::is_floating_point_v<T>) same = same || std::fabs(value_of<T>(text) - value) <= T(1e-30);
      check(same, "values ascend");
    }
    while (code < values.size() + nans) check(domain->get_value(++code).find("nan") != std::string::npos, "NaNs are last");
    check_same(domain->get_value(0) + domain->get_value(code + 1), "??", "the text of what is no value");
    if (older != nullptr) check(record_of(older.get()) == older_record, "a copy leaves its source alone");
  }

  unsigned int codes() const { return static_cast<unsigned int>(values.size() + nans) + 2; }

 private:
  domain_pointer domain;
  domain_pointer older;
  byte_list older_record;
  bool admits_unknown;
  bool has_unknown = false;
  std::set<T> values;
  unsigned int nans = 0;
};

template <class T>
void run(const std::string& type, input& in) {
  comparison<T> both(type, in.below(2) == 1);
  while (!in.empty()) {
    const unsigned int step = in.below(16);
    if (step < 8) both.insert(text_off(in));
    if (step == 8) {  // enough of them for the builder to put them in order on the way
      for (unsigned int i = in.below(300), stride = 1 + in.below(9999); i > 0; --i) both.insert(std::to_string(i * stride % 9973));
    }
    if (step == 9 || step == 10) both.look_up(text_off(in));
    if (step == 11) both.compare(in.below(both.codes()), text_off(in));
    if (step == 12) both.find_middle(in.below(both.codes()), in.below(both.codes()));
    if (step == 13) both.reload();
    if (step == 14) both.copy();
    if (step == 15) both.check_all();
  }
  both.check_all();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  input in(data, size);
  const unsigned int type = in.below(5);
  if (type == 0) run<int>("integer", in);
  if (type == 1) run<unsigned int>("uinteger", in);
  if (type == 2) run<float>("float", in);
  if (type == 3) run<double>("double", in);
  if (type == 4) run<std::string>("string", in);
  return 0;
}
