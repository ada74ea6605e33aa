#include "tools/show_command.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "arbor/csv/message_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/file_replacement.h"
#include "arbor/store/model_store.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/rating.h"
#include "tools/rate_command.h"

namespace arbor::tools {

namespace {

constexpr const char* show_help =
    R"(A leaf shows its class and, in brackets, the weight of its training cases and, behind a
stroke, the weight of those of other classes. A test shows its number in square brackets,
which --node takes to rate every attribute on the rows of a table that come to the test.

Examples:
  arbor show golf.model
  arbor show birds.model --depth 2 --picture birds.svg
  arbor show golf.model --format json
  arbor show golf.model --node 0 --rate golf.csv

Exit status: 0, or 2 with one line on standard error that says what is wrong.)";

// Has Graphviz draw a graph.
void draw(const std::string& graph, const std::string& path) {
  if (std::system("command -v dot >/dev/null 2>&1") != 0) {
    throw tree::table_error(
        "a picture needs Graphviz, whose program dot is not installed; --format dot prints the "
        "graph to draw "
        "elsewhere");
  }
  tree::file_replacement file(path);
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));  // should dot end early, it is told below
  const std::string command = "dot -Tsvg >" + tree::shell_word(file.temporary_path());
  FILE* drawing = popen(command.c_str(), "w");
  const bool sent =
      drawing != nullptr && std::fwrite(graph.data(), 1, graph.size(), drawing) == graph.size();
  const bool drawn = drawing != nullptr && pclose(drawing) == 0;
  if (!sent || !drawn) throw tree::table_error(path + ": Graphviz could not draw the picture");
  file.commit();
}

}  // namespace

show_command::show_command(CLI::App& app)
    : command(app, "show", "Show a saved tree, as text, graph, JSON or picture", show_help) {
  parser.add_option("MODEL", model_path, "A file that arbor grow has saved")->type_name("");
  parser
      .add_option("--format", format,
                  "text, dot (for Graphviz) or json; of --rate text, csv or json (default: text)")
      ->type_name("FORMAT");
  parser.add_option("--depth", depth, "Leave out tests below this many others (default: none)")
      ->type_name("N");
  parser.add_option("--picture", picture_path, "Have Graphviz draw the tree")
      ->type_name("FILE.svg");
  parser.add_option("--node", node, "The test to rate attributes at (default: 0, the root)")
      ->type_name("N");
  parser.add_option("--rate", rated_path, "A table whose rows are rated at the test")
      ->type_name("TABLE");
  parser.add_option("--min-weight", min_weight, "Of --rate: as of arbor rate (default: 2)")
      ->type_name("W");
  table.add_cell_options_to(parser);
}

void show_command::run() {
  tree::check_choice("--format: ", format, {"text", "dot", "json", "csv"});
  const std::size_t shown_depth = depth.empty() ? tree::whole_depth : whole_value("--depth", depth);
  if (model_path.empty()) throw usage_error("no model; name a file that arbor grow has saved");
  refuse_together({"--rate", "--picture", "--depth"});
  refuse_together({"--picture", "--format"});
  if (format == "json" && !depth.empty())
    throw usage_error("--depth does not go with --format json, which tells all");
  if (format == "dot" && !rated_path.empty())
    throw usage_error("--rate goes with --format text, csv or json");
  if (format == "csv" && rated_path.empty())
    throw usage_error("--format csv goes with --rate TABLE");
  for (const char* option : {"--node", "--min-weight", "--weights", "--unknown"}) {
    if (rated_path.empty() && parser.count(option) > 0)
      throw usage_error(std::string(option) + " goes with --rate TABLE");
  }
  const tree::decision_tree model = tree::load_model(model_path);
  if (!rated_path.empty()) {
    rate(model, node.empty() ? 0 : whole_value("--node", node));
  } else if (!picture_path.empty()) {
    draw(tree::tree_as_dot(model, shown_depth), picture_path);
  } else if (format == "json") {
    std::cout << tree::tree_as_json(model);
  } else {
    std::cout << (format == "dot" ? tree::tree_as_dot(model, shown_depth)
                                  : tree::tree_as_text(model, shown_depth));
  }
}

// Complains if the first of some options has been given with another of them.
void show_command::refuse_together(const std::vector<const char*>& options) const {
  for (std::size_t i = 1; i < options.size(); ++i) {
    if (parser.count(options[0]) > 0 && parser.count(options[i]) > 0) {
      throw usage_error(std::string(options[0]) + " does not go with " + options[i]);
    }
  }
}

void show_command::rate(const tree::decision_tree& model, std::size_t at) const {
  if (at >= model.nodes.size()) {
    throw usage_error("--node: there is no node " + std::to_string(at) + "; the last one is " +
                      std::to_string(model.nodes.size() - 1));
  }
  tree::load_options options = table.chosen();
  options.class_name = model.class_column->get_name();
  options.types_from = "the model";
  options.types[options.class_name] = model.class_column->get_o_set()->get_datatype();
  for (const auto& attribute : model.attributes) {
    options.types[attribute->get_name()] = attribute->get_o_set()->get_datatype();
    options.kinds[attribute->get_name()] = attribute->get_type();
  }
  const tree::table rows = read_table(rated_path, options);
  const tree::row_classifier classifier(model, rows);
  impls::w_sequence cases;
  for (const auto& [row, weight] : rows.cases) {
    const float here = weight * static_cast<float>(classifier.weight_at(row, at));
    if (here > 0) cases.push_back({row, here});
  }
  if (cases.empty())
    throw tree::table_error(rows.name + ": no row comes to node " + std::to_string(at));
  std::vector<tree::attribute_rating> ratings =
      tree::rate_attributes(rows, cases, weight_value("--min-weight", min_weight));
  tree::sort_ratings(ratings, tree::rating_order::ratio);
  print_ratings(rows, cases, ratings, format);
}

}  // namespace arbor::tools
