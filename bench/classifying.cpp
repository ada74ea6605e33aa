// Classifying the rows of a file with a small and a large tree, compared with loading the file, and
// on two threads, compared with one.

#include <fstream>
#include <memory>
#include <string>

#include "arbor/table/table_loader.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/table_classification.h"
#include "bench/benches.h"
#include "bench/comparison.h"
#include "bench/people_table.h"

namespace arbor::bench {

namespace {

constexpr std::size_t rows = 300000;

// People, and a tree grown on others.
struct people_and_tree {
  people_and_tree(const people_table::settings& settings, const agrawal::settings& others)
      : file(settings, rows) {
    const tree::table training = tree::load_table(people_file({others, 0, false}, rows).path(), {});
    grown = tree::grow_tree(training, training.cases, {});
  }

  people_file file;
  tree::decision_tree grown;
};

std::function<void()> classifying(const std::shared_ptr<const people_and_tree>& people,
                                  unsigned int threads) {
  return [=] {
    tree::classification_options options;
    options.threads = threads;
    std::ofstream out("/dev/null");
    const auto result = tree::classify_table(people->file.path(), people->grown, options, &out);
    expect(result.rows == rows, "all rows are classified");
  };
}

std::function<void()> loading(const std::shared_ptr<const people_and_tree>& people) {
  return [=] {
    tree::load_options options;
    options.threads = 1;
    expect(tree::load_table(people->file.path(), options).cases.size() == rows, "all are loaded");
  };
}

}  // namespace

void add_classifying() {
  for (const double noise : {0.0, 0.05}) {
    for (const double unknown : {0.0, 0.02}) {
      const std::string size = std::string(noise > 0 ? "/a large tree" : "/a small tree") +
                               (unknown > 0 ? ", 2% of the cells unknown, " : ", ") +
                               with_thousands(rows) + " rows";
      const auto people = [=] {
        return std::make_shared<people_and_tree>(people_table::settings{{7, 0, 1}, unknown, false},
                                                 agrawal::settings{noise > 0 ? 7 : 2, noise, 2});
      };
      compare("classifying a file : loading it" + size, {aim::ratio, 2}, [=] {
        const std::shared_ptr<const people_and_tree> made = people();
        return comparison{rows, classifying(made, 1), loading(made)};
      });
      compare("classifying a file, two threads : one, by the clock" + size, {aim::ratio, 0.556},
              [=] {
                const std::shared_ptr<const people_and_tree> made = people();
                comparison threads{rows, classifying(made, 2), classifying(made, 1)};
                threads.by_clock = true;
                return threads;
              });
    }
  }
}

}  // namespace arbor::bench
