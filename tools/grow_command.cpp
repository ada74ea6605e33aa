#include "tools/grow_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <random>
#include <system_error>

#include "arbor/csv/shown_text.h"
#include "arbor/formats/open_table.h"
#include "arbor/report/evaluation_report.h"
#include "arbor/report/rating_report.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/model_store.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/single_leaf.h"
#include "arbor/tree/validation/holdout.h"
#include "arbor/tree/validation/tuning.h"
#include "tools/classify_rows.h"
#include "tools/messages.h"
#include "tools/progress_line.h"
#include "tools/terminal.h"

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
  arbor grow birds.csv --tune --test other_birds.csv
  arbor grow big.csv --model big.model --min-weight 50 --max-depth 8)";

struct timed_tree {
  tree::decision_tree tree;
  double seconds;
};

timed_tree grow_with_progress(const workplace& place, const tree::table& rows,
                              const impls::w_sequence& cases, tree::grow_options options) {
  progress_line progress;
  options.progress = [&](double settled) {
    if (progress.due())
      progress.show(fmt::format("{:.0f}% of the cases are in leaves", 100 * settled));
  };
  const auto start = std::chrono::steady_clock::now();
  tree::decision_tree grown = place.grow(rows, cases, options);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  return {std::move(grown), time.count()};
}

const char* words_for(tree::single_leaf_reason reason) {
  using reasons = tree::single_leaf_reason;
  switch (reason) {
    case reasons::one_class:
      return "all training cases are of one class; --class NAME predicts another column";
    case reasons::no_depth:
      return "--max-depth 0 allows no test";
    case reasons::too_light:
      return "a test needs two branches of --min-weight, and all cases together weigh less";
    case reasons::no_split:
      return "no judged gain of an attribute is above 0; \"arbor rate\" shows them";
    case reasons::pruned:
      break;
  }
  return "its branches were pruned, as they are not expected to make fewer errors; --no-pruning "
         "keeps them";
}

// Says why a tree is a single leaf, unless a remark on the table has said so.
void warn_of_single_leaf(const workplace& place, const tree::decision_tree& grown,
                         const tree::table& rows, const impls::w_sequence& cases,
                         const tree::grow_options& options) {
  if (!grown.nodes.front().is_leaf() || rows.class_column().get_distinct() == 2) return;
  const auto grow = [&](const tree::grow_options& other) { return place.grow(rows, cases, other); };
  complain(rows.name + ": the tree is a single leaf: " +
           words_for(tree::why_single_leaf(place.summary(rows, cases), options, grow)));
}

tree::grow_options tune_with_progress(const tree::table& rows, const impls::w_sequence& cases,
                                      const tree::grow_options& options, unsigned int seed) {
  progress_line progress;
  tree::grow_options tuned = options;
  tuned.progress = [&](double done) {
    if (progress.due()) progress.show(fmt::format("{:.0f}% tuned", 100 * done));
  };
  std::mt19937_64 random(seed);
  tuned = tree::tuned_options(rows, cases, tuned, random);
  tuned.progress = nullptr;
  return tuned;
}

// A large tree is shown in part.
void print_tree(const timed_tree& grown) {
  constexpr std::size_t screen_lines = 40;
  const tree::tree_excerpt excerpt = tree::excerpt_of_lines(grown.tree, screen_lines);
  tree::write_tree_text(std::cout, grown.tree, excerpt, text_width());
  std::cout << '\n'
            << tree::size_line(grown.tree) << fmt::format(", grown in {:.3f} s\n", grown.seconds);
}

// How well the tree predicts its own training cases is shown in one line when there are others.
void print_evaluation(const workplace& place, const tree::decision_tree& grown,
                      const tree::table& rows, const tree::divided_cases& cases,
                      bool has_test_table) {
  const impls::column& classes = *grown.class_column;
  const tree::evaluation training = place.evaluate(grown, rows, cases.training);
  const bool has_held_back = place.sum(cases.held_back.size()) > 0;
  if (!has_held_back && !has_test_table) {
    std::cout << tree::evaluation_as_text("training", classes, training);
    return;
  }
  std::cout << tree::error_line("training", training.matrix()) << '\n';
  if (!has_held_back) return;
  std::cout << tree::evaluation_as_text("held-back", classes,
                                        place.evaluate(grown, rows, cases.held_back));
}

}  // namespace

