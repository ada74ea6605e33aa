#include "tools/grow_command.h"

#include <fmt/format.h>

#include <chrono>
#include <iostream>

#include "arbor/report/rating_report.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/file_replacement.h"
#include "arbor/store/model_store.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/holdout.h"
#include "tools/progress_line.h"

namespace arbor::tools {

namespace {

constexpr const char* grow_help =
    R"(The table is read as by "arbor rate". Each node tests the attribute with the best gain
ratio among those whose gain is at least the average; branches that promise no fewer errors
than a leaf are pruned.

Examples:
  arbor grow golf.csv --model golf.model
  arbor grow birds.csv --model birds.model --class "Time of day" --holdout 0.3
  arbor grow big.csv --model big.model --min-weight 50 --max-depth 8 --no-pruning

Exit status: 0, or 2 with one line on standard error that says what is wrong.)";

constexpr std::size_t screen_lines = 40;
constexpr unsigned int most_threads = 1024;  // beyond, a mistake is likelier than such a machine

}  // namespace

grow_command::grow_command(CLI::App& app)
    : command(app, "grow", "Grow a decision tree on a table and save it", grow_help) {
  parser.add_option("TABLE", table_path, "A CSV file, or - for standard input")->type_name("");
  parser.add_option("--model", model_path, "Where the tree is saved (default: nowhere)")
      ->type_name("FILE");
  table.add_to(parser);
  parser
      .add_option("--min-weight", min_weight,
                  "The least weight of two values, or of a threshold's sides (default: 2)")
      ->type_name("W");
  parser
      .add_option("--max-depth", max_depth,
                  "How many tests may stand one below the other (default: any number)")
      ->type_name("D");
  parser.add_flag("--no-pruning", no_pruning, "Keep every branch");
  parser
      .add_option("--confidence", confidence,
                  "Of pruning: above 0, up to 0.5; the less, the more (default: 0.25)")
      ->type_name("C");
  parser
      .add_option("--holdout", holdout,
                  "Keep back this share of the rows, to try the tree on them (default: 0)")
      ->type_name("SHARE");
  parser
      .add_option("--threads", threads, "How many work side by side (default: the machine's cores)")
      ->type_name("N");
  parser.add_option("--seed", seed, "Which rows are kept back (default: 1)")->type_name("N");
}

void grow_command::run() {
  const tree::load_options load = table.chosen();
  if (parser.count("--model") > 0 && model_path.empty())
    throw usage_error("--model: the name of the file is empty");
  tree::grow_options grow;
  grow.min_weight = weight_value("--min-weight", min_weight);
  if (!max_depth.empty()) grow.max_depth = whole_value("--max-depth", max_depth);
  if (!threads.empty()) {
    grow.threads = whole_value("--threads", threads);
    if (grow.threads == 0 || grow.threads > most_threads) {
      throw usage_error(
          fmt::format("--threads: \"{}\" is not from 1 to {}", threads, most_threads));
    }
  }
  grow.prune = !no_pruning;
  grow.confidence = share_value("--confidence", confidence);
  if (grow.confidence == 0 || grow.confidence > 0.5F) {
    throw usage_error("--confidence: \"" + confidence + "\" is not above 0 and up to 0.5");
  }
  const float share = share_value("--holdout", holdout);
  const unsigned int which = whole_value("--seed", seed);

  // What cannot be saved is known before the work is done.
  if (!model_path.empty()) tree::file_replacement can_be_written(model_path);
  const tree::table rows = read_table(table_path, load);
  const tree::divided_cases cases = tree::hold_out(rows.cases, static_cast<double>(share), which);
  if (cases.training.empty())
    throw usage_error("--holdout: \"" + holdout + "\" leaves no rows to grow the tree on");
  progress_line progress;
  grow.progress = [&](double settled) {
    if (progress.due()) progress.show(fmt::format("{:.0f}% of the cases settled", 100 * settled));
  };
  const auto start = std::chrono::steady_clock::now();
  const tree::decision_tree grown = tree::grow_tree(rows, cases.training, grow);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  progress.clear();
  if (!model_path.empty()) tree::save_model(model_path, grown);

  std::cout << tree::table_line(rows, rows.cases) << "\n\n"
            << tree::first_lines(
                   tree::tree_as_text(grown, tree::depth_of_lines(grown, screen_lines)),
                   screen_lines)
            << '\n'
            << tree::size_line(grown) << ", grown in " << fmt::format("{:.3f} s", seconds.count())
            << '\n';
  const tree::confusion_matrix training = tree::classify_cases(grown, rows, cases.training);
  std::cout << tree::error_line("training", training) << '\n';
  if (cases.held_back.empty()) {
    std::cout << '\n' << tree::matrix_as_text(grown, training);
  } else {
    const tree::confusion_matrix held_back = tree::classify_cases(grown, rows, cases.held_back);
    std::cout << tree::error_line("held-back", held_back) << "\n\n"
              << tree::matrix_as_text(grown, held_back);
  }
}

}  // namespace arbor::tools
