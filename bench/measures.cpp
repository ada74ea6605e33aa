// Rating a split, compared with adding up class weights (or sorting the cases) by hand.
//
// The bare loops work in arrays that were made beforehand; what a measure allocates is its own.

#include <algorithm>
#include <cmath>
#include <vector>

#include "arbor/model/measure/logarithm.h"
#include "arbor/model/weight_type.h"
#include "bench/benches.h"
#include "bench/comparison.h"
#include "bench/value_weights.h"

namespace arbor::bench {

namespace {

using std::string;

// A node, the columns that rate it, their rating, and the arrays of the bare loops.
struct node_rating {
  column* rated;
  column* target;
  w_sequence cases;
  code_range range = rated->get_range();
  std::size_t stride = target->get_distinct();
  float total = weight_of(cases);
  column::splitting_desc result = {};
  std::vector<float> table =
      std::vector<float>(rated->get_distinct() * stride);  // by code, then by class
  std::vector<unsigned int> ends = std::vector<unsigned int>(rated->get_distinct() + 1);
  w_sequence sorted = w_sequence(cases.size());
  std::size_t runs = 0;  // of equal codes among the sorted cases

  static float weight_of(const w_sequence& cases) {
    double sum = 0;
    for (const auto& c : cases) sum += static_cast<double>(c.second);
    return static_cast<float>(sum);
  }

  void rate() {
    rated->quality_measure(target, total, &cases, range, 2.0F, nullptr, result, true);
    keep(&result);
  }
};

template <class Codes>
[[gnu::noinline]] void bare_class_weights(const w_sequence& cases, Codes codes,
                                          const unsigned char* classes, std::size_t stride,
                                          std::vector<float>& table) {
  std::fill(table.begin(), table.end(), 0.0F);
  float* const weights = table.data();
  for (const auto& [row, weight] : cases) weights[codes[row] * stride + classes[row]] += weight;
  keep(weights);
}

void bare_class_weights(node_rating& node) {
  with_codes(*node.rated, [&](auto codes) {
    bare_class_weights(node.cases, codes, class_codes(*node.target), node.stride, node.table);
  });
}

// A counting sort of the cases into another array, and a pass over them that keeps the class
// weights up to each.
template <class Codes>
[[gnu::noinline]] void bare_sort(const w_sequence& cases, Codes codes, const unsigned char* classes,
                                 std::vector<unsigned int>& ends, w_sequence& sorted,
                                 std::vector<float>& left, std::size_t& runs) {
  std::fill(ends.begin(), ends.end(), 0U);
  for (const auto& c : cases) ++ends[codes[c.first] + 1];
  for (std::size_t code = 1; code < ends.size(); ++code) ends[code] += ends[code - 1];
  for (const auto& c : cases) sorted[ends[codes[c.first]]++] = c;

  std::fill(left.begin(), left.end(), 0.0F);
  runs = 0;
  unsigned int previous = 0;
  for (const auto& [row, weight] : sorted) {
    const unsigned int code = codes[row];
    runs += code != previous ? 1 : 0;
    previous = code;
    left[classes[row]] += weight;
  }
  keep(left.data());
}

void bare_sort(node_rating& node, std::vector<float>& left) {
  with_codes(*node.rated, [&](auto codes) {
    bare_sort(node.cases, codes, class_codes(*node.target), node.ends, node.sorted, left,
              node.runs);
  });
}

// Of the measure, with room for what float arithmetic and the penalty for trying many cuts take
// away.
void expect_gain(node_rating& node, double gain) {
  node.rate();
  expect(std::abs(static_cast<double>(node.result.gain) - gain) < 0.01 && gain > 0.05,
         "the gain is that of its definition");
}

string values(unsigned int known) {
  const string name = with_thousands(known) + " values";
  return known == 2       ? "bits, " + name
         : known < 0xFF   ? "1 byte, " + name
         : known < 0xFFFF ? "2 bytes, " + name
                          : "4 bytes, " + name;
}

struct circumstances {
  unsigned int known;
  unsigned int classes;
  row_order order;
  weighing weights;