grow_command::grow_command(CLI::App& app, const workplace& at)
    : command(app, "grow", "Grow a decision tree on a table and save it", grow_help), place(at) {
  add_tables(parser, table_paths);
  parser.add_option("--model", model_path, "File to save the tree to (default: it is not saved)")
      ->type_name("FILE");
  add_force(parser, "--model or --save-types", force);
  table.add_training_options_to(parser);
  tree_growth.add_to(parser);
  parser
      .add_option("--holdout", holdout,
                  "Share of the rows to hold back and evaluate the tree on (default: 0)")
      ->type_name("SHARE");
  parser
      .add_option(
          "--test", test_paths,
          "Another table to evaluate the tree on, read as by arbor classify; repeatable for "
          "one of several files")
      ->type_name("FILE")
      ->take_all()
      ->allow_extra_args(false);
  parser
      .add_option("--seed", seed,
                  "Chooses which rows are held back, and the folds of --tune (default: 1)")
      ->type_name("N");
}

void grow_command::run() {
  tree::load_options load;
  place.in_all([&] { load = table.chosen(); });
  tree::grow_options options = tree_growth.chosen();
  refuse_if(tree_growth.tune() && place.is_shared(),
            "--tune works on one machine; choose with arbor grow --tune on some of the rows, and "
            "give --min-weight and --confidence");
  load.threads = options.threads;
  const auto held_back_share = static_cast<double>(share_value("--holdout", holdout));
  const unsigned int seed_number = whole_value("--seed", seed);
  place.in_first([&] { check_files(load.input); });

  const tree::table rows = read_table(place, table_paths, load);
  place.in_first([&] { table.save_types(rows, force); });
  const tree::divided_cases cases = place.hold_out(rows.cases, held_back_share, seed_number);
  refuse_if(place.sum(cases.training.size()) == 0,
            "--holdout: " + tree::in_quotes(holdout) + " leaves no rows to grow the tree on");
  if (tree_growth.tune()) options = tune_with_progress(rows, cases.training, options, seed_number);
  const timed_tree grown = grow_with_progress(place, rows, cases.training, options);
  const output_file model = model_file();
  if (!model_path.empty()) {
    place.in_first([&] { tree::save_model(model.path, grown.tree, model.new_ownership()); });
  }
  warn_of_single_leaf(place, grown.tree, rows, cases.training, options);

  std::cout << tree::table_line(rows, place.summary(rows, rows.cases), text_width()) << "\n\n";
  if (tree_growth.tune()) {
    std::cout << fmt::format("chosen: minimum weight {}, confidence {}\n\n",
                             tree::shortest_text(options.min_weight),
                             tree::shortest_text(options.confidence));
  }
  print_tree(grown);
  print_evaluation(place, grown.tree, rows, cases, !test_paths.empty());
  if (!test_paths.empty()) evaluate_on_test_table(grown.tree, load);
}

// Fails before the work is done if its result could not be saved or evaluated.
void grow_command::check_files(const tree::input_options& input) const {
  refuse_if(given("--model") && model_path.empty(), "--model: the name of the file is empty");
  check_tables(table_paths);
  table.check_saving(table_paths, force);
  for (const std::string& test_path : test_paths) check_test(test_path, input);
  if (model_path.empty()) return;
  const output_file model = model_file();
  refuse_if(model.is_standard_output(),
            "--model: standard output has the report; write to another file");
  refuse_if(tree::is_terminal(model_path), "--model: a model is no text to show on a terminal");
  for (const std::string& path : table_paths) model.keep_input(path, "the table");
  for (const std::string& path : test_paths) model.keep_input(path, "the test table");
  model.check(tree::file_content::model, "a model of arbor grow");
}

void grow_command::check_test(const std::string& path, const tree::input_options& input) const {
  refuse_if(path.empty(), "--test: the name of the file is empty");
  const bool is_table = std::count(table_paths.begin(), table_paths.end(), "-") > 0;
  refuse_if(path == "-" && is_table, "--test: standard input is the table already");
  std::error_code ignored;
  const bool opens_once = path == "-" || std::filesystem::is_fifo(path, ignored);
  refuse_if(opens_once && place.is_shared(),
            "--test: several processes cannot share standard input or a pipe; name a file");
  if (!opens_once) static_cast<void>(tree::open_table_file(path, input));
}

output_file grow_command::model_file() const {
  return {"--model", model_path, force};
}

void grow_command::evaluate_on_test_table(const tree::decision_tree& grown,
                                          const tree::load_options& load) const {
  tree::classification_options options = options_from(load);
  options.class_name = grown.class_column->get_name();
  options.class_from = "the class of the tree";
  options.id_name.clear();  // no rows are written
  const tree::classification_result result =
      classify_rows(place, test_paths, grown, options, nullptr, "");
  refuse_if(!result.quality, "--test: no row has a known class");
  std::cout << '\n' << tree::evaluation_as_text("test", *grown.class_column, *result.quality);
}

}  // namespace arbor::tools
