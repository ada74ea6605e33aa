#include "tools/classify_command.h"

#include <filesystem>
#include <iostream>
#include <optional>
#include <system_error>

#include "arbor/csv/message_text.h"
#include "arbor/report/evaluation_report.h"
#include "arbor/store/file_replacement.h"
#include "arbor/store/model_store.h"
#include "arbor/store/replacement_stream.h"
#include "tools/classify_rows.h"
#include "tools/output_file.h"
#include "tools/terminal.h"
#include "tools/thread_option.h"

namespace arbor::tools {

namespace {

constexpr const char* classify_help =
    R"(Prints the table as CSV, with the predicted class and its probability at the end
of each row. Columns are found by their names. Where the value that a test needs
is unknown, or did not occur in training, the row goes down every branch. Use
--unknown as for the table that the tree was grown on. A text in a column of
numbers that is no number is unknown too, and counted on standard error.

If the table has the class too, the predictions are evaluated: on standard
error, or with --output FILE or --quiet on standard output.

Examples:
  arbor classify golf.model tomorrow.csv
  arbor classify birds.model more.csv --output predicted.csv --probability
  arbor classify golf.model checked.csv --quiet --class actual)";

void print_evaluation_of_rows(const tree::decision_tree& model,
                              const tree::classification_result& result, std::ostream& out) {
  if (!result.quality) return;
  out << tree::evaluation_as_text("classified", *model.class_column, *result.quality);
}

struct file_with_rows {
  explicit file_with_rows(const output_file& output)
      : file(output.path, output.new_ownership()),
        rows(file),
        guard(rows, tree::is_terminal(output.path)) {}

  void save() {
    rows.flush();
    file.commit();
  }

  tree::file_replacement file;
  tree::replacement_stream rows;
  terminal_guard guard;
};

}  // namespace

classify_command::classify_command(CLI::App& app, const workplace& at)
    : command(app, "classify", "Predict the class of each row with a saved tree", classify_help),
      place(at) {
  parser.add_option("MODEL", model_path, "A file saved by arbor grow")->type_name("");
  add_tables(parser, table_paths);
  parser
      .add_option("--output", output_path,
                  "File to write the rows to (default: -, standard output)")
      ->type_name("FILE");
  add_force(parser, "--output", force);
  parser.add_flag("--quiet", quiet, "Print no rows, only the evaluation");
  parser.add_flag("--probability", all_probabilities, "Print the probability of every class");
  parser.add_flag("--unsmoothed", unsmoothed,
                  "Take the shares of the training cases at a leaf for its probabilities (default: "
                  "smoothed toward those of the nodes above it)");
  parser
      .add_option("--class", class_name,
                  "The column of the actual classes (default: the one with the name of the model's "
                  "class, if there is one)")
      ->type_name("NAME");
  table.add_cell_options_to(parser);
  table.add_id_to(parser, "and is printed without the other ones");
  parser.add_flag("--strict", strict,
                  "Refuse a text that is no number in a column where the model has numbers");
  add_threads(parser, threads);
}

void classify_command::run() {
  check_combination();
  const output_file output{"--output", output_path, force};
  if (!output.is_standard_output()) place.in_first([&] { check_file(output); });
  tree::decision_tree model;
  place.in_all([&] { model = tree::load_model(model_path); });
  if (quiet) {
    const tree::classification_result result = classify(model, nullptr);
    refuse_if(!result.quality, "there is nothing to evaluate: no row has a known class");
    print_evaluation_of_rows(model, result, std::cout);
  } else if (output.is_standard_output()) {
    print_evaluation_of_rows(model, classify(model, &std::cout), std::cerr);
  } else {
    const tree::classification_result result = classify_into_file(model, output);
    std::cout << tree::counted(result.rows, "row") << " classified\n";
    print_evaluation_of_rows(model, result, std::cout);
  }
}

void classify_command::check_combination() const {
  refuse_if(model_path.empty() || table_paths.empty(), "name a model and a table");
  check_tables(table_paths);
  std::error_code ignored;
  refuse_if(
      place.is_shared() && (model_path == "-" || std::filesystem::is_fifo(model_path, ignored)),
      "all processes read the model, which neither standard input nor a pipe lets them; name "
      "a file");
  refuse_if(output_path.empty(), "--output: the name of the file is empty");
  for (const std::string option : {"--output", "--probability"})
    refuse_if(quiet && given(option), option + " does not go with --quiet, which prints no rows");
}

tree::classification_options classify_command::chosen_options(
    const tree::decision_tree& model) const {
  tree::classification_options options = options_from(table.chosen());
  options.all_probabilities = all_probabilities;
  options.strict = strict;
  options.threads = thread_count(threads);
  if (unsmoothed) options.estimate = tree::leaf_estimate::training_share;
  options.class_name = class_name;
  options.class_from = given("--class") ? "--class" : "--quiet, which needs the actual classes";
  if (quiet && class_name.empty()) options.class_name = model.class_column->get_name();
  return options;
}

tree::classification_result classify_command::classify(const tree::decision_tree& model,
                                                       std::ostream* rows) const {
  tree::classification_options options;
  place.in_all([&] { options = chosen_options(model); });
  return classify_rows(place, table_paths, model, options, rows, "; --strict refuses such texts");
}

// Fails before the work is done if its result could not be saved.
void classify_command::check_file(const output_file& output) const {
  output.keep_input(model_path, "the model");
  for (const std::string& path : table_paths) output.keep_input(path, "the table");
  output.check(tree::file_content::classified, "a classified table");
}

// The old file, if there is one, stays until all rows are written.
tree::classification_result classify_command::classify_into_file(const tree::decision_tree& model,
                                                                 const output_file& output) const {
  std::optional<file_with_rows> file;
  place.in_first([&] { file.emplace(output); });
  tree::classification_result result = classify(model, file ? &file->rows : &std::cout);
  place.in_first([&] { file->save(); });
  return result;
}

}  // namespace arbor::tools