  string text() const {
    const char* const orders[] = {"row order", "scattered", "shuffled"};
    return values(known) + "/" + std::to_string(classes) + " classes/" +
           orders[static_cast<int>(order)] + "/" +
           (weights == weighing::unit ? "unit weights" : "uneven weights");
  }
};

// Every combination, the last fastest.
std::vector<circumstances> combinations(const std::vector<unsigned int>& known,
                                        const std::vector<row_order>& orders) {
  std::vector<circumstances> all;
  for (const unsigned int k : known) {
    for (const unsigned int classes : {2U, 10U}) {
      for (const row_order order : orders) {
        for (const weighing weights : {weighing::unit, weighing::uneven})
          all.push_back({k, classes, order, weights});
      }
    }
  }
  return all;
}

std::shared_ptr<node_rating> make_node(sample& table, const string& kind, const circumstances& c,
                                       std::size_t cases = sample::cases) {
  w_sequence node = sample::node(c.order, c.weights);
  node.resize(cases);
  return std::make_shared<node_rating>(
      node_rating{table.attribute(kind, c.known), table.classes(c.classes), std::move(node)});
}

void add_discrete(sample& table) {
  for (const circumstances& c : combinations(
           {2, 20, 1000, 100000}, {row_order::rows, row_order::scattered, row_order::shuffled})) {
    // How much of the cache misses of shuffled rows a measure can hide depends on the processor.
    const aim wanted = c.order == row_order::shuffled ? aim{} : aim{aim::ratio, 1.3};
    compare("discrete measure : bare class weights/" + c.text(), wanted, [=, &table] {
      const auto node = make_node(table, "discrete", c);
      bare_class_weights(*node);
      expect_gain(*node, value_weights(node->table, node->stride).gain_by_value());
      return comparison{node->cases.size(), [=] { node->rate(); },
                        [=] { bare_class_weights(*node); }};
    });
  }
}

std::shared_ptr<node_rating> make_rainforest_node(sample& table, const circumstances& c,
                                                  std::size_t cases) {
  auto node = make_node(table, "continuous", c, cases);
  bare_class_weights(*node);
  expect(cases / c.known > 2, "class weights are added up rather than cases sorted");
  expect_gain(*node, value_weights(node->table, node->stride).gain_at_threshold());
  return node;
}

void add_rainforest(sample& table) {
  for (const circumstances& c :
       combinations({100, 10000, 130000}, {row_order::rows, row_order::scattered})) {
    // With many values most of the time is that of the sweep, which is measured below.
    const aim wanted = c.known > 10000 ? aim{} : aim{aim::ratio, 1.3};
    compare("continuous measure by class weights : bare class weights/" + c.text(), wanted,
            [=, &table] {
              const auto node = make_rainforest_node(table, c, sample::cases);
              return comparison{node->cases.size(), [=] { node->rate(); },
                                [=] { bare_class_weights(*node); }};
            });
  }
  // The sweep is what the measure takes beyond the bare class weights, per code that occurs. It has
  // the greatest share in the smallest nodes that are measured this way, those of three cases a
  // value.
  for (const circumstances& c : combinations({10000, 130000, 333333}, {row_order::rows})) {
    const bool uneven = c.weights == weighing::uneven;
    const aim wanted = c.classes == 2 ? uneven ? aim{} : aim{aim::sweep, 6}
                                      : aim{aim::sweep, uneven ? 25.0 : 10.0};
    compare("continuous measure by class weights - bare class weights, 3 cases a value/" + c.text(),
            wanted, [=, &table] {
              const auto node = make_rainforest_node(table, c, 3 * c.known + 1);
              const std::size_t codes = value_weights(node->table, node->stride).count();
              return comparison{node->cases.size(),
                                [=] { node->rate(); },
                                [=] { bare_class_weights(*node); },
                                {},
                                codes};
            });
  }
}

void add_sorting(sample& table) {
  for (const circumstances& c :
       combinations({sample::cases / 2}, {row_order::rows, row_order::scattered})) {
    const aim wanted =
        c.weights == weighing::uneven ? aim{} : aim{aim::ratio, c.classes == 2 ? 2.0 : 3.0};
    compare("continuous measure by sorting : bare counting sort and a pass/" + c.text(), wanted,
            [=, &table] {
              const auto node = make_node(table, "continuous", c);
              bare_class_weights(*node);
              const value_weights expected(node->table, node->stride);
              expect_gain(*node, expected.gain_at_threshold());
              const auto left = std::make_shared<std::vector<float>>(node->stride);
              bare_sort(*node, *left);
              expect(node->runs == expected.count(), "the bare sort brings equal codes together");
              return comparison{node->cases.size(), [=] { node->rate(); },
                                [=] { bare_sort(*node, *left); }};
            });
  }
}

// Nodes of so many cases, one after the other: rating one again and again would teach the processor
// its branches.
std::shared_ptr<std::vector<node_rating>> make_nodes(sample& table, const circumstances& c,
                                                     unsigned int cases_of_each) {
  const w_sequence all = sample::node(c.order, c.weights);
  const std::size_t count = std::max<std::size_t>(1, 100000 / cases_of_each);
  auto nodes = std::make_shared<std::vector<node_rating>>();
  for (std::size_t i = 0; i < count; ++i) {
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(i * cases_of_each);
    nodes->push_back({table.attribute("continuous", c.known), table.classes(c.classes),
                      w_sequence(first, first + cases_of_each)});
  }
  return nodes;
}

void add_uneven_sorting(sample& table) {
  for (const unsigned int cases : {sample::cases, 1000U, 100U, 10U}) {
    for (const unsigned int codes : {cases / 2, 4 * cases}) {
      if (codes > sample::cases) continue;  // they take too long to make
      for (const unsigned int classes : {2U, 10U}) {
        const circumstances even{codes, classes, row_order::rows, weighing::unit};
        circumstances uneven = even;
        uneven.weights = weighing::uneven;
        compare("continuous measure by sorting, uneven weights : even weights/" +
                    with_thousands(cases) + " cases/" + with_thousands(codes) + " codes/" +
                    std::to_string(classes) + " classes",
                {aim::ratio, 3}, [=, &table] {
                  const auto unit = make_nodes(table, uneven, cases);
                  const auto bare = make_nodes(table, even, cases);
                  const auto rate = [](const auto& nodes) {
                    for (node_rating& node : *nodes) node.rate();
                  };
                  return comparison{unit->size() * cases, [=] { rate(unit); }, [=] { rate(bare); }};
                });
      }
    }
  }
}

void add_logarithms() {
  compare("x log2 x : by the library's logarithm/1,024 weights", {aim::time, 2}, [] {
    const auto weights = std::make_shared<std::vector<float>>();
    const auto terms = std::make_shared<std::vector<double>>(1024);
    for (std::size_t i = 0; i < terms->size(); ++i)
      weights->push_back(0.125F * static_cast<float>(i * i % 65521 + 1));
    const auto bare = [=](std::vector<double>& result) {
      for (std::size_t i = 0; i < result.size(); ++i) {
        const auto weight = static_cast<double>((*weights)[i]);
        result[i] = weight * static_cast<double>(static_cast<float>(
                                 std::log(weight) / static_cast<double>(impls::weight_type::Log2)));
      }
      keep(result.data());
    };
    const auto unit = [=](std::vector<double>& result) {
      impls::log_terms(weights->data(), weights->size(), result.data());
      keep(result.data());
    };
    std::vector<double> expected(terms->size());
    bare(expected);
    unit(*terms);
    expect(*terms == expected, "the terms are equal");
    return comparison{terms->size(), [=] { unit(*terms); }, [=] { bare(*terms); }};
  });
}

// A node of ten cases, where what a call costs once outweighs what it costs per case: the codes
// take turns, and those of the upper half of the range are of the second class.
void add_small(const string& name, const aim& wanted, const string& kind, unsigned int known,
               unsigned int different) {
  compare("rating a node of 10 cases/" + name, wanted, [=] {
    constexpr unsigned int calls = 1000;
    const std::shared_ptr<column> rated = make_column(kind, "integer", integer_texts(known));
    const std::shared_ptr<column> target = make_column("class", "integer", integer_texts(2));
    w_sequence cases;
    for (unsigned int row = 0; row < 10; ++row) {
      const unsigned int value = row % different * (known / different);
      rated->push_back(std::to_string(value).c_str());
      target->push_back(2 * value < known ? "0" : "1");
      cases.push_back({row, 1.0F});
    }
    const auto node = std::make_shared<node_rating>(node_rating{rated.get(), target.get(), cases});
    node->rate();
    expect(node->result.gain > 0.5F, "there is a split");
    const auto rate = [=, rated = rated, target = target] {
      for (unsigned int i = 0; i < calls; ++i) node->rate();
    };
    return comparison{calls, rate, {}};
  });
}

}  // namespace

void add_measures(sample& table) {
  add_discrete(table);
  add_rainforest(table);
  add_sorting(table);
  add_uneven_sorting(table);
  add_logarithms();
  add_small("discrete, 3 values", {aim::time, 150}, "discrete", 3, 3);
  add_small("discrete, 2 values", {aim::time, 150}, "discrete", 2, 2);
  add_small("continuous, 5 values of 5", {aim::time, 400}, "continuous", 5, 5);
  add_small("continuous, 5 values of 10", {aim::time, 400}, "continuous", 10, 5);
  add_small("continuous, 10 values of 10", {aim::time, 400}, "continuous", 10, 10);
  add_small("continuous, 3 values of 3", {}, "continuous", 3, 3);
  add_small("continuous, 10 values of 10,000", {}, "continuous", 10000, 10);
}

}  // namespace arbor::bench
