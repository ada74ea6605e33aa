#include "tools/classify_command.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "arbor/csv/table_error.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/file_replacement.h"
#include "arbor/store/model_store.h"
#include "arbor/tree/table_classification.h"
#include "tools/progress_line.h"

namespace arbor::tools {

namespace {

constexpr const char* classify_help =
    R"(Prints the table with the predicted class and its probability behind each row, as CSV.
Columns are found by their names. A value that is unknown, or that no training case of a
test had, goes down every branch; say with --unknown what was said of the table that the
tree was grown on. Where the table has the class too, errors and confusion
matrix are told: on standard error, or with --output on standard output.

Examples:
  arbor classify golf.model tomorrow.csv
  arbor classify birds.model more.csv --output said.csv --probability

Exit status: 0, or 2 with one line on standard error that says what is wrong.)";

void report(const tree::decision_tree& model, const tree::classification_result& result,
            std::ostream& out) {
  if (!result.matrix || result.matrix->total() == 0) return;
  out << tree::error_line("classified", *result.matrix) << "\n\n"
      << tree::matrix_as_text(model, *result.matrix);
}

}  // namespace

classify_command::classify_command(CLI::App& app)
    : command(app, "classify", "Tell what a saved tree says of the rows of a table",
              classify_help) {
  parser.add_option("MODEL", model_path, "A file that arbor grow has saved")->type_name("");
  parser.add_option("TABLE", table_path, "A CSV file, or - for standard input")->type_name("");
  parser.add_option("--output", output_path, "Where the rows go (default: standard output)")
      ->type_name("FILE");
  parser.add_flag("--probability", all_probabilities, "Tell the probability of every class");
  table.add_cell_options_to(parser);
}

void classify_command::run() {
  const tree::load_options chosen = table.chosen();
  if (table_path.empty()) throw usage_error("name a model and a table");
  const tree::decision_tree model = tree::load_model(model_path);
  progress_line progress;
  tree::classification_options options;
  options.weights_name = chosen.weights_name;
  options.unknown_texts = chosen.unknown_texts;
  options.all_probabilities = all_probabilities;
  options.progress = [&](std::size_t rows) {
    if (progress.due()) progress.show(std::to_string(rows) + " rows classified");
  };
  if (output_path.empty()) {
    const tree::classification_result result =
        tree::classify_table(table_path, model, options, std::cout);
    progress.clear();
    report(model, result, std::cerr);
    return;
  }
  tree::file_replacement file(output_path);
  std::ofstream out(file.temporary_path(), std::ios::binary);
  const tree::classification_result result = tree::classify_table(table_path, model, options, out);
  progress.clear();
  out.close();
  if (!out) throw tree::table_error(output_path + ": cannot be written: " + std::strerror(errno));
  file.commit();
  std::cout << result.rows << " rows classified\n";
  report(model, result, std::cout);
}

}  // namespace arbor::tools
