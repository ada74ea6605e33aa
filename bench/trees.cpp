// Growing a whole tree on a table with unknown cells or uneven weights, compared with growing one
// on the same table without, and on two threads, compared with one.

#include <memory>

#include "arbor/table/table_loader.h"
#include "arbor/tree/grower.h"
#include "bench/benches.h"
#include "bench/comparison.h"
#include "bench/people_table.h"

namespace arbor::bench {

namespace {

constexpr std::size_t rows = 300000;

std::shared_ptr<const tree::table> make_table(const people_table::settings& settings) {
  const people_file file(settings, rows);
  tree::load_options options;
  if (settings.weights) options.weights_name = "weight";
  return std::make_shared<const tree::table>(tree::load_table(file.path(), options));
}

std::function<void()> growing(const std::shared_ptr<const tree::table>& training,
                              unsigned int threads) {
  tree::grow_options options;
  options.threads = threads;
  return [=] {
    const tree::decision_tree grown = tree::grow_tree(*training, training->cases, options);
    expect(grown.nodes.size() > 1, "a tree grows");
  };
}

}  // namespace

void add_trees() {
  for (const int function : {2, 7}) {
    for (const double noise : {0.0, 0.05}) {
      const std::string people = "/function " + std::to_string(function) +
                                 (noise > 0 ? ", 5% noise" : "") + ", " + with_thousands(rows) +
                                 " rows";
      const people_table::settings clean{{function, noise, 1}, 0, false};
      const auto compare_with_clean = [&](const std::string& what, double most, auto change) {
        people_table::settings changed = clean;
        change(changed);
        compare("growing a tree, " + what + " : without" + people, {aim::ratio, most}, [=] {
          return comparison{rows, growing(make_table(changed), 1), growing(make_table(clean), 1)};
        });
      };
      compare_with_clean("2% of the cells unknown", 2,
                         [](auto& changed) { changed.unknown = 0.02; });
      compare_with_clean("weights", 1.5, [](auto& changed) { changed.weights = true; });
      compare("growing a tree, two threads : one, by the clock" + people, {aim::ratio, 0.556}, [=] {
        const auto training = make_table(clean);
        comparison threads{rows, growing(training, 2), growing(training, 1)};
        threads.by_clock = true;
        return threads;
      });
    }
  }
}

}  // namespace arbor::bench
