#include "tools/report_command.h"

#include <iostream>

#include "arbor/report/page/page.h"
#include "arbor/store/model_store.h"
#include "arbor/store/replacement_stream.h"
#include "arbor/tree/classification.h"
#include "tools/model_table.h"
#include "tools/one_machine.h"
#include "tools/terminal.h"

namespace arbor::tools {

namespace {

constexpr const char* report_help =
    R"(Writes one HTML file to be opened in a browser. It loads nothing from elsewhere.
The tree can be folded, searched and zoomed, and each node shows its rule. With
a table, the page also has how well the tree predicts its rows, and how well
each attribute would have done at the root. Rows whose class is unknown are
left out. Give options of the table as for growing; the model has the types and
the kinds of the attributes that it tests.

Examples:
  arbor report golf.model --output golf.html
  arbor report birds.model birds.csv --output birds.html)";

}  // namespace

report_command::report_command(CLI::App& app)
    : command(app, "report", "Write a page about a saved tree, for a browser", report_help) {
  parser.add_option("MODEL", model_path, "A file saved by arbor grow")->type_name("");
  add_tables(parser, table_paths);
  parser
      .add_option("--output", output_path,
                  "File to write the page to (default: -, standard output)")
      ->type_name("FILE.html");
  add_force(parser, "--output", force);
  table.add_cell_options_to(parser);
  table.add_kinds_to(parser);
}

void report_command::run() {
  check_combination();
  const output_file page{"--output", output_path, force};
  if (!page.is_standard_output()) {
    page.keep_input(model_path, "the model");
    for (const std::string& path : table_paths) page.keep_input(path, "the table");
    page.check(tree::file_content::page, "a page of arbor report");
  }
  const tree::decision_tree model = tree::load_model(model_path);
  if (page.is_standard_output()) return write(model, std::cout);
  tree::file_replacement file(page.path, page.new_ownership());
  tree::replacement_stream out(file);
  const terminal_guard guard(out, tree::is_terminal(page.path));
  write(model, out);
  out.flush();
  file.commit();
}

void report_command::check_combination() const {
  refuse_if(model_path.empty(), "no model; name a file that arbor grow has saved");
  refuse_if(output_path.empty(), "--output: the name of the file is empty");
  if (!table_paths.empty()) return check_tables(table_paths);
  for (const CLI::Option* option : parser.get_options()) {
    refuse_if(table_options::have(*option) && option->count() > 0,
              option->get_name() + " goes with a table");
  }
}

void report_command::write(const tree::decision_tree& model, std::ostream& out) const {
  if (!table_paths.empty()) return write_with_table(model, out);
  tree::write_page(out, model, nullptr);
}

void report_command::write_with_table(const tree::decision_tree& model, std::ostream& out) const {
  tree::load_options load = options_for_model(table.chosen(), model);
  load.skips_unknown_class = true;
  const tree::table rows = read_table(one_machine(), table_paths, load);
  tree::table_rating ratings = tree::rate_attributes(rows, rows.cases, least_weight_of(model));
  tree::sort_ratings(ratings.attributes, tree::rating_order::ratio);
  const tree::evaluation quality = tree::classify_rows(model, rows);
  const tree::page_table evaluated{rows.name, tree::summary_of(rows, rows.cases), quality, ratings};
  tree::write_page(out, model, &evaluated);
}

}  // namespace arbor::tools
