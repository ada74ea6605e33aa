#include "tools/show_command.h"

#include <iostream>
#include <sstream>

#include "arbor/csv/table_error.h"
#include "arbor/report/exports/c_export.h"
#include "arbor/report/exports/pmml_export.h"
#include "arbor/report/exports/python_export.h"
#include "arbor/report/exports/rules_export.h"
#include "arbor/report/exports/sql_export.h"
#include "arbor/report/picture.h"
#include "arbor/report/tree_graph.h"
#include "arbor/report/tree_json.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/model_store.h"
#include "arbor/store/replacement_stream.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/rating.h"
#include "tools/model_table.h"
#include "tools/offered_values.h"
#include "tools/one_machine.h"
#include "tools/output_file.h"
#include "tools/print_ratings.h"
#include "tools/terminal.h"

namespace arbor::tools {

namespace {

constexpr const char* show_help =
    R"(A leaf shows its class and, in brackets, the weight of its training cases and
after a slash the weight of those of other classes. A test shows its number in
square brackets. --rate with --node N rates all attributes on those rows of a
table that reach test N. Give options of the table as for growing;
the model has the types and the kinds of the attributes that it tests.

The formats rules, sql, c, python and pmml are for people and programs that
apply the tree without arbor; docs/exports.md shows each of them.

Examples:
  arbor show golf.model
  arbor show birds.model --depth 2 --picture birds.svg
  arbor show golf.model --format json
  arbor show golf.model --format c >golf.c
  arbor show golf.model --node 0 --rate golf.csv)";

bool is_export(const std::string& format) {
  return format == "rules" || format == "sql" || format == "c" || format == "python" ||
         format == "pmml";
}

void print_export(const tree::decision_tree& model, const std::string& format) {
  if (format == "rules") tree::write_rules(std::cout, model, text_width());
  if (format == "sql") tree::write_sql(std::cout, model);
  if (format == "c") tree::write_c(std::cout, model);
  if (format == "python") tree::write_python(std::cout, model);
  if (format == "pmml") tree::write_pmml(std::cout, model, ARBOR_VERSION);
}

void print_text(const tree::decision_tree& model, std::size_t depth) {
  tree::tree_excerpt excerpt;
  excerpt.depth = depth;
  std::cout << tree::description(model, text_width()) << '\n';
  tree::write_tree_text(std::cout, model, excerpt, text_width());
  if (model.attributes.empty()) return;
  std::cout << '\n';
  tree::write_importance(std::cout, model, text_width());
}

}  // namespace

show_command::show_command(CLI::App& app)
    : command(app, "show", "Show a saved tree as text, graph, JSON, picture or code", show_help) {
  parser.add_option("MODEL", model_path, "A file saved by arbor grow")->type_name("");
  offer(parser.add_option("--format", format,
                          "text, dot (for Graphviz), json, rules, sql, c, python or pmml; with "
                          "--rate: text, csv or json (default: text)"),
        {"text", "dot", "json", "csv", "rules", "sql", "c", "python", "pmml"})
      ->type_name("FORMAT");
  parser.add_option("--depth", depth, "How many levels of tests to show (default: all)")
      ->type_name("N");
  parser
      .add_option("--picture", picture_path,
                  "Draw the tree with Graphviz, as an SVG file; - is standard output")
      ->type_name("FILE.svg");
  add_force(parser, "--picture", force);
  parser.add_option("--node", node, "Number of the test for --rate (default: 0, the root)")
      ->type_name("N");
  parser
      .add_option("--rate", rated_paths,
                  "Rate the attributes of this table on the rows that reach a test; repeatable for "
                  "one of several files")
      ->type_name("TABLE")
      ->take_all()
      ->allow_extra_args(false);
  parser
      .add_option("--min-weight", min_weight,
                  "For --rate, as in arbor rate (default: that of the model)")
      ->type_name("W");
  table.add_cell_options_to(parser);
  table.add_kinds_to(parser);
}

