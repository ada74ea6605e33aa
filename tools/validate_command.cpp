#include "tools/validate_command.h"

#include <fmt/format.h>

#include <chrono>
#include <iostream>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/report/rating_report.h"
#include "arbor/report/validation_json.h"
#include "arbor/report/validation_report.h"
#include "tools/offered_values.h"
#include "tools/one_machine.h"
#include "tools/output_file.h"
#include "tools/progress_line.h"
#include "tools/terminal.h"

namespace arbor::tools {

namespace {

constexpr const char* validate_help =
    R"(The table is read as by "arbor rate" and trees are grown as by "arbor grow". The
rows are divided at random into folds, each with the classes in nearly the same
proportion. A tree that is grown on all folds but one predicts the rows of that
one. The predictions for all rows are evaluated together. The result is the same
for any number of threads.

The log-loss is the mean of -log2 of the probability of the actual class, which
counts as at least 0.001. The Brier score is the mean of the sum of squares of
the differences between the probabilities and 1 for the actual class, 0 for the
others. With several repeats, all figures are means over them. The standard
error is that of the rows of one repeat, because the others predict them again.

Examples:
  arbor validate golf.csv --folds 7
  arbor validate birds.csv --tune --importance
  arbor validate iris.csv --folds 150 --format json)";

struct timed_validation {
  tree::validation result;
  double seconds = 0;
};

timed_validation validate_with_progress(const tree::table& rows, tree::validation_options options) {
  progress_line progress;
  options.grow.progress = [&](double done) {
    if (progress.due()) progress.show(fmt::format("{:.0f}% validated", 100 * done));
  };
  const auto start = std::chrono::steady_clock::now();
  tree::validation result = tree::cross_validate(rows, options);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  return {std::move(result), time.count()};
}

}  // namespace

validate_command::validate_command(CLI::App& app)
    : command(app, "validate", "Estimate by cross-validation how well trees predict",
              validate_help) {
  add_tables(parser, table_paths);
  table.add_training_options_to(parser);
  tree_growth.add_to(parser);
  parser.add_option("--folds", folds, "Number of folds, from 2 to that of the rows (default: 10)")
      ->type_name("N");
  parser
      .add_option("--repeats", repeats,
                  "How many times the rows are divided into folds anew (default: 1)")
      ->type_name("N");
  parser.add_option("--seed", seed, "Chooses how the rows are divided (default: 1)")
      ->type_name("N");
  parser.add_flag("--importance", importance,
                  "Also print how much worse the predictions are when the values of an attribute "
                  "are permuted among the rows of a fold");
  offer(parser.add_option("--format", format,
                          "text, json, or csv with a row for each fold (default: text)"),
        {"text", "csv", "json"})
      ->type_name("FORMAT");
  add_force(parser, "--save-types", force);
}

void validate_command::run() {
  check_offered(parser, "--format");
  tree::load_options load = table.chosen();
  const tree::validation_options options = chosen_options();
  load.threads = options.grow.threads;
  check_tables(table_paths);
  table.check_saving(table_paths, force);
  const tree::table rows = read_table(one_machine(), table_paths, load);
  table.save_types(rows, force);
  refuse_if(options.folds > rows.cases.size(),
            fmt::format("--folds: {} is more than the {}", tree::in_quotes(folds),
                        tree::counted(rows.cases.size(), "row")));
  const timed_validation done = validate_with_progress(rows, options);
  if (format == "json") {
    tree::write_validation_json(std::cout, rows, options, done.result, done.seconds);
  } else if (format == "csv") {
    tree::write_validation_csv(std::cout, done.result);
  } else {
    std::cout << tree::table_line(rows, tree::summary_of(rows, rows.cases), text_width()) << "\n\n";
    tree::write_validation_text(std::cout, rows, options, done.result, done.seconds, text_width());
  }
}

tree::validation_options validate_command::chosen_options() const {
  constexpr unsigned int most_repeats = 1000;
  tree::validation_options options;
  options.grow = tree_growth.chosen();
  options.tune = tree_growth.tune();
  options.importance = importance;
  options.folds = whole_value("--folds", folds);
  refuse_if(options.folds < 2, "--folds: " + tree::in_quotes(folds) + " is less than 2");
  options.repeats = whole_value("--repeats", repeats);
  refuse_if(
      options.repeats == 0 || options.repeats > most_repeats,
      fmt::format("--repeats: {} is not from 1 to {}", tree::in_quotes(repeats), most_repeats));
  options.seed = whole_value("--seed", seed);
  return options;
}

}  // namespace arbor::tools
