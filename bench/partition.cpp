// Taking the cases of a branch, compared with copying them by hand: half of the cases, in no order
// that a processor could guess.

#include <functional>
#include <memory>

#include "bench/benches.h"
#include "bench/comparison.h"

namespace arbor::bench {

namespace {

struct taken_cases {
  std::unique_ptr<weighted_case[]> cases;
  std::size_t count;
  float weight;
};

// Weighs and counts, then copies, without a branch: a case that is not taken is overwritten by the
// next. There is nothing here for unknown values, nor for the bounds of the codes that are taken.
template <class Codes, class Takes>
[[gnu::noinline]] taken_cases bare_copy(const w_sequence& cases, Codes codes, Takes takes) {
  unsigned int count = 0;
  float weight = 0;
  for (const auto& c : cases) {
    const unsigned int taken = takes(codes[c.first]) ? 1 : 0;
    count += taken;
    weight += static_cast<float>(taken) *
              c.second;  // not a conditional, which compilers turn into a branch
  }
  taken_cases result{std::unique_ptr<weighted_case[]>(new weighted_case[count + 1]), count, weight};
  weighted_case* end = result.cases.get();
  for (const auto& c : cases) {
    *end = c;
    end += takes(codes[c.first]) ? 1 : 0;
  }
  keep(result.cases.get());
  return result;
}

struct split {
  const column* source = nullptr;
  unsigned int branch = 0;
  column::partition_desc desc;
  w_sequence cases;

  std::unique_ptr<w_sequence> partition() const {
    float ratio = 0;
    code_range range{0, 0};
    std::unique_ptr<w_sequence> taken(source->partition(
        cases.begin(), cases.end(), branch, static_cast<float>(cases.size()), ratio, range, desc));
    keep(taken->data());
    return taken;
  }
};

void expect_same(const w_sequence& unit, const taken_cases& bare, std::size_t all) {
  expect(bare.count > all / 3 && bare.count < 2 * all / 3, "about half of the cases are taken");
  bool same = unit.size() == bare.count;
  for (std::size_t i = 0; same && i < bare.count; ++i) same = unit[i].first == bare.cases[i].first;
  expect(same, "the same cases are taken");
}

// The bare loop takes the cases for whose code and `bound`, the code of branch or threshold,
// `takes` holds.
template <class Takes>
void add(const std::string& name, const std::function<column*()>& source, unsigned int branch,
         const std::string& threshold, unsigned int bound, Takes takes) {
  for (const row_order order : {row_order::rows, row_order::scattered}) {
    const std::string full_name =
        "partition : bare copy/" + name + (order == row_order::rows ? "/row order" : "/scattered");
    compare(full_name, {aim::ratio, 1.5}, [=] {
      const auto node = std::make_shared<split>();
      node->source = source();
      node->cases = sample::node(order, weighing::unit);
      node->branch = branch;
      node->desc.threshold = threshold;
      const auto bare = [=] {
        return with_codes(*node->source, [&](auto codes) {
          return bare_copy(node->cases, codes,
                           [=](unsigned int code) { return takes(code, bound); });
        });
      };
      expect_same(*node->partition(), bare(), node->cases.size());
      return comparison{node->cases.size(), [=] { node->partition(); }, bare};
    });
  }
}

}  // namespace

void add_partition(sample& table) {
  const auto bits = [&table] { return table.attribute("discrete", 2); };
  const auto three = [&table] { return table.skewed(); };
  const auto many = [&table] { return table.attribute("continuous", 100000); };
  add("discrete, bits", bits, 1, "", 1, std::equal_to<>());
  add("discrete, 1 byte, 3 values", three, 2, "", 2, std::equal_to<>());
  // The least value is 0 and has code 1.
  const std::string name = "continuous, 4 bytes, 100,000 values, ";
  add(name + "low side", many, 1, "49999", 50000, std::less_equal<>());
  add(name + "high side", many, 2, "49999", 50000, std::greater<>());
}

}  // namespace arbor::bench
