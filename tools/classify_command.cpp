#include "tools/classify_command.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "arbor/csv/message_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/report/evaluation_report.h"
#include "arbor/store/file_replacement.h"
#include "arbor/store/model_store.h"
#include "tools/output_file.h"
#include "tools/progress_line.h"

namespace arbor::tools {

namespace {

constexpr const char* classify_help =
    R"(Prints the table as CSV, with the predicted class and its probability at the end
of each row. Columns are found by their names. Where the value that a test needs
is unknown, or did not occur in training, the row goes down every branch. Use
--unknown as for the table that the tree was grown on.

If the table has the class too, the errors and the confusion matrix are printed:
on standard error, or with --output on standard output.

Examples:
  arbor classify golf.model tomorrow.csv
  arbor classify birds.model more.csv --output predicted.csv --probability)";

void print_errors_of_rows(const tree::decision_tree& model,
                          const tree::classification_result& result, std::ostream& out) {
  if (!result.quality) return;
  out << tree::evaluation_as_text("classified", *model.class_column, *result.quality);
}

}  // namespace

classify_command::classify_command(CLI::App& app)
    : command(app, "classify", "Predict the class of each row with a saved tree", classify_help) {
  parser.add_option("MODEL", model_path, "A file saved by arbor grow")->type_name("");
  parser.add_option("TABLE", table_path, "A CSV file, or - for standard input")->type_name("");
  parser
      .add_option("--output", output_path, "File to write the rows to (default: standard output)")
      ->type_name("FILE");
  add_force(parser, "--output", force);
  parser.add_flag("--probability", all_probabilities, "Print the probability of every class");
  table.add_cell_options_to(parser);
}

void classify_command::run() {
  const tree::classification_options options = chosen_options();
  refuse_if(table_path.empty(), "name a model and a table");
  const tree::decision_tree model = tree::load_model(model_path);
  if (output_path.empty()) {
    print_errors_of_rows(model, classify(model, options, std::cout), std::cerr);
    return;
  }
  const tree::classification_result result = classify_into_file(model, options);
  std::cout << result.rows << " rows classified\n";
  print_errors_of_rows(model, result, std::cout);
}

tree::classification_options classify_command::chosen_options() const {
  const tree::load_options load = table.chosen();
  tree::classification_options options;
  options.weights_name = load.weights_name;
  options.weights_from = load.weights_from;
  options.unknown_texts = load.unknown_texts;
  options.all_probabilities = all_probabilities;
  return options;
}

tree::classification_result classify_command::classify(const tree::decision_tree& model,
                                                       tree::classification_options options,
                                                       std::ostream& out) const {
  progress_line progress;
  options.progress = [&](std::size_t rows) {
    if (progress.due()) progress.show(std::to_string(rows) + " rows classified");
  };
  return tree::classify_table(table_path, model, options, &out);
}

// The old file, if there is one, stays until all rows are written.
tree::classification_result classify_command::classify_into_file(
    const tree::decision_tree& model, const tree::classification_options& options) const {
  const output_file output{"--output", output_path, force};
  output.keep_input(model_path, "the model");
  output.keep_input(table_path, "the table");
  output.replace_no_model();
  tree::file_replacement file(output_path);
  std::ofstream out(file.temporary_path(), std::ios::binary);
  tree::classification_result result = classify(model, options, out);
  out.close();
  if (!out) {
    throw tree::table_error(tree::printable(output_path) +
                            ": cannot be written: " + std::strerror(errno));
  }
  file.commit();
  return result;
}

}  // namespace arbor::tools