void show_command::run() {
  check_offered(parser, "--format");
  const std::size_t shown_depth = depth.empty() ? tree::whole_depth : whole_value("--depth", depth);
  check_combination();
  const tree::decision_tree model = tree::load_model(model_path);
  if (!rated_paths.empty()) {
    rate_at_node(model);
  } else if (!picture_path.empty()) {
    std::ostringstream graph;
    graph.exceptions(std::ios::badbit);  // out of memory
    tree::write_tree_dot(graph, model, shown_depth);
    draw_picture(graph.str());
  } else if (format == "json") {
    tree::write_tree_json(std::cout, model);
  } else if (is_export(format)) {
    print_export(model, format);
  } else if (format == "dot") {
    tree::write_tree_dot(std::cout, model, shown_depth);
  } else {
    print_text(model, shown_depth);
  }
}

void show_command::check_combination() const {
  const bool rates = !rated_paths.empty();
  refuse_if(model_path.empty(), "no model; name a file that arbor grow has saved");
  for (const std::string& path : rated_paths)
    refuse_if(path.empty(), "--rate: the name of the table is empty");
  refuse_if(given("--picture") && picture_path.empty(), "--picture: the name of the file is empty");
  refuse_if(given("--rate") && given("--picture"), "--rate does not go with --picture");
  refuse_if(given("--rate") && given("--depth"), "--rate does not go with --depth");
  refuse_if(given("--picture") && given("--format"), "--picture does not go with --format");
  refuse_if((format == "json" || is_export(format)) && given("--depth"),
            "--depth does not go with --format " + format + ", which shows the whole tree");
  refuse_if((format == "dot" || is_export(format)) && rates,
            "--rate goes with --format text, csv or json");
  refuse_if(format == "csv" && !rates, "--format csv goes with --rate TABLE");
  for (const CLI::Option* option : parser.get_options()) {
    const bool is_of_rating = table_options::have(*option) || option->check_lname("node") ||
                              option->check_lname("min-weight");
    refuse_if(is_of_rating && option->count() > 0 && !rates,
              option->get_name() + " goes with --rate TABLE");
  }
}

void show_command::rate_at_node(const tree::decision_tree& model) const {
  const std::size_t test = chosen_node(model);
  const float least_weight = chosen_weight(model);
  const tree::load_options load = options_for_model(table.chosen(), model);
  const tree::table rows = read_table(one_machine(), rated_paths, load);
  const impls::w_sequence cases = tree::cases_at_node(model, rows, test);
  if (cases.empty())
    throw tree::table_error(rows.name + ": no row reaches node " + std::to_string(test));
  tree::table_rating ratings = tree::rate_attributes(rows, cases, least_weight);
  tree::sort_ratings(ratings.attributes, tree::rating_order::ratio);
  print_ratings(rows, tree::summary_of(rows, cases), ratings, format);
}

std::size_t show_command::chosen_node(const tree::decision_tree& model) const {
  const std::size_t chosen = node.empty() ? 0 : whole_value("--node", node);
  refuse_if(chosen >= model.nodes.size(), "--node: there is no node " + std::to_string(chosen) +
                                              "; the last one is " +
                                              std::to_string(model.nodes.size() - 1));
  return chosen;
}

float show_command::chosen_weight(const tree::decision_tree& model) const {
  if (given("--min-weight")) return weight_value("--min-weight", min_weight);
  return least_weight_of(model);
}

void show_command::draw_picture(const std::string& graph) const {
  const output_file picture{"--picture", picture_path, force};
  if (!picture.is_standard_output()) {
    picture.keep_input(model_path, "the model");
    picture.check(tree::file_content::svg, "an SVG picture");
  }
  if (!tree::can_draw()) {
    throw tree::table_error(
        "a picture needs Graphviz, whose program dot is not installed; --format dot prints the "
        "graph to draw elsewhere");
  }
  const std::string svg = tree::as_svg(graph);
  if (picture.is_standard_output()) {
    std::cout << svg;
    return;
  }
  tree::file_replacement file(picture.path, picture.new_ownership());
  tree::replacement_stream out(file);
  const terminal_guard guard(out, tree::is_terminal(picture.path));
  out << svg << std::flush;
  file.commit();
}

}  // namespace arbor::tools
