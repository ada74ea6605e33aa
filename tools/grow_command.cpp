#include "tools/grow_command.h"

#include <fmt/format.h>

#include <chrono>
#include <iostream>

#include "arbor/report/evaluation_report.h"
#include "arbor/report/rating_report.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/file_replacement.h"
#include "arbor/store/model_store.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/holdout.h"
#include "tools/progress_line.h"

namespace arbor::tools {

namespace {

constexpr const char* grow_help =
    R"(The table is read as by "arbor rate". Each node tests the attribute with the
best gain ratio among those whose judged gain is at least the average. Pruning
then replaces a test by a leaf where its branches are not expected to make fewer
errors.

Examples:
  arbor grow golf.csv --model golf.model
  arbor grow birds.csv --model birds.model --class "Time of day" --holdout 0.3
  arbor grow big.csv --model big.model --min-weight 50 --max-depth 8)";

struct timed_tree {
  tree::decision_tree tree;
  double seconds;
};

timed_tree grow_with_progress(const tree::table& rows, const impls::w_sequence& cases,
                              tree::grow_options options) {
  progress_line progress;
  options.progress = [&](double settled) {
    if (progress.due())
      progress.show(fmt::format("{:.0f}% of the cases are in leaves", 100 * settled));
  };
  const auto start = std::chrono::steady_clock::now();
  tree::decision_tree grown = tree::grow_tree(rows, cases, options);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  return {std::move(grown), time.count()};
}

// A large tree is shown in part.
void print_tree(const timed_tree& grown) {
  constexpr std::size_t screen_lines = 40;
  const std::size_t depth = tree::depth_of_lines(grown.tree, screen_lines);
  std::cout << tree::first_lines(tree::tree_as_text(grown.tree, depth), screen_lines) << '\n'
            << tree::size_line(grown.tree) << fmt::format(", grown in {:.3f} s\n", grown.seconds);
}

// The matrix is that of the held-back cases, if there are any.
void print_errors(const tree::decision_tree& grown, const tree::table& rows,
                  const tree::divided_cases& cases) {
  tree::confusion_matrix matrix = tree::classify_cases(grown, rows, cases.training);
  std::cout << tree::error_line("training", matrix) << '\n';
  if (!cases.held_back.empty()) {
    matrix = tree::classify_cases(grown, rows, cases.held_back);
    std::cout << tree::error_line("held-back", matrix) << '\n';
  }
  std::cout << '\n' << tree::matrix_as_text(grown, matrix);
}

}  // namespace

grow_command::grow_command(CLI::App& app)
    : command(app, "grow", "Grow a decision tree on a table and save it", grow_help) {
  parser.add_option("TABLE", table_path, "A CSV file, or - for standard input")->type_name("");
  parser.add_option("--model", model_path, "File to save the tree to (default: it is not saved)")
      ->type_name("FILE");
  table.add_to(parser);
  parser
      .add_option("--min-weight", min_weight,
                  "Minimum weight of both sides of a threshold, or of two branches of a discrete "
                  "split (default: 2)")
      ->type_name("W");
  parser
      .add_option("--max-depth", max_depth,
                  "Maximum number of tests from the root to a leaf (default: no limit)")
      ->type_name("D");
  parser.add_flag("--no-pruning", no_pruning, "Keep every branch");
  parser
      .add_option("--confidence", confidence,
                  "Confidence of pruning, above 0 and up to 0.5; a smaller one prunes more "
                  "(default: 0.1)")
      ->type_name("C");
  parser
      .add_option("--holdout", holdout,
                  "Share of the rows to hold back and evaluate the tree on (default: 0)")
      ->type_name("SHARE");
  parser
      .add_option("--threads", threads, "Number of threads (default: one for each processor core)")
      ->type_name("N");
  parser.add_option("--seed", seed, "Chooses which rows are held back (default: 1)")
      ->type_name("N");
}

void grow_command::run() {
  const tree::load_options load = table.chosen();
  refuse_if(given("--model") && model_path.empty(), "--model: the name of the file is empty");
  const tree::grow_options options = chosen_options();
  const auto held_back_share = static_cast<double>(share_value("--holdout", holdout));
  const unsigned int held_back_seed = whole_value("--seed", seed);
  check_model_path();

  const tree::table rows = read_table(table_path, load);
  const tree::divided_cases cases = tree::hold_out(rows.cases, held_back_share, held_back_seed);
  refuse_if(cases.training.empty(),
            "--holdout: \"" + holdout + "\" leaves no rows to grow the tree on");
  const timed_tree grown = grow_with_progress(rows, cases.training, options);
  if (!model_path.empty()) tree::save_model(model_path, grown.tree);

  std::cout << tree::table_line(rows, rows.cases) << "\n\n";
  print_tree(grown);
  print_errors(grown.tree, rows, cases);
}

tree::grow_options grow_command::chosen_options() const {
  tree::grow_options options;
  options.min_weight = weight_value("--min-weight", min_weight);
  if (!max_depth.empty()) options.max_depth = whole_value("--max-depth", max_depth);
  if (!threads.empty()) options.threads = chosen_threads();
  options.prune = !no_pruning;
  options.confidence = share_value("--confidence", confidence);
  refuse_if(options.confidence == 0 || options.confidence > 0.5F,
            "--confidence: \"" + confidence + "\" is not above 0 and up to 0.5");
  return options;
}

unsigned int grow_command::chosen_threads() const {
  constexpr unsigned int most_threads = 1024;  // a greater number is a mistake, not a machine
  const unsigned int count = whole_value("--threads", threads);
  refuse_if(count == 0 || count > most_threads,
            fmt::format("--threads: \"{}\" is not from 1 to {}", threads, most_threads));
  return count;
}

// Fails before the work is done if its result could not be saved.
void grow_command::check_model_path() const {
  if (!model_path.empty()) tree::file_replacement can_be_written(model_path);
}

}  // namespace arbor::tools
